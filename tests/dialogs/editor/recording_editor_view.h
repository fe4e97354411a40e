#pragma once

#include <atomic>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/editor/editor_model.h>
#include <rasterkit/dialogs/editor/editor_view.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::test {

/// A window without widgets. It runs jobs where they are started, or keeps them for RunJob; answers
/// stand in queues, and what is asked without an answer fails the test.
class RecordingEditorView final : public EditorView {
 public:
  struct Question {
    EditorQuestion kind;
    std::string text;
  };

  void ShowPixels(TBitmap* pixels) override {
    shown = pixels;
    ++pixelsShown;
  }
  void ShowState() override { ++statesShown; }
  void StartJob(EditorJob job) override {
    EXPECT_FALSE(waiting.has_value()) << "a second job at a time: " << job.title;
    titles.push_back(job.title);
    if (onJob) onJob(job.title);
    waiting = std::move(job);
    stop = std::stop_source();
    if (runsAtOnce) RunJob();
  }
  void CancelJob() override {
    ++cancellations;
    stop.request_stop();
  }
  EditorAnswer Ask(EditorQuestion question, const std::string& text) override {
    questions.push_back({question, text});
    if (onAsk) onAsk();
    if (answers.empty()) {
      ADD_FAILURE() << "asked without an answer: " << text;
      return EditorAnswer::cancel;
    }
    const EditorAnswer answer = answers.front();
    answers.pop_front();
    return answer;
  }
  void Tell(const std::string& text) override { told.push_back(text); }

  std::optional<RecipeCrop> AskCrop(TBitmap&, const Picture&) override {
    if (onAsk) onAsk();
    return crop;
  }
  std::optional<AdjustColors> AskValues(const TBitmap&) override { return values; }
  std::optional<MakeMono> AskThreshold(const TBitmap&) override { return threshold; }
  std::optional<RecipeResize> AskSize(const Picture&) override { return size; }
  std::optional<SavingChoice> AskSaving(const Picture&, const SavingStart& start) override {
    savingStarts.push_back(start);
    return saving;
  }
  std::optional<RecipeSave> AskSettings(const Picture&, const SavingChoice&) override {
    return settings;
  }
  std::string AskFileToOpen(const std::string& folder) override {
    openedFolders.push_back(folder);
    return fileToOpen;
  }
  void OpenHelp() override { ++helps; }
  void Close(bool isSaved) override { closed.push_back(isSaved); }

  /// Runs the job that waits, as a window does. It may start the next one.
  void RunJob() {
    ASSERT_TRUE(waiting.has_value());
    EditorJob job = std::move(*waiting);
    waiting.reset();
    std::string error;
    bool wasCanceled = false;
    try {
      const std::stop_source mine = stop;
      job.work(mine.get_token(), [this](double part) {
        progress = part;
        if (onProgress) onProgress();
      });
    } catch (const CanceledError&) {
      wasCanceled = true;
    } catch (const std::exception& fault) {
      error = fault.what();
    }
    job.done(error, wasCanceled);
  }
  void RunJobs() {
    while (waiting) RunJob();
  }

  bool runsAtOnce = true;
  std::optional<EditorJob> waiting;
  std::stop_source stop;
  std::atomic<double> progress = 0;

  std::deque<EditorAnswer> answers;
  std::optional<RecipeCrop> crop;
  std::optional<AdjustColors> values;
  std::optional<MakeMono> threshold;
  std::optional<RecipeResize> size;
  std::optional<SavingChoice> saving;
  std::optional<RecipeSave> settings;
  std::string fileToOpen;
  std::function<void()> onAsk, onProgress;
  std::function<void(const std::string&)> onJob;

  TBitmap* shown = nullptr;
  int pixelsShown = 0, statesShown = 0, cancellations = 0, helps = 0;
  std::vector<std::string> titles, told, openedFolders;
  std::vector<Question> questions;
  std::vector<SavingStart> savingStarts;
  std::vector<bool> closed;
};

}  // namespace rasterkit::test
