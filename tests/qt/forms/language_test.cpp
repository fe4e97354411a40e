#include <QCoreApplication>
#include <QFile>
#include <QLibraryInfo>
#include <QTranslator>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/qt/controls/edits.h>
#include <rasterkit/qt/forms/language.h>
#include <rasterkit/qt/forms/scaled_form.h>
#include <rasterkit/qt/host/qt_host.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit::test {
namespace {

/// As after the start of a process.
class LanguageTest : public testing::Test {
 protected:
  void SetUp() override { SetLocale("C"); }
  void TearDown() override {
    SetTranslator({});
    SetLocale("C");
    SetLanguage("");
  }
  static void SetLocale(const char* name) { QLocale::setDefault(QLocale(name)); }
};

TEST_F(LanguageTest, TextsShouldBeEnglish_When_TheLocaleIsNone) {
  const QtHost host;
  EXPECT_EQ(Language(), "en");
  EXPECT_EQ(ResourceString(rsCancel), "Cancel");
}

TEST_F(LanguageTest, TextsShouldBeGerman_When_TheLocaleIsAndAQtHostLives) {
  for (const char* locale : {"de_DE", "de_AT", "de_CH"}) {
    SetLocale(locale);
    EXPECT_EQ(ResourceString(rsCancel), "Cancel");
    const QtHost host;
    EXPECT_EQ(Language(), "de") << locale;
    EXPECT_EQ(ResourceString(rsCancel), "Abbrechen") << locale;
  }
  EXPECT_EQ(Language(), "en");
  EXPECT_EQ(ResourceString(rsCancel), "Cancel") << "no host any more";
}

TEST_F(LanguageTest, TextsShouldBeEnglish_When_ThereIsNoCatalogueForTheLocale) {
  SetLocale("fr_FR");
  const QtHost host;
  EXPECT_EQ(ResourceString(rsCancel), "Cancel");
}

TEST_F(LanguageTest, SetLanguage_Should_Win_When_TheLocaleIsAnother) {
  SetLocale("de_DE");
  ASSERT_TRUE(SetLanguage("en"));
  const QtHost host;
  EXPECT_EQ(ResourceString(rsCancel), "Cancel");
  ASSERT_TRUE(SetLanguage("de"));
  EXPECT_EQ(ResourceString(rsCancel), "Abbrechen");
  EXPECT_EQ(Language(), "de");
  SetLocale("C");
  ASSERT_TRUE(SetLanguage(""));
  EXPECT_EQ(ResourceString(rsCancel), "Cancel");
}

TEST_F(LanguageTest, SetLanguage_Should_Work_When_ThereIsNoHostYet) {
  ASSERT_TRUE(SetLanguage("de"));
  EXPECT_EQ(ResourceString(rsCancel), "Abbrechen");
  { const QtHost host; }
  EXPECT_EQ(ResourceString(rsCancel), "Abbrechen") << "chosen for the rest of the process";
}

TEST_F(LanguageTest, SetLanguage_Should_KnowTheFormsOfANameAndRefuseOthers) {
  for (const char* name : {"de", "de_AT", "de-CH", "de_DE.UTF-8"}) {
    ASSERT_TRUE(SetLanguage("en"));
    EXPECT_TRUE(SetLanguage(name)) << name;
    EXPECT_EQ(Language(), "de") << name;
  }
  for (const char* name : {"fr", "xx", "deutsch?", "../de", "1"}) {
    EXPECT_FALSE(SetLanguage(name)) << name;
    EXPECT_EQ(Language(), "de") << name;
  }
  for (const char* name : {"en", "en_GB", "C", "POSIX"}) {
    EXPECT_TRUE(SetLanguage(name)) << name;
    EXPECT_EQ(Language(), "en") << name;
  }
}

TEST_F(LanguageTest, Languages_Should_NameWhatThereIs) {
  EXPECT_THAT(Languages(), testing::Contains("de"));
  for (const std::string& language : Languages()) EXPECT_TRUE(SetLanguage(language)) << language;
}

TEST_F(LanguageTest, TheHostsTranslator_Should_Win) {
  SetTranslator([](std::string_view key) { return key == rsCancel ? "Annuler" : std::string(); });
  SetLocale("de_DE");
  const QtHost host;
  EXPECT_EQ(ResourceString(rsCancel), "Annuler");
  EXPECT_EQ(ResourceString(rsHelp), "Help") << "no mixture of languages";
  SetLanguage("de");
  EXPECT_EQ(ResourceString(rsCancel), "Annuler");
}

/// A window with a number.
struct Form : TScaledForm {
  TFloatEdit edit{this};
};

TEST_F(LanguageTest, Numbers_Should_BeWrittenAsTheLocaleDoes) {
  SetLocale("de_DE");
  const QtHost host;
  EXPECT_EQ(DecimalMark(), ",");
  Form form;
  form.edit.setValue(2.5);
  EXPECT_EQ(form.edit.text(), "2,50");
  SetLanguage("en");
  EXPECT_EQ(DecimalMark(), ".");
  Form english;
  english.edit.setValue(2.5);
  EXPECT_EQ(english.edit.text(), "2.50");
}

TEST_F(LanguageTest, Numbers_Should_BeWrittenAsTheLocaleDoes_When_ThereIsNoCatalogueForIt) {
  SetLocale("fr_FR");
  const QtHost host;
  EXPECT_EQ(DecimalMark(), ",");
}

TEST_F(LanguageTest, Numbers_Should_KeepTheRegion_When_TheLanguageIsTheSame) {
  SetLocale("de_CH");
  SetLanguage("de");
  EXPECT_EQ(LanguageLocale().territory(), QLocale::Switzerland);
  SetLocale("en_US");
  EXPECT_EQ(LanguageLocale().language(), QLocale::German);
}

// What Qt says itself.

QString FilesOfType() {
  return QCoreApplication::translate("QFileDialog", "Files of type:");
}

bool HasCatalogueOfQt() {
  return QFile::exists(QLibraryInfo::path(QLibraryInfo::TranslationsPath) + "/qtbase_de.qm");
}

TEST_F(LanguageTest, TextsOfQt_Should_FollowWhileAHostLives) {
  if (!HasCatalogueOfQt()) GTEST_SKIP() << "Qt's translations are not installed";
  SetLocale("de_DE");
  {
    const QtHost host;
    EXPECT_EQ(FilesOfType(), "Dateien des Typs:");
    SetLanguage("en");
    EXPECT_EQ(FilesOfType(), "Files of type:");
    SetLanguage("de");
    EXPECT_EQ(FilesOfType(), "Dateien des Typs:");
  }
  EXPECT_EQ(FilesOfType(), "Files of type:");
}

/// A host that has seen to it itself.
struct OwnTranslator : QTranslator {
  OwnTranslator() { QCoreApplication::installTranslator(this); }
  QString translate(const char*, const char* text, const char*, int) const override {
    return qstrcmp(text, "Files of type:") == 0 ? "Types:" : QString();
  }
  bool isEmpty() const override { return false; }
};

TEST_F(LanguageTest, TextsOfQt_Should_StayTheHosts_When_ItHasTranslatedThem) {
  const OwnTranslator own;
  SetLocale("de_DE");
  const QtHost host;
  EXPECT_EQ(FilesOfType(), "Types:");
}

}  // namespace
}  // namespace rasterkit::test
