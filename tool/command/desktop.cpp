#include "tool/command/desktop.h"

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

/// Runs a dialog. The dialog stores its error in the argument.
template <typename Dialog>
void Confirm(const std::string& input, Dialog dialog) {
  std::string error;
  DesktopAnswer answer;
  {
    const InterruptibleWait wait;
    answer = dialog(error);
  }
  StopIfInterrupted();
  if (answer == DesktopAnswer::failed) throw Failure(exitOutputNotWritten, input + ": " + error);
  if (answer == DesktopAnswer::canceled) throw Failure(exitAnswerIsNo, input + ": canceled");
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

void Desktop::Adjust(TBitmap& bitmap, TChgBmpValuesRec& values, const std::string& input) const {
  Confirm(input, [&](std::string& error) { return dialogs_.adjustBitmap(bitmap, values, error); });
}

void Desktop::EditSize(int32_t& width, int32_t& height, const std::string& input) const {
  Confirm(input, [&](std::string& error) { return dialogs_.editSize(width, height, error); });
}

void Desktop::ChooseCropRect(TBitmap& bitmap, TRect& rect,
                             const std::function<bool(const TRect& part)>& isLossless,
                             const std::string& input) const {
  Confirm(input, [&](std::string& error) {
    return dialogs_.chooseCropRect(bitmap, rect, isLossless, error);
  });
}

void Desktop::OpenFile(std::string& fileName) const {
  Confirm("edit", [&](std::string& error) { return dialogs_.openFile(fileName, error); });
}

void Desktop::EditGraphic(const std::string& dir, std::string& fileName,
                          std::unique_ptr<TGraphic>& graphic) const {
  Confirm(dir + fileName,
          [&](std::string& error) { return dialogs_.editGraphic(dir, fileName, graphic, error); });
}

void Desktop::SaveBitmap(const std::string& dir, TrecSaveBitmap& rec, std::string& fileName) const {
  Confirm(dir + fileName,
          [&](std::string& error) { return dialogs_.saveBitmap(dir, rec, fileName, error); });
}

void Desktop::SaveBitmapPixels(const std::string& dir, TrecSaveBitmap& rec, int32_t& width,
                               int32_t& height, std::string& fileName) const {
  Confirm(dir + fileName, [&](std::string& error) {
    return dialogs_.saveBitmapPixels(dir, rec, width, height, fileName, error);
  });
}

void Desktop::ConvertPdfPage(const std::string& pdfFile, std::string& pictureFile) const {
  Confirm(pdfFile,
          [&](std::string& error) { return dialogs_.convertPdfPage(pdfFile, pictureFile, error); });
}

// The dialogs have connected the library's message box port.
void Desktop::Tell(const std::string& text) const {
  const InterruptibleWait wait;
  ShowMessage(text);
}

}  // namespace rasterkit::tool
