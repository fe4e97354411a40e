#include <map>
#include <string>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/files/graphic_files.h>
#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/graphics/metafile.h>
#include <rasterkit/runtime/files/file_name.h>

#include "tests/support/corpus.h"

namespace rasterkit {
namespace {

/// Why a wrongly named file gives no graphic, by what its name says it is ("..._is_gif.bmp").
const std::map<std::string, const char*> kNotDecoded = {
    {"pdf", "a document, not a picture"},
    {"world", "the text of a world file"},
};

std::string KindOf(const std::string& path) {
  const size_t place = path.rfind("_is_") + 4;
  return path.substr(place, path.rfind('.') - place);
}

/// Graphic type of an extension, as far as pictures that are loaded by content have it.
int ExpectedType(const std::string& extension) {
  const int type = GetGraphicsType(extension);
  return type == gtWmf || type == gtEmf ? int{gtBmp} : type;
}

TEST(WrongExtensionCorpus, Load_Should_GoByContent) {
  if (test::CorpusFolder().empty()) GTEST_SKIP() << "no corpus";
  int loaded = 0;
  for (test::CorpusEntry& entry : test::CorpusEntries("wrongext")) {
    const std::string& path = entry["path"];
    SCOPED_TRACE(path);
    const auto graphic = LoadGraphic((test::CorpusFolder() / path).string());
    const std::string extension = ExtractFileExt(path);
    // A PDF's extension has no graphic class, regardless of its content.
    if (kNotDecoded.count(KindOf(path)) > 0 || extension == ".pdf") {
      EXPECT_EQ(graphic, nullptr);
      continue;
    }
    ASSERT_NE(graphic, nullptr);
    ++loaded;
    if (const auto* metafile = dynamic_cast<const TMetafile*>(graphic.get())) {
      EXPECT_EQ(metafile->Enhanced(), KindOf(path) == "emf");
      EXPECT_FALSE(metafile->Empty());
      continue;
    }
    EXPECT_EQ(GetGraphicType(graphic.get()), ExpectedType(extension));
    EXPECT_EQ(std::to_string(graphic->Width()), entry["width"]);
    EXPECT_EQ(std::to_string(graphic->Height()), entry["height"]);
  }
  EXPECT_GT(loaded, 0);
}

}  // namespace
}  // namespace rasterkit
