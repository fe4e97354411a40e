#pragma once

#include <lcms2.h>

#include <rasterkit/host/raster/raster.h>

namespace rasterkit::test {

inline ColorProfile SavedProfile(cmsHPROFILE profile) {
  cmsUInt32Number size = 0;
  cmsSaveProfileToMem(profile, nullptr, &size);
  std::vector<uint8_t> bytes(size);
  cmsSaveProfileToMem(profile, bytes.data(), &size);
  cmsCloseProfile(profile);
  return std::make_shared<const std::vector<uint8_t>>(std::move(bytes));
}

/// A true ICC profile for red, green, blue pixels.
inline ColorProfile RgbProfile() {
  return SavedProfile(cmsCreate_sRGBProfile());
}

/// A true ICC profile for greys.
inline ColorProfile GrayProfile() {
  cmsToneCurve* curve = cmsBuildGamma(nullptr, 2.2);
  const ColorProfile profile = SavedProfile(cmsCreateGrayProfile(cmsD50_xyY(), curve));
  cmsFreeToneCurve(curve);
  return profile;
}

}  // namespace rasterkit::test
