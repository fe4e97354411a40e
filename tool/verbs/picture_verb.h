#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tool/pictures/convert_picture.h"
#include "tool/verbs/verbs.h"

namespace rasterkit::tool {

/// Whether the command line must have an option.
enum class Need { optional, required };

struct NumberRange {
  int least = 0, most = 0;
};

/// Says what is wrong with a text, or nothing.
using TextCheck = std::function<std::string(const std::string& text)>;

/// The scaffold of the verbs that change pictures one by one: load, set upright, change, write. A
/// verb says what it is called, which options it has of its own, and what it does to a bitmap; the
/// options about files and writing, the losses and the exit codes are the same for all.
///
///     VerbRunner AddFadeVerb(CLI::App& app) {
///       PictureVerb verb(app, "fade", "make a picture fainter", "Example:\n  rasterkit fade ...");
///       const auto percent = std::make_shared<int>(0);
///       verb.Number("--percent", "P", *percent, {0, 100}, "how much", Need::required);
///       return verb.Changing([percent](Subject& picture) { Fade(*picture.bitmap, *percent); });
///     }
class PictureVerb {
 public:
  /// `footer` explains and ends with an example.
  PictureVerb(CLI::App& app, const std::string& name, const std::string& description,
              const std::string& footer);

  /// Options of the verb's own, in the order of the help. The variables must live as long as the
  /// command line; `valueName` stands for the value in the help.
  void Flag(const std::string& name, bool& value, const std::string& description);
  void Number(const std::string& name, const std::string& valueName, int& value,
              const NumberRange& range, const std::string& description, Need need = Need::optional);
  void Number(const std::string& name, const std::string& valueName, std::optional<int>& value,
              const NumberRange& range, const std::string& description);
  void Text(const std::string& name, const std::string& valueName, std::string& value,
            const TextCheck& check, const std::string& description, Need need = Need::optional);
  /// May be given several times.
  void Texts(const std::string& name, const std::string& valueName,
             std::vector<std::string>& values, const TextCheck& check,
             const std::string& description);
  /// Six hexadecimal digits; see ColorOf.
  void Color(const std::string& name, std::string& value, const std::string& description,
             Need need = Need::optional);
  void OneOf(const std::string& name, const std::string& valueName, std::string& value,
             const std::vector<std::string>& choices, const std::string& description);
  /// `--with FILE`: the second picture of a verb that needs one.
  void With(std::string& file);
  /// `--percent P`: how much, -100 to 100.
  void Percent(int& percent);
  /// `--dialog`: the user is asked, one picture after another.
  void Dialog(bool& isWanted, const std::string& description);

  /// The change is worked on by several threads; otherwise --threads is of the files alone.
  void WorksOnThreads() { worksOnThreads_ = true; }

  /// What the verb does with one file and no place to write to, which is wrong usage otherwise.
  void AnsweringForOneFile(std::function<int(const std::string& file, bool json)> answer) {
    answer_ = std::move(answer);
  }

  /// Adds the options that all share. The change runs for each picture, on several threads at once
  /// with --jobs.
  VerbRunner Changing(PictureChange change);

  /// The same for a verb that prepares something once for all pictures (checks options that must
  /// go together, loads a second picture).
  VerbRunner ChangingAfter(std::function<PictureChange()> prepare);

 private:
  CLI::App* verb_;
  std::function<int(const std::string& file, bool json)> answer_;
  const bool* asksUser_ = nullptr;
  bool worksOnThreads_ = false;
  std::shared_ptr<OutputOptions> output_ = std::make_shared<OutputOptions>();
  std::shared_ptr<PictureOptions> picture_ = std::make_shared<PictureOptions>();
};

/// The picture of a file set upright, for verbs that take a second one. Throws
/// Failure(exitInputUnreadable).
std::unique_ptr<TBitmap> LoadUpright(const std::string& file);

}  // namespace rasterkit::tool
