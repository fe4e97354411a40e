// What a window leaves of the other pages of a document.

#include <cstdlib>

#include <rasterkit/metadata/facts_of_metadata.h>
#include <rasterkit/pictures/document/document.h>
#include <rasterkit/pictures/recipes/recipe_text.h>
#include <rasterkit/runtime/worker/worker_program.h>

#include "tests/dialogs/editor/editor_fixture.h"

namespace rasterkit {
namespace {

using enum EditorAnswer;
using test::EditorTest;
using test::ReadFile;
using testing::IsEmpty;
using Keep = RecipeSave::Keep;

constexpr int kPages = 3;
constexpr const char* kAuthor = "Ada of Lovelace";

class EditorDocument : public EditorTest {
 protected:
  /// Each page states its author and where it was taken.
  std::string WriteDocument() {
    MetadataEdit edit;
    edit.set = {{"Artist", kAuthor}};
    edit.gps = GpsPosition{47.5, 8.25, {}};
    Document document;
    for (int page = 1; page <= kPages; ++page) {
      document.Append(
          Picture::Of(std::make_unique<TBitmap>(test::GradientRaster(pf24bit, 20 + page, 10)))
              .Edit(edit));
    }
    const std::string file = folder / "pages.tif";
    document.Save(file);
    return file;
  }

  /// Edits page 2, saves it over the file and returns the bytes of the file.
  std::string SaveByWindow(const std::string& file, Keep keep) {
    Renew();
    view->answers = {yes};
    Open(file, 2);
    model->TurnLeft();
    RecipeSave save = model->ToRecipe().save;
    save.metadata = keep;
    view->settings = save;
    model->Settings();
    model->Confirm();
    EXPECT_THAT(view->told, IsEmpty());
    EXPECT_TRUE(model->Written());
    return ReadFile(file);
  }

  /// What `rasterkit apply` makes of page 2 by the recipe of the window.
  std::string SaveByTool(const std::string& source) {
    const std::string recipe = folder.Write("r.json", WriteRecipe(model->Written()->recipe));
    const std::string target = folder / "applied.tif";
    const std::string line = "'" RASTERKIT_TOOL "' apply '" + recipe + "' '" + source + "' '" +
                             target + "' --page 2 --overwrite";
    EXPECT_EQ(std::system(line.c_str()), 0) << line;
    return ReadFile(target);
  }
};

bool StatesPosition(const std::string& file, int page) {
  return FactsOf(Document::Open(file).Page(page).GetMetadata()).gps.has_value();
}

class EditorDocumentKeeping : public EditorDocument,
                              public testing::WithParamInterface<Isolation> {};

TEST_P(EditorDocumentKeeping, Should_StripTheOtherPagesAsARecipeDoes) {
  detail::SetWorkerProgram(RASTERKIT_WORKER_FILE);
  options.isolation = GetParam();
  for (const Keep keep : {Keep::all, Keep::withoutGps, Keep::nothing}) {
    SCOPED_TRACE(static_cast<int>(keep));
    const std::string file = WriteDocument();
    const std::string source = folder / "source.tif";
    std::filesystem::copy_file(file, source, std::filesystem::copy_options::overwrite_existing);
    const std::string written = SaveByWindow(file, keep);
    EXPECT_TRUE(written == SaveByTool(source)) << "the window wrote other bytes";
    ASSERT_EQ(Document::Open(file).Pages(), kPages);
    EXPECT_EQ(written.find(kAuthor) == std::string::npos, keep == Keep::nothing);
    for (int page = 1; page <= kPages; ++page) {
      EXPECT_TRUE(StatesPosition(source, page));
      EXPECT_EQ(StatesPosition(file, page), keep == Keep::all) << page;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Isolations, EditorDocumentKeeping,
                         testing::Values(Isolation::none, Isolation::process));

}  // namespace
}  // namespace rasterkit
