#include <rasterkit/metafiles/wmf/wmf_extent.h>
#include <rasterkit/metafiles/wmf/wmf_fields.h>

namespace rasterkit::detail {
namespace {

/// Returns logical units per inch of the mapping modes 2 to 6: 0.1 mm, 0.01 mm, 0.01 inch, 0.001
/// inch, 1/1440 inch. The other modes have no fixed unit.
double UnitsOfMode(int mode) {
  constexpr double kUnits[] = {254, 2540, 100, 1000, 1440};
  return mode >= 2 && mode <= 6 ? kUnits[mode - 2] : 0;
}

void Look(const WmfRecord& record, WmfContents& contents) {
  MetafileBytes fields = record.Fields();
  switch (record.function) {
    case WmfFunction::setMapMode:
      if (contents.unitsPerInch == 0) contents.unitsPerInch = UnitsOfMode(fields.Word());
      break;
    case WmfFunction::setWindowOrg:
      if (!contents.windowOrg) contents.windowOrg = ReadReversedPoint(fields);
      break;
    case WmfFunction::setWindowExt: {
      const PointD extent = ReadReversedPoint(fields);
      if (!contents.windowExt && extent.x != 0 && extent.y != 0) contents.windowExt = extent;
      break;
    }
    default:
      break;
  }
}

}  // namespace

WmfContents ReadWmfContents(std::span<const uint8_t> bytes) {
  WmfRecords records(bytes);
  WmfContents contents;
  contents.placement = records.Placement();
  while (const std::optional<WmfRecord> record = records.Next()) {
    ++contents.records;
    try {
      Look(*record, contents);
    } catch (const FormatError&) {
      // Truncated records are ignored; the player skips them, too.
    }
  }
  contents.damage = records.Damage();
  return contents;
}

}  // namespace rasterkit::detail
