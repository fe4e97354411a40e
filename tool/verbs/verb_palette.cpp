#include <optional>

#include <fmt/core.h>

#include <rasterkit/bitmaptools/pixels/palette_tools.h>

#include "tool/arguments/color_argument.h"
#include "tool/command/exit_code.h"
#include "tool/pictures/palette_indexes.h"
#include "tool/reports/palette_report.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

struct PaletteOptions {
  /// Values as typed, already checked.
  std::vector<std::string> set;
  std::string first;
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

/// The entries of a bitmap's palette. Changing them here keeps all pixels; the library's routine
/// keeps whole rows only if the number of entries matches the depth.
class Entries {
 public:
  explicit Entries(TBitmap& bitmap) : bitmap_(bitmap) {
    count_ = GetPaletteColors(bitmap.Palette(), table_);
  }

  void Set(int index, TColor color, const Subject& picture) {
    if (index >= count_) {
      picture.Refuse(fmt::format("there is no entry {}: the palette has {}", index, count_));
    }
    tagPALETTEENTRY& entry = (*table_)[static_cast<size_t>(index)];
    entry.peRed = static_cast<uint8_t>(color);
    entry.peGreen = static_cast<uint8_t>(color >> 8);
    entry.peBlue = static_cast<uint8_t>(color >> 16);
  }

  bool Has(TColor color) const {
    for (int i = 0; i < count_; ++i) {
      if (EntryColor((*table_)[static_cast<size_t>(i)]) == color) return true;
    }
    return false;
  }

  void Apply() {
    bitmap_.SetPalette(HPALETTE(std::span(*table_).first(static_cast<size_t>(count_))));
  }

 private:
  TBitmap& bitmap_;
  std::unique_ptr<TColorTable> table_;
  int count_ = 0;
};

/// Updates the transparent color: if no entry has it after the change, no pixel is transparent.
void CheckTransparency(Subject& picture, const Entries& entries, TColor transparent) {
  if (!picture.bitmap->Transparent()) return;
  if (entries.Has(transparent)) return picture.bitmap->SetTransparentColor(transparent);
  picture.bitmap->SetTransparent(false);
  picture.result.notCarriedOver.emplace_back(MetadataKindName(MetadataKind::transparency));
}

void ChangeEntries(const PaletteOptions& options, Subject& picture) {
  TBitmap& bitmap = *picture.bitmap;
  if (!HasIndexes(bitmap)) {
    picture.Refuse(fmt::format("a {}-bit picture has no palette (convert --bits 8 creates one)",
                               bitmap.StoredBits()));
  }
  const TColor transparent = bitmap.TransparentColor();
  Entries entries(bitmap);
  if (!options.first.empty()) entries.Set(IndexAt(bitmap, 0, 0), ColorOf(options.first), picture);
  for (const std::string& text : options.set) {
    const EntryColorChange change = ParseEntry(text).value();
    entries.Set(change.index, change.color, picture);
  }
  entries.Apply();
  CheckTransparency(picture, entries, transparent);
}

PictureChange Changing(const PaletteOptions& options) {
  if (options.set.empty() && options.first.empty()) {
    throw Failure(exitWrongUsage,
                  "palette needs --set or --first to change a picture, or one file and no output "
                  "to show its palette");
  }
  return [options](Subject& picture) { ChangeEntries(options, picture); };
}

}  // namespace

VerbRunner AddPaletteVerb(CommandLine& line) {
  PictureVerb verb(
      line,
      {"palette",
       "show the palette of a picture, or change its entries",
       {"With one file and no output: lists the palette entries and how many pixels use each. The "
        "exit code is 1 if the picture has no palette.",
        "With an output: gives entries another color. Every pixel keeps its entry."},
       {"rasterkit palette plan.png",
        "rasterkit palette plan.png red-roads.png --set 3=FF0000 --set 4=C00000",
        "rasterkit palette scan.bmp white-paper.bmp --first FFFFFF"}});
  const auto options = std::make_shared<PaletteOptions>();
  verb.Texts("--set", "N=COLOR", options->set, CheckEntry,
             "new color of entry N, counted from 0; can be repeated");
  verb.Color("--first", options->first, "new color of the entry that the top left pixel uses");
  verb.AnsweringForOneFile(ShowPalette);
  return verb.ChangingAfter([options] { return Changing(*options); });
}

}  // namespace rasterkit::tool
