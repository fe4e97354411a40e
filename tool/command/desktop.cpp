#include "tool/command/desktop.h"

#include <utility>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/dynamic_library.h>
#include <rasterkit/runtime/ports.h>

#include "tool/command/exit_code.h"
#include "tool/command/interruption.h"
#include "tool/command/isolation_option.h"

namespace rasterkit::tool {
namespace {

const DesktopDialogs& LoadDialogs() try {
  const DynamicLibrary library("rasterkit-dialogs", 0, "the dialogs are not installed");
  const DesktopDialogs* const dialogs = library.Entry<DesktopEntry>(kDesktopEntry)(kDesktopVersion);
  if (dialogs == nullptr) {
    throw Failure(exitOutputNotWritten,
                  library.File() + ": the dialogs and this tool have different versions");
  }
  return *dialogs;
} catch (const Error& error) {
  throw Failure(exitOutputNotWritten, error.what());
}

/// Runs a dialog, which stores its answer in the first argument and its error in the second.
template <class Answer, class Dialog>
Answer Asked(const std::string& input, const Dialog& dialog) {
  std::optional<Answer> answer;
  std::string error;
  DesktopAnswer end;
  {
    const InterruptibleWait wait;
    end = dialog(answer, error);
  }
  StopIfInterrupted();
  if (end == DesktopAnswer::failed) throw Failure(exitOutputNotWritten, input + ": " + error);
  if (end == DesktopAnswer::canceled || !answer) {
    throw Failure(exitAnswerIsNo, input + ": canceled");
  }
  return *std::move(answer);
}

}  // namespace

// A desktop's user looks into any folder, downloads among them.
Desktop::Desktop() : dialogs_(LoadDialogs()) {
  std::string error;
  if (dialogs_.start(ReadingIsolation(Isolation::process), error) != DesktopAnswer::confirmed) {
    throw Failure(exitOutputNotWritten, error);
  }
}

Desktop::~Desktop() {
  dialogs_.end();
}

RecipeCrop Desktop::ChooseCrop(TBitmap& pixels, const Picture& picture,
                               const ChooseCropOptions& options, const std::string& input) const {
  return Asked<RecipeCrop>(input, [&](auto& answer, std::string& error) {
    return dialogs_.chooseCrop(pixels, picture, options, answer, error);
  });
}

AdjustColors Desktop::ChooseValues(const TBitmap& pixels, const AdjustColors& start,
                                   const std::string& input) const {
  return Asked<AdjustColors>(input, [&](auto& answer, std::string& error) {
    return dialogs_.chooseValues(pixels, start, answer, error);
  });
}

MakeMono Desktop::ChooseThreshold(const TBitmap& pixels, const MakeMono& start,
                                  const std::string& input) const {
  return Asked<MakeMono>(input, [&](auto& answer, std::string& error) {
    return dialogs_.chooseThreshold(pixels, start, answer, error);
  });
}

RecipeResize Desktop::ChooseSize(const Picture& picture, const RecipeResize& start,
                                 const std::string& input) const {
  return Asked<RecipeResize>(input, [&](auto& answer, std::string& error) {
    return dialogs_.chooseSize(picture, start, answer, error);
  });
}

SavingChoice Desktop::ChooseSaving(const Picture& picture, const SavingStart& start,
                                   const std::string& input) const {
  return Asked<SavingChoice>(input, [&](auto& answer, std::string& error) {
    return dialogs_.chooseSaving(picture, start, answer, error);
  });
}

std::string Desktop::ChooseFile() const {
  return Asked<std::string>("edit", [&](auto& answer, std::string& error) {
    return dialogs_.chooseFile("", true, answer, error);
  });
}

EditedPicture Desktop::EditPicture(const std::string& file,
                                   const EditPictureOptions& options) const {
  return Asked<EditedPicture>(file, [&](auto& answer, std::string& error) {
    return dialogs_.editPicture(file, options, answer, error);
  });
}

// The dialogs have connected the library's message box port.
void Desktop::Tell(const std::string& text) const {
  const InterruptibleWait wait;
  ShowMessage(text);
}

}  // namespace rasterkit::tool
