#include <utility>

#include <rasterkit/qt/preview/preview_loader.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit::detail {

PreviewLoader::PreviewLoader(Answer answer) : answer_(std::move(answer)) {}

void PreviewLoader::Load(std::string fileName, int side) {
  const auto decode = [this, fileName = std::move(fileName),
                       side](const std::atomic<bool>& isCanceled) {
    // Only the answer may use this object, which may be destroyed by now.
    const Preview preview = DecodePreview(fileName, side, isCanceled);
    return [this, preview] { answer_(preview); };
  };
  // The dialog works without a preview.
  task_.Run(decode, [this] { answer_({{}, rsPreviewNone}); });
}

}  // namespace rasterkit::detail
