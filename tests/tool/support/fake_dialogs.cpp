// Replaces the library of the dialogs. RASTERKIT_FAKE selects its behavior: "other version", "no
// window", or windows that fail after they opened.

#include <cstdlib>
#include <string_view>
#include <tuple>

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

template <class... Arguments>
DesktopAnswer FailWith(Arguments... arguments) noexcept {
  // The error is the last one.
  return Fail(std::get<sizeof...(arguments) - 1>(std::tie(arguments...)));
}

constexpr DesktopDialogs kDialogs = {Start,    End,      FailWith, FailWith, FailWith,
                                     FailWith, FailWith, FailWith, FailWith};

}  // namespace

extern "C" const DesktopDialogs* rasterkit_desktop_dialogs(int32_t) {
  return Does("other version") ? nullptr : &kDialogs;
}

}  // namespace rasterkit
