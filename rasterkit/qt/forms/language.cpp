#include <QCoreApplication>
#include <QDir>
#include <QLibraryInfo>
#include <QTranslator>
#include <memory>
#include <optional>

#include <rasterkit/qt/forms/language.h>
#include <rasterkit/qt/qt_text.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

constexpr QLatin1String kFolder(":/rasterkit/languages"), kPrefix("rasterkit_"), kSuffix(".qm"),
    kEnglish("en");

/// One context for all texts: a text has the same meaning in every window.
constexpr char kContext[] = "rasterkit";

/// State of the process; used only by the application's thread.
struct State {
  /// The language set by SetLanguage(); empty: follow the host's locale.
  QString chosen;
  QString language = kEnglish;
  bool isHosted = false;
  std::unique_ptr<QTranslator> ofQt;
};

State& TheState() {
  static State state;
  return state;
}

bool IsThere(const QString& language) {
  return QFile::exists(kFolder + u'/' + kPrefix + language + kSuffix);
}

/// Returns the first of the user's languages that has a catalogue: "de-AT", "de", "fr" gives "de".
/// If English comes first, the result is English.
QString BestOf(const QStringList& wanted) {
  for (const QString& name : wanted) {
    QString language = name.section(u'-', 0, 0).section(u'_', 0, 0);
    if (language == kEnglish || IsThere(language)) return language;
  }
  return kEnglish;
}

/// "de_AT" gives "de"; nothing for an unknown language.
std::optional<QString> Known(const QString& name) {
  const QLocale locale(name);
  const bool isEnglish = locale.language() == QLocale::English;
  const bool isPlain = name == QLatin1String("C") || name == QLatin1String("POSIX");
  if (isEnglish || isPlain) return kEnglish;
  if (locale.language() == QLocale::C) return std::nullopt;
  const QString language = locale.name().section(u'_', 0, 0);
  return IsThere(language) ? std::optional(language) : std::nullopt;
}

void RemoveCatalogueOfQt() {
  // No translator is installed after the application object was destroyed.
  if (TheState().ofQt && qApp != nullptr) QCoreApplication::removeTranslator(TheState().ofQt.get());
  TheState().ofQt.reset();
}

/// Whether the host has installed a translator for Qt's texts itself.
bool QtIsTranslated() {
  return QCoreApplication::translate("QFileDialog", "Files of type:") !=
         QLatin1String("Files of type:");
}

void InstallCatalogueOfQt(const QString& language) {
  RemoveCatalogueOfQt();
  if (qApp == nullptr || language == kEnglish || QtIsTranslated()) return;
  auto catalogue = std::make_unique<QTranslator>();
  const QString folder = QLibraryInfo::path(QLibraryInfo::TranslationsPath);
  // Not every system has this catalogue; Qt's texts are English without it.
  if (!catalogue->load(QLatin1String("qtbase_") + language, folder)) return;
  QCoreApplication::installTranslator(catalogue.get());
  TheState().ofQt = std::move(catalogue);
}

/// Shared ownership: a thread may be translating while the language changes.
TTranslator CatalogueOf(const QString& language) {
  const auto catalogue = std::make_shared<QTranslator>();
  if (!catalogue->load(kPrefix + language + kSuffix, kFolder)) return {};
  return [catalogue](std::string_view key) {
    return FromQt(catalogue->translate(kContext, std::string(key).c_str()));
  };
}

void Use(const QString& language) {
  TheState().language = language;
  SetCatalogue(language == kEnglish ? TTranslator() : CatalogueOf(language));
  const bool followsLocale = TheState().isHosted || !TheState().chosen.isEmpty();
  SetDecimalMark(followsLocale ? FromQt(LanguageLocale().decimalPoint()) : std::string());
  if (TheState().isHosted) InstallCatalogueOfQt(language);
}

/// Uses the host's language unless one was set.
void UseLanguageOfHost() {
  Use(TheState().isHosted ? BestOf(QLocale().uiLanguages()) : QString(kEnglish));
}

}  // namespace

bool SetLanguage(const std::string& language) {
  const std::optional<QString> known = Known(ToQt(language));
  if (!language.empty() && !known) return false;
  TheState().chosen = ToQt(language);
  language.empty() ? UseLanguageOfHost() : Use(*known);
  return true;
}

std::string Language() {
  return FromQt(TheState().language);
}

std::vector<std::string> Languages() {
  std::vector<std::string> languages;
  for (const QString& file :
       QDir(kFolder).entryList({kPrefix + u'*' + kSuffix}, QDir::Files, QDir::Name)) {
    languages.push_back(FromQt(file.chopped(kSuffix.size()).mid(kPrefix.size())));
  }
  return languages;
}

QLocale LanguageLocale() {
  const QString chosen = TheState().chosen;
  const QLocale ofHost, ofLanguage(chosen);
  return chosen.isEmpty() || ofLanguage.language() == ofHost.language() ? ofHost : ofLanguage;
}

detail::LanguageOfHost::LanguageOfHost() {
  TheState().isHosted = true;
  if (TheState().chosen.isEmpty()) {
    UseLanguageOfHost();
  } else {
    InstallCatalogueOfQt(TheState().language);
  }
}

detail::LanguageOfHost::~LanguageOfHost() {
  TheState().isHosted = false;
  RemoveCatalogueOfQt();
  if (TheState().chosen.isEmpty()) UseLanguageOfHost();
}

}  // namespace rasterkit
