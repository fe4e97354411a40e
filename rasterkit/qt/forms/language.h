#pragma once

#include <QLocale>
#include <string>
#include <vector>

#include <rasterkit/runtime/export.h>

/// The language of the texts. The catalogues are in `rasterkit/strings/languages` and are part of
/// librasterkit-dialogs. While a QtHost lives, the texts follow the host's locale without a call
/// (`QLocale()`, the system's unless the host has set another). Texts without a translation are
/// English. A translator of the host (`SetTranslator`) takes precedence.
///
/// All functions must be called on the thread of the application.
namespace rasterkit {

/// Sets the language for the rest of the process: "de", "de_AT", "de-CH", "en"; "" follows the host
/// again. Returns false and changes nothing if there is no catalogue for it. Open windows keep
/// their texts; new ones have the new language.
///
/// If the texts of Qt itself (Open, Yes, the list of files) have no translator yet, Qt's catalogue
/// of the same language is installed as well while a QtHost lives.
RASTERKIT_EXPORT bool SetLanguage(const std::string& language);

/// Returns the current language: "en" or one of Languages().
RASTERKIT_EXPORT std::string Language();

/// Returns the languages that SetLanguage accepts besides "en", by name: "de".
RASTERKIT_EXPORT std::vector<std::string> Languages();

/// Returns the locale for numbers in windows: the host's, unless another language was set.
RASTERKIT_EXPORT QLocale LanguageLocale();

namespace detail {

/// Uses the host's language while it lives; owned by QtHost.
class LanguageOfHost {
 public:
  LanguageOfHost();
  ~LanguageOfHost();
  LanguageOfHost(const LanguageOfHost&) = delete;
  LanguageOfHost& operator=(const LanguageOfHost&) = delete;
};

}  // namespace detail

}  // namespace rasterkit
