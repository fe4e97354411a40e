#include <rasterkit/host/metafiles/emf_player.h>

namespace rasterkit::detail {

EmfPlayer::EmfPlayer(DeviceContext& context, uint64_t fileBytes)
    : context_(context), dibs_(fileBytes) {
  // Boxes are recorded with the corner that they reach.
  context_.SetGraphicsMode(GraphicsMode::advanced);
}

bool EmfPlayer::Play(const EmfRecord& record) {
  // In the order of how often they occur.
  return PlayLine(record) || PlayObject(record) || PlayState(record) || PlayText(record) ||
         PlayShape(record) || PlayPath(record) || PlayMapping(record) || PlayBitmap(record) ||
         PlayRegion(record);
}

}  // namespace rasterkit::detail
