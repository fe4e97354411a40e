#include <rasterkit/metafiles/records/play_records.h>
#include <rasterkit/metafiles/wmf/wmf_recorder.h>
#include <rasterkit/metafiles/wmf/wmf_to_emf.h>

namespace rasterkit::detail {
std::vector<uint8_t> ConvertWmfToEmf(std::span<const uint8_t> bytes, const MetafileFacts& facts) {
  if (facts.kind == MetafileKind::emf) throw FormatError("WMF: the metafile is an EMF file");
  const WmfPicture window = PictureOfWmf(facts);
  // Only the state of the player and the painted bounds are used, not the pixels.
  Raster unseen(pf32bit, 1, 1);
  DeviceContext context(unseen, {0, 0, 1, 1}, window.device, PlaneAffine());
  context.RaiseWorkBudget(DrawingWork::kPerByte * static_cast<double>(bytes.size()));
  WmfPlayer player(context, window, bytes.size());
  EmfWriter writer;
  WmfRecorder recorder(writer, context, player, window);
  WmfRecords records(bytes);
  PlayReport report;
  PlayRecords(
      records,
      [&](const WmfRecord& record) {
        const bool isPlayed = player.Play(record);
        if (isPlayed) recorder.Record(record);
        return isPlayed;
      },
      {}, report);
  // A partial drawing must not pass for the whole one.
  if (!report.isComplete) throw LimitError(report.warnings.back());
  EmfPicture picture;
  picture.width = facts.width;
  picture.height = facts.height;
  picture.widthMm100 = window.widthMm100;
  picture.heightMm100 = window.heightMm100;
  picture.drawn = context.DrawnBounds();
  picture.handles = recorder.Handles();
  return writer.Finish(picture);
}

}  // namespace rasterkit::detail
