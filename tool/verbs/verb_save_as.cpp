#include <cmath>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>

#include <fmt/format.h>

#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/runtime/files/file_name.h>

#include "tool/command/batch.h"
#include "tool/command/desktop.h"
#include "tool/command/exit_code.h"
#include "tool/pictures/convert_picture.h"
#include "tool/pictures/picture_file.h"
#include "tool/pictures/resize_picture.h"
#include "tool/verbs/verbs.h"

#include <CLI/CLI.hpp>

namespace rasterkit::tool {
namespace {

struct SaveAsOptions {
  std::string file;
  bool asksForPixels = false;
  bool strict = false;
};

/// What the window begins with, and what the user makes of it.
struct Wishes {
  TrecSaveBitmap rec;
  PictureSize size;
  std::string fileName;
};

/// The graphic type of a file; one that is not written gets a kind that loses nothing.
int32_t GraphicTypeOf(PictureType type) {
  switch (type) {
    case PictureType::bmp:
      return gtBmp;
    case PictureType::jpeg:
      return gtJpg;
    case PictureType::tiff:
      return gtTif;
    default:
      return gtPng;
  }
}

/// Orientations from 5 lie on their side.
PictureSize UprightSize(const LoadedPicture& picture) {
  constexpr int firstLying = 5;
  PictureSize size{picture.bitmap->Width(), picture.bitmap->Height()};
  if (picture.photo.orientation.value_or(1) >= firstLying) std::swap(size.width, size.height);
  return size;
}

/// The picture as it is. 0 dots per inch where the file states none.
Wishes AsItIs(const std::string& file, const LoadedPicture& picture) {
  constexpr int usualQuality = 90;
  const int32_t type = GraphicTypeOf(picture.type);
  const int32_t dpi = static_cast<int32_t>(std::lrint(picture.bitmap->Dpi().x));
  std::string name = ExtractFileName(file);
  // The window goes by the extension.
  if (GetGraphicsType(ExtractFileExt(name)) != type)
    name = ChangeFileExt(name, GetGraphicsExt(type));
  return {{type, picture.bitmap->StoredBits(), dpi, 0, usualQuality}, UprightSize(picture), name};
}

Wishes Ask(const std::string& file, const Wishes& start, bool asksForPixels) {
  Wishes wishes = start;
  const std::string dir = ExtractFilePath(file);
  const Desktop desktop;
  if (asksForPixels) {
    desktop.SaveBitmapPixels(dir, wishes.rec, wishes.size.width, wishes.size.height,
                             wishes.fileName);
  } else {
    desktop.SaveBitmap(dir, wishes.rec, wishes.fileName);
  }
  return wishes;
}

void ChangeSize(Subject& picture, const PictureSize& size) {
  if (!size.IsPossible())
    picture.Refuse(fmt::format("{} x {} is no size: width and height are from 1 to 1000000",
                               size.width, size.height));
  ResizePicture(picture, size, false);
}

/// What differs from how the picture was; what the user left alone stays as exact as it is.
void Fulfil(const Wishes& wishes, const Wishes& start, Subject& picture) {
  const bool isOtherSize =
      wishes.size.width != start.size.width || wishes.size.height != start.size.height;
  if (isOtherSize) ChangeSize(picture, wishes.size);
  if (wishes.rec.BitsPerInch == start.rec.BitsPerInch) return;
  const double dpi = wishes.rec.BitsPerInch;
  picture.bitmap->SetDpi({dpi, dpi});
}

int Run(const SaveAsOptions& options) {
  const std::string file = std::filesystem::absolute(ToPath(options.file)).string();
  LoadedPicture picture = LoadPicture(file);
  const Wishes start = AsItIs(file, picture);
  const Wishes wishes = Ask(file, start, options.asksForPixels);
  PictureOptions saving;
  saving.quality = wishes.rec.JpgQuality;
  if (wishes.rec.BitsPerPix != start.rec.BitsPerPix) saving.bits = wishes.rec.BitsPerPix;
  PictureSteps steps;
  steps.change = [&](Subject& subject) { Fulfil(wishes, start, subject); };
  OutputOptions output;
  // The window has asked.
  output.overwrite = true;
  output.strict = options.strict;
  const auto save = [&](const Job& job) { return ConvertLoaded(picture, job, saving, steps); };
  const int code = RunJobs(output, {{file, wishes.fileName}}, save);
  if (code == exitDone || code == exitNotCarriedOver) fmt::print("{}\n", wishes.fileName);
  return code;
}

}  // namespace

VerbRunner AddSaveAsVerb(CLI::App& app) {
  CLI::App& verb = *app.add_subcommand("save-as", "save a picture under a name chosen in a window");
  verb.group("Verbs");
  verb.footer(
      "The window asks for folder, name and kind of file; its button Options for colours, "
      "resolution "
      "and JPEG\n"
      "quality, which begin with those of FILE (quality 90). The picture is set upright, written, "
      "and "
      "its name is\n"
      "printed. Whoever cancels gets exit code 1.\n\n"
      "Examples:\n"
      "  rasterkit save-as photo.jpg\n"
      "  rasterkit save-as plan.tif --pixels");
  const auto options = std::make_shared<SaveAsOptions>();
  verb.add_option("file", options->file, "a picture")->required()->type_name("FILE");
  verb.add_flag("--pixels", options->asksForPixels,
                "Options ask for the size in pixels in place of the resolution");
  verb.add_flag("--strict", options->strict, "exit 5 when something was not carried over")
      ->group("Files and results");
  return [options] { return Run(*options); };
}

}  // namespace rasterkit::tool
