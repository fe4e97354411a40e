#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QXmlStreamReader>
#include <map>
#include <regex>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/qt/forms/language.h>
#include <rasterkit/qt/qt_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit::test {
namespace {

using testing::IsEmpty;

struct Message {
  std::string source, translation;
  bool isFinished = true;
};

/// Text in which control characters are elements: `<byte value="xd"/>`.
QString ReadText(QXmlStreamReader& xml) {
  QString text;
  while (!xml.atEnd() && xml.readNext() != QXmlStreamReader::EndElement) {
    if (xml.isCharacters()) text += xml.text();
    if (!xml.isStartElement()) continue;
    text += QChar(xml.attributes().value("value").mid(1).toInt(nullptr, 16));
    xml.skipCurrentElement();
  }
  return text;
}

std::vector<Message> ReadCatalogue(const QString& fileName) {
  QFile file(fileName);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly));
  QXmlStreamReader xml(&file);
  std::vector<Message> messages;
  while (!xml.atEnd()) {
    if (xml.readNext() != QXmlStreamReader::StartElement) continue;
    if (xml.name() == QLatin1String("message")) messages.emplace_back();
    if (xml.name() == QLatin1String("source")) messages.back().source = FromQt(ReadText(xml));
    if (xml.name() != QLatin1String("translation")) continue;
    messages.back().isFinished = !xml.attributes().hasAttribute("type");
    messages.back().translation = FromQt(ReadText(xml));
  }
  EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
  return messages;
}

bool HasLetters(const QString& text) {
  return std::any_of(text.begin(), text.end(), [](QChar c) { return c.isLetter(); });
}

/// The visible texts of a Designer form.
void AddTextsOfForm(const QString& fileName, std::set<std::string>& texts) {
  QFile file(fileName);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  QXmlStreamReader xml(&file);
  QString property;
  while (!xml.atEnd()) {
    if (xml.readNext() != QXmlStreamReader::StartElement) continue;
    if (xml.name() == QLatin1String("property"))
      property = xml.attributes().value("name").toString();
    if (xml.name() != QLatin1String("string")) continue;
    const bool isForPeople = property != "shortcut" && !xml.attributes().hasAttribute("notr");
    const QString text = xml.readElementText();
    if (isForPeople && HasLetters(text)) texts.insert(FromQt(text));
  }
}

