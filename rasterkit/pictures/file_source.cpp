#include <string>
#include <utility>

#include <rasterkit/codecs/jpeg/jpeg_picture.h>
#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/codecs/picture_pages.h>
#include <rasterkit/graphics/metafile.h>
#include <rasterkit/pictures/open_source.h>
#include <rasterkit/pictures/reading/metafile_drawing.h>
#include <rasterkit/pictures/reading/picture_bytes.h>
#include <rasterkit/pictures/sources/smaller_forms.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {
namespace {

constexpr int kMostDecoders = 64;

/// Compressed pixels may be copied without a look at the limits.
SourcePtr WithinLimits(SourcePtr source) {
  const PictureHeader& header = source->Header();
  RequirePictureSize(static_cast<uint64_t>(header.width), static_cast<uint64_t>(header.height),
                     "a picture of " + std::to_string(header.width) + " x " +
                         std::to_string(header.height) + " pixels");
  return source;
}

/// A file that a codec decodes.
class FileSource : public PictureSource {
 public:
  FileSource(PictureBytes bytes, PictureType type, const OpenOptions& options)
      : bytes_(std::move(bytes)), options_(options) {
    type_ = type;
    file_ = bytes_.Name();
    page_ = options.page;
    header_ = type == PictureType::jpeg && options.skipsHidden && page_ == 1
                  ? ReadOwnJpegHeader(*Stream())
                  : bytes_.Header(type, page_);
    if (type == PictureType::tiff && header_.smallerCopies + header_.masks > 0) {
      extraPages_ = ReadTiffExtraPages(*Stream());
    }
    position_ = ReadPlacement(NameForPosition(file_, page_), header_.positionTags, header_.width,
                              header_.height, options.position);
  }

  Pixels ReadPixels(int threads, CodecReport& report) const override {
    bytes_.RequireUnchanged();
    Pixels pixels = DecodePixels(*Stream(), type_, {std::min(threads, kMostDecoders)}, &report);
    // A change while it is read would mix two pictures.
    bytes_.RequireUnchanged();
    return pixels;
  }
  std::optional<SmallerForm> SmallestForm(int width, int height) const override {
    if (!options_.shrinksOnLoad) return std::nullopt;
    if (type_ == PictureType::jpeg) return SmallestJpeg(header_, width, height);
    // A copy of numbers has another range.
    if (!Kind().isRaster || !position_.noData.empty()) return std::nullopt;
    return SmallestCopy(header_, extraPages_, width, height);
  }
  Pixels ReadSmaller(const SmallerForm& form, int threads, CodecReport& report) const override {
    if (form.extraPage) return ReadExtraPage(*form.extraPage, threads, report);
    bytes_.RequireUnchanged();
    Pixels pixels = DecodeSmallerJpegPixels(*Stream(), form.denominator, &report);
    bytes_.RequireUnchanged();
    return pixels;
  }
  Pixels ReadExtraPage(size_t index, int threads, CodecReport& report) const override {
    bytes_.RequireUnchanged();
    Pixels pixels =
        DecodeTiffExtraPage(*Stream(), index, {std::min(threads, kMostDecoders)}, &report);
    bytes_.RequireUnchanged();
    return pixels;
  }
  std::unique_ptr<TStream> Bytes() const override {
    bytes_.RequireUnchanged();
    return Stream();
  }
  SourcePtr OpenPage(int page) const override {
    bytes_.RequireUnchanged();
    OpenOptions options = options_;
    options.page = page;
    try {
      return WithinLimits(std::make_shared<FileSource>(bytes_, type_, options));
    } catch (Error& error) {
      error.AttachFile(file_);
      throw;
    }
  }
  std::unique_ptr<TStream> WholeFile() const override {
    bytes_.RequireUnchanged();
    return bytes_.Stream();
  }
  const void* FileIdentity() const override { return bytes_.Identity(); }
  uint64_t ByteCount() const override { return bytes_.Size(); }
  bool IsNamed(const std::string& file) const override { return bytes_.IsNamed(file); }

 private:
  std::unique_ptr<TStream> Stream() const { return bytes_.PageStream(type_, page_); }

  const PictureBytes bytes_;
  const OpenOptions options_;
};

/// Records that are drawn.
class DrawnSource : public PictureSource {
 public:
  DrawnSource(PictureBytes bytes, PictureType type, const OpenOptions& options)
      : bytes_(std::move(bytes)), drawing_(options.drawing) {
    type_ = type;
    file_ = bytes_.Name();
    metafile_.LoadFromStream(*bytes_.Stream());
    const DrawnSize size = DrawnSizeOf(metafile_, drawing_);
    header_.width = size.pixels.width;
    header_.height = size.pixels.height;
    header_.metadata.resolution = size.resolution;
    header_.warnings = metafile_.Facts().warnings;
    position_ = ReadPlacement(file_, {}, header_.width, header_.height, options.position);
    lost_.Lose(LossKind::records, "the records of the drawing", "only its pixels are kept");
  }

  Pixels ReadPixels(int, CodecReport& report) const override {
    const auto keepGoing = [] {
      RequireTime();
      return true;
    };
    DrawnMetafile drawn = DrawMetafile(metafile_, drawing_, keepGoing);
    for (std::string& warning : drawn.warnings) report.warnings.push_back(std::move(warning));
    return std::move(drawn.rows);
  }
  uint64_t ByteCount() const override { return bytes_.Size(); }
  bool IsNamed(const std::string& file) const override { return bytes_.IsNamed(file); }

 private:
  const PictureBytes bytes_;
  const MetafileDrawing drawing_;
  TMetafile metafile_;
};

SourcePtr SourceOfKind(PictureBytes bytes, const OpenOptions& options) {
  const PictureType type = SniffPictureType(*bytes.Stream());
  if (bytes.Size() == 0) throw FormatError("the file is empty");
  if (type == PictureType::pdf) {
    throw UnsupportedError("a PDF file has pages: draw one of them (see PdfDocument)");
  }
  if (options.isolation == Isolation::process || type == PictureType::heif) {
    return OpenIsolated(std::move(bytes), type, options);
  }
  if (type == PictureType::wmf || type == PictureType::emf) {
    RequireOnePage(options);
    return std::make_shared<DrawnSource>(std::move(bytes), type, options);
  }
  return std::make_shared<FileSource>(std::move(bytes), type, options);
}

SourcePtr SourceOfBytes(PictureBytes bytes, const OpenOptions& options) {
  const LimitsScope limits;
  return WithinLimits(SourceOfKind(std::move(bytes), options));
}

}  // namespace

std::string NameForPosition(const std::string& file, int page) {
  return page == 1 ? file : std::string();
}

void RequireOnePage(const OpenOptions& options) {
  if (options.page != 1) {
    throw RangeError("there is no page " + std::to_string(options.page) + ": the file has 1 page");
  }
}

SourcePtr OpenSource(const std::string& file, const OpenOptions& options) {
  try {
    return SourceOfBytes(PictureBytes(file), options);
  } catch (Error& error) {
    error.AttachFile(file);
    throw;
  }
}

SourcePtr OpenSource(std::vector<uint8_t> bytes, const OpenOptions& options) {
  return SourceOfBytes(PictureBytes(std::move(bytes), {}), options);
}

}  // namespace rasterkit::detail
