#include <utility>

#include <rasterkit/codecs/picture_pages.h>
#include <rasterkit/codecs/unsized_picture.h>
#include <rasterkit/pictures/reading/picture_bytes.h>
#include <rasterkit/runtime/worker/worker_input.h>

namespace rasterkit::detail {
namespace {

std::unique_ptr<TStream> StreamOf(const std::shared_ptr<const SharedFile>& file,
                                  const std::shared_ptr<const std::vector<uint8_t>>& memory) {
  if (file) return file->Stream();
  return std::make_unique<TSpanStream>(*memory);
}

}  // namespace

PictureBytes::PictureBytes(std::vector<uint8_t> bytes, std::string name)
    : name_(std::move(name)),
      memory_(std::make_shared<const std::vector<uint8_t>>(std::move(bytes))) {
  SharePages();
}

PictureBytes::PictureBytes(const std::string& file) : name_(file) {
  auto open = std::make_shared<const SharedFile>(file);
  if (open->IsRegular()) {
    file_ = std::move(open);
  } else {
    memory_ = std::make_shared<const std::vector<uint8_t>>(ReadUnsizedPicture(*open->Stream()));
  }
  SharePages();
}

void PictureBytes::SharePages() {
  pages_ = std::make_shared<SharedPages>(
      [file = file_, memory = memory_] { return StreamOf(file, memory); });
}

uint64_t PictureBytes::Size() const {
  return file_ ? file_->Size() : memory_->size();
}

std::unique_ptr<TStream> PictureBytes::Stream() const {
  return StreamOf(file_, memory_);
}

std::unique_ptr<TStream> PictureBytes::PageStream(PictureType type, int page) const {
  return pages_->View(type, page);
}

PictureHeader PictureBytes::Header(PictureType type, int page) const {
  return pages_->Header(type, page);
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