/// The resource table and all forms.
std::set<std::string> AllTexts() {
  const auto keys = ResourceStringKeys();
  std::set<std::string> texts(keys.begin(), keys.end());
  for (const char* room : {"/rasterkit/dialogs", "/rasterkit/qt"}) {
    QDirIterator forms(QStringLiteral(RASTERKIT_SOURCE_TREE) + room, {"*.ui"}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (forms.hasNext()) AddTextsOfForm(forms.next(), texts);
  }
  return texts;
}

std::vector<QString> Matches(const char* pattern, const std::string& text) {
  std::vector<QString> matches;
  auto all = QRegularExpression(pattern).globalMatch(ToQt(text));
  while (all.hasNext()) matches.push_back(all.next().captured());
  return matches;
}

class Catalogues : public testing::TestWithParam<std::string> {
 protected:
  void TearDown() override { SetLanguage(""); }

  static QString File(const std::string& language) {
    return QStringLiteral(RASTERKIT_SOURCE_TREE "/rasterkit/strings/languages/rasterkit_") +
           ToQt(language) + ".ts";
  }
  const std::vector<Message> messages_ = ReadCatalogue(File(GetParam()));
};

TEST_P(Catalogues, Should_HoldEveryTextOnceAndNoOther) {
  std::set<std::string> there, twice, missing = AllTexts(), needless;
  for (const Message& message : messages_) {
    if (!there.insert(message.source).second) twice.insert(message.source);
    if (missing.erase(message.source) == 0 && !twice.contains(message.source))
      needless.insert(message.source);
  }
  EXPECT_THAT(missing, IsEmpty());
  EXPECT_THAT(needless, IsEmpty());
  EXPECT_THAT(twice, IsEmpty());
}

TEST_P(Catalogues, Should_BeFinished) {
  for (const Message& message : messages_)
    EXPECT_TRUE(message.isFinished && !message.translation.empty()) << message.source;
}

/// Values come in one order.
TEST_P(Catalogues, Should_HaveTheSamePlaceholders) {
  for (const Message& message : messages_)
    EXPECT_EQ(Matches("%.?", message.source), Matches("%.?", message.translation))
        << message.source;
}

TEST_P(Catalogues, Should_HaveAMnemonicWhereTheEnglishTextHasOne) {
  for (const Message& message : messages_)
    EXPECT_EQ(Matches("&", message.source), Matches("&", message.translation)) << message.source;
}

/// Spaces at the ends, dots and colons mean something to the form around the text.
TEST_P(Catalogues, Should_BeginAndEndAsTheEnglishText) {
  constexpr char kEnds[] = R"(^\s+|[\s:]+$|\.+$)";
  for (const Message& message : messages_)
    EXPECT_EQ(Matches(kEnds, message.source), Matches(kEnds, message.translation))
        << message.source;
}

/// "&Width" and "Width" may meet in one window.
TEST_P(Catalogues, Should_SayTheSameWithAndWithoutAMnemonic) {
  std::map<std::string, std::string> plain;
  const auto without = [](std::string text) {
    text.erase(std::remove(text.begin(), text.end(), '&'), text.end());
    return text;
  };
  for (const Message& message : messages_) {
    const std::string source = without(message.source), translation = without(message.translation);
    EXPECT_EQ(plain.emplace(source, translation).first->second, translation) << source;
  }
}

/// The compiled catalogue equals the file.
TEST_P(Catalogues, Should_AnswerInTheLibrary) {
  ASSERT_TRUE(SetLanguage(GetParam()));
  for (const Message& message : messages_)
    EXPECT_EQ(ResourceString(message.source), message.translation);
}

INSTANTIATE_TEST_SUITE_P(Of, Catalogues, testing::ValuesIn(Languages()),
                         [](const auto& info) { return info.param; });

TEST(Catalogues, EveryFile_Should_BeCompiledIn) {
  const QDir folder(QStringLiteral(RASTERKIT_SOURCE_TREE "/rasterkit/strings/languages"));
  std::vector<std::string> languages;
  for (const QString& file : folder.entryList({"rasterkit_*.ts"}, QDir::Files, QDir::Name))
    languages.push_back(FromQt(file.chopped(3).mid(10)));
  EXPECT_EQ(languages, Languages());
}

TEST(Catalogues, German_Should_DifferFromEnglish) {
  // The same word in both languages, or German from the beginning.
  const std::set<std::string_view> same = {
      rsOk,         rsOriginal,  rsProportional, rsPaletteExceeded, rsFileListName,
      rsSaveFilter, rsParasTiff, rsUnitKilobyte, rsUnitMegabyte,    "&proportional",
      "F&ilter: ",  "&Original", "&Filter",      "Filter",          "&Name:",
      "Zoom %d %%", "Deflate",   "LZW",          "PackBits"};
  // Numbers with units, and names of paper: "%s MiB", "%s x %s dpi", "16:9", "A4".
  const std::regex unit(R"(\(?(%[sd]|[0-9]+:[0-9]+|A[0-9]|x|×|MiB|GiB|KiB|dpi| |\(|\))+)");
  ASSERT_TRUE(SetLanguage("de"));
  for (const std::string& text : AllTexts()) {
    if (std::regex_match(text, unit)) continue;
    EXPECT_EQ(ResourceString(text) == text, same.contains(text)) << text;
  }
  SetLanguage("");
}

}  // namespace
}  // namespace rasterkit::test
