#include "apps/rasterkit/desktop.h"

#include <rasterkit/host/runtime/dynamic_library.h>
#include <rasterkit/host/runtime/errors.h>

#include "apps/rasterkit/exit_code.h"
#include "apps/rasterkit/interruption.h"

namespace rasterkit::tool {
namespace {

const DesktopDialogs& LoadDialogs() try {
  const DynamicLibrary library("rasterkit-dialogs", 0, "the dialogs are not installed");
  const DesktopDialogs* const dialogs = library.Entry<DesktopEntry>(kDesktopEntry)(kDesktopVersion);
  if (dialogs == nullptr)
    throw Failure(exitOutputNotWritten,
                  library.File() + ": the dialogs are of another version than this tool");
  return *dialogs;
} catch (const Error& error) {
  throw Failure(exitOutputNotWritten, error.what());
}

/// Runs a dialog, which takes the place where its error goes.
template <typename Dialog>
void Confirm(const Subject& picture, Dialog dialog) {
  std::string error;
  DesktopAnswer answer;
  {
    const InterruptibleWait wait;
    answer = dialog(error);
  }
  StopIfInterrupted();
  if (answer == DesktopAnswer::failed) picture.Refuse(error);
  if (answer == DesktopAnswer::cancelled)
    throw Failure(exitAnswerIsNo, picture.job.input + ": cancelled");
}

}  // namespace

Desktop::Desktop() : dialogs_(LoadDialogs()) {
  std::string error;
  if (dialogs_.start(error) != DesktopAnswer::confirmed) throw Failure(exitOutputNotWritten, error);
}

Desktop::~Desktop() {
  dialogs_.end();
}

void Desktop::Adjust(TBitmap& bitmap, TChgBmpValuesRec& values, const Subject& picture) const {
  Confirm(picture,
          [&](std::string& error) { return dialogs_.adjustBitmap(bitmap, values, error); });
}

void Desktop::EditSize(int32_t& width, int32_t& height, const Subject& picture) const {
  Confirm(picture, [&](std::string& error) { return dialogs_.editSize(width, height, error); });
}

void Desktop::ChooseCropRect(TRect& rect, const Subject& picture) const {
  Confirm(picture, [&](std::string& error) {
    return dialogs_.chooseCropRect(*picture.bitmap, rect, error);
  });
}

}  // namespace rasterkit::tool
