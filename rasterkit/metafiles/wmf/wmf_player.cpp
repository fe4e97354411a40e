#include <rasterkit/metafiles/wmf/wmf_player.h>

namespace rasterkit::detail {
namespace {

/// Record types without a visible effect: the end, device escapes, and a mode that never had one.
bool IsSilent(WmfFunction function) {
  switch (function) {
    case WmfFunction::endOfFile:
    case WmfFunction::escape:
    case WmfFunction::realizePalette:
    case WmfFunction::setMapperFlags:
    case WmfFunction::setRelAbs:
      return true;
    default:
      return false;
  }
}

}  // namespace

WmfPlayer::WmfPlayer(DeviceContext& context, const WmfPicture& picture, uint64_t fileBytes)
    : context_(context), picture_(picture), dibs_(fileBytes) {
  context_.SetMapMode(MapMode::anisotropic);
  context_.SetWindowOrg({picture.window.left, picture.window.top});
  context_.SetWindowExt({picture.window.Width(), picture.window.Height()});
  context_.SetViewportExt(picture.pixels);
  context_.SetViewportOrg(picture.origin);
}

bool WmfPlayer::Play(const WmfRecord& record) {
  return PlayObject(record) || PlayShape(record) || PlayPoints(record) || PlayState(record) ||
         PlayText(record) || PlayMapping(record) || PlayBitmap(record) || PlayRegion(record) ||
         PlayPalette(record) || IsSilent(record.function);
}

}  // namespace rasterkit::detail
