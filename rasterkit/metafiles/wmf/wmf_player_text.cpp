#include <rasterkit/metafiles/records/ansi_text.h>
#include <rasterkit/metafiles/wmf/wmf_player.h>
#include <rasterkit/metafiles/wmf/wmf_text.h>

namespace rasterkit::detail {

bool WmfPlayer::PlayText(const WmfRecord& record) {
  const std::optional<WmfText> text = ReadWmfText(record);
  if (!text) return false;
  const AnsiText decoded = DecodeAnsiText(text->bytes, text->steps, context_.Font().charset);
  TextRun run;
  run.origin = text->origin;
  run.options = text->options;
  run.box = text->box;
  run.text = decoded.text;
  run.steps = decoded.steps;
  context_.ExtTextOut(run);
  return true;
}

}  // namespace rasterkit::detail
