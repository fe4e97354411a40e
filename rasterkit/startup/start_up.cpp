#include <array>
#include <mutex>

#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/graphics/picture_registry.h>
#include <rasterkit/startup/start_up.h>
#include <rasterkit/tifftobmp/wic_bitmap.h>

namespace rasterkit {
namespace {

void Nothing() {}

void RegisterJpeg() {
  TPicture::RegisterFileFormat("JPG", "JPeg", TGraphicClass::Of<TJPEGImage>());
}

void UnregisterJpeg() {
  TPicture::UnregisterGraphicClass(TGraphicClass::Of<TJPEGImage>());
}

void RegisterTiff() {
  TPicture::RegisterFileFormat("TIF", "Tiff Files", TGraphicClass::Of<TWICBitmap>());
}

void UnregisterTiff() {
  TPicture::UnregisterGraphicClass(TGraphicClass::Of<TWICBitmap>());
}

struct UnitState {
  void (*startUp)() = Nothing;
  void (*shutDown)() = Nothing;
  int count = 0;
};

constinit std::mutex mutex;

/// In the order of the enumeration.
constinit std::array<UnitState, 7> units = {UnitState{RegisterJpeg, UnregisterJpeg},
                                            UnitState{},
                                            UnitState{RegisterTiff, UnregisterTiff},
                                            UnitState{},
                                            UnitState{},
                                            UnitState{},
                                            UnitState{}};

UnitState& StateOf(Unit unit) {
  return units[static_cast<size_t>(unit)];
}

/// Lives as long as the library is loaded.
struct Loaded {
  Loaded() { Initialize(); }
  ~Loaded() { Finalize(); }
};

const Loaded kLoaded;

}  // namespace

void InitializeUnit(Unit unit) {
  const std::lock_guard lock(mutex);
  UnitState& state = StateOf(unit);
  if (state.count == 0) state.startUp();
  ++state.count;
}

void FinalizeUnit(Unit unit) {
  const std::lock_guard lock(mutex);
  UnitState& state = StateOf(unit);
  if (state.count == 0) return;
  --state.count;
  if (state.count == 0) state.shutDown();
}

int InitializationCount(Unit unit) {
  const std::lock_guard lock(mutex);
  return StateOf(unit).count;
}

void Initialize() {
  for (size_t i = 0; i < units.size(); ++i) InitializeUnit(static_cast<Unit>(i));
}

void Finalize() {
  for (size_t i = units.size(); i-- > 0;) FinalizeUnit(static_cast<Unit>(i));
}

}  // namespace rasterkit
