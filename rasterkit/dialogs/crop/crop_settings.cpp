#include <algorithm>
#include <array>
#include <string>

#include <rasterkit/dialogs/crop/crop_settings.h>
#include <rasterkit/runtime/ports.h>

namespace rasterkit {
namespace {

constexpr char kSection[] = "Settings";
constexpr char kUnitKey[] = "FormChooseCrop.Unit", kRatioKey[] = "FormChooseCrop.Ratio",
               kGuideKey[] = "FormChooseCrop.Guide";

constexpr std::array kUnits = {"px", "percent", "mm", "map"};
constexpr std::array kGuides = {"none", "thirds", "center"};

/// Place of the stored name; the first one if there is none.
template <size_t N>
size_t ReadName(const char* key, const std::array<const char*, N>& names) {
  const std::string name = ReadSetting(kSection, key).value_or("");
  const auto* const found = std::find(names.begin(), names.end(), name);
  return found == names.end() ? 0 : static_cast<size_t>(found - names.begin());
}

}  // namespace

CropSettings ReadCropSettings() {
  CropSettings settings;
  settings.unit = static_cast<LengthUnit>(ReadName(kUnitKey, kUnits));
  settings.guide = static_cast<CropGuide>(ReadName(kGuideKey, kGuides));
  settings.ratio = RatioOfSetting(ReadSetting(kSection, kRatioKey).value_or(""));
  return settings;
}

void WriteCropSettings(const CropSettings& settings) {
  WriteSetting(kSection, kUnitKey, kUnits[static_cast<size_t>(settings.unit)]);
  WriteSetting(kSection, kGuideKey, kGuides[static_cast<size_t>(settings.guide)]);
  WriteSetting(kSection, kRatioKey, SettingOf(settings.ratio));
}

}  // namespace rasterkit
