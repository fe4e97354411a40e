#include <utility>

#include <rasterkit/codecs/unsized_picture.h>
#include <rasterkit/pictures/reading/picture_bytes.h>
#include <rasterkit/runtime/worker/worker_input.h>

namespace rasterkit::detail {

PictureBytes::PictureBytes(std::vector<uint8_t> bytes, std::string name)
    : name_(std::move(name)),
      memory_(std::make_shared<const std::vector<uint8_t>>(std::move(bytes))) {}

PictureBytes::PictureBytes(const std::string& file) : name_(file) {
  auto open = std::make_shared<const SharedFile>(file);
  if (open->IsRegular()) {
    file_ = std::move(open);
  } else {
    memory_ = std::make_shared<const std::vector<uint8_t>>(ReadUnsizedPicture(*open->Stream()));
  }
}

uint64_t PictureBytes::Size() const {
  return file_ ? file_->Size() : memory_->size();
}

std::unique_ptr<TStream> PictureBytes::Stream() const {
  if (file_) return file_->Stream();
  return std::make_unique<TSpanStream>(*memory_);
}

void PictureBytes::RequireUnchanged() const {
  if (file_) file_->RequireUnchanged();
}

bool PictureBytes::IsNamed(const std::string& file) const {
  return file_ && file_->IsNamed(file);
}

SystemFile PictureBytes::Handle() const {
  return file_ ? file_->Handle() : WorkerInputOf(*memory_);
}

}  // namespace rasterkit::detail
