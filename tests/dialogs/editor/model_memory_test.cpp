// Memory of a picture of 108 megapixels.

#include <iostream>

#include <rasterkit/runtime/process_usage.h>

#include "tests/dialogs/editor/editor_fixture.h"
#include "tests/support/child_process.h"
#include "tests/support/full_run.h"

namespace rasterkit {
namespace {

using test::EditorTest;

class EditorMemory : public EditorTest {
 protected:
  /// Three pictures, and what the work itself takes.
  static constexpr int kMostTenths = 31;
  static constexpr int kWidth = 12000, kHeight = 9000;
  static constexpr uint64_t kPictureBytes = uint64_t{kWidth} * kHeight * 3;

  /// Tenths of the picture's memory that the process holds at most.
  int PeakOf(const std::string& file, const std::function<void(EditorModel&)>& work) {
    return test::RunInChild([&] {
      const uint64_t before = UsageOfProcess().peakBytes;
      test::RecordingEditorView childView;
      childView.saving = SavingChoice{folder / "saved.jpg", {}, true};
      EditorModel child(childView, options);
      child.Open(file, 1);
      work(child);
      for (const std::string& text : childView.told) std::cerr << text << "\n";
      if (!childView.told.empty()) return 250;
      const uint64_t taken = UsageOfProcess().peakBytes - before;
      return static_cast<int>(taken * 10 / kPictureBytes);
    });
  }
};

TEST_F(EditorMemory, Should_TakeAtMostThreePicturesAtATime) {
  if (!test::IsFullRun()) GTEST_SKIP() << "only in the full run";
  const std::string file = folder / "large.jpg";
  // Children end without closing their windows.
  options.keepsJournal = false;
  // In a child, so that what it takes is not in the peak of the others.
  ASSERT_EQ(test::RunInChild([&] {
              WritePicture("large.jpg", kWidth, kHeight);
              return 0;
            }),
            0);
  const std::map<std::string, std::function<void(EditorModel&)>> works = {
      {"open", [](EditorModel&) {}},
      {"turn",
       [](EditorModel& model) {
         for (int i = 0; i < 3; ++i) model.TurnLeft();
         model.Undo();
         model.Undo();
       }},
      {"rotate", [](EditorModel& model) { model.Rotate(3); }},
      {"values",
       [](EditorModel& model) {
         model.Add(ChangeStep{AdjustColors{10, 10, 10, 0, 0, 0}});
         model.Gray();
         model.Undo();
       }},
      {"crop and save",
       [](EditorModel& model) {
         model.Add(RecipeCrop{LengthUnit::percent, 0.01, 0.01, 100, 100, Outside::refuse});
         model.SaveAs();
         model.Undo();
         model.Redo();
       }},
      {"256 colors", [](EditorModel& model) { model.Colors256(); }}};
  for (const auto& [name, work] : works) {
    const int tenths = PeakOf(file, work);
    std::cout << name << ": " << tenths / 10.0 << " times the picture\n";
    EXPECT_LE(tenths, kMostTenths) << name;
  }
}

}  // namespace
}  // namespace rasterkit
