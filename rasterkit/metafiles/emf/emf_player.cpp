#include <rasterkit/metafiles/emf/emf_player.h>

namespace rasterkit::detail {
namespace {

/// Record types without a visible effect: file structure, private data of programs, color
/// management, and other devices.
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
  // Recorded boxes include their right and bottom edges, as in advanced mode.
  context_.SetGraphicsMode(GraphicsMode::advanced);
}

bool EmfPlayer::Play(const EmfRecord& record) {
  // In the order of their frequency.
  return PlayLine(record) || PlayObject(record) || PlayState(record) || PlayText(record) ||
         PlayShape(record) || PlayPath(record) || PlayMapping(record) || PlayBitmap(record) ||
         PlayRegion(record) || PlayPalette(record) || IsSilent(record.type);
}

}  // namespace rasterkit::detail
