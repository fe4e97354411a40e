#include <utility>

#include <rasterkit/runtime/errors.h>

namespace rasterkit {

Error::Error(std::string reason, std::string file)
    : std::runtime_error(reason),
      reason_(std::move(reason)),
      file_(std::move(file)),
      message_(file_.empty() ? reason_ : file_ + ": " + reason_) {}

void Error::AttachFile(const std::string& file) {
  if (!file_.empty() || file.empty()) return;
  file_ = file;
  message_ = file_ + ": " + reason_;
}

}  // namespace rasterkit
