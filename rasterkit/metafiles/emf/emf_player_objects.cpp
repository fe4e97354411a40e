#include <algorithm>

#include <rasterkit/metafiles/emf/emf_player.h>
#include <rasterkit/metafiles/records/font_record.h>

namespace rasterkit::detail {
namespace {

/// Handles with this bit are stock objects.
constexpr uint32_t kStockBit = 0x80000000;
/// The header states the number of handles in 16 bits.
constexpr uint32_t kMostHandles = 0x10000;

enum ExtendedBrush : uint32_t { kPattern = 3, kDibPattern = 5, kDibPatternPointer = 6 };

}  // namespace

void EmfPlayer::Keep(uint32_t handle, MetafileObject object) {
  if (handle >= kMostHandles) throw RangeError("EMF: an object has an invalid handle");
  objects_[handle] = std::move(object);
}

void EmfPlayer::Select(uint32_t handle) {
  if ((handle & kStockBit) != 0) {
    SelectObject(context_, StockObject(handle & ~kStockBit));
    return;
  }
  const auto found = objects_.find(handle);
  if (found != objects_.end()) SelectObject(context_, found->second);
}

BrushObject EmfPlayer::BrushOf(uint32_t handle) const {
  MetafileObject object;
  if ((handle & kStockBit) != 0) {
    object = StockObject(handle & ~kStockBit);
  } else if (const auto found = objects_.find(handle); found != objects_.end()) {
    object = found->second;
  }
  const auto* brush = std::get_if<BrushObject>(&object);
  if (brush == nullptr) throw RangeError("EMF: a record refers to a missing brush");
  return *brush;
}

void EmfPlayer::CreatePen(const EmfRecord& record) {
  MetafileBytes fields = record.Fields();
  const uint32_t handle = fields.Long();
  LogicalPen pen;
  // Plain pens only have the style bits of the low byte.
  pen.style = fields.Long() & 0xFF;
  pen.width = std::abs(static_cast<double>(fields.Int()));
  fields.Skip(4);
  pen.color = Color(fields);
  Keep(handle, std::make_shared<const LogicalPen>(std::move(pen)));
}

void EmfPlayer::CreateExtendedPen(const EmfRecord& record) {
  MetafileBytes fields = record.Fields();
  const uint32_t handle = fields.Long();
  const BitmapPlace place = ReadPlace(fields);
  LogicalPen pen;
  pen.style = fields.Long();
  pen.width = fields.Long();
  const uint32_t brushStyle = fields.Long(), statedColor = fields.Long();
  pen.color = StatedColor(statedColor, context_.Palette());
  const uint32_t hatch = fields.Long();
  constexpr uint32_t kMostDashes = 16;
  const uint32_t dashes = fields.Left() >= 4 ? std::min(fields.Long(), kMostDashes) : 0;
  for (size_t i = fields.Count(dashes, 4); i > 0; --i) pen.dashes.push_back(fields.Long());
  if (brushStyle == kPattern || brushStyle == kDibPattern || brushStyle == kDibPatternPointer) {
    DibRequest request;
    request.colors = DibColorsOf(statedColor & 0xFFFF);
    if (!place.IsEmpty()) pen.brush = PatternBrush(Bitmap(record, place, request).raster, false);
  } else if (brushStyle != 0) {
    pen.brush = PlainBrush(brushStyle, pen.color, hatch);
  }
  Keep(handle, std::make_shared<const LogicalPen>(std::move(pen)));
}

void EmfPlayer::CreateFont(const EmfRecord& record) {
  MetafileBytes fields = record.Fields();
  const uint32_t handle = fields.Long();
  Keep(handle, std::make_shared<const LogicalFont>(ReadFont(fields, FontLayout::emf)));
}

void EmfPlayer::CreatePatternBrush(const EmfRecord& record, bool isMono) {
  MetafileBytes fields = record.Fields();
  const uint32_t handle = fields.Long();
  DibRequest request;
  request.colors = DibColorsOf(fields.Long());
  const BitmapPlace place = ReadPlace(fields);
  Keep(handle, PatternBrush(Bitmap(record, place, request).raster, isMono));
}

bool EmfPlayer::PlayObject(const EmfRecord& record) {
  MetafileBytes fields = record.Fields();
  switch (record.type) {
    case EmfType::selectObject:
      Select(fields.Long());
      return true;
    case EmfType::deleteObject:
      objects_.erase(fields.Long());
      return true;
    case EmfType::createPen:
      CreatePen(record);
      return true;
    case EmfType::createBrush: {
      const uint32_t handle = fields.Long(), style = fields.Long();
      const TColor color = Color(fields);
      Keep(handle, PlainBrush(style, color, fields.Long()));
      return true;
    }
    case EmfType::extCreateFont:
      CreateFont(record);
      return true;
    case EmfType::extCreatePen:
      CreateExtendedPen(record);
      return true;
    case EmfType::createMonoBrush:
    case EmfType::createDibPatternBrush:
      CreatePatternBrush(record, record.type == EmfType::createMonoBrush);
      return true;
    default:
      return false;
  }
}

}  // namespace rasterkit::detail
