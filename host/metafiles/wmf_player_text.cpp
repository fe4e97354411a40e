#include <rasterkit/host/metafiles/ansi_text.h>
#include <rasterkit/host/metafiles/wmf_fields.h>
#include <rasterkit/host/metafiles/wmf_player.h>

namespace rasterkit::detail {

/// Steps fill the rest of the record, one for each byte of the text, or are not there.
void WmfPlayer::DrawText(std::span<const uint8_t> bytes, PointD origin, uint32_t options,
                         const RectD& box, MetafileBytes steps) {
  std::vector<double> across;
  if (!bytes.empty() && steps.Left() >= 2 * bytes.size()) {
    for (size_t i = 0; i < bytes.size(); ++i) across.push_back(steps.Short());
  }
  const AnsiText decoded = DecodeAnsiText(bytes, across, context_.Font().charset);
  TextRun run;
  run.origin = origin;
  run.options = options;
  run.box = box;
  run.text = decoded.text;
  run.steps = decoded.steps;
  context_.ExtTextOut(run);
}

bool WmfPlayer::PlayText(const WmfRecord& record) {
  MetafileBytes fields = record.Fields();
  switch (record.function) {
    case WmfFunction::textOut: {
      const uint16_t count = fields.Word();
      const auto bytes = fields.Take(count);
      if (count % 2 != 0) fields.Skip(1);
      DrawText(bytes, ReadReversedPoint(fields), 0, {}, MetafileBytes({}));
      return true;
    }
    case WmfFunction::extTextOut: {
      const PointD origin = ReadReversedPoint(fields);
      const uint16_t count = fields.Word();
      const uint32_t options = fields.Word();
      RectD box;
      if ((options & (text_option::opaque | text_option::clipped)) != 0) {
        const PointD topLeft = ReadShortPoint(fields), bottomRight = ReadShortPoint(fields);
        box = {topLeft.x, topLeft.y, bottomRight.x, bottomRight.y};
      }
      const auto bytes = fields.Take(count);
      if (count % 2 != 0 && fields.Left() > 0) fields.Skip(1);
      DrawText(bytes, origin, options, box, fields);
      return true;
    }
    default:
      return false;
  }
}

}  // namespace rasterkit::detail
