#include <optional>

#include "tool/arguments/color_argument.h"
#include "tool/command/exit_code.h"
#include "tool/pictures/common_palette.h"
#include "tool/reports/palette_report.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

/// Slot of a picture with the common palette in a recipe.
constexpr const char* kSlot = "palette";

struct PaletteOptions {
  /// Values as typed, already checked.
  std::vector<std::string> set;
  std::string first;
  /// One palette for all pictures.
  bool common = false;
};

/// The new color of an entry.
struct EntryColorChange {
  int index = 0;
  TColor color = 0;
};

std::optional<EntryColorChange> ParseEntry(const std::string& text) {
  const size_t equals = text.find('=');
  if (equals == 0 || equals > 3) return std::nullopt;
  const std::string index = text.substr(0, equals), color = text.substr(equals + 1);
  const bool isNumber = index.find_first_not_of("0123456789") == std::string::npos;
  if (!isNumber || std::stoi(index) > 255 || !CheckColor(color).empty()) return std::nullopt;
  return EntryColorChange{std::stoi(index), ColorOf(color)};
}

std::string CheckEntry(const std::string& text) {
  return ParseEntry(text)
             ? std::string()
             : "an entry is N=COLOR, a number from 0 to 255 and a color, not '" + text + "'";
}

/// All pictures get the palette that fits them together.
PictureChange MakingCommon(const PaletteOptions& options, const std::vector<std::string>& files) {
  if (!options.set.empty() || !options.first.empty()) {
    throw Failure(exitWrongUsage, "--common cannot be used with --set or --first");
  }
  const RecipeSlots slots = {{kSlot, PictureWith(ChooseCommonPalette(files).palette)}};
  return [slots](PictureWork& work) {
    work.PaintTransparent("the common palette has no transparent entry");
    work.Add(RecipePalette{kSlot}, slots);
  };
}

PictureChange Changing(const PaletteOptions& options) {
  if (options.set.empty() && options.first.empty()) {
    throw Failure(exitWrongUsage,
                  "palette needs --set or --first to change a picture, or one file and no output "
                  "to show its palette");
  }
  SetPaletteEntries change;
  if (!options.first.empty()) change.first = ColorOf(options.first);
  for (const std::string& text : options.set) {
    const EntryColorChange entry = ParseEntry(text).value();
    change.entries.emplace_back(entry.index, entry.color);
  }
  return [change](PictureWork& work) { work.Add(ChangeStep{change}); };
}

}  // namespace

VerbRunner AddPaletteVerb(CommandLine& line) {
  PictureVerb verb(
      line,
      {"palette",
       "show the palette of a picture, or change its entries",
       {"With one file and no output: lists the palette entries and how many pixels use each. The "
        "exit code is 1 if the picture has no palette.",
        "With an output: gives entries another color. Every pixel keeps its entry.",
        "With --common and several files: one palette for all of them, so that they can be shown "
        "side by side with 256 colors. It has their own colors if these are not too many."},
       {"rasterkit palette plan.png",
        "rasterkit palette plan.png red-roads.png --set 3=FF0000 --set 4=C00000",
        "rasterkit palette scan.bmp white-paper.bmp --first white",
        "rasterkit palette --common a.png b.png c.png",
        "rasterkit palette --common a.png b.png c.png --out-dir small"}});
  const auto options = std::make_shared<PaletteOptions>();
  verb.Texts("--set", "N=COLOR", options->set, CheckEntry,
             "new color of entry N, counted from 0; can be repeated");
  verb.Color("--first", options->first, "new color of the entry that the top left pixel uses");
  verb.Flag("--common", options->common,
            "one palette of up to 256 colors that fits all pictures together: shows it, or writes "
            "the pictures with it into --out-dir");
  verb.AnsweringForOneFile(ShowPalette);
  verb.AnsweringForFiles(options->common, ShowCommonPalette);
  return verb.ChangingAfter([options, outputs = verb.Outputs()] {
    return options->common ? MakingCommon(*options, outputs->files) : Changing(*options);
  });
}

}  // namespace rasterkit::tool
