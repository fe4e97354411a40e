#include <rasterkit/metafiles/emf/emf_player.h>

namespace rasterkit::detail {
namespace {

/// Kinds that leave nothing to be seen: what frames the file, what is for other programs, colour
/// management, and what is for devices of other kinds.
bool IsSilent(EmfType type) {
  switch (type) {
    case EmfType::header:
    case EmfType::endOfFile:
    case EmfType::comment:
    case EmfType::setMapperFlags:
    case EmfType::setColorAdjustment:
    case EmfType::realizePalette:
    case EmfType::setIcmMode:
    case EmfType::createColorSpace:
    case EmfType::setColorSpace:
    case EmfType::deleteColorSpace:
    case EmfType::createColorSpaceW:
    case EmfType::colorMatchToTarget:
    case EmfType::colorCorrectPalette:
    case EmfType::setIcmProfileA:
    case EmfType::setIcmProfileW:
    case EmfType::glsRecord:
    case EmfType::glsBoundedRecord:
    case EmfType::pixelFormat:
    case EmfType::drawEscape:
    case EmfType::extEscape:
    case EmfType::namedEscape:
    case EmfType::forceUfiMapping:
    case EmfType::setLinkedUfis:
      return true;
    default:
      return false;
  }
}

}  // namespace

EmfPlayer::EmfPlayer(DeviceContext& context, uint64_t fileBytes)
    : context_(context), dibs_(fileBytes) {
  // Boxes are recorded with the corner that they reach.
  context_.SetGraphicsMode(GraphicsMode::advanced);
}

bool EmfPlayer::Play(const EmfRecord& record) {
  // In the order of how often they occur.
  return PlayLine(record) || PlayObject(record) || PlayState(record) || PlayText(record) ||
         PlayShape(record) || PlayPath(record) || PlayMapping(record) || PlayBitmap(record) ||
         PlayRegion(record) || PlayPalette(record) || IsSilent(record.type);
}

}  // namespace rasterkit::detail
