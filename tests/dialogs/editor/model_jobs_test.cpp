// Work that takes long: the window goes on meanwhile.

#include <chrono>
#include <future>
#include <thread>

#include "tests/dialogs/editor/editor_fixture.h"

namespace rasterkit {
namespace {

using enum EditorAnswer;
using test::EditorTest;
using test::ReadFile;
using testing::ElementsAre;
using testing::Gt;
using testing::IsEmpty;

/// Jobs wait until the test runs them.
class EditorJobs : public EditorTest {
 protected:
  void OpenPicture(int width = 23, int height = 17) {
    Open(WritePicture("plan.png", width, height));
    view->runsAtOnce = false;
  }
};

TEST_F(EditorJobs, Should_ReadPixelsByAJobWhenOpened) {
  view->runsAtOnce = false;
  Open(WritePicture("plan.png"));
  EXPECT_TRUE(model->IsWorking());
  EXPECT_FALSE(model->HasPicture());
  EXPECT_EQ(model->Source().Width(), 23) << "headers are read";
  EXPECT_EQ(view->pixelsShown, 0);
  EXPECT_EQ(model->Facts(), "");
  EXPECT_FALSE(model->CanConfirm());
  view->RunJobs();
  EXPECT_FALSE(model->IsWorking());
  EXPECT_TRUE(model->HasPicture());
  EXPECT_EQ(view->pixelsShown, 1);
  EXPECT_GT(view->statesShown, 0);
}

TEST_F(EditorJobs, Should_IgnoreEventsWhileAJobRuns) {
  OpenPicture();
  model->TurnLeft();
  EXPECT_TRUE(model->IsWorking());
  const int states = view->statesShown;
  model->TurnLeft();
  model->Undo();
  model->Redo();
  model->Confirm();
  model->SaveAs();
  model->Settings();
  model->Crop();
  model->OpenOther();
  model->OpenDropped(folder / "plan.png");
  model->ShowPage(1);
  model->SetDrawingDpi(10);
  EXPECT_EQ(view->statesShown, states);
  EXPECT_FALSE(model->CanUndo());
  EXPECT_FALSE(model->CanConfirm());
  EXPECT_EQ(model->Place(), 0u) << "the list follows the picture";
  view->RunJobs();
  EXPECT_EQ(model->Place(), 1u);
  EXPECT_EQ(model->Steps().size(), 1u);
  ExpectResultShown();
}

TEST_F(EditorJobs, Should_BeAsBeforeAfterACancellation) {
  OpenPicture();
  model->TurnLeft();
  view->RunJobs();
  model->Mirror();
  model->Undo();  // ignored
  EXPECT_FALSE(model->CancelOrClose());
  EXPECT_EQ(view->cancellations, 1);
  EXPECT_THAT(view->closed, IsEmpty());
  view->RunJobs();
  EXPECT_FALSE(model->IsWorking());
  EXPECT_THAT(model->StepNames(), ElementsAre("Turn left"));
  EXPECT_THAT(view->told, IsEmpty()) << "a cancellation is no error";
  ExpectResultShown();

  model->Undo();
  model->CancelOrClose();
  view->RunJobs();
  EXPECT_EQ(model->Place(), 1u);
  ExpectResultShown();
  model->Undo();
  view->RunJobs();
  EXPECT_EQ(model->Place(), 0u);
}

TEST_F(EditorJobs, Should_KeepRedoAfterACanceledStep) {
  OpenPicture();
  model->TurnLeft();
  view->RunJobs();
  model->Undo();
  view->RunJobs();
  model->Mirror();
  model->CancelOrClose();
  view->RunJobs();
  EXPECT_TRUE(model->CanRedo());
  EXPECT_THAT(model->StepNames(), ElementsAre("Turn left"));
}

TEST_F(EditorJobs, Should_LeaveNoFileAfterACanceledSave) {
  OpenPicture();
  const std::string before = ReadFile(folder / "plan.png");
  model->TurnLeft();
  view->RunJobs();
  view->answers = {yes};
  model->Confirm();
  EXPECT_FALSE(model->CancelOrClose());
  view->RunJobs();
  EXPECT_EQ(ReadFile(folder / "plan.png"), before);
  EXPECT_THAT(folder.Names(), ElementsAre("plan.png"));
  EXPECT_THAT(view->closed, IsEmpty());
  EXPECT_TRUE(model->HasUnsavedWork());
  model->Confirm();
  view->RunJobs();
  EXPECT_THAT(view->closed, ElementsAre(true));
}

TEST_F(EditorJobs, Should_CloseAfterTheSaveThatWasRequested) {
  OpenPicture();
  model->TurnLeft();
  view->RunJobs();
  view->answers = {yes, yes};
  EXPECT_FALSE(model->CancelOrClose()) << "not yet";
  EXPECT_THAT(view->closed, IsEmpty());
  view->RunJobs();
  EXPECT_THAT(view->closed, ElementsAre(true));
  EXPECT_TRUE(model->CancelOrClose());
}

TEST_F(EditorJobs, Should_StandStillAfterItWasClosed) {
  OpenPicture();
  EXPECT_TRUE(model->CancelOrClose());
  model->TurnLeft();
  model->Help();
  EXPECT_FALSE(view->waiting);
  EXPECT_EQ(view->helps, 0);
}

TEST_F(EditorJobs, Should_OutliveItsModel) {
  OpenPicture();
  model->TurnLeft();
  model.reset();
  view->RunJob();
  EXPECT_FALSE(view->waiting) << "the answer of a job without a window is dropped";
}

TEST_F(EditorJobs, Should_KeepTheStateOfAFailedJob) {
  OpenPicture();
  model->TurnLeft();
  view->waiting->work = [](std::stop_token, const std::function<void(double)>&) {
    throw LimitError("no memory");
  };
  view->RunJobs();
  EXPECT_THAT(view->told, ElementsAre("no memory"));
  EXPECT_EQ(model->Place(), 0u);
  ExpectResultShown();
}

TEST_F(EditorJobs, Should_StayWithoutAPictureWhenOpeningIsCanceled) {
  view->runsAtOnce = false;
  Open(WritePicture("plan.png"));
  EXPECT_FALSE(model->CancelOrClose());
  view->RunJobs();
  EXPECT_FALSE(model->HasPicture());
  model->TurnLeft();
  EXPECT_FALSE(view->waiting);
  EXPECT_TRUE(model->CancelOrClose());
}

TEST_F(EditorJobs, Should_SayHowFarAJobIs) {
  OpenPicture(300, 200);
  model->Rotate(3);
  double last = 0;
  int calls = 0;
  view->onProgress = [&] {
    EXPECT_GE(view->progress, last);
    last = view->progress;
    ++calls;
  };
  view->RunJob();
  EXPECT_GT(calls, 1);
  EXPECT_EQ(last, 1);
}

/// In a thread, as in a window.
TEST_F(EditorJobs, Should_EndAStepSoonAfterACancellation) {
  OpenPicture(3000, 2000);
  model->Add(RecipeResize{LengthUnit::percent, 400, 400, 0, {}});
  std::chrono::steady_clock::time_point canceled;
  view->onProgress = [&, isFirst = true]() mutable {
    if (!std::exchange(isFirst, false)) return;
    canceled = std::chrono::steady_clock::now();
    view->stop.request_stop();
  };
  view->RunJob();
  const auto taken = std::chrono::steady_clock::now() - canceled;
  EXPECT_EQ(model->Place(), 0u);
  // A canceled call ends within 100 ms; the rest is for machines under load.
  EXPECT_LT(std::chrono::duration<double>(taken).count(), 2.0);
}

TEST_F(EditorJobs, Should_ReadTheNextPictureBeforeTheOldOneIsGivenUp) {
  OpenPicture();
  const TBitmap* const before = view->shown;
  model->OpenDropped(folder.Write("broken.png", "no picture"));
  view->RunJobs();
  EXPECT_EQ(view->told.size(), 1u);
  EXPECT_EQ(view->shown, before);
  EXPECT_EQ(model->Title(), "plan.png");
  const std::string other = WritePicture("other.png", 9, 8);
  model->OpenDropped(other);
  model->CancelOrClose();
  view->RunJobs();
  EXPECT_EQ(model->Title(), "plan.png");
  EXPECT_EQ(model->TargetFile(), folder / "plan.png");
  model->OpenDropped(other);
  view->RunJobs();
  EXPECT_EQ(model->Title(), "other.png");
  EXPECT_EQ(model->TargetFile(), other);
  ExpectResultShown();
}

}  // namespace
}  // namespace rasterkit
