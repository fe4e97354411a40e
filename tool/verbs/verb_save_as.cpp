#include <cmath>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>

#include <fmt/core.h>

#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/runtime/files/file_name.h>

#include "tool/command/batch.h"
#include "tool/command/command_line.h"
#include "tool/command/desktop.h"
#include "tool/command/exit_code.h"
#include "tool/command/isolation_option.h"
#include "tool/command/printable.h"
#include "tool/pictures/change_picture.h"
#include "tool/reports/layout_facts.h"
#include "tool/verbs/verbs.h"

namespace rasterkit::tool {
namespace {

struct SaveAsOptions {
  std::string file;
  bool asksForPixels = false;
  bool strict = false;
  bool noSync = false;
};

/// Initial values of the window, and what the user chose.
struct Settings {
  TrecSaveBitmap rec;
  PictureSize size;
  std::string fileName;
};

/// The graphic type of a file. A type that cannot be written becomes PNG, which is lossless.
int32_t GraphicTypeOf(PictureType type) {
  const Codec* codec = FindCodec(type);
  if (codec == nullptr || codec->encode == nullptr) return gtPng;
  const int32_t graphicType = GetGraphicsType(std::string(codec->extensions.front()));
  return graphicType == gtNone ? gtPng : graphicType;
}

/// Initial values from the picture. 0 dots per inch if the file states no resolution.
Settings AsItIs(const std::string& file, const Picture& picture) {
  constexpr int kUsualQuality = 90;
  const int32_t type = GraphicTypeOf(picture.SourceType());
  const auto dpi = static_cast<int32_t>(std::lrint(picture.GetMetadata().resolution.x));
  std::string name = ExtractFileName(file);
  // The window derives the type from the extension.
  if (GetGraphicsType(ExtractFileExt(name)) != type) {
    name = ChangeFileExt(name, GetGraphicsExt(type));
  }
  return {{type, ShownBits(picture.Layout(), picture.SourceType()), dpi, 0, kUsualQuality},
          {picture.Width(), picture.Height()},
          name};
}

Settings Ask(const std::string& file, const Settings& start, bool asksForPixels) {
  Settings settings = start;
  const std::string dir = ExtractFilePath(file);
  const Desktop desktop;
  if (asksForPixels) {
    desktop.SaveBitmapPixels(dir, settings.rec, settings.size.width, settings.size.height,
                             settings.fileName);
  } else {
    desktop.SaveBitmap(dir, settings.rec, settings.fileName);
  }
  return settings;
}

void ChangeSize(PictureWork& work, const PictureSize& size) {
  if (!size.IsPossible()) {
    work.Refuse(
        fmt::format("{} x {} is not a valid size: width and height must be from 1 to 1000000",
                    size.width, size.height));
  }
  work.picture.Resize(size.width, size.height);
}

/// Applies the settings that the user changed. Unchanged settings keep their exact values.
void Apply(const Settings& settings, const Settings& start, PictureWork& work) {
  const bool isOtherSize =
      settings.size.width != start.size.width || settings.size.height != start.size.height;
  if (isOtherSize) ChangeSize(work, settings.size);
  if (settings.rec.BitsPerInch == start.rec.BitsPerInch) return;
  const double dpi = settings.rec.BitsPerInch;
  MetadataEdit edit;
  edit.resolution = Resolution{dpi, dpi};
  work.picture.Edit(edit);
}

int Run(const SaveAsOptions& options) {
  const std::string file = std::filesystem::absolute(ToPath(options.file)).string();
  const Settings start = AsItIs(file, OpenPicture(file));
  const Settings settings = Ask(file, start, options.asksForPixels);
  PictureOptions saving;
  if (settings.rec.JpgQuality != start.rec.JpgQuality) saving.quality = settings.rec.JpgQuality;
  if (settings.rec.BitsPerPix != start.rec.BitsPerPix) saving.bits = settings.rec.BitsPerPix;
  const auto change = [&](PictureWork& work) { Apply(settings, start, work); };
  OutputOptions output;
  // The window has already asked about overwriting.
  output.overwrite = true;
  output.strict = options.strict;
  output.noSync = options.noSync;
  const auto save = [&](const Job& job) { return ChangePicture(job, saving, false, change); };
  const int code = RunJobs(output, {{file, settings.fileName, 0, output.Saving()}}, save);
  if (code == exitDone || code == exitNotCarriedOver) {
    fmt::print("{}\n", OnOneLine(settings.fileName));
  }
  return code;
}

}  // namespace

VerbRunner AddSaveAsVerb(CommandLine& line) {
  Verb verb = line.AddVerb(
      {"save-as",
       "save a picture under a name chosen in a window",
       {"The window lets you choose folder, name and file type. Its Options button lets you choose "
        "colors, resolution and JPEG quality; they start with those of FILE and quality 90.",
        "The picture is turned upright and written, and its name is printed. Canceling the window "
        "ends with exit code 1."},
       {"rasterkit save-as photo.jpg", "rasterkit save-as plan.tif --pixels"}});
  const auto options = std::make_shared<SaveAsOptions>();
  verb.File("FILE", options->file, "a picture", true);
  verb.Flag("--pixels", options->asksForPixels,
            "let Options choose the size in pixels instead of the resolution");
  verb.Flag("--no-sync", options->noSync,
            "do not wait until the output is on the disk; a power failure can lose it")
      .In("Files and results");
  verb.Flag("--strict", options->strict, "exit with code 5 if something of the input is lost")
      .In("Files and results");
  AddIsolate(verb);
  return [options] { return Run(*options); };
}

}  // namespace rasterkit::tool
