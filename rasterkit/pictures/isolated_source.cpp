#include <utility>

#include <rasterkit/codecs/isolated_pixels.h>
#include <rasterkit/pictures/open_source.h>
#include <rasterkit/pictures/reading/picture_file.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {
namespace {

bool GoOn() {
  RequireTime();
  return true;
}

/// A file that a worker process decodes.
class IsolatedSource : public PictureSource {
 public:
  IsolatedSource(PictureBytes bytes, PictureType type, const OpenOptions& options)
      : bytes_(std::move(bytes)), options_(options) {
    file_ = bytes_.Name();
    type_ = type;
    page_ = options.page;
    if (page_ < 1) throw RangeError("pages are counted from 1");
    header_ = ReadHeaderIsolated(bytes_.Handle(), type_, GoOn, page_);
    position_ = ReadPlacement(NameForPosition(file_, page_), header_.positionTags, header_.width,
                              header_.height, options.position);
  }

  Pixels ReadPixels(int threads, CodecReport& report) const override {
    bytes_.RequireUnchanged();
    Pixels pixels = DecodePixelsIsolated(bytes_.Handle(), threads, &report, GoOn, page_);
    bytes_.RequireUnchanged();
    return pixels;
  }
  bool CanCopy() const override { return true; }
  WrittenPicture Copy(const PictureWriting& writing, TStream& target) const override {
    bytes_.RequireUnchanged();
    WrittenPicture written =
        CopyPictureIsolated(bytes_.Handle(), Type(), writing, target, GoOn, page_);
    bytes_.RequireUnchanged();
    return written;
  }
  SourcePtr OpenPage(int page) const override {
    bytes_.RequireUnchanged();
    OpenOptions options = options_;
    options.page = page;
    try {
      return std::make_shared<IsolatedSource>(bytes_, type_, options);
    } catch (Error& error) {
      error.AttachFile(file_);
      throw;
    }
  }
  bool IsApart() const override { return true; }
  IsolatedDocument WriteDocument(const DocumentOrder& order) const override {
    bytes_.RequireUnchanged();
    IsolatedDocument document = WriteDocumentIsolated(bytes_.Handle(), order, GoOn);
    bytes_.RequireUnchanged();
    return document;
  }
  const void* FileIdentity() const override { return bytes_.Identity(); }
  uint64_t ByteCount() const override { return bytes_.Size(); }
  bool IsNamed(const std::string& file) const override { return bytes_.IsNamed(file); }

 private:
  const PictureBytes bytes_;
  const OpenOptions options_;
};

/// A metafile that a worker process draws, once: how large it is shows only then.
class IsolatedDrawing : public PictureSource {
 public:
  IsolatedDrawing(PictureBytes bytes, PictureType type, const OpenOptions& options)
      : bytes_(std::move(bytes)) {
    file_ = bytes_.Name();
    type_ = type;
    LoadedFrame picture;
    PictureReading reading;
    reading.drawing = options.drawing;
    reading.isolation = Isolation::process;
    reading.keepGoing = GoOn;
    ReadPicture(picture, *bytes_.Stream(), reading);
    warnings_ = picture.warnings;
    rows_ = TakeVisibleRows(picture);
    header_.width = rows_.Width();
    header_.height = rows_.Height();
    header_.metadata.resolution = rows_.resolution;
    position_ = ReadPlacement(file_, {}, header_.width, header_.height, options.position);
    lost_.Lose(LossKind::records, "the records of the drawing", "only its pixels are kept");
  }

  Pixels ReadPixels(int, CodecReport& report) const override {
    bytes_.RequireUnchanged();
    report.warnings.insert(report.warnings.end(), warnings_.begin(), warnings_.end());
    return rows_.Clone();
  }
  uint64_t ByteCount() const override { return bytes_.Size(); }
  bool IsNamed(const std::string& file) const override { return bytes_.IsNamed(file); }

 private:
  const PictureBytes bytes_;
  Raster rows_;
  std::vector<std::string> warnings_;
};

}  // namespace

SourcePtr OpenIsolated(PictureBytes bytes, PictureType type, const OpenOptions& options) {
  if (type == PictureType::wmf || type == PictureType::emf) {
    RequireOnePage(options);
    return std::make_shared<IsolatedDrawing>(std::move(bytes), type, options);
  }
  return std::make_shared<IsolatedSource>(std::move(bytes), type, options);
}

}  // namespace rasterkit::detail
