#include <algorithm>
#include <cmath>

#include <rasterkit/drawing/ink/drawing_modes.h>
#include <rasterkit/metafiles/records/metafile_units.h>
#include <rasterkit/metafiles/records/packed_bitmap.h>
#include <rasterkit/metafiles/wmf/wmf_records.h>
#include <rasterkit/metafiles/wmf/wmf_writer.h>
#include <rasterkit/raster/convert.h>

namespace rasterkit::detail {
namespace {

constexpr int kMostUnits = 32767;
/// Units of 0.01 mm state the size exactly, up to a third of a meter.
constexpr double kUnitsPerInch = kMm100PerInch;

class WmfBytes {
 public:
  void Word(int64_t value) {
    bytes_.push_back(static_cast<uint8_t>(value));
    bytes_.push_back(static_cast<uint8_t>(value >> 8));
  }
  void Words(std::initializer_list<int64_t> values) {
    for (const int64_t value : values) Word(value);
  }
  void Long(int64_t value) { Words({value & 0xFFFF, value >> 16 & 0xFFFF}); }
  void Append(std::span<const uint8_t> more) {
    bytes_.insert(bytes_.end(), more.begin(), more.end());
  }

  void Record(WmfFunction function, std::initializer_list<int64_t> parameters,
              std::span<const uint8_t> more = {}) {
    Long(static_cast<int64_t>(kWmfRecordHead / 2 + parameters.size() + more.size() / 2));
    Word(static_cast<uint16_t>(function));
    Words(parameters);
    Append(more);
  }
  std::span<const uint8_t> Bytes() const { return bytes_; }
  std::vector<uint8_t> Take() { return std::move(bytes_); }

 private:
  std::vector<uint8_t> bytes_;
};

struct Extent {
  int width = 0, height = 0;
  int unitsPerInch = 0;
};

/// Returns the box of the picture, with fewer units per inch if it would be too large otherwise.
Extent ExtentOf(int widthMm100, int heightMm100) {
  const double longest = std::max(widthMm100, heightMm100) / kMm100PerInch;
  const double units = std::max(1.0, std::min(kUnitsPerInch, std::floor(kMostUnits / longest)));
  const auto side = [&](int mm100) {
    return static_cast<int>(
        std::clamp(std::nearbyint(mm100 / kMm100PerInch * units), 1.0, double{kMostUnits}));
  };
  return {side(widthMm100), side(heightMm100), static_cast<int>(units)};
}

void AppendPlacement(const Extent& extent, WmfBytes& file) {
  WmfBytes head;
  head.Long(kWmfPlaceableKey);
  head.Words({0, 0, 0, extent.width, extent.height, extent.unitsPerInch, 0, 0});
  int64_t sum = 0;
  MetafileBytes words(head.Bytes());
  while (words.Left() > 0) sum ^= words.Word();
  head.Word(sum);
  file.Append(head.Bytes());
}

}  // namespace

std::vector<uint8_t> EncodeWmf(const Raster& picture, int widthMm100, int heightMm100) {
  const int width = picture.Width(), height = picture.Height();
  if (width > kMostUnits || height > kMostUnits) {
    throw LimitError("WMF: at most 32767 pixels per side can be written");
  }
  const Extent extent = ExtentOf(widthMm100, heightMm100);
  const std::vector<uint8_t> dib = PackedBitmap(ConvertRaster(picture, pf24bit));
  constexpr int64_t kAnisotropic = 8, kColors = 0;
  WmfBytes records;
  records.Record(WmfFunction::setMapMode, {kAnisotropic});
  records.Record(WmfFunction::setWindowOrg, {0, 0});
  records.Record(WmfFunction::setWindowExt, {extent.height, extent.width});
  const size_t before = records.Bytes().size();
  records.Record(WmfFunction::stretchDib,
                 {rop3::kSourceCopy & 0xFFFF, rop3::kSourceCopy >> 16, kColors, height, width, 0, 0,
                  extent.height, extent.width, 0, 0},
                 dib);
  const size_t longest = records.Bytes().size() - before;
  records.Record(WmfFunction::endOfFile, {});

  WmfBytes file;
  AppendPlacement(extent, file);
  constexpr int64_t kInMemory = 1, kVersion = 0x300, kObjects = 0;
  file.Words({kInMemory, kWmfHeader / 2, kVersion});
  file.Long(static_cast<int64_t>((kWmfHeader + records.Bytes().size()) / 2));
  file.Word(kObjects);
  file.Long(static_cast<int64_t>(longest / 2));
  file.Word(0);
  file.Append(records.Bytes());
  return file.Take();
}

}  // namespace rasterkit::detail
