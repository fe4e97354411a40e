#include <rasterkit/host/metafiles/wmf_player.h>

namespace rasterkit::detail {

WmfPlayer::WmfPlayer(DeviceContext& context, const WmfPicture& picture, uint64_t fileBytes)
    : context_(context), picture_(picture), dibs_(fileBytes) {
  context_.SetMapMode(MapMode::anisotropic);
  context_.SetWindowOrg({picture.window.left, picture.window.top});
  context_.SetWindowExt({picture.window.Width(), picture.window.Height()});
  context_.SetViewportExt(picture.pixels);
}

bool WmfPlayer::Play(const WmfRecord& record) {
  return PlayObject(record) || PlayShape(record) || PlayPoints(record) || PlayState(record) ||
         PlayText(record) || PlayMapping(record) || PlayBitmap(record) || PlayRegion(record);
}

}  // namespace rasterkit::detail
