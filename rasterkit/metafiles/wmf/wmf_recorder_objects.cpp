#include <algorithm>
#include <string>

#include <rasterkit/metafiles/records/font_record.h>
#include <rasterkit/metafiles/records/packed_bitmap.h>
#include <rasterkit/metafiles/records/utf16.h>
#include <rasterkit/metafiles/wmf/wmf_recorder.h>

namespace rasterkit::detail {
namespace {

/// EMF handles start at 1.
int64_t EmfHandle(size_t handle) {
  return static_cast<int64_t>(handle) + 1;
}

/// The fields between font and end of the record are names that players do not need; write zeros.
constexpr size_t kFontBytes = 92, kFontRecordBytes = 320;

/// The handle of the initial palette.
constexpr int64_t kStockPalette = 0x8000000F;

void AppendEntries(std::span<const tagPALETTEENTRY> entries, EmfFields& fields) {
  for (const tagPALETTEENTRY& entry : entries) {
    fields.Byte(entry.peRed).Byte(entry.peGreen).Byte(entry.peBlue).Byte(entry.peFlags);
  }
}

}  // namespace

void WmfRecorder::CreatePen(size_t handle, const LogicalPen& pen) {
  EmfFields fields;
  fields.Long(EmfHandle(handle)).Long(pen.style).Number(pen.width).Long(0).Long(pen.color);
  writer_.Add(EmfType::createPen, fields);
}

void WmfRecorder::CreateBrush(size_t handle, const LogicalBrush& brush) {
  enum Style : int64_t { kSolid = 0, kNull = 1, kHatched = 2 };
  if (brush.kind != LogicalBrush::pattern) {
    const int64_t style = brush.kind == LogicalBrush::null      ? kNull
                          : brush.kind == LogicalBrush::hatched ? kHatched
                                                                : kSolid;
    writer_.Add(EmfType::createBrush, {EmfHandle(handle), style, brush.color, brush.hatch});
    return;
  }
  constexpr uint32_t kOffset = 32;
  const std::vector<uint8_t> dib = PackedBitmap(*brush.bitmap);
  const DibParts parts = SplitPackedDib(dib, DibColors::colors);
  const auto head = static_cast<int64_t>(parts.head.size());
  EmfFields fields;
  fields.Longs({EmfHandle(handle), static_cast<int64_t>(DibColors::colors), kOffset, head,
                kOffset + head, static_cast<int64_t>(parts.bits.size())});
  fields.Append(parts.head).Append(parts.bits);
  writer_.Add(brush.isMono ? EmfType::createMonoBrush : EmfType::createDibPatternBrush, fields);
}

void WmfRecorder::CreateFont(size_t handle, const LogicalFont& font) {
  EmfFields fields;
  fields.Long(EmfHandle(handle)).Number(font.height).Number(font.width);
  fields.Number(font.escapement).Number(font.orientation).Long(font.weight);
  fields.Byte(font.italic).Byte(font.underline).Byte(font.strikeOut).Byte(font.charset);
  fields.Byte(0).Byte(0).Byte(0).Byte(font.pitchAndFamily);
  const std::u16string name = Utf16FromUtf8(font.faceName).substr(0, kFaceNameLength - 1);
  for (const char16_t unit : name) fields.Word(unit);
  while (fields.Size() < 4 + kFontBytes) fields.Word(0);
  while (fields.Size() < 4 + kFontRecordBytes) fields.Long(0);
  writer_.Add(EmfType::extCreateFont, fields);
}

void WmfRecorder::CreatePalette(size_t handle, const HPALETTE& palette) {
  constexpr int64_t kVersion = 0x300;
  const auto entries = palette.Entries();
  EmfFields fields;
  fields.Long(EmfHandle(handle)).Word(kVersion).Word(static_cast<int64_t>(entries.size()));
  AppendEntries(entries, fields);
  writer_.Add(EmfType::createPalette, fields);
}

void WmfRecorder::Create(size_t handle) {
  const MetafileObject* object = player_.Objects().Find(handle);
  if (object == nullptr) return;
  handles_ = std::max(handles_, handle + 2);
  if (const auto* pen = std::get_if<PenObject>(object)) {
    CreatePen(handle, **pen);
  } else if (const auto* brush = std::get_if<BrushObject>(object)) {
    CreateBrush(handle, **brush);
  } else if (const auto* font = std::get_if<FontObject>(object)) {
    CreateFont(handle, **font);
  } else if (const auto* palette = std::get_if<PaletteObject>(object)) {
    CreatePalette(handle, **palette);
  }
}

void WmfRecorder::Select(size_t handle) {
  const MetafileObject* object = player_.Objects().Find(handle);
  if (object == nullptr) return;
  if (const auto* region = std::get_if<RegionObject>(object)) {
    SelectClip(region);
    return;
  }
  if (const auto* pen = std::get_if<PenObject>(object)) {
    state_.hasPen = ((*pen)->style & pen_style::kLine) != pen_style::kNull;
  }
  const bool isSeen = std::holds_alternative<PenObject>(*object) ||
                      std::holds_alternative<BrushObject>(*object) ||
                      std::holds_alternative<FontObject>(*object);
  if (isSeen) writer_.Add(EmfType::selectObject, {EmfHandle(handle)});
}

bool WmfRecorder::RecordObject(const WmfRecord& record) {
  if (MakesObject(record.function)) {
    Create(player_.Objects().Last());
    return true;
  }
  MetafileBytes fields = record.Fields();
  switch (record.function) {
    case WmfFunction::selectObject:
      Select(fields.Word());
      return true;
    case WmfFunction::deleteObject:
      // Regions have no EMF handle; deleting a free handle is a no-op.
      writer_.Add(EmfType::deleteObject, {EmfHandle(fields.Word())});
      return true;
    default:
      return false;
  }
}

/// Converts a change of the selected palette by its result.
bool WmfRecorder::RecordPalette(const WmfRecord& record) {
  MetafileBytes fields = record.Fields();
  switch (record.function) {
    case WmfFunction::selectPalette: {
      const size_t handle = fields.Word();
      const MetafileObject* object = player_.Objects().Find(handle);
      const bool isPalette = object != nullptr && std::holds_alternative<PaletteObject>(*object);
      state_.palette = isPalette ? std::optional(handle) : std::nullopt;
      writer_.Add(EmfType::selectPalette, {isPalette ? EmfHandle(handle) : kStockPalette});
      return true;
    }
    case WmfFunction::setPaletteEntries:
    case WmfFunction::animatePalette: {
      const auto entries = context_.Palette().Entries();
      const size_t start = fields.Word(), stated = fields.Word();
      if (!state_.palette || start >= entries.size()) return true;
      const size_t count = std::min(stated, entries.size() - start);
      EmfFields written;
      written.Longs({EmfHandle(*state_.palette), static_cast<int64_t>(start)});
      written.Long(static_cast<int64_t>(count));
      AppendEntries(entries.subspan(start, count), written);
      writer_.Add(EmfType::setPaletteEntries, written);
      return true;
    }
    case WmfFunction::resizePalette:
      if (!state_.palette) return true;
      writer_.Add(EmfType::resizePalette, {EmfHandle(*state_.palette), context_.Palette().Count()});
      return true;
    default:
      return false;
  }
}

}  // namespace rasterkit::detail
