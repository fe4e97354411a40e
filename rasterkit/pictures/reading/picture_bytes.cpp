#include <utility>

#include <rasterkit/codecs/picture_pages.h>
#include <rasterkit/codecs/unsized_picture.h>
#include <rasterkit/pictures/reading/picture_bytes.h>
#include <rasterkit/runtime/worker/worker_input.h>

namespace rasterkit::detail {
namespace {

/// A page together with the stream of its file.
class PageOfFile : public TStream {
 public:
  PageOfFile(std::unique_ptr<TStream> file, PictureType type, int page)
      : file_(std::move(file)), view_(*file_, type, page) {}

  size_t Read(std::span<uint8_t> target) override { return view_.Stream().Read(target); }
  size_t ReadScattered(std::span<const std::span<uint8_t>> pieces) override {
    return view_.Stream().ReadScattered(pieces);
  }
  void Write(std::span<const uint8_t> source) override { view_.Stream().Write(source); }
  uint64_t Position() const override { return view_.Stream().Position(); }
  void SetPosition(uint64_t position) override { view_.Stream().SetPosition(position); }
  uint64_t Size() const override { return view_.Stream().Size(); }

 private:
  const std::unique_ptr<TStream> file_;
  PageView view_;
};

}  // namespace

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

std::unique_ptr<TStream> PictureBytes::PageStream(PictureType type, int page) const {
  if (page == 1) return Stream();
  return std::make_unique<PageOfFile>(Stream(), type, page);
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
