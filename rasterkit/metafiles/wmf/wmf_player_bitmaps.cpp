#include <rasterkit/drawing/ink/drawing_cost.h>
#include <rasterkit/metafiles/records/ddb_reader.h>
#include <rasterkit/metafiles/records/raster_operations.h>
#include <rasterkit/metafiles/wmf/wmf_fields.h>
#include <rasterkit/metafiles/wmf/wmf_player.h>

namespace rasterkit::detail {
Dib WmfPlayer::Bitmap(std::span<const uint8_t> packed, DibColors colors) {
  DibRequest request;
  request.colors = colors;
  request.palette = context_.Palette();
  Dib dib = dibs_.Read(SplitPackedDib(packed, colors), request);
  context_.ChargeWork(ReadingCost(dib.raster));
  return dib;
}

void WmfPlayer::Blit(const WmfRecord& record, bool isStretched, bool isDeviceBitmap) {
  MetafileBytes fields = record.Fields();
  const bool hasBitmap = record.HasBitmap();
  const WmfBlit blit = ReadBlit(fields, isStretched, hasBitmap);
  if (!hasBitmap) {
    if (!NeedsSource(blit.operation)) context_.PatBlt(blit.dest, blit.operation);
    return;
  }
  const Raster bitmap = isDeviceBitmap
                            ? ReadDdb(fields)
                            : Bitmap(fields.Take(fields.Left()), DibColors::colors).raster;
  context_.StretchBlt(blit.dest, {bitmap, blit.part}, blit.operation);
}

void WmfPlayer::StretchBits(const WmfRecord& record) {
  MetafileBytes fields = record.Fields();
  const uint32_t operation = fields.Long();
  const DibColors colors = DibColorsOf(fields.Word());
  const RectD part = ReadReversedSizedRect(fields), dest = ReadReversedSizedRect(fields);
  const Dib dib = Bitmap(fields.Take(fields.Left()), colors);
  context_.StretchBlt(dest, {dib.raster, FromFirstRow(part, dib)}, operation);
}

void WmfPlayer::SetBits(const WmfRecord& record) {
  MetafileBytes fields = record.Fields();
  DibRequest request;
  request.colors = DibColorsOf(fields.Word());
  request.palette = context_.Palette();
  request.rows = fields.Word();
  const uint16_t firstRow = fields.Word();
  const PointD partCorner = ReadReversedPoint(fields), size = ReadReversedPoint(fields);
  const PointD corner = ReadReversedPoint(fields);
  const DibParts parts = SplitPackedDib(fields.Take(fields.Left()), request.colors);
  const Dib dib = dibs_.Read(parts, request);
  context_.ChargeWork(ReadingCost(dib.raster));
  const RectD part{partCorner.x, partCorner.y, partCorner.x + size.x, partCorner.y + size.y};
  context_.SetDIBitsToDevice(corner, {dib.raster, PartOfBand(part, dib, firstRow)});
}

bool WmfPlayer::PlayBitmap(const WmfRecord& record) {
  switch (record.function) {
    case WmfFunction::patBlt: {
      MetafileBytes fields = record.Fields();
      const uint32_t operation = fields.Long();
      context_.PatBlt(ReadReversedSizedRect(fields), operation);
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
