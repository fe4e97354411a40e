#include <filesystem>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include <fmt/core.h>

#include <rasterkit/bitmaptools/files/graphic_files.h>
#include <rasterkit/bitmaptools/files/load_via_wic.h>
#include <rasterkit/pictures/reading/load_graphic_isolated.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/file_name.h>

#include "tool/command/command_line.h"
#include "tool/command/desktop.h"
#include "tool/command/exit_code.h"
#include "tool/command/isolation_option.h"
#include "tool/command/printable.h"
#include "tool/pages/pdf_file.h"
#include "tool/pictures/picture_extras.h"
#include "tool/verbs/verbs.h"

namespace rasterkit::tool {
namespace {

/// A program that a desktop opens with any file reads it in a worker process.
Isolation EditIsolation() {
  return ReadingIsolation(Isolation::process);
}

std::unique_ptr<TGraphic> LoadIsolated(const std::string& file) {
  try {
    return LoadGraphicIsolated(file);
  } catch (const Error& error) {
    throw Failure(exitInputUnreadable, file + ": is not a readable picture: " + error.Reason());
  } catch (const std::bad_alloc&) {
    throw Failure(exitInputUnreadable, file + ": out of memory");
  }
}

std::unique_ptr<TGraphic> LoadAnything(const std::string& file) {
  if (EditIsolation() == Isolation::process) return LoadIsolated(file);
  std::unique_ptr<TGraphic> graphic = LoadGraphic(file);
  if (!graphic) graphic = LoadViaWic(file);
  if (!graphic) throw Failure(exitInputUnreadable, file + ": is not a readable picture");
  return graphic;
}

/// Returns the result of `open`. Also shows an error in a window: a user who chose the file in a
/// window or in a desktop menu sees no terminal.
template <typename Open>
auto OpenOrTell(const Desktop& desktop, Open open) {
  try {
    return open();
  } catch (const Failure& failure) {
    desktop.Tell(failure.what());
    throw;
  }
}

std::string EditPage(const Desktop& desktop, const std::string& file) {
  OpenOrTell(desktop, [&] { return OpenPdf(file, ""); });
  std::string picture = ChangeFileExt(file, ".png");
  desktop.ConvertPdfPage(file, picture);
  return picture;
}

std::string EditPicture(const Desktop& desktop, const std::string& file) {
  std::unique_ptr<TGraphic> graphic = OpenOrTell(desktop, [&] { return LoadAnything(file); });
  // Read the extras before the user may overwrite the file.
  const std::vector<std::string> extras = PictureExtras(file, EditIsolation());
  std::string name = ExtractFileName(file);
  desktop.EditGraphic(ExtractFilePath(file), name, graphic);
  SayWhatIsLost(extras, name, EditIsolation());
  return name;
}

int Run(std::string file) {
  // Check the file before a window opens.
  if (!file.empty() && !FileExists(file)) {
    throw Failure(exitInputUnreadable, file + ": no such file");
  }
  const Desktop desktop;
  if (file.empty()) desktop.OpenFile(file);
  // The save dialog changes the current folder.
  file = std::filesystem::absolute(ToPath(file)).string();
  fmt::print("{}\n",
             OnOneLine(IsPdfName(file) ? EditPage(desktop, file) : EditPicture(desktop, file)));
  return exitDone;
}

}  // namespace

VerbRunner AddEditVerb(CommandLine& line) {
  Verb verb = line.AddVerb(
      {"edit",
       "edit a picture or a page of a PDF file in a window",
       {"The window turns, mirrors, crops and resizes the picture and changes its colors. A page "
        "of a PDF file is drawn at the resolution that you choose.",
        "OK writes the picture into its folder under the name that you enter and prints that "
        "name. If you changed nothing, nothing is written. Canceling the window ends with exit "
        "code 1.",
        "Without FILE a window lets you choose one. If the file cannot be opened, a window says "
        "so, and the exit code is 3.",
        "The file is read in a process of its own, which a damaged or hostile file cannot leave."},
       {"rasterkit edit photo.jpg", "rasterkit edit plan.pdf"}});
  const auto file = std::make_shared<std::string>();
  verb.File("FILE", *file, "a picture or a PDF file", false);
  AddNoIsolate(verb);
  return [file] { return Run(*file); };
}

}  // namespace rasterkit::tool
