#include <memory>
#include <new>

#include <fmt/core.h>

#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/worker/worker_slots.h>

#include "tool/command/command_line.h"
#include "tool/command/exit_code.h"
#include "tool/command/isolation_option.h"
#include "tool/command/json.h"
#include "tool/command/limit_options.h"
#include "tool/pictures/change_picture.h"
#include "tool/pictures/compare_pictures.h"
#include "tool/verbs/verbs.h"

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
  /// Empty if the sizes differ.
  std::optional<PictureDifference> difference;
  /// The result of BitmapsAreSame: depth, palette and resolution count as well.
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
  if (result.bits[0] != result.bits[1]) {
    return fmt::format("{}-bit and {}-bit", result.bits[0], result.bits[1]);
  }
  return "palette, resolution or hidden bytes";
}

std::string Text(const Comparison& result, const CompareOptions& options) {
  if (!result.difference) {
    return fmt::format("different: {} and {} pixels", result.size[0], result.size[1]);
  }
  const PictureDifference& difference = *result.difference;
  if (difference.pixels > 0) {
    const std::string most = difference.greatest > 0
                                 ? fmt::format("up to {} of 255", difference.greatest)
                                 : "less than 1 of 255";
    return fmt::format("different: {} pixels of {}, by {}, the first at {},{}", difference.pixels,
                       result.size[0], most, difference.x, difference.y);
  }
  if (result.isExact) return "same";
  if (difference.greatest > 0) {
    return fmt::format("{}: no pixel differs by more than {} of 255",
                       options.exact ? "different" : "same", difference.greatest);
  }
  return fmt::format("{} as stored ({}), the pixels look the same",
                     options.exact ? "different" : "same; different", StoredText(result));
}

/// `rest` holds the members that are null after a failure.
void PrintJson(const CompareOptions& options, const std::string& error, const JsonObject& rest) {
  JsonObject object;
  object.Add("schema", 1)
      .Add("files", options.files)
      .Add("ok", error.empty())
      .Add("error", TextOrNull(error))
      .Add(rest);
  PrintLine(object);
}

void PrintResult(const CompareOptions& options, const Comparison& result, bool isSame) {
  const auto& difference = result.difference;
  Json first;
  if (difference && difference->pixels > 0) first = std::vector<int>{difference->x, difference->y};
  JsonObject rest;
  rest.Add("same", isSame)
      .Add("exact", result.isExact)
      .Add("sizes_differ", !difference.has_value())
      .Add("differing_pixels", difference ? Json(difference->pixels) : Json())
      .Add("greatest_difference", difference ? Json(difference->greatest) : Json())
      .Add("first", first);
  PrintJson(options, {}, rest);
}

void PrintFailure(const CompareOptions& options, const std::string& error) {
  JsonObject rest;
  for (const char* const name :
       {"same", "exact", "sizes_differ", "differing_pixels", "greatest_difference", "first"}) {
    rest.Add(name, nullptr);
  }
  PrintJson(options, error, rest);
}

/// Numbers that differ although their grays do not are a difference too.
Comparison Compare(const ComparedNumbers& numbers, int tolerance) {
  Comparison result = Compare(*numbers.a, *numbers.b, tolerance);
  result.isExact = result.isExact && numbers.pixels == 0;
  if (tolerance > 0 || !result.difference) return result;
  result.difference->pixels = numbers.pixels;
  result.difference->x = numbers.x;
  result.difference->y = numbers.y;
  return result;
}

Comparison LoadAndCompare(const CompareOptions& options) {
  const std::string both = options.files[0] + " and " + options.files[1];
  try {
    // Stdin can be read only once.
    const Picture first = OpenPicture(options.files[0]), second = OpenPicture(options.files[1]);
    const auto numbers = CompareNumbers(first, second, RunOf({}));
    if (numbers) return Compare(*numbers, options.tolerance);
    const auto a = UprightPixels(first, options.files[0]);
    const auto b = UprightPixels(second, options.files[1]);
    return Compare(*a, *b, options.tolerance);
  } catch (const CanceledError&) {
    throw Failure(exitInterrupted, "interrupted");
  } catch (const Error& error) {
    throw Failure(exitInputUnreadable, both + ": " + ReasonWithOption(error));
  } catch (const std::bad_alloc&) {
    throw Failure(exitInputUnreadable, both + ": out of memory");
  }
}

int Run(const CompareOptions& options) {
  detail::SetMostWorkers(1);
  try {
    const Comparison result = LoadAndCompare(options);
    const bool isSame = options.exact ? result.isExact : result.LooksSame();
    if (options.json) {
      PrintResult(options, result, isSame);
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

VerbRunner AddCompareVerb(CommandLine& line) {
  Verb verb = line.AddVerb(
      {"compare",
       "tell whether two pictures look the same",
       {"Both pictures are turned upright. Then their sizes and the color and opacity of every "
        "pixel are compared. File type, depth, palette and resolution count only with --exact, "
        "metadata never.",
        "Prints whether the pictures are the same, or how many pixels differ, by how much, and "
        "where the first one is. The exit code is 0 for the same, 1 for different, and 3 if a "
        "picture cannot be read."},
       {"rasterkit compare before.png after.bmp",
        "rasterkit compare photo.png photo.jpg --tolerance 8"}});
  const auto options = std::make_shared<CompareOptions>();
  const Option exact =
      verb.Flag("--exact", options->exact, "compare depth, palette and resolution as well");
  verb.Number("--tolerance", "N", options->tolerance, {0, 255},
              "ignore differences of red, green, blue and opacity up to N, 0 to 255 [0]")
      .Excludes(exact);
  verb.Flag("--json", options->json, "print one JSON object on stdout");
  AddIsolate(verb);
  verb.Files("A B", options->files, 2, "the two pictures");
  return [options] { return Run(*options); };
}

}  // namespace rasterkit::tool
