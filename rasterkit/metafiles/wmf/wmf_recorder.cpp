#include <algorithm>

#include <rasterkit/metafiles/wmf/wmf_fields.h>
#include <rasterkit/metafiles/wmf/wmf_recorder.h>

namespace rasterkit::detail {
namespace {

PointD Sum(PointD a, PointD b) {
  return {a.x + b.x, a.y + b.y};
}

}  // namespace

WmfRecorder::WmfRecorder(EmfWriter& writer, DeviceContext& context, const WmfPlayer& player,
                         const WmfPicture& picture)
    : writer_(writer), context_(context), player_(player) {
  const RectD& window = picture.window;
  state_.windowOrg = {window.left, window.top};
  state_.viewportOrg = picture.origin;
  writer_.Add(EmfType::setMapMode, {static_cast<int64_t>(MapMode::anisotropic)});
  writer_.Add(EmfType::setWindowOrg, EmfFields().Point({window.left, window.top}));
  writer_.Add(EmfType::setWindowExt, EmfFields().Point({window.Width(), window.Height()}));
  writer_.Add(EmfType::setViewportExt, EmfFields().Point(picture.pixels));
  if (picture.origin != PointD()) {
    writer_.Add(EmfType::setViewportOrg, EmfFields().Point(picture.origin));
  }
}

void WmfRecorder::Record(const WmfRecord& record) {
  RecordObject(record) || RecordShape(record) || RecordPoints(record) || RecordPixels(record) ||
      RecordState(record) || RecordMode(record) || RecordText(record) || RecordMapping(record) ||
      RecordBitmap(record) || RecordRegion(record) || RecordPalette(record);
}

void WmfRecorder::Save() {
  if (saved_.size() >= DeviceContext::kMostSavedStates) {
    ++savedBeyond_;
  } else {
    saved_.push_back(state_);
  }
}

void WmfRecorder::Restore(int32_t number) {
  const auto kept = static_cast<int64_t>(saved_.size());
  const int64_t count = kept + savedBeyond_;
  const int64_t index = number < 0 ? count + number : int64_t{number} - 1;
  if (index < 0 || index >= count) return;
  savedBeyond_ = std::max<int64_t>(0, index - kept);
  if (index >= kept) return;
  state_ = saved_[static_cast<size_t>(index)];
  saved_.resize(static_cast<size_t>(index));
}

bool WmfRecorder::RecordState(const WmfRecord& record) {
  MetafileBytes fields = record.Fields();
  switch (record.function) {
    case WmfFunction::saveDc:
      Save();
      writer_.Add(EmfType::saveDc);
      return true;
    case WmfFunction::restoreDc: {
      const int16_t number = fields.Short();
      Restore(number);
      writer_.Add(EmfType::restoreDc, {number});
      return true;
    }
    case WmfFunction::setTextCharExtra:
      // EMF has no such record; the advances of texts include it.
      state_.textExtra = fields.Short();
      return true;
    case WmfFunction::setTextJustification: {
      const int16_t breaks = fields.Short();
      writer_.Add(EmfType::setTextJustification, {fields.Short(), breaks});
      return true;
    }
    default:
      return false;
  }
}

/// Modes and colors, which have one number each.
bool WmfRecorder::RecordMode(const WmfRecord& record) {
  MetafileBytes fields = record.Fields();
  const auto word = [&](EmfType type) {
    writer_.Add(type, {fields.Word()});
    return true;
  };
  switch (record.function) {
    case WmfFunction::setTextColor:
      writer_.Add(EmfType::setTextColor, {fields.Long()});
      return true;
    case WmfFunction::setBkColor:
      writer_.Add(EmfType::setBkColor, {fields.Long()});
      return true;
    case WmfFunction::setBkMode:
      return word(EmfType::setBkMode);
    case WmfFunction::setRop2:
      return word(EmfType::setRop2);
    case WmfFunction::setPolyFillMode:
      return word(EmfType::setPolyFillMode);
    case WmfFunction::setStretchBltMode:
      return word(EmfType::setStretchBltMode);
    case WmfFunction::setTextAlign:
      return word(EmfType::setTextAlign);
    case WmfFunction::setLayout:
      return word(EmfType::setLayout);
    default:
      return false;
  }
}

bool WmfRecorder::RecordMapping(const WmfRecord& record) {
  MetafileBytes fields = record.Fields();
  const auto point = [&](EmfType type) {
    writer_.Add(type, EmfFields().Point(ReadReversedPoint(fields)));
    return true;
  };
  const auto scale = [&](EmfType type) {
    const int64_t yDenominator = fields.Short(), yNumerator = fields.Short();
    const int64_t xDenominator = fields.Short(), xNumerator = fields.Short();
    writer_.Add(type, {xNumerator, xDenominator, yNumerator, yDenominator});
    return true;
  };
  // EMF has no records that move an origin, so write the new origin.
  const auto windowOrg = [&](PointD origin) {
    state_.windowOrg = origin;
    writer_.Add(EmfType::setWindowOrg, EmfFields().Point(origin));
    return true;
  };
  const auto viewportOrg = [&](PointD origin) {
    state_.viewportOrg = origin;
    writer_.Add(EmfType::setViewportOrg, EmfFields().Point(origin));
    return true;
  };
  switch (record.function) {
    case WmfFunction::setMapMode: {
      const std::optional<WmfMode> mode = WmfModeOf(fields.Word(), player_.Picture());
      if (!mode) return true;
      writer_.Add(EmfType::setMapMode, {static_cast<int64_t>(mode->mode)});
      if (mode->windowOrg) windowOrg(*mode->windowOrg);
      if (mode->windowExt) {
        writer_.Add(EmfType::setWindowExt, EmfFields().Point(*mode->windowExt));
      }
      if (mode->viewportExt) {
        writer_.Add(EmfType::setViewportExt, EmfFields().Point(*mode->viewportExt));
      }
      return true;
    }
    case WmfFunction::setWindowOrg:
      return windowOrg(ReadReversedPoint(fields));
    case WmfFunction::offsetWindowOrg:
      return windowOrg(Sum(state_.windowOrg, ReadReversedPoint(fields)));
    case WmfFunction::setWindowExt:
      return point(EmfType::setWindowExt);
    case WmfFunction::scaleWindowExt:
      return scale(EmfType::scaleWindowExt);
    case WmfFunction::setViewportOrg:
      return viewportOrg(player_.ViewportPlace(ReadReversedPoint(fields)));
    case WmfFunction::offsetViewportOrg:
      return viewportOrg(
          Sum(state_.viewportOrg, player_.ViewportScaled(ReadReversedPoint(fields))));
    case WmfFunction::setViewportExt: {
      const PointD extent = ReadReversedPoint(fields);
      if (extent.x == 0 || extent.y == 0) return true;
      writer_.Add(EmfType::setViewportExt, EmfFields().Point(player_.ViewportScaled(extent)));
      return true;
    }
    case WmfFunction::scaleViewportExt:
      return scale(EmfType::scaleViewportExt);
    default:
      return false;
  }
}

}  // namespace rasterkit::detail
