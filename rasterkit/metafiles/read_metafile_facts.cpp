#include <algorithm>
#include <cmath>
#include <limits>

#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/metafiles/emf/emf_contents.h>
#include <rasterkit/metafiles/read_metafile_facts.h>
#include <rasterkit/metafiles/records/metafile_units.h>
#include <rasterkit/metafiles/wmf/wmf_extent.h>
#include <rasterkit/metafiles/wmf/wmf_measure.h>
#include <rasterkit/metafiles/wmf/wmf_records.h>

namespace rasterkit {
namespace {

using namespace detail;

/// In a WMF file without a size, one unit is a pixel. A drawing that would then be larger than the
/// screens of its time has twips (1/1440 inch) instead.
constexpr int64_t kMostPixelUnits = 2048;
constexpr double kTwipsPerInch = 1440;

MetafileFacts::Box Wide(const EmfHeader::Box& box) {
  return {box.left, box.top, box.right, box.bottom};
}

int PositiveInt(double value) {
  constexpr double kMost = std::numeric_limits<int>::max();
  return static_cast<int>(std::clamp(std::nearbyint(value), 1.0, kMost));
}

void SetSize(MetafileFacts& facts, double widthInches, double heightInches) {
  facts.width = PositiveInt(widthInches * kMetafileDpi);
  facts.height = PositiveInt(heightInches * kMetafileDpi);
  facts.widthMm100 = PositiveInt(widthInches * kMm100PerInch);
  facts.heightMm100 = PositiveInt(heightInches * kMm100PerInch);
}

void CopyHeader(const EmfHeader& header, MetafileFacts& facts) {
  facts.bounds = Wide(header.bounds);
  facts.frame = Wide(header.frame);
  facts.deviceWidth = std::max(header.deviceWidth, 0);
  facts.deviceHeight = std::max(header.deviceHeight, 0);
  facts.deviceWidthMm = std::max(header.deviceWidthMm, 0.0);
  facts.deviceHeightMm = std::max(header.deviceHeightMm, 0.0);
  facts.program = header.program;
  facts.title = header.title;
  const bool hasDevice = facts.deviceWidth > 0 && facts.deviceHeight > 0 &&
                         facts.deviceWidthMm > 0 && facts.deviceHeightMm > 0;
  if (!hasDevice) {
    // Without a device, assume a screen of 96 dpi.
    facts.deviceWidth = facts.deviceHeight = static_cast<int>(kMetafileDpi);
    facts.deviceWidthMm = facts.deviceHeightMm = kMm100PerInch / 100;
    facts.warnings.emplace_back("EMF: the header states no reference device");
  }
  if (facts.frame.Width() > 0 && facts.frame.Height() > 0) return;
  facts.warnings.emplace_back("EMF: the frame is empty; the bounds are used");
  const double x = facts.deviceWidthMm * 100 / facts.deviceWidth;
  const double y = facts.deviceHeightMm * 100 / facts.deviceHeight;
  const auto scaled = [](int64_t value, double scale) {
    // A frame is stored in 32 bits.
    constexpr double kMost = std::numeric_limits<int32_t>::max();
    return std::llround(std::clamp(static_cast<double>(value) * scale, -kMost, kMost));
  };
  facts.frame = {scaled(facts.bounds.left, x), scaled(facts.bounds.top, y),
                 scaled(facts.bounds.right + 1, x), scaled(facts.bounds.bottom + 1, y)};
}

MetafileFacts ReadEmf(std::span<const uint8_t> bytes) {
  MetafileFacts facts;
  facts.kind = MetafileKind::emf;
  const EmfContents contents = ReadEmfContents(bytes);
  facts.records = contents.records;
  facts.hasEmfPlus = contents.hasEmfPlus;
  facts.isEmfPlusOnly = contents.hasEmfPlusDrawing && !contents.hasDrawing;
  if (!contents.damage.empty()) facts.warnings.push_back(contents.damage);
  CopyHeader(contents.header, facts);
  SetSize(facts, static_cast<double>(facts.frame.Width()) / kMm100PerInch,
          static_cast<double>(facts.frame.Height()) / kMm100PerInch);
  return facts;
}

/// Returns the units per inch: as the mapping mode states, else by the size of the box.
double UnitsPerInch(const MetafileFacts::Box& box, double stated) {
  if (stated > 0) return stated;
  const int64_t longest = std::max(std::abs(box.Width()), std::abs(box.Height()));
  return longest > kMostPixelUnits ? kTwipsPerInch : kMetafileDpi;
}

/// Returns the box in units of which a pixel at 96 dpi has `unitsPerPixel`, extended to whole
/// pixels so that nothing is cut off.
MetafileFacts::Box GrownBox(const RectD& drawn, double unitsPerPixel) {
  constexpr double kMost = 1 << 20, kNoise = 1e-3;
  // Coordinates that overflow become NaN; treat them as 0.
  const auto bounded = [&](double pixel) {
    return std::isnan(pixel) ? 0 : std::clamp(pixel, -kMost, kMost);
  };
  const auto units = [&](double pixel) -> int64_t { return std::llround(pixel * unitsPerPixel); };
  const double left = std::floor(bounded(drawn.left) + kNoise);
  const double top = std::floor(bounded(drawn.top) + kNoise);
  return {units(left), units(top),
          units(std::max(std::ceil(bounded(drawn.right) - kNoise), left + 1)),
          units(std::max(std::ceil(bounded(drawn.bottom) - kNoise), top + 1))};
}

/// Returns the box in the unit of the drawing: a pixel, the unit of the mapping mode, or a twip.
MetafileFacts::Box DrawnBox(const RectD& drawn, double statedUnits) {
  if (statedUnits > 0) return GrownBox(drawn, statedUnits / kMetafileDpi);
  const MetafileFacts::Box box = GrownBox(drawn, 1);
  if (UnitsPerInch(box, 0) == kMetafileDpi) return box;
  constexpr double kTwipsPerPixel = kTwipsPerInch / kMetafileDpi;
  return GrownBox({drawn.left / kTwipsPerPixel, drawn.top / kTwipsPerPixel,
                   drawn.right / kTwipsPerPixel, drawn.bottom / kTwipsPerPixel},
                  kTwipsPerPixel);
}

void FindExtent(std::span<const uint8_t> bytes, const WmfContents& contents, MetafileFacts& facts) {
  if (contents.windowExt) {
    const PointD origin = contents.windowOrg.value_or(PointD()), extent = *contents.windowExt;
    facts.bounds = {static_cast<int>(origin.x), static_cast<int>(origin.y),
                    static_cast<int>(origin.x + extent.x), static_cast<int>(origin.y + extent.y)};
  } else {
    RectD drawn = MeasureWmf(bytes).value_or(RectD{0, 0, 1, 1});
    // A page in a unit of length that states its origin, but no size, starts at the origin.
    if (contents.windowOrg && contents.unitsPerInch > 0) {
      drawn = {std::min(drawn.left, 0.0), std::min(drawn.top, 0.0), std::max(drawn.right, 0.0),
               std::max(drawn.bottom, 0.0)};
    }
    facts.bounds = DrawnBox(drawn, contents.unitsPerInch);
    facts.boundsAreDrawn = true;
  }
  facts.unitsPerInch = UnitsPerInch(facts.bounds, contents.unitsPerInch);
}

MetafileFacts ReadWmf(std::span<const uint8_t> bytes) {
  MetafileFacts facts;
  const WmfContents contents = ReadWmfContents(bytes);
  facts.records = contents.records;
  if (!contents.damage.empty()) facts.warnings.push_back(contents.damage);
  MetafileFacts::Box box;
  if (contents.placement) {
    const WmfPlacement& placement = *contents.placement;
    box = {placement.left, placement.top, placement.right, placement.bottom};
  }
  const bool hasBox = box.Width() != 0 && box.Height() != 0;
  if (hasBox) {
    facts.bounds = box;
    facts.unitsPerInch = UnitsPerInch(box, contents.unitsPerInch);
  } else {
    FindExtent(bytes, contents, facts);
  }
  if (contents.placement) {
    const WmfPlacement& placement = *contents.placement;
    facts.kind = MetafileKind::placeableWmf;
    if (!hasBox) facts.warnings.emplace_back("WMF: the box of the placeable header is empty");
    if (placement.unitsPerInch > 0) {
      facts.unitsPerInch = placement.unitsPerInch;
    } else {
      facts.warnings.emplace_back("WMF: the placeable header states no units per inch");
    }
  }
  SetSize(facts, static_cast<double>(std::abs(facts.bounds.Width())) / facts.unitsPerInch,
          static_cast<double>(std::abs(facts.bounds.Height())) / facts.unitsPerInch);
  return facts;
}

}  // namespace

MetafileFacts ReadMetafileFacts(std::span<const uint8_t> bytes) {
  switch (SniffPictureType(bytes)) {
    case PictureType::emf:
      return ReadEmf(bytes);
    case PictureType::wmf:
      return ReadWmf(bytes);
    default:
      throw FormatError("metafile: the data is neither WMF nor EMF");
  }
}

}  // namespace rasterkit
