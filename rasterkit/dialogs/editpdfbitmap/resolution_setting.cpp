#include <string>

#include <rasterkit/dialogs/editpdfbitmap/resolution_setting.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/ports.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit {
namespace {

constexpr char kSection[] = "Settings", kKey[] = "FormEditPdfBmp.Resolution";
constexpr int kGreatest = 10000;

}  // namespace

std::optional<int> ReadResolution() {
  const std::optional<std::string> text = ReadSetting(kSection, kKey);
  if (!text) return std::nullopt;
  try {
    const int dpi = StrToInt(*text);
    if (dpi > 0 && dpi <= kGreatest) return dpi;
  } catch (const ConversionError&) {
    // The file can be edited by hand.
  }
  return std::nullopt;
}

void WriteResolution(int dpi) {
  WriteSetting(kSection, kKey, std::to_string(dpi));
}

}  // namespace rasterkit
