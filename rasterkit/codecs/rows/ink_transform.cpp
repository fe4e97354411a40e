#include <lcms2.h>

#include <rasterkit/codecs/rows/ink_transform.h>

namespace rasterkit::detail {

namespace {

struct CloseProfile {
  void operator()(void* profile) const { cmsCloseProfile(profile); }
};
struct DeleteContext {
  void operator()(_cmsContext_struct* context) const { cmsDeleteContext(context); }
};
struct DeleteTransform {
  void operator()(void* transform) const { cmsDeleteTransform(transform); }
};

using Profile = std::unique_ptr<void, CloseProfile>;

}  // namespace

struct InkTransform::State {
  /// Outlives the transforms that are made with it.
  std::unique_ptr<_cmsContext_struct, DeleteContext> context{cmsCreateContext(nullptr, nullptr)};
  std::unique_ptr<void, DeleteTransform> transform;

  /// True if the library can convert from one to the other.
  bool Connect(const Profile& source, uint32_t sourceFormat, uint32_t intent) {
    const Profile screen(cmsCreate_sRGBProfileTHR(context.get()));
    if (!source || !screen) return false;
    // No cache in the transform: threads would have to share it.
    transform.reset(cmsCreateTransformTHR(context.get(), source.get(), sourceFormat, screen.get(),
                                          TYPE_BGR_8, intent, cmsFLAGS_NOCACHE));
    return transform != nullptr;
  }
};

InkTransform::InkTransform(std::unique_ptr<State> state) : state_(std::move(state)) {}
InkTransform::~InkTransform() = default;

std::unique_ptr<const InkTransform> InkTransform::OfInks(std::span<const uint8_t> bytes) {
  auto state = std::make_unique<State>();
  const Profile profile(cmsOpenProfileFromMemTHR(state->context.get(), bytes.data(),
                                                 static_cast<cmsUInt32Number>(bytes.size())));
  if (!profile || cmsGetColorSpace(profile.get()) != cmsSigCmykData) return nullptr;
  const uint32_t intent = cmsGetHeaderRenderingIntent(profile.get());
  if (!state->Connect(profile, TYPE_CMYK_16, intent <= 3 ? intent : INTENT_PERCEPTUAL)) {
    return nullptr;
  }
  return std::unique_ptr<const InkTransform>(new InkTransform(std::move(state)));
}

std::unique_ptr<const InkTransform> InkTransform::OfLab() {
  auto state = std::make_unique<State>();
  const Profile profile(cmsCreateLab4ProfileTHR(state->context.get(), nullptr));
  if (!state->Connect(profile, TYPE_Lab_DBL, INTENT_RELATIVE_COLORIMETRIC)) return nullptr;
  return std::unique_ptr<const InkTransform>(new InkTransform(std::move(state)));
}

void InkTransform::ToBgr(const void* pixels, size_t width, uint8_t* bgr) const {
  cmsDoTransform(state_->transform.get(), pixels, bgr, static_cast<cmsUInt32Number>(width));
}

}  // namespace rasterkit::detail
