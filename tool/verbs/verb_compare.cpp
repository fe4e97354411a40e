#include <memory>
#include <new>

#include <fmt/format.h>

#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/runtime/errors.h>

#include "tool/command/exit_code.h"
#include "tool/pictures/compare_pictures.h"
#include "tool/verbs/picture_verb.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

namespace rasterkit::tool {
namespace {

struct CompareOptions {
  std::vector<std::string> files;
  int tolerance = 0;
  bool exact = false;
  bool json = false;
};

struct Comparison {
  std::string size[2];
  int bits[2] = {};
  /// Nothing when the sizes differ.
  std::optional<PictureDifference> difference;
  /// The library's own test: also depth, palette and resolution are the same.
  bool isExact = false;

  bool LooksSame() const { return difference && difference->pixels == 0; }
};

Comparison Compare(TBitmap& a, TBitmap& b, int tolerance) {
  Comparison result;
  result.size[0] = fmt::format("{} x {}", a.Width(), a.Height());
  result.size[1] = fmt::format("{} x {}", b.Width(), b.Height());
  result.bits[0] = a.StoredBits();
  result.bits[1] = b.StoredBits();
  result.isExact = BitmapsAreSame(a, b);
  result.difference = ComparePictures(a, b, tolerance);
  return result;
}

std::string StoredText(const Comparison& result) {
  if (result.bits[0] != result.bits[1])
    return fmt::format("{}-bit and {}-bit", result.bits[0], result.bits[1]);
  return "palette, resolution or hidden bytes";
}

std::string Text(const Comparison& result, const CompareOptions& options) {
  if (!result.difference)
    return fmt::format("different: {} and {} pixels", result.size[0], result.size[1]);
  const PictureDifference& difference = *result.difference;
  if (difference.pixels > 0)
    return fmt::format("different: {} pixels of {}, by up to {} of 255, the first at {},{}",
                       difference.pixels, result.size[0], difference.greatest, difference.x,
                       difference.y);
  if (result.isExact) return "same";
  if (difference.greatest > 0)
    return fmt::format("{}: no pixel differs by more than {} of 255",
                       options.exact ? "different" : "same", difference.greatest);
  return fmt::format("{} as stored ({}), the same to look at",
                     options.exact ? "different" : "same; different", StoredText(result));
}

using Value = nlohmann::ordered_json;

void Print(const Value& object) {
  fmt::print("{}\n", object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
}

void PrintJson(const CompareOptions& options, const Comparison& result, bool isSame) {
  const auto& difference = result.difference;
  const bool hasFirst = difference && difference->pixels > 0;
  Print({{"schema", 1},
         {"files", options.files},
         {"ok", true},
         {"error", nullptr},
         {"same", isSame},
         {"exact", result.isExact},
         {"sizes_differ", !difference.has_value()},
         {"differing_pixels", difference ? Value(difference->pixels) : Value()},
         {"greatest_difference", difference ? Value(difference->greatest) : Value()},
         {"first", hasFirst ? Value::array({difference->x, difference->y}) : Value()}});
}

void PrintFailure(const CompareOptions& options, const std::string& error) {
  Print({{"schema", 1},
         {"files", options.files},
         {"ok", false},
         {"error", error},
         {"same", nullptr},
         {"exact", nullptr},
         {"sizes_differ", nullptr},
         {"differing_pixels", nullptr},
         {"greatest_difference", nullptr},
         {"first", nullptr}});
}

Comparison LoadAndCompare(const CompareOptions& options) {
  const auto a = LoadUpright(options.files[0]);
  const auto b = LoadUpright(options.files[1]);
  try {
    return Compare(*a, *b, options.tolerance);
  } catch (const Error& error) {
    throw Failure(exitInputUnreadable, error.Reason());
  } catch (const std::bad_alloc&) {
    throw Failure(exitInputUnreadable, "not enough memory to compare the pictures");
  }
}

int Run(const CompareOptions& options) {
  try {
    const Comparison result = LoadAndCompare(options);
    const bool isSame = options.exact ? result.isExact : result.LooksSame();
    if (options.json) {
      PrintJson(options, result, isSame);
    } else {
      fmt::print("{}\n", Text(result, options));
    }
    return isSame ? exitDone : exitAnswerIsNo;
  } catch (const Failure& failure) {
    if (options.json) PrintFailure(options, failure.what());
    throw;
  }
}

}  // namespace

VerbRunner AddCompareVerb(CLI::App& app) {
  CLI::App& verb = *app.add_subcommand("compare", "tell whether two pictures are the same");
  verb.group("Verbs");
  verb.footer(
      "Both pictures are set upright, and what is seen is compared: size, and colour and opacity "
      "of\n"
      "every pixel. Type, depth, palette and resolution count with --exact only, metadata never.\n"
      "Prints whether they are the same, else how many pixels differ, by how much and where "
      "first.\n"
      "Exit code 0: the same, 1: different, 3: one cannot be read.\n\n"
      "Examples:\n"
      "  rasterkit compare before.png after.bmp\n"
      "  rasterkit compare photo.png photo.jpg --tolerance 8");
  const auto options = std::make_shared<CompareOptions>();
  auto* const exact =
      verb.add_flag("--exact", options->exact, "depth, palette and resolution count as well");
  verb.add_option("--tolerance", options->tolerance,
                  "by how much red, green, blue or opacity of a pixel may differ, 0 to 255 [0]")
      ->check(CLI::Range(0, 255))
      ->excludes(exact)
      ->type_name("N");
  verb.add_flag("--json", options->json, "print one JSON object on stdout");
  verb.add_option("files", options->files, "the two pictures")
      ->required()
      ->expected(2)
      ->type_name("A B");
  return [options] { return Run(*options); };
}

}  // namespace rasterkit::tool
