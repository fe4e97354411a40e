#include <rasterkit/drawing/ink/drawing_cost.h>
#include <rasterkit/metafiles/emf/emf_fields.h>
#include <rasterkit/metafiles/emf/emf_player.h>
#include <rasterkit/metafiles/records/raster_operations.h>

namespace rasterkit::detail {
namespace {

/// Returns the part of a bitmap that `box` selects in the units of its source context.
RectD SourcePart(const RectD& box, const PlaneAffine& transform) {
  const PointD a = transform({box.left, box.top}), b = transform({box.right, box.bottom});
  return {a.x, a.y, b.x, b.y};
}

/// Some programs write an all-zero matrix, which would map everything to a point.
PlaneAffine ReadSourceMatrix(MetafileBytes& fields) {
  const PlaneAffine matrix = ReadMatrix(fields);
  return matrix.KeepsAxes() && matrix.Determinant() != 0 ? matrix : PlaneAffine();
}

}  // namespace

EmfPlayer::BitmapPlace EmfPlayer::ReadPlace(MetafileBytes& fields) {
  BitmapPlace place;
  place.headOffset = fields.Long();
  place.headBytes = fields.Long();
  place.bitsOffset = fields.Long();
  place.bitsBytes = fields.Long();
  return place;
}

Dib EmfPlayer::Bitmap(const EmfRecord& record, const BitmapPlace& place, DibRequest request) {
  request.palette = context_.Palette();
  const DibParts parts{record.Part(place.headOffset, place.headBytes),
                       record.Part(place.bitsOffset, place.bitsBytes)};
  Dib dib = dibs_.Read(parts, request);
  context_.ChargeWork(ReadingCost(dib.raster));
  return dib;
}

/// Copying, stretching, blending and keying share their fields: bounds, target, operation, corner
/// and matrix of the source, background color, color usage, and the bitmap.
void EmfPlayer::Blit(const EmfRecord& record) {
  MetafileBytes fields = record.Fields();
  fields.Skip(kEmfBoundsBytes);
  const RectD dest = ReadSizedRect(fields);
  const uint32_t operation = fields.Long();
  const PointD corner = ReadPoint(fields);
  const PlaneAffine transform = ReadSourceMatrix(fields);
  fields.Skip(4);  // background color of the source
  DibRequest request;
  request.colors = DibColorsOf(fields.Long());
  const BitmapPlace place = ReadPlace(fields);
  const bool isBlend = record.type == EmfType::alphaBlend;
  if (place.IsEmpty()) {
    if (isBlend || record.type == EmfType::transparentBlt) return;
    if (!NeedsSource(operation)) context_.PatBlt(dest, operation);
    return;
  }
  PointD size{dest.Width(), dest.Height()};
  if (record.type != EmfType::bitBlt) size = ReadPoint(fields);
  const RectD box{corner.x, corner.y, corner.x + size.x, corner.y + size.y};
  const uint8_t constantAlpha = operation >> 16 & 0xFF;
  const bool hasAlpha = operation >> 24 == 1;
  request.keepsAlpha = isBlend && hasAlpha;
  const Dib dib = Bitmap(record, place, request);
  const BitmapPart source{dib.raster, SourcePart(box, transform)};
  if (isBlend) {
    context_.AlphaBlend(dest, source, constantAlpha, hasAlpha);
  } else if (record.type == EmfType::transparentBlt) {
    context_.TransparentBlt(dest, source, StatedColor(operation, context_.Palette()));
  } else {
    context_.StretchBlt(dest, source, operation);
  }
}

/// Reads the fields after the box of the source, which may include a mask.
EmfPlayer::MaskedBitmap EmfPlayer::ReadMasked(const EmfRecord& record, MetafileBytes& fields,
                                              const RectD& box) {
  const PlaneAffine transform = ReadSourceMatrix(fields);
  fields.Skip(4);  // background color of the source
  DibRequest request, maskRequest;
  request.colors = DibColorsOf(fields.Long());
  const BitmapPlace place = ReadPlace(fields);
  const int32_t maskX = fields.Int(), maskY = fields.Int();
  maskRequest.colors = DibColorsOf(fields.Long());
  const BitmapPlace maskPlace = ReadPlace(fields);
  MaskedBitmap masked{
      Bitmap(record, place, request), SourcePart(box, transform), std::nullopt, {maskX, maskY}};
  if (!maskPlace.IsEmpty()) masked.mask = Bitmap(record, maskPlace, maskRequest);
  return masked;
}

void EmfPlayer::Mask(const EmfRecord& record) {
  MetafileBytes fields = record.Fields();
  fields.Skip(kEmfBoundsBytes);
  const RectD dest = ReadSizedRect(fields);
  const uint32_t operation = fields.Long();
  const PointD corner = ReadPoint(fields);
  const MaskedBitmap source = ReadMasked(
      record, fields, {corner.x, corner.y, corner.x + dest.Width(), corner.y + dest.Height()});
  if (source.mask) {
    context_.MaskBlt(dest, source.Part(), source.mask->raster, source.maskOrigin, operation);
  } else {
    context_.StretchBlt(dest, source.Part(), operation);
  }
}

void EmfPlayer::Parallelogram(const EmfRecord& record) {
  MetafileBytes fields = record.Fields();
  fields.Skip(kEmfBoundsBytes);
  std::array<PointD, 3> corners;
  for (PointD& corner : corners) corner = ReadPoint(fields);
  const MaskedBitmap source = ReadMasked(record, fields, ReadSizedRect(fields));
  context_.PlgBlt(corners, source.Part(), source.mask ? &source.mask->raster : nullptr,
                  source.maskOrigin);
}

void EmfPlayer::StretchBits(const EmfRecord& record) {
  MetafileBytes fields = record.Fields();
  fields.Skip(kEmfBoundsBytes);
  const PointD corner = ReadPoint(fields);
  RectD part = ReadSizedRect(fields);
  const BitmapPlace place = ReadPlace(fields);
  DibRequest request;
  request.colors = DibColorsOf(fields.Long());
  const uint32_t operation = fields.Long();
  const PointD size = ReadPoint(fields);
  const RectD dest{corner.x, corner.y, corner.x + size.x, corner.y + size.y};
  if (place.IsEmpty()) {
    if (!NeedsSource(operation)) context_.PatBlt(dest, operation);
    return;
  }
  const Dib dib = Bitmap(record, place, request);
  part = FromFirstRow(part, dib);
  context_.StretchBlt(dest, {dib.raster, part}, operation);
}

void EmfPlayer::SetBits(const EmfRecord& record) {
  MetafileBytes fields = record.Fields();
  fields.Skip(kEmfBoundsBytes);
  const PointD corner = ReadPoint(fields);
  const RectD part = ReadSizedRect(fields);
  const BitmapPlace place = ReadPlace(fields);
  DibRequest request;
  request.colors = DibColorsOf(fields.Long());
  const uint32_t firstRow = fields.Long(), rows = fields.Long();
  request.rows = rows;
  const Dib dib = Bitmap(record, place, request);
  context_.SetDIBitsToDevice(corner, {dib.raster, PartOfBand(part, dib, firstRow)});
}

bool EmfPlayer::PlayBitmap(const EmfRecord& record) {
  switch (record.type) {
    case EmfType::bitBlt:
    case EmfType::stretchBlt:
    case EmfType::alphaBlend:
    case EmfType::transparentBlt:
      Blit(record);
      return true;
    case EmfType::maskBlt:
      Mask(record);
      return true;
    case EmfType::plgBlt:
      Parallelogram(record);
      return true;
    case EmfType::stretchDibits:
      StretchBits(record);
      return true;
    case EmfType::setDibitsToDevice:
      SetBits(record);
      return true;
    default:
      return false;
  }
}

}  // namespace rasterkit::detail
