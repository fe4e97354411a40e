#include <string>
#include <utility>

#include <rasterkit/codecs/jpeg/jpeg_picture.h>
#include <rasterkit/codecs/jpeg/rows/jpeg_row_reader.h>
#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/codecs/picture_pages.h>
#include <rasterkit/graphics/metafile.h>
#include <rasterkit/pictures/open_source.h>
#include <rasterkit/pictures/reading/metafile_drawing.h>
#include <rasterkit/pictures/reading/picture_bytes.h>
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

/// Rows of a file that stays the same while they are read: a change would mix two pictures.
class FileRows : public RowReader {
 public:
  FileRows(const PictureBytes& bytes, std::unique_ptr<TStream> stream,
           std::unique_ptr<RowReader> reader)
      : bytes_(bytes), stream_(std::move(stream)), reader_(std::move(reader)) {}

  int Width() const override { return reader_->Width(); }
  int Height() const override { return reader_->Height(); }
  RowAccess Access() const override { return reader_->Access(); }
  int BlockRows() const override { return reader_->BlockRows(); }
  const Pixels& Like() const override { return reader_->Like(); }
  void Read(int left, int top, Pixels& target) override { reader_->Read(left, top, target); }
  void Finish(CodecReport& report) override {
    reader_->Finish(report);
    bytes_.RequireUnchanged();
  }

 private:
  const PictureBytes& bytes_;
  const std::unique_ptr<TStream> stream_;
  const std::unique_ptr<RowReader> reader_;
};

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
    if (type_ == PictureType::jpeg) return SmallestJpeg(width, height);
    // A copy of numbers has another range; copies of bits and indexes have the nearest pixels, not
    // the mean ones.
    constexpr int kColorBits = 8;
    const PixelLayout layout = Kind().layout;
    const bool hasMeans = Kind().isRaster && position_.noData.empty() &&
                          layout.bits == kColorBits && layout.model != ColorModel::palette;
    if (extraPages_.empty() || !hasMeans) return std::nullopt;
    const std::optional<size_t> copy = FindTiffSmallerCopy(*Stream(), width, height);
    if (!copy || *copy >= extraPages_.size()) return std::nullopt;
    return SmallerForm{extraPages_[*copy].width, extraPages_[*copy].height, 1, copy};
  }
  std::unique_ptr<RowReader> OpenRows(int threads) const override {
    return Open([&](TStream& stream) {
      return rasterkit::OpenRows(stream, type_, {std::min(threads, kMostDecoders)});
    });
  }
  std::unique_ptr<RowReader> OpenSmaller(const SmallerForm& form, int threads) const override {
    return Open([&](TStream& stream) {
      if (!form.extraPage) return OpenSmallerJpegRows(stream, form.denominator);
      return OpenTiffExtraPageRows(stream, *form.extraPage, {std::min(threads, kMostDecoders)});
    });
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
  std::optional<SmallerForm> SmallestJpeg(int width, int height) const {
    for (const int denominator : {8, 4, 2}) {
      const auto shrunk = [=](int side) { return (side - 1) / denominator + 1; };
      const SmallerForm form{shrunk(header_.width), shrunk(header_.height), denominator, {}};
      if (form.width >= width && form.height >= height) return form;
    }
    return std::nullopt;
  }
  template <class OpenReader>
  std::unique_ptr<RowReader> Open(const OpenReader& open) const {
    bytes_.RequireUnchanged();
    std::unique_ptr<TStream> stream = Stream();
    std::unique_ptr<RowReader> reader = open(*stream);
    if (!reader) return nullptr;
    return std::make_unique<FileRows>(bytes_, std::move(stream), std::move(reader));
  }
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
