#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <fmt/format.h>

#include <rasterkit/bitmaptools/files/graphic_files.h>
#include <rasterkit/bitmaptools/files/load_via_wic.h>
#include <rasterkit/runtime/files/file_name.h>

#include "tool/command/desktop.h"
#include "tool/command/exit_code.h"
#include "tool/pages/pdf_file.h"
#include "tool/pictures/picture_extras.h"
#include "tool/verbs/verbs.h"

#include <CLI/CLI.hpp>

namespace rasterkit::tool {
namespace {

std::unique_ptr<TGraphic> LoadAnything(const std::string& file) {
  std::unique_ptr<TGraphic> graphic = LoadGraphic(file);
  if (!graphic) graphic = LoadViaWic(file);
  if (!graphic) throw Failure(exitInputUnreadable, file + ": cannot be read as a picture");
  return graphic;
}

/// What `open` gives. What cannot be opened is told in a window too: whoever chose the file in one,
/// or in a desktop's menu, sees no terminal.
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
  // Read before the user may write over the file.
  const std::vector<std::string> extras = PictureExtras(file);
  std::string name = ExtractFileName(file);
  desktop.EditGraphic(ExtractFilePath(file), name, graphic);
  SayWhatIsLost(extras, name);
  return name;
}

int Run(std::string file) {
  // Before a window is asked for.
  if (!file.empty() && !FileExists(file))
    throw Failure(exitInputUnreadable, file + ": there is no such file");
  const Desktop desktop;
  if (file.empty()) desktop.OpenFile(file);
  // The save dialog changes the current folder.
  file = std::filesystem::absolute(ToPath(file)).string();
  fmt::print("{}\n", IsPdfName(file) ? EditPage(desktop, file) : EditPicture(desktop, file));
  return exitDone;
}

}  // namespace

VerbRunner AddEditVerb(CLI::App& app) {
  CLI::App& verb = *app.add_subcommand("edit", "edit a picture or a page of a PDF in a window");
  verb.group("Verbs");
  verb.footer(
      "Turns, mirrors, crops, resizes, changes colours; a page of a PDF is drawn at the "
      "resolution that you choose.\n"
      "OK writes the picture in its folder, under the name that you give it, and prints that "
      "name; with nothing\n"
      "changed nothing is written. Whoever cancels gets exit code 1; a file that cannot be opened, "
      "which is told\n"
      "in a window too, gives 3. Without FILE a window asks for one.\n\n"
      "Examples:\n"
      "  rasterkit edit photo.jpg\n"
      "  rasterkit edit plan.pdf");
  const auto file = std::make_shared<std::string>();
  verb.add_option("file", *file, "a picture or a PDF file")->type_name("FILE");
  return [file] { return Run(*file); };
}

}  // namespace rasterkit::tool
