#include <rasterkit/metafiles/records/metafile_units.h>
#include <rasterkit/metafiles/records/play_records.h>
#include <rasterkit/metafiles/wmf/wmf_fields.h>
#include <rasterkit/metafiles/wmf/wmf_measure.h>
#include <rasterkit/metafiles/wmf/wmf_player.h>

namespace rasterkit::detail {
namespace {

/// Returns the target of a bitmap record; nothing for other records.
std::optional<RectD> BitmapPlace(const WmfRecord& record) {
  MetafileBytes fields = record.Fields();
  switch (record.function) {
    case WmfFunction::dibBitBlt:
    case WmfFunction::bitBlt:
      return ReadBlit(fields, false, record.HasBitmap()).dest;
    case WmfFunction::dibStretchBlt:
    case WmfFunction::stretchBlt:
      return ReadBlit(fields, true, record.HasBitmap()).dest;
    case WmfFunction::stretchDib:
      fields.Skip(14);  // operation, color usage, part of the bitmap
      return ReadReversedSizedRect(fields);
    case WmfFunction::setDibToDev: {
      fields.Skip(10);  // color usage, rows, corner of the part
      return ReadReversedSizedRect(fields);
    }
    default:
      return std::nullopt;
  }
}

}  // namespace

std::optional<RectD> MeasureWmf(std::span<const uint8_t> bytes) {
  constexpr double kMmPerInch = kMm100PerInch / 100;
  constexpr uint32_t kMostCalls = kMostMeasuredRecords / kRecordsPerKeepGoing;
  Raster unseen(pf32bit, 1, 1);
  const ReferenceDevice screen{kMetafileDpi, kMetafileDpi, kMmPerInch, kMmPerInch};
  DeviceContext context(unseen, {0, 0, 0, 0}, screen, PlaneAffine());
  const WmfPicture picture{
      .window = {0, 0, 1, 1}, .pixels = {1, 1}, .isMeasured = true, .origin = {}, .device = screen};
  WmfPlayer player(context, picture, bytes.size());
  WmfRecords records(bytes);
  PlayReport report;
  uint32_t calls = 0;
  PlayRecords(
      records,
      [&](const WmfRecord& record) {
        const std::optional<RectD> place = BitmapPlace(record);
        if (!place) return player.Play(record);
        context.PatBlt(*place, rop3::kBlackness);
        return true;
      },
      [&] { return ++calls <= kMostCalls; }, report);
  return context.DrawnBounds();
}

}  // namespace rasterkit::detail
