#include <rasterkit/metafiles/records/player_objects.h>

namespace rasterkit::detail {
namespace {

enum BrushStyle : uint32_t { kSolid = 0, kNull = 1, kHatched = 2 };

MetafileObject StockBrush(LogicalBrush::Kind kind, uint8_t gray) {
  LogicalBrush brush;
  brush.kind = kind;
  brush.color = RGB(gray, gray, gray);
  return std::make_shared<const LogicalBrush>(brush);
}

MetafileObject StockPen(uint32_t style, TColor color) {
  LogicalPen pen;
  pen.style = style;
  pen.color = color;
  return std::make_shared<const LogicalPen>(pen);
}

MetafileObject StockFont(const char* faceName, bool isFixed) {
  LogicalFont font;
  font.faceName = faceName;
  font.pitchAndFamily = isFixed ? 0x31 : 0x22;
  return std::make_shared<const LogicalFont>(font);
}

}  // namespace

MetafileObject StockObject(uint32_t number) {
  switch (number) {
    case 0:
    case 18:
      return StockBrush(LogicalBrush::solid, 255);
    case 1:
      return StockBrush(LogicalBrush::solid, 192);
    case 2:
      return StockBrush(LogicalBrush::solid, 128);
    case 3:
      return StockBrush(LogicalBrush::solid, 64);
    case 4:
      return StockBrush(LogicalBrush::solid, 0);
    case 5:
      return StockBrush(LogicalBrush::null, 0);
    case 6:
      return StockPen(pen_style::kSolid, clWhite);
    case 7:
    case 19:
      return StockPen(pen_style::kSolid, clBlack);
    case 8:
      return StockPen(pen_style::kNull, clBlack);
    case 10:
    case 11:
    case 16:
      return StockFont("Courier New", true);
    case 12:
    case 13:
    case 14:
    case 17:
      return StockFont("Arial", false);
    default:
      return {};
  }
}

void SelectObject(DeviceContext& context, const MetafileObject& object) {
  if (const auto* pen = std::get_if<PenObject>(&object)) {
    context.SelectPen(*pen);
  } else if (const auto* brush = std::get_if<BrushObject>(&object)) {
    context.SelectBrush(*brush);
  } else if (const auto* font = std::get_if<FontObject>(&object)) {
    context.SelectFont(*font);
  }
}

BrushObject PlainBrush(uint32_t style, TColor color, uint32_t hatch) {
  LogicalBrush brush;
  brush.color = color;
  if (style == kNull) brush.kind = LogicalBrush::null;
  if (style == kHatched) {
    brush.kind = LogicalBrush::hatched;
    brush.hatch = static_cast<int>(hatch);
  }
  return std::make_shared<const LogicalBrush>(brush);
}

BrushObject PatternBrush(Raster bitmap, bool isMono) {
  LogicalBrush brush;
  brush.kind = LogicalBrush::pattern;
  brush.isMono = isMono && bitmap.Format() == pf1bit;
  brush.bitmap = std::make_shared<const Raster>(std::move(bitmap));
  return std::make_shared<const LogicalBrush>(std::move(brush));
}

}  // namespace rasterkit::detail
