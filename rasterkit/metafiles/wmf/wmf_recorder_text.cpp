#include <cmath>

#include <rasterkit/metafiles/records/ansi_text.h>
#include <rasterkit/metafiles/records/metafile_units.h>
#include <rasterkit/metafiles/wmf/wmf_recorder.h>
#include <rasterkit/metafiles/wmf/wmf_text.h>

namespace rasterkit::detail {
namespace {

/// 0.01 mm per pixel of the device.
constexpr double kHundredthsPerPixel = kMm100PerInch / kMetafileDpi;

}  // namespace

/// Returns advances for text with extra space between letters. They are rounded as sums, so that
/// the length of the line stays exact.
std::vector<double> WmfRecorder::MeasuredSteps(const std::u16string& text, PointD origin) {
  const PointD before = context_.CurrentPosition();
  context_.SaveDC();
  context_.SetTextAlign(text_align::kUpdatePosition);
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

bool WmfRecorder::RecordText(const WmfRecord& record) {
  const std::optional<WmfText> text = ReadWmfText(record);
  if (!text) return false;
  AnsiText decoded = DecodeAnsiText(text->bytes, text->steps, context_.Font().charset);
  if (state_.textExtra != 0 && decoded.steps.empty()) {
    decoded.steps = MeasuredSteps(decoded.text, text->origin);
  }
  const auto count = static_cast<int64_t>(decoded.text.size());
  const bool hasSteps = decoded.steps.size() == decoded.text.size() && count > 0;
  constexpr int64_t kTextOffset = 76;
  EmfFields letters;
  for (const char16_t unit : decoded.text) letters.Word(unit);
  letters.Pad();
  const int64_t stepsOffset = kTextOffset + static_cast<int64_t>(letters.Size());
  EmfFields fields;
  const PointD scale = Scale();
  fields.NoBounds().Long(static_cast<int64_t>(GraphicsMode::compatible));
  fields.Single(std::abs(scale.x) * kHundredthsPerPixel);
  fields.Single(std::abs(scale.y) * kHundredthsPerPixel);
  fields.Point(text->origin).Longs({count, kTextOffset, text->options}).Rect(text->box);
  fields.Long(hasSteps ? stepsOffset : 0).Append(letters.Bytes());
  if (hasSteps) {
    for (const double step : decoded.steps) fields.Number(step);
  }
  writer_.Add(EmfType::extTextOutW, fields);
  return true;
}

}  // namespace rasterkit::detail
