#include <algorithm>

#include <gtest/gtest.h>

#include <rasterkit/pictures/picture.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/corpus.h"
#include "tests/support/temp_folder.h"

/// Real files, damaged ones among them.
namespace rasterkit {
namespace {

using test::TempFolder;

std::vector<std::string> LossesIn(const Report& report) {
  std::vector<std::string> losses;
  for (const Loss& loss : report.losses) {
    // Damage shows only when pixels are read.
    if (loss.kind == LossKind::damage) continue;
    losses.push_back(std::string(LossKindName(loss.kind)) + ": " + loss.what);
  }
  std::sort(losses.begin(), losses.end());
  return losses;
}

std::string KindOf(PixelLayout layout) {
  // Whether the entries of a palette happen to be a gray ramp is known from the pixels.
  const bool isIndex = layout.type == NumberType::uint8 && layout.bands == 1;
  if (isIndex && layout.model == ColorModel::gray) layout.model = ColorModel::palette;
  return std::to_string(static_cast<int>(layout.type)) + " type, " + std::to_string(layout.bits) +
         " bits, " + std::to_string(layout.bands) + " bands, " +
         std::to_string(static_cast<int>(layout.model)) + " model, " +
         std::to_string(static_cast<int>(layout.alpha)) + " alpha, " +
         std::to_string(layout.extraBands) + " extra";
}

/// Calls `use` for each file with a picture's header; it returns false if the pixels are damaged.
template <class Use>
void ForEachPicture(const Use& use) {
  int used = 0;
  for (const test::CorpusEntry& entry : test::CorpusEntries()) {
    const std::string path = entry.at("path");
    if (path.starts_with("pdf/")) continue;
    SCOPED_TRACE(path);
    // The plan has no palette to go by: the file states one that is not there.
    if (path == "tiff/image__invalid-palette-ref.tiff") continue;
    const std::string file = (test::CorpusFolder() / path).string();
    std::optional<Picture> picture;
    try {
      picture.emplace(Picture::Open(file));
    } catch (const Error&) {
      continue;
    }
    used += use(*picture) ? 1 : 0;
  }
  EXPECT_GT(used, 300);
}

/// A bitmap file whose alpha is 0 everywhere has none.
bool HasDoubtfulAlpha(const Picture& picture) {
  return picture.SourceType() == PictureType::bmp && picture.Layout().alpha == AlphaKind::straight;
}

TEST(PictureCorpus, HeadersStateWhatThePixelsAre) {
  if (test::CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS is not set";
  ForEachPicture([](Picture picture) {
    if (HasDoubtfulAlpha(picture)) return false;
    // From the first step on the kind is that of the decoded pixels.
    picture.Turn(2);
    try {
      const Samples numbers = picture.Numbers();
      EXPECT_EQ(numbers.Width(), picture.Width());
      EXPECT_EQ(KindOf(numbers.Layout()), KindOf(picture.Layout()));
      return true;
    } catch (const Error&) {
      // Damaged pixels, or 15- and 16-bit ones.
      return false;
    }
  });
}

void ExpectSavedAsPlanned(const Picture& picture, const std::string& target) {
  const Report plan = picture.Plan(target);
  const Report done = picture.Save(target);
  EXPECT_EQ(LossesIn(plan), LossesIn(done));
  EXPECT_EQ(plan.isCopied, done.isCopied);
  EXPECT_EQ(plan.sideFiles, done.sideFiles);
  EXPECT_GE(plan.bytes, done.bytes);
  const Picture written = Picture::Open(target);
  EXPECT_EQ(written.Width(), done.width);
  EXPECT_EQ(written.Height(), done.height);
  EXPECT_TRUE(written.Steps().empty());
}

TEST(PictureCorpus, IsSavedAsThePlanSaid) {
  if (test::CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS is not set";
  const TempFolder folder;
  int number = 0;
  ForEachPicture([&](Picture picture) {
    if (HasDoubtfulAlpha(picture)) return false;
    constexpr const char* kTargets[] = {"a.jpg", "a.png", "a.tif", "a.bmp"};
    const int step = number % 3;
    const std::string target = folder / kTargets[number++ / 3 % 4];
    SCOPED_TRACE("step " + std::to_string(step) + ", " + target);
    try {
      if (step == 1) picture.Turn(1);
      if (step == 2) picture.Rotate(10);
      ExpectSavedAsPlanned(picture, target);
      return true;
    } catch (const LimitError&) {
      // A damaged header states enormous sides or resolutions.
    } catch (const Error& error) {
      EXPECT_EQ(error.File(), picture.SourceFile()) << error.what();
    }
    return false;
  });
}

}  // namespace
}  // namespace rasterkit
