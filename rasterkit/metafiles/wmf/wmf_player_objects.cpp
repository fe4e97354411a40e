#include <algorithm>
#include <cmath>

#include <rasterkit/metafiles/records/ddb_reader.h>
#include <rasterkit/metafiles/records/font_record.h>
#include <rasterkit/metafiles/wmf/wmf_fields.h>
#include <rasterkit/metafiles/wmf/wmf_player.h>

namespace rasterkit::detail {
namespace {

constexpr uint16_t kPatternStyle = 3;

PenObject ReadPen(MetafileBytes& fields, const HPALETTE& palette) {
  LogicalPen pen;
  pen.style = fields.Word() & 0xFFu;
  pen.width = std::abs(static_cast<double>(fields.Short()));
  fields.Skip(2);
  pen.color = StatedColor(fields.Long(), palette);
  return std::make_shared<const LogicalPen>(std::move(pen));
}

BrushObject ReadBrush(MetafileBytes& fields, const HPALETTE& palette) {
  const uint16_t style = fields.Word();
  const TColor color = StatedColor(fields.Long(), palette);
  return PlainBrush(style, color, fields.Left() >= 2 ? fields.Word() : 0);
}

PaletteObject ReadPalette(MetafileBytes& fields) {
  fields.Skip(2);  // version
  const uint16_t count = fields.Word();
  return std::make_shared<HPALETTE>(ReadPaletteEntries(fields, count));
}

/// Reads a region as scanlines: number of edges, top, bottom, pairs of edges, and the number of
/// edges again.
RegionObject ReadRegion(MetafileBytes& fields) {
  fields.Skip(10);  // next in chain, type, count, size
  const uint16_t rows = fields.Word();
  fields.Skip(2 + 8);  // longest scanline, box
  RegionObject region;
  for (uint16_t i = 0; i < rows; ++i) {
    const uint16_t edges = fields.Word();
    const double top = fields.Short(), bottom = fields.Short();
    for (uint16_t edge = 0; edge + 1 < edges; edge += 2) {
      const double left = fields.Short(), right = fields.Short();
      region.rects.push_back({left, top, right, bottom});
    }
    fields.Skip(edges % 2 != 0 ? 4 : 2);
  }
  return region;
}

}  // namespace

void WmfObjects::Add(MetafileObject object) {
  if (free_.empty()) {
    last_ = objects_.size();
    objects_.emplace_back(std::move(object));
    return;
  }
  last_ = free_.top();
  objects_[last_] = std::move(object);
  free_.pop();
}

void WmfObjects::Delete(size_t handle) {
  if (Find(handle) == nullptr) return;
  objects_[handle].reset();
  free_.push(handle);
}

const MetafileObject* WmfObjects::Find(size_t handle) const {
  return handle < objects_.size() && objects_[handle] ? &*objects_[handle] : nullptr;
}

BrushObject WmfPlayer::ReadBitmapBrush(const WmfRecord& record) {
  MetafileBytes fields = record.Fields();
  if (record.function == WmfFunction::createPatternBrush) {
    return PatternBrush(ReadDdbPattern(fields), true);
  }
  const bool isPattern = fields.Word() == kPatternStyle;
  const uint16_t stated = fields.Word();
  const DibColors colors = isPattern ? DibColors::colors : DibColorsOf(stated);
  return PatternBrush(Bitmap(fields.Take(fields.Left()), colors).raster, isPattern);
}

MetafileObject WmfPlayer::ReadObject(const WmfRecord& record) {
  MetafileBytes fields = record.Fields();
  switch (record.function) {
    case WmfFunction::createPenIndirect:
      return ReadPen(fields, context_.Palette());
    case WmfFunction::createBrushIndirect:
      return ReadBrush(fields, context_.Palette());
    case WmfFunction::createFontIndirect:
      return std::make_shared<const LogicalFont>(ReadFont(fields, FontLayout::wmf));
    case WmfFunction::createPalette:
      return ReadPalette(fields);
    case WmfFunction::createRegion:
      return ReadRegion(fields);
    default:
      return ReadBitmapBrush(record);
  }
}

bool MakesObject(WmfFunction function) {
  switch (function) {
    case WmfFunction::createPenIndirect:
    case WmfFunction::createBrushIndirect:
    case WmfFunction::createFontIndirect:
    case WmfFunction::createPalette:
    case WmfFunction::createRegion:
    case WmfFunction::createPatternBrush:
    case WmfFunction::dibCreatePatternBrush:
      return true;
    default:
      return false;
  }
}

bool WmfPlayer::CreateObject(const WmfRecord& record) {
  if (!MakesObject(record.function)) return false;
  try {
    objects_.Add(ReadObject(record));
  } catch (const Error&) {
    // A damaged object takes a handle, too, as later records refer to handles by number.
    objects_.Add({});
    throw;
  }
  return true;
}

void WmfPlayer::Select(size_t handle) {
  const MetafileObject* object = objects_.Find(handle);
  if (object == nullptr) return;
  if (std::holds_alternative<RegionObject>(*object)) {
    SelectClip(handle);
  } else {
    SelectObject(context_, *object);
  }
}

bool WmfPlayer::PlayObject(const WmfRecord& record) {
  switch (record.function) {
    case WmfFunction::selectObject:
      Select(record.Fields().Word());
      return true;
    case WmfFunction::deleteObject:
      objects_.Delete(record.Fields().Word());
      return true;
    default:
      return CreateObject(record);
  }
}

/// Palettes change while they are selected; the initial palette cannot be changed.
bool WmfPlayer::PlayPalette(const WmfRecord& record) {
  MetafileBytes fields = record.Fields();
  const PaletteObject& selected = context_.SelectedPalette();
  switch (record.function) {
    case WmfFunction::selectPalette: {
      const MetafileObject* object = objects_.Find(fields.Word());
      const auto* palette = object == nullptr ? nullptr : std::get_if<PaletteObject>(object);
      context_.SelectPalette(palette == nullptr ? nullptr : *palette);
      return true;
    }
    case WmfFunction::setPaletteEntries:
    case WmfFunction::animatePalette: {
      const uint16_t start = fields.Word(), count = fields.Word();
      const auto changes = ReadPaletteEntries(fields, count);
      const bool isAnimation = record.function == WmfFunction::animatePalette;
      if (selected) (isAnimation ? AnimateEntries : ChangeEntries)(*selected, start, changes);
      return true;
    }
    case WmfFunction::resizePalette: {
      const uint16_t count = fields.Word();
      if (selected) ResizePalette(*selected, count);
      return true;
    }
    default:
      return false;
  }
}

}  // namespace rasterkit::detail
