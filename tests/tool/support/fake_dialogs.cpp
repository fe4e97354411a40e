// Replaces the library of the dialogs. RASTERKIT_FAKE selects its behavior: "other version", "no
// window", or windows that fail after they opened.

#include <cstdlib>
#include <string_view>

#include <rasterkit/dialogs/desktop/desktop_dialogs.h>

namespace rasterkit {
namespace {

bool Does(std::string_view what) {
  const char* const text = std::getenv("RASTERKIT_FAKE");
  return text != nullptr && text == what;
}

DesktopAnswer Start(Isolation, std::string& error) noexcept {
  if (!Does("no window")) return DesktopAnswer::confirmed;
  error = "there is no window today";
  return DesktopAnswer::failed;
}

void End() noexcept {}

DesktopAnswer Fail(std::string& error) noexcept {
  error = "the window fell over";
  return DesktopAnswer::failed;
}

constexpr DesktopDialogs kDialogs = {
    Start,
    End,
    [](TBitmap&, TChgBmpValuesRec&, std::string& error) noexcept { return Fail(error); },
    [](int32_t&, int32_t&, std::string& error) noexcept { return Fail(error); },
    [](TBitmap&, TRect&, const std::function<bool(const TRect&)>&, std::string& error) noexcept {
      return Fail(error);
    },
    [](std::string&, std::string& error) noexcept { return Fail(error); },
    [](const std::string&, std::string&, std::unique_ptr<TGraphic>&, std::string& error) noexcept {
      return Fail(error);
    },
    [](const std::string&, std::string&, std::string& error) noexcept { return Fail(error); },
    [](const std::string&, TrecSaveBitmap&, std::string&, std::string& error) noexcept {
      return Fail(error);
    },
    [](const std::string&, TrecSaveBitmap&, int32_t&, int32_t&, std::string&,
       std::string& error) noexcept { return Fail(error); }};

}  // namespace

extern "C" const DesktopDialogs* rasterkit_desktop_dialogs(int32_t) {
  return Does("other version") ? nullptr : &kDialogs;
}

}  // namespace rasterkit
