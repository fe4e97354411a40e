#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/dialogs/saving/saving_model.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/runtime/ports.h>

#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {

/// A window that records what the model says. Work waits until the test runs it.
class RecordingSavingView final : public SavingView {
 public:
  void ShowState() override { ++states; }
  void ShowParts() override { ++parts; }
  void Start(SavingWork kind, Job job) override { jobs[kind] = std::move(job); }
  void Stop(SavingWork kind) override { jobs.erase(kind); }
  bool AskReplace(const std::string& question) override {
    questions.push_back(question);
    return answer;
  }
  std::optional<ChosenName> AskName(const std::string& file) override {
    namesAsked.push_back(file);
    return otherName;
  }
  void Close(bool isConfirmed) override { closed = isConfirmed; }

  bool HasJob(SavingWork kind) const { return jobs.count(kind) > 0; }
  /// Runs a job that was started, and its answer.
  void Run(SavingWork kind) {
    ASSERT_TRUE(HasJob(kind));
    const Job job = jobs.at(kind);
    jobs.erase(kind);
    job(std::stop_token())();
  }

  int states = 0, parts = 0;
  std::map<SavingWork, Job> jobs;
  std::vector<std::string> questions, namesAsked;
  bool answer = false;
  std::optional<ChosenName> otherName;
  std::optional<bool> closed;
};

inline SaveOptions OfQuality(int quality, int chromaX = 0, int chromaY = 0) {
  SaveOptions options;
  options.quality = quality;
  options.chromaX = chromaX;
  options.chromaY = chromaY;
  return options;
}

inline SaveOptions OfType(PictureType type) {
  SaveOptions options;
  options.type = type;
  return options;
}

/// A folder with pictures, and settings that are kept in memory.
class SavingTest : public testing::Test {
 protected:
  SavingTest() {
    HostPorts() = Ports();
    HostPorts().readSetting = [this](const std::string& section,
                                     const std::string& key) -> std::optional<std::string> {
      const auto found = settings.find(section + "/" + key);
      return found == settings.end() ? std::nullopt : std::optional(found->second);
    };
    HostPorts().writeSetting = [this](const std::string& section, const std::string& key,
                                      const std::string& value) {
      settings[section + "/" + key] = value;
    };
  }
  ~SavingTest() override { HostPorts() = Ports(); }

  /// A picture in a file of this name.
  std::string Make(const std::string& name, int width = 64, int height = 48,
                   TPixelFormat format = pf24bit, const SaveOptions& options = {}) const {
    const std::string file = folder / name;
    Picture::Of(std::make_unique<TBitmap>(GradientRaster(format, width, height)))
        .Save(file, options);
    return file;
  }
  SavingModel& Open(const Picture& picture, const SavingStart& start,
                    SavingScope scope = SavingScope::places,
                    const std::optional<ChosenName>& name = std::nullopt) {
    model = std::make_unique<SavingModel>(view, picture, start, scope, name);
    return *model;
  }
  /// The window over a file that is saved under its own name.
  SavingModel& OpenFile(const std::string& file, SavingScope scope = SavingScope::places) {
    return Open(Picture::Open(file), {file, {}, false}, scope);
  }
  std::string In(const std::string& name) const { return folder / name; }
  int PositionOf(const SavingList& list, const std::string& start) const {
    for (size_t i = 0; i < list.texts.size(); ++i) {
      if (list.texts[i].starts_with(start)) return static_cast<int>(i);
    }
    return -1;
  }
  void ChooseType(const std::string& start) {
    model->ChooseType(PositionOf(model->Types(), start));
  }

  TempFolder folder;
  std::map<std::string, std::string> settings;
  RecordingSavingView view;
  std::unique_ptr<SavingModel> model;
};

}  // namespace rasterkit::test
