#pragma once

#include <lcms2.h>

#include <rasterkit/raster/raster.h>

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

/// A true ICC profile for grays.
inline ColorProfile GrayProfile() {
  cmsToneCurve* curve = cmsBuildGamma(nullptr, 2.2);
  const ColorProfile profile = SavedProfile(cmsCreateGrayProfile(cmsD50_xyY(), curve));
  cmsFreeToneCurve(curve);
  return profile;
}

/// A true ICC profile for cyan, magenta, yellow, black pixels, by which all inks look as L* 50.
inline ColorProfile InkProfile() {
  const cmsHPROFILE profile = cmsCreateProfilePlaceholder(nullptr);
  cmsSetProfileVersion(profile, 2.1);
  cmsSetDeviceClass(profile, cmsSigOutputClass);
  // Others would make its darkest ink black.
  cmsSetHeaderRenderingIntent(profile, INTENT_RELATIVE_COLORIMETRIC);
  cmsSetColorSpace(profile, cmsSigCmykData);
  cmsSetPCS(profile, cmsSigLabData);
  const auto middle = [](const cmsUInt16Number*, cmsUInt16Number* lab, void*) -> cmsInt32Number {
    lab[0] = 0x8000;
    lab[1] = lab[2] = 0x8000;
    return TRUE;
  };
  cmsPipeline* pipeline = cmsPipelineAlloc(nullptr, 4, 3);
  cmsStage* table = cmsStageAllocCLut16bit(nullptr, 2, 4, 3, nullptr);
  cmsStageSampleCLut16bit(table, middle, nullptr, 0);
  cmsPipelineInsertStage(pipeline, cmsAT_END, table);
  cmsWriteTag(profile, cmsSigAToB0Tag, pipeline);
  cmsPipelineFree(pipeline);
  return SavedProfile(profile);
}

}  // namespace rasterkit::test
