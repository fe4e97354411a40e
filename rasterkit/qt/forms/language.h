#pragma once

#include <QLocale>
#include <string>
#include <vector>

#include <rasterkit/runtime/export.h>

/// The language of the texts. Catalogues are part of librasterkit-dialogs (`qt/languages`). The
/// texts follow the host's locale (`QLocale()`, the system's unless the host has set another) for
/// as long as a QtHost lives, without a call; texts for which there is no catalogue are English. A
/// translator of the host's own (`SetTranslator`) wins over all of this.
///
/// All functions belong to the thread of the application.
namespace rasterkit {

/// Chooses a language for the rest of the process: "de", "de_AT", "de-CH", "en"; "" follows
/// the host again. False, and everything stays, when there is no catalogue for it. Windows that are
/// open keep their texts; the next ones have the new language.
///
/// Where the texts of Qt itself (Open, Yes, the list of files) have no translator yet, Qt's
/// catalogue of the same language is installed beside it for as long as a QtHost lives.
RASTERKIT_EXPORT bool SetLanguage(const std::string& language);

/// The language in use: "en" or one of Languages().
RASTERKIT_EXPORT std::string Language();

/// What SetLanguage knows beside "en", by name: "de".
RASTERKIT_EXPORT std::vector<std::string> Languages();

/// What numbers in windows are written by: the host's locale, unless a language was chosen that is
/// not the locale's.
RASTERKIT_EXPORT QLocale LanguageLocale();

namespace detail {

/// What QtHost holds: the host's language while it lives.
class LanguageOfHost {
 public:
  LanguageOfHost();
  ~LanguageOfHost();
  LanguageOfHost(const LanguageOfHost&) = delete;
  LanguageOfHost& operator=(const LanguageOfHost&) = delete;
};

}  // namespace detail

}  // namespace rasterkit
