#include <cstring>
#include <map>
#include <utility>

#include <rasterkit/codecs/decode_frame.h>
#include <rasterkit/pictures/isolated_source.h>
#include <rasterkit/pictures/picture_file.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {
namespace {

constexpr uint16_t kPixelScaleTag = 33550, kTiePointTag = 33922, kTransformationTag = 34264;
constexpr uint16_t kDoubleType = 12;

TagValue TagOf(uint16_t tag, const std::vector<double>& numbers) {
  TagValue value{tag, kDoubleType, numbers.size(), {}};
  value.bytes.resize(numbers.size() * sizeof(double));
  if (!numbers.empty()) std::memcpy(value.bytes.data(), numbers.data(), value.bytes.size());
  return value;
}

std::vector<TagValue> PositionTags(const TiffFacts& facts) {
  std::vector<TagValue> tags;
  const auto add = [&](uint16_t tag, const std::vector<double>& numbers) {
    if (!numbers.empty()) tags.push_back(TagOf(tag, numbers));
  };
  add(kPixelScaleTag, facts.pixelScale);
  add(kTiePointTag, facts.tiePoints);
  add(kTransformationTag, facts.transformation);
  return tags;
}

PixelLayout LayoutOfGrid(GridType type) {
  PixelLayout layout;
  layout.bands = 1;
  layout.model = ColorModel::gray;
  layout.type = type == GridType::float32   ? NumberType::float32
                : type == GridType::float16 ? NumberType::float16
                : type == GridType::uint16  ? NumberType::uint16
                                            : NumberType::int16;
  layout.bits = static_cast<int>(BytesOf(layout.type)) * 8;
  return layout;
}

Pixels TakePixels(LoadedFrame& picture) {
  if (!picture.grid) return PictureOfFrame(std::move(picture.frame));
  const Raster& rows = picture.frame.rows;
  Samples samples(LayoutOfGrid(*picture.grid), rows.Width(), rows.Height());
  samples.resolution = rows.resolution;
  for (int y = 0; y < rows.Height(); ++y) {
    std::memcpy(samples.Row(y), rows.Row(y), samples.Stride());
  }
  return samples;
}

/// Kinds of metadata whose bytes stay in the worker.
const std::map<MetadataKind, LossKind> kUnread = {
    {MetadataKind::exif, LossKind::exif},
    {MetadataKind::gps, LossKind::gps},
    {MetadataKind::xmp, LossKind::xmp},
    {MetadataKind::iptc, LossKind::iptc},
    {MetadataKind::comment, LossKind::comment},
    {MetadataKind::text, LossKind::text},
    {MetadataKind::mpf, LossKind::hiddenPictures},
    {MetadataKind::coordinateSystem, LossKind::coordinateSystem},
};

class IsolatedSource : public PictureSource {
 public:
  IsolatedSource(PictureBytes bytes, PictureType type, const OpenOptions& options)
      : bytes_(std::move(bytes)) {
    type_ = type;
    file_ = bytes_.Name();
    LoadedFrame picture;
    PictureReading reading;
    reading.drawing = options.drawing;
    reading.isolation = Isolation::process;
    reading.keepGoing = [] {
      RequireTime();
      return true;
    };
    ReadPicture(picture, *bytes_.Stream(), reading);
    TakeFacts(picture);
    const bool isDrawn = picture.metafile.has_value();
    pixels_ = TakePixels(picture);
    header_.width = WidthOf(pixels_);
    header_.height = HeightOf(pixels_);
    header_.layout = LayoutOf(pixels_);
    std::visit([&](const auto& rows) { header_.metadata.resolution = rows.resolution; }, pixels_);
    header_.metadata.profile = header_.layout.profile;
    position_ =
        ReadPlacement(file_, header_.positionTags, header_.width, header_.height, options.position);
    if (isDrawn) {
      lost_.Lose(LossKind::records, "the records of the drawing", "only its pixels are kept");
    }
  }

  Pixels ReadPixels(int, CodecReport& report) const override {
    bytes_.RequireUnchanged();
    report.warnings.insert(report.warnings.end(), warnings_.begin(), warnings_.end());
    return std::visit([](const auto& rows) -> Pixels { return rows.Clone(); }, pixels_);
  }
  uint64_t ByteCount() const override { return bytes_.Size(); }
  bool IsNamed(const std::string& file) const override { return bytes_.IsNamed(file); }

 private:
  void TakeFacts(const LoadedFrame& picture) {
    header_.orientation = picture.photo.orientation;
    header_.frames = picture.frames;
    warnings_ = picture.warnings;
    if (picture.tiff) {
      header_.pages = picture.tiff->pages - picture.tiff->secondaryPages;
      header_.smallerCopies = picture.tiff->secondaryPages;
      header_.positionTags = PositionTags(*picture.tiff);
    }
    for (const MetadataKind kind : picture.metadata) {
      const auto unread = kUnread.find(kind);
      if (unread == kUnread.end()) continue;
      lost_.Lose(unread->second, MetadataKindName(kind), "the worker process gives only pixels");
    }
  }

  const PictureBytes bytes_;
  Pixels pixels_;
  std::vector<std::string> warnings_;
};

}  // namespace

SourcePtr OpenIsolated(PictureBytes bytes, PictureType type, const OpenOptions& options) {
  return std::make_shared<IsolatedSource>(std::move(bytes), type, options);
}

}  // namespace rasterkit::detail
