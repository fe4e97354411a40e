// Real files: what OK writes is what the recipe makes of them.

#include <algorithm>
#include <iostream>
#include <random>

#include <rasterkit/runtime/errors.h>

#include "tests/dialogs/editor/editor_fixture.h"
#include "tests/support/corpus.h"

namespace rasterkit {
namespace {

using enum EditorAnswer;
using test::EditorTest;
using test::ReadFile;

class EditorCorpus : public EditorTest {};

constexpr uintmax_t kMostBytes = 3'000'000;
constexpr size_t kMostFilesOfFolder = 10;

/// A few files of each kind that can be written, spread over the folder.
std::vector<std::string> SomeFiles(const std::string& folder, std::mt19937& random) {
  std::vector<std::string> files;
  for (const auto& entry :
       std::filesystem::recursive_directory_iterator(test::CorpusFolder() / folder)) {
    if (entry.is_regular_file() && entry.file_size() <= kMostBytes) {
      files.push_back(entry.path().string());
    }
  }
  std::sort(files.begin(), files.end());
  std::shuffle(files.begin(), files.end(), random);
  return files;
}

TEST_F(EditorCorpus, Should_WriteWhatTheRecipeMakes) {
  if (test::CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS is not set";
  const unsigned seed = std::random_device()();
  SCOPED_TRACE(seed);
  std::mt19937 random(seed);
  options.keepsJournal = false;
  const std::vector<std::vector<RecipeStep>> recipes = {
      {TurnStep{1}},
      {MirrorStep{MirrorAxis::topBottom}, RecipeCrop{LengthUnit::percent, 10, 10, 80, 90}},
      {RecipeResize{LengthUnit::percent, 50, 50, 0, {}}, ChangeStep{MakeGray{}}}};
  size_t compared = 0, same = 0;
  for (const char* folder : {"jpeg", "png", "tiff", "bmp"}) {
    size_t ofFolder = 0;
    for (const std::string& name : SomeFiles(folder, random)) {
      if (ofFolder == kMostFilesOfFolder) break;
      SCOPED_TRACE(name);
      const std::string extension = std::filesystem::path(name).extension().string();
      const std::string target = this->folder / ("edited" + extension);
      std::filesystem::copy_file(name, target, std::filesystem::copy_options::overwrite_existing);
      Renew();
      view->answers = {yes};
      try {
        Open(target);
      } catch (const Error&) {
        continue;
      }
      // Damaged pixels, and kinds that are only read.
      if (!model->HasPicture() || model->TargetFile() != target) continue;
      ++ofFolder;
      const std::vector<RecipeStep>& steps = recipes[random() % recipes.size()];
      for (const RecipeStep& step : steps) model->Add(step);
      if (model->Place() < steps.size()) continue;
      model->Confirm();
      const std::string replayedFile = this->folder / ("replayed" + extension);
      std::filesystem::copy_file(name, replayedFile,
                                 std::filesystem::copy_options::overwrite_existing);
      std::string error;
      try {
        Picture picture = Picture::Open(replayedFile);
        ApplyRecipe(picture, model->ToRecipe());
        picture.Save(replayedFile, SaveOptionsOf(model->ToRecipe().save));
      } catch (const Error& fault) {
        error = fault.Reason();
      }
      ++compared;
      EXPECT_EQ(model->Written().has_value(), error.empty()) << error;
      const bool isSame = ReadFile(target) == ReadFile(replayedFile);
      EXPECT_TRUE(isSame);
      same += isSame;
    }
  }
  EXPECT_GE(compared, 20u);
  EXPECT_EQ(same, compared);
  RecordProperty("compared", static_cast<int>(compared));
  std::cout << compared << " files, seed " << seed << "\n";
}

}  // namespace
}  // namespace rasterkit
