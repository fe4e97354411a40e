#include <rasterkit/metafiles/emf/emf_fields.h>
#include <rasterkit/metafiles/records/ddb_reader.h>
#include <rasterkit/metafiles/records/packed_bitmap.h>
#include <rasterkit/metafiles/records/raster_operations.h>
#include <rasterkit/metafiles/wmf/wmf_fields.h>
#include <rasterkit/metafiles/wmf/wmf_recorder.h>

namespace rasterkit::detail {
namespace {

constexpr int64_t kOne = 0x3F800000;  // as a 32-bit float

/// Appends offsets and sizes of the bitmap that follows the fields of a record.
void AppendPlace(const DibParts& parts, int64_t fieldBytes, EmfFields& fields) {
  const auto head = static_cast<int64_t>(parts.head.size());
  const auto bits = static_cast<int64_t>(parts.bits.size());
  const int64_t offset = static_cast<int64_t>(kEmfRecordHead) + fieldBytes;
  // Rows start at a multiple of four bytes.
  fields.Longs({offset, head, offset + (head + 3) / 4 * 4, bits});
}

void AppendBitmap(const DibParts& parts, EmfFields& fields) {
  fields.Append(parts.head).Pad().Append(parts.bits);
}

/// Returns the common first fields of blits with and without a bitmap.
EmfFields BlitHead(const RectD& dest, uint32_t operation, PointD corner) {
  EmfFields fields;
  fields.NoBounds().SizedRect(dest).Long(operation).Point(corner);
  fields.Longs({kOne, 0, 0, kOne, 0, 0});
  constexpr int64_t kWhite = 0xFFFFFF;
  return fields.Long(kWhite).Long(static_cast<int64_t>(DibColors::colors));
}

}  // namespace

void WmfRecorder::PatBlt(const RectD& dest, uint32_t operation) {
  if (NeedsSource(operation)) return;
  writer_.Add(EmfType::bitBlt, BlitHead(dest, operation, {}).Longs({0, 0, 0, 0}));
}

void WmfRecorder::Blit(const WmfRecord& record, bool isStretched, bool isDeviceBitmap) {
  constexpr int64_t kFieldBytes = 100;
  MetafileBytes fields = record.Fields();
  const bool hasBitmap = record.HasBitmap();
  const WmfBlit blit = ReadBlit(fields, isStretched, hasBitmap);
  if (!hasBitmap) {
    PatBlt(blit.dest, blit.operation);
    return;
  }
  std::vector<uint8_t> converted;
  if (isDeviceBitmap) converted = PackedBitmap(ReadDdb(fields));
  const DibParts parts = SplitPackedDib(
      isDeviceBitmap ? std::span<const uint8_t>(converted) : fields.Take(fields.Left()),
      DibColors::colors);
  EmfFields written = BlitHead(blit.dest, blit.operation, {blit.part.left, blit.part.top});
  AppendPlace(parts, kFieldBytes, written);
  written.Point({blit.part.Width(), blit.part.Height()});
  AppendBitmap(parts, written);
  writer_.Add(EmfType::stretchBlt, written);
}

void WmfRecorder::StretchBits(const WmfRecord& record) {
  constexpr int64_t kFieldBytes = 72;
  MetafileBytes fields = record.Fields();
  const uint32_t operation = fields.Long();
  const DibColors colors = DibColorsOf(fields.Word());
  const RectD part = ReadReversedSizedRect(fields), dest = ReadReversedSizedRect(fields);
  const DibParts parts = SplitPackedDib(fields.Take(fields.Left()), colors);
  EmfFields written;
  written.NoBounds().Point({dest.left, dest.top}).SizedRect(part);
  AppendPlace(parts, kFieldBytes, written);
  written.Long(static_cast<int64_t>(colors)).Long(operation);
  written.Point({dest.Width(), dest.Height()});
  AppendBitmap(parts, written);
  writer_.Add(EmfType::stretchDibits, written);
}

void WmfRecorder::SetBits(const WmfRecord& record) {
  constexpr int64_t kFieldBytes = 68;
  MetafileBytes fields = record.Fields();
  const DibColors colors = DibColorsOf(fields.Word());
  const uint16_t rows = fields.Word(), firstRow = fields.Word();
  const PointD partCorner = ReadReversedPoint(fields), size = ReadReversedPoint(fields);
  const PointD corner = ReadReversedPoint(fields);
  const DibParts parts = SplitPackedDib(fields.Take(fields.Left()), colors);
  EmfFields written;
  written.NoBounds().Point(corner).Point(partCorner).Point(size);
  AppendPlace(parts, kFieldBytes, written);
  written.Longs({static_cast<int64_t>(colors), firstRow, rows});
  AppendBitmap(parts, written);
  writer_.Add(EmfType::setDibitsToDevice, written);
}

bool WmfRecorder::RecordBitmap(const WmfRecord& record) {
  switch (record.function) {
    case WmfFunction::patBlt: {
      MetafileBytes fields = record.Fields();
      const uint32_t operation = fields.Long();
      PatBlt(ReadReversedSizedRect(fields), operation);
      return true;
    }
    case WmfFunction::dibBitBlt:
    case WmfFunction::dibStretchBlt:
      Blit(record, record.function == WmfFunction::dibStretchBlt, false);
      return true;
    case WmfFunction::bitBlt:
    case WmfFunction::stretchBlt:
      Blit(record, record.function == WmfFunction::stretchBlt, true);
      return true;
    case WmfFunction::stretchDib:
      StretchBits(record);
      return true;
    case WmfFunction::setDibToDev:
      SetBits(record);
      return true;
    default:
      return false;
  }
}

}  // namespace rasterkit::detail
