#pragma once

#include <string_view>

/// The buttons of all dialogs.
namespace rasterkit {

/// The buttons that end a dialog, and their tips.
inline constexpr std::string_view rsCancel = "Cancel";
inline constexpr std::string_view rsCancelHint = "Closes without changes";
inline constexpr std::string_view rsHelp = "Help";
inline constexpr std::string_view rsHelpHint = "Shows help";
inline constexpr std::string_view rsOk = "OK";
inline constexpr std::string_view rsOkHint = "Takes over the changes and closes";
inline constexpr std::string_view rsRefresh = "Refresh";
inline constexpr std::string_view rsRefreshHint = "Sets everything back";

/// The answers to a question.
inline constexpr std::string_view rsNo = "&No";
inline constexpr std::string_view rsYes = "&Yes";

}  // namespace rasterkit
