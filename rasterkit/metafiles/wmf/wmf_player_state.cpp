#include <algorithm>
#include <cmath>

#include <rasterkit/metafiles/wmf/wmf_fields.h>
#include <rasterkit/metafiles/wmf/wmf_player.h>

namespace rasterkit::detail {

bool WmfPlayer::PlayState(const WmfRecord& record) {
  MetafileBytes fields = record.Fields();
  switch (record.function) {
    case WmfFunction::saveDc:
      context_.SaveDC();
      return true;
    case WmfFunction::restoreDc:
      context_.RestoreDC(fields.Short());
      return true;
    case WmfFunction::setTextColor:
      context_.SetTextColor(Color(fields));
      return true;
    case WmfFunction::setBkColor:
      context_.SetBkColor(Color(fields));
      return true;
    case WmfFunction::setBkMode:
      context_.SetBkMode(static_cast<BackgroundMode>(fields.Word()));
      return true;
    case WmfFunction::setRop2:
      context_.SetRop2(static_cast<Rop2>(fields.Word()));
      return true;
    case WmfFunction::setPolyFillMode:
      context_.SetPolyFillMode(static_cast<PolygonFill>(fields.Word()));
      return true;
    case WmfFunction::setStretchBltMode:
      context_.SetStretchBltMode(static_cast<StretchMode>(fields.Word()));
      return true;
    case WmfFunction::setTextAlign:
      context_.SetTextAlign(fields.Word());
      return true;
    case WmfFunction::setTextCharExtra:
      context_.SetTextCharacterExtra(fields.Short());
      return true;
    case WmfFunction::setTextJustification: {
      const int16_t breaks = fields.Short();
      context_.SetTextJustification(fields.Short(), breaks);
      return true;
    }
    default:
      return false;
  }
}

std::optional<WmfMode> WmfModeOf(uint16_t number, const WmfPicture& picture) {
  const RectD& window = picture.window;
  const auto mode = static_cast<MapMode>(number);
  WmfMode set{.mode = mode, .windowOrg = {}, .windowExt = {}, .viewportExt = {}};
  switch (mode) {
    case MapMode::text:
      // Text mode has pixels of the recording screen, which is unknown: keep the current mapping.
      return std::nullopt;
    case MapMode::anisotropic:
      return set;
    case MapMode::isotropic:
      // The extents of the mode itself are those of a page with y upward.
      set.windowExt = PointD{window.Width(), window.Height()};
      set.viewportExt = picture.pixels;
      return set;
    default:
      // Modes with a fixed unit have y upward, so the box starts at its highest y.
      if (picture.isMeasured) return set;
      set.windowOrg =
          PointD{std::min(window.left, window.right), std::max(window.top, window.bottom)};
      return set;
  }
}

/// A viewport is in pixels of an unknown device. The first one is taken for the whole picture, as
/// it was for the program that wrote the file.
PointD WmfPlayer::ViewportScaled(PointD recorded) const {
  if (!firstViewport_) return recorded;
  return {recorded.x * std::abs(picture_.pixels.x / firstViewport_->x),
          recorded.y * std::abs(picture_.pixels.y / firstViewport_->y)};
}

PointD WmfPlayer::ViewportPlace(PointD recorded) const {
  const PointD scaled = ViewportScaled(recorded);
  return {picture_.origin.x + scaled.x, picture_.origin.y + scaled.y};
}

bool WmfPlayer::PlayMapping(const WmfRecord& record) {
  MetafileBytes fields = record.Fields();
  const auto scale = [&](auto set) {
    const double yDenominator = fields.Short(), yNumerator = fields.Short();
    const double xDenominator = fields.Short(), xNumerator = fields.Short();
    (context_.*set)({xNumerator, yNumerator}, {xDenominator, yDenominator});
  };
  switch (record.function) {
    case WmfFunction::setMapMode: {
      const std::optional<WmfMode> mode = WmfModeOf(fields.Word(), picture_);
      if (!mode) return true;
      context_.SetMapMode(mode->mode);
      if (mode->windowOrg) context_.SetWindowOrg(*mode->windowOrg);
      if (mode->windowExt) context_.SetWindowExt(*mode->windowExt);
      if (mode->viewportExt) context_.SetViewportExt(*mode->viewportExt);
      return true;
    }
    case WmfFunction::setWindowOrg:
      context_.SetWindowOrg(ReadReversedPoint(fields));
      return true;
    case WmfFunction::setWindowExt:
      context_.SetWindowExt(ReadReversedPoint(fields));
      return true;
    case WmfFunction::offsetWindowOrg:
      context_.OffsetWindowOrg(ReadReversedPoint(fields));
      return true;
    case WmfFunction::scaleWindowExt:
      scale(&DeviceContext::ScaleWindowExt);
      return true;
    case WmfFunction::setViewportOrg:
      context_.SetViewportOrg(ViewportPlace(ReadReversedPoint(fields)));
      return true;
    case WmfFunction::setViewportExt: {
      const PointD extent = ReadReversedPoint(fields);
      if (extent.x == 0 || extent.y == 0) return true;
      if (!firstViewport_) firstViewport_ = extent;
      context_.SetViewportExt(ViewportScaled(extent));
      return true;
    }
    case WmfFunction::offsetViewportOrg:
      context_.OffsetViewportOrg(ViewportScaled(ReadReversedPoint(fields)));
      return true;
    case WmfFunction::scaleViewportExt:
      scale(&DeviceContext::ScaleViewportExt);
      return true;
    case WmfFunction::setLayout:
      context_.SetLayout(fields.Word());
      return true;
    default:
      return false;
  }
}

}  // namespace rasterkit::detail
