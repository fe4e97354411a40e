#include <cmath>

#include <rasterkit/host/metafiles/ansi_text.h>
#include <rasterkit/host/metafiles/wmf_fields.h>
#include <rasterkit/host/metafiles/wmf_recorder.h>

namespace rasterkit::detail {
namespace {

/// 0.01 mm a pixel of the device.
constexpr double kHundredthsPerPixel = 2540.0 / 96;

}  // namespace

/// Letters with more room between them than the font gives, which only steps can say. Rounded from
/// the beginning, so that the line's length stays right.
std::vector<double> WmfRecorder::MeasuredSteps(const std::u16string& text, PointD origin) {
  const PointD before = context_.CurrentPosition();
  context_.SaveDC();
  context_.SetTextAlign(text_align::updatePosition);
  context_.MoveTo(origin);
  std::vector<double> steps;
  double done = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    TextRun run;
    run.text = std::u16string_view(text).substr(i, 1);
    context_.ExtTextOut(run);
    const PointD at = context_.CurrentPosition();
    const double reached = std::nearbyint(std::hypot(at.x - origin.x, at.y - origin.y));
    steps.push_back(reached - done);
    done = reached;
  }
  context_.RestoreDC(-1);
  context_.MoveTo(before);
  return steps;
}

void WmfRecorder::Text(std::span<const uint8_t> bytes, PointD origin, uint32_t options,
                       const RectD& box, MetafileBytes steps) {
  std::vector<double> across;
  if (!bytes.empty() && steps.Left() >= 2 * bytes.size()) {
    for (size_t i = 0; i < bytes.size(); ++i) across.push_back(steps.Short());
  }
  AnsiText decoded = DecodeAnsiText(bytes, across, context_.Font().charset);
  if (state_.textExtra != 0 && decoded.steps.empty()) {
    decoded.steps = MeasuredSteps(decoded.text, origin);
  }
  const auto count = static_cast<int64_t>(decoded.text.size());
  const bool hasSteps = decoded.steps.size() == decoded.text.size() && count > 0;
  constexpr int64_t textOffset = 76;
  EmfFields letters;
  for (const char16_t unit : decoded.text) letters.Word(unit);
  letters.Pad();
  const int64_t stepsOffset = textOffset + static_cast<int64_t>(letters.Size());
  EmfFields fields;
  const PointD scale = Scale();
  fields.NoBounds().Long(static_cast<int64_t>(GraphicsMode::compatible));
  fields.Single(std::abs(scale.x) * kHundredthsPerPixel);
  fields.Single(std::abs(scale.y) * kHundredthsPerPixel);
  fields.Point(origin).Longs({count, textOffset, options}).Rect(box);
  fields.Long(hasSteps ? stepsOffset : 0).Append(letters.Bytes());
  if (hasSteps) {
    for (const double step : decoded.steps) fields.Number(step);
  }
  writer_.Add(EmfType::extTextOutW, fields);
}

bool WmfRecorder::RecordText(const WmfRecord& record) {
  MetafileBytes fields = record.Fields();
  switch (record.function) {
    case WmfFunction::textOut: {
      const uint16_t count = fields.Word();
      const auto bytes = fields.Take(count);
      if (count % 2 != 0) fields.Skip(1);
      Text(bytes, ReadReversedPoint(fields), 0, {}, MetafileBytes({}));
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
      Text(bytes, origin, options, box, fields);
      return true;
    }
    default:
      return false;
  }
}

}  // namespace rasterkit::detail
