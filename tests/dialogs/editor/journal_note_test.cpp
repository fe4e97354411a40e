#include <string>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/editor/journal_note.h>

namespace rasterkit {
namespace {

JournalNote SampleNote() {
  JournalNote note;
  note.file = "/home/me/50% of\nthe plan, Grün.png";
  note.bytes = 12345678901;
  note.changed = 1700000000123456789;
  note.page = 3;
  note.dpi = 299.5;
  note.place = 1;
  note.target = "/home/me/100%\n.tif";
  note.recipe.madeWith = "rasterkit 0.1";
  note.recipe.steps = {TurnStep{1}, RecipeCrop{LengthUnit::map, 1.5, 2, 3, -4, Outside::clip}};
  note.recipe.save.quality = 40;
  return note;
}

TEST(JournalNote, Should_BeReadAsItWasWritten) {
  const JournalNote note = SampleNote();
  const auto read = ReadJournalNote(WriteJournalNote(note));
  ASSERT_TRUE(read);
  EXPECT_EQ(read->file, note.file);
  EXPECT_EQ(read->bytes, note.bytes);
  EXPECT_EQ(read->changed, note.changed);
  EXPECT_EQ(read->page, 3);
  EXPECT_EQ(read->dpi, 299.5);
  EXPECT_EQ(read->place, 1u);
  EXPECT_EQ(read->target, note.target);
  EXPECT_EQ(read->recipe.steps.size(), 2u);
  EXPECT_EQ(std::get<RecipeCrop>(read->recipe.steps[1]),
            std::get<RecipeCrop>(note.recipe.steps[1]));
  EXPECT_EQ(read->recipe.save.quality, 40);
}

TEST(JournalNote, Should_RefuseEveryBeginning) {
  const std::string text = WriteJournalNote(SampleNote());
  for (size_t size = 0; size + 2 < text.size(); ++size) {
    EXPECT_FALSE(ReadJournalNote(text.substr(0, size))) << size;
  }
}

TEST(JournalNote, Should_BeReadWithoutATarget) {
  std::string text = WriteJournalNote(SampleNote());
  const size_t start = text.find("target ");
  const auto read = ReadJournalNote(text.erase(start, text.find('\n', start) + 1 - start));
  ASSERT_TRUE(read);
  EXPECT_EQ(read->target, "");
}

TEST(JournalNote, Should_TellDamageFromOtherVersions) {
  const std::string text = WriteJournalNote(SampleNote());
  EXPECT_FALSE(IsDamagedJournalNote(text));
  const size_t firstLine = text.find('\n') + 1;
  for (size_t size = 0; size + 2 < text.size(); ++size) {
    EXPECT_TRUE(IsDamagedJournalNote(text.substr(0, size))) << size;
  }
  EXPECT_FALSE(IsDamagedJournalNote("rasterkit-journal 2\n" + text.substr(firstLine)));
  EXPECT_FALSE(IsDamagedJournalNote("rasterkit-journal 2\nanything"));
  EXPECT_TRUE(IsDamagedJournalNote("other-journal 1\n" + text.substr(firstLine)));
  const size_t recipe = text.find("\n\n") + 2;
  const std::string head = text.substr(0, recipe);
  EXPECT_FALSE(IsDamagedJournalNote(head + R"({"schema": "of another version"})"));
  EXPECT_TRUE(IsDamagedJournalNote(head + R"({"schema": )"));
  EXPECT_TRUE(IsDamagedJournalNote(head + std::string(100, '\0')));
}

TEST(JournalNote, Should_RefuseNumbersOutOfRange) {
  const auto with = [](const std::string& key, const std::string& value) {
    std::string text = WriteJournalNote(SampleNote());
    const size_t start = text.find("\n" + key + " ") + key.size() + 2;
    return text.replace(start, text.find('\n', start) - start, value);
  };
  EXPECT_TRUE(ReadJournalNote(with("page", "2")));
  for (const char* page : {"0", "-1", "x", "", "1x", "99999999999"}) {
    EXPECT_FALSE(ReadJournalNote(with("page", page))) << page;
  }
  for (const char* place : {"3", "-1", "99999999999999999999999"}) {
    EXPECT_FALSE(ReadJournalNote(with("place", place))) << place;
  }
  for (const char* dpi : {"-1", "nan", "inf", "1e99"}) {
    EXPECT_FALSE(ReadJournalNote(with("dpi", dpi))) << dpi;
  }
  for (const char* file : {"", "%", "%x", "%0"}) {
    EXPECT_FALSE(ReadJournalNote(with("file", file))) << file;
  }
}

}  // namespace
}  // namespace rasterkit
