#include <rasterkit/drawing/ink/drawing_modes.h>
#include <rasterkit/metafiles/wmf/wmf_fields.h>
#include <rasterkit/metafiles/wmf/wmf_text.h>

namespace rasterkit::detail {
namespace {

/// Fields: length, text padded to a word, position.
WmfText ReadPlain(MetafileBytes fields) {
  WmfText text;
  const uint16_t count = fields.Word();
  text.bytes = fields.Take(count);
  if (count % 2 != 0) fields.Skip(1);
  text.origin = ReadReversedPoint(fields);
  return text;
}

/// Reads one advance per byte from the rest of the record, if they are present.
std::vector<double> ReadSteps(MetafileBytes fields, size_t count) {
  std::vector<double> steps;
  if (fields.Left() < 2 * count) return steps;
  for (size_t i = 0; i < count; ++i) steps.push_back(fields.Short());
  return steps;
}

/// Fields: position, length, options, [box,] text padded to a word, [advances].
WmfText ReadExtended(MetafileBytes fields) {
  WmfText text;
  text.origin = ReadReversedPoint(fields);
  const uint16_t count = fields.Word();
  text.options = fields.Word();
  if ((text.options & (text_option::kOpaque | text_option::kClipped)) != 0) {
    const PointD topLeft = ReadShortPoint(fields), bottomRight = ReadShortPoint(fields);
    text.box = {topLeft.x, topLeft.y, bottomRight.x, bottomRight.y};
  }
  text.bytes = fields.Take(count);
  if (count % 2 != 0 && fields.Left() > 0) fields.Skip(1);
  text.steps = ReadSteps(fields, count);
  return text;
}

}  // namespace

std::optional<WmfText> ReadWmfText(const WmfRecord& record) {
  if (record.function == WmfFunction::textOut) return ReadPlain(record.Fields());
  if (record.function == WmfFunction::extTextOut) return ReadExtended(record.Fields());
  return std::nullopt;
}

}  // namespace rasterkit::detail
