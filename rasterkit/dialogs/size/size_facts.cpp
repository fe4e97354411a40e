#include <algorithm>
#include <cmath>
#include <string_view>
#include <vector>

#include <rasterkit/dialogs/size/size_answer.h>
#include <rasterkit/dialogs/size/size_facts.h>
#include <rasterkit/pictures/recipes/apply_recipe.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>
#include <rasterkit/runtime/rounding.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

std::string Filled(std::string_view key, const std::vector<std::string>& values) {
  return FormatText(ResourceString(key), values);
}

/// With the decimal mark of the texts and at most two decimals.
std::string NumberText(double value) {
  constexpr int64_t kHundredths = 100, kTenths = 10;
  const int64_t scaled = Round(value * kHundredths);
  std::string text = std::to_string(scaled / kHundredths);
  const int64_t rest = scaled % kHundredths;
  if (rest == 0) return text;
  text += DecimalMark() + std::to_string(rest / kTenths);
  return rest % kTenths == 0 ? text : text + std::to_string(rest % kTenths);
}

struct MemoryText {
  std::string number, unit;
};

MemoryText MemoryTextOf(uint64_t bytes) {
  constexpr double kStep = 1024;
  constexpr std::string_view kUnits[] = {"bytes", "KiB", "MiB", "GiB", "TiB", "PiB"};
  auto value = static_cast<double>(bytes);
  size_t unit = 0;
  while (value >= kStep && unit + 1 < std::size(kUnits)) {
    value /= kStep;
    ++unit;
  }
  constexpr double kTen = 10;
  value = unit == 0 || value >= kStep / kTen ? std::round(value) : std::round(value * kTen) / kTen;
  return {NumberText(value), std::string(kUnits[unit])};
}

std::string DpiText(const Resolution& dpi) {
  if (!dpi.IsKnown()) return ResourceString(rsSizeNoDpi);
  const std::string x = NumberText(dpi.x), y = NumberText(dpi.y);
  return x == y ? Filled(rsSavingDpi, {x}) : Filled(rsSizeTwoDpi, {x, y});
}

uint64_t BytesOf(const Picture& picture) {
  constexpr uint64_t kByte = 8;
  const auto bits = static_cast<uint64_t>(std::max(picture.Layout().BitsPerPixel(), 1));
  const uint64_t row = (static_cast<uint64_t>(picture.Width()) * bits + kByte - 1) / kByte;
  return row * static_cast<uint64_t>(picture.Height());
}

}  // namespace

std::optional<uint64_t> BytesAtSize(const Picture& picture, int32_t width, int32_t height,
                                    Filter filter) {
  try {
    Picture result = picture;
    result.Resize(width, height, {filter});
    return BytesOf(result);
  } catch (const Error&) {
    return std::nullopt;
  }
}

std::string SizeFactsText(const Picture& picture) {
  const MemoryText memory = MemoryTextOf(BytesOf(picture));
  return Filled(rsSizeFacts, {std::to_string(picture.Width()), std::to_string(picture.Height()),
                              memory.number, memory.unit}) +
         ", " + DpiText(picture.GetMetadata().resolution);
}

std::string SizeResultText(const ChangeSizeModel& model, const Picture& picture) {
  const SizeFault fault = model.Fault();
  if (fault != SizeFault::none && fault != SizeFault::unchanged) return "";
  Picture result = picture;
  ApplyRecipeStep(result, SizeStepOf(model, picture));
  return SizeFactsText(result);
}

std::string SizeFaultText(const ChangeSizeModel& model) {
  const auto whole = [](double number) { return std::to_string(Round(number)); };
  // The numbers of the model end where 32 bits do.
  const auto side = [&](ChangeSizeModel::Field field, int32_t rounded) {
    constexpr double kMost = 1e18;
    if (rounded < ChangeSizeModel::kGreatest) return whole(rounded);
    return whole(std::min(model.ExactPixels(field), kMost));
  };
  const std::string width = side(ChangeSizeModel::Field::width, model.RoundedWidth());
  const std::string height = side(ChangeSizeModel::Field::height, model.RoundedHeight());
  switch (model.Fault()) {
    case SizeFault::none:
      return "";
    case SizeFault::outOfRange:
      return Filled(rsSizeOutOfRange, {whole(model.Rules().leastSide),
                                       whole(model.Rules().greatestSide), width, height});
    case SizeFault::needsResolution:
      return Filled(rsSizeNeedsResolution,
                    {whole(ChangeSizeModel::kLeastDpi), whole(ChangeSizeModel::kGreatestDpi)});
    case SizeFault::tooLarge:
      return Filled(rsSizeTooLarge, {width, height});
    case SizeFault::beyondMemory: {
      const MemoryText need =
          MemoryTextOf(model.BytesOf(model.RoundedWidth(), model.RoundedHeight()).value_or(0));
      const MemoryText limit = MemoryTextOf(PictureMemoryLimit());
      return Filled(rsSizeBeyondMemory, {need.number, need.unit, limit.number, limit.unit});
    }
    case SizeFault::unchanged:
      return ResourceString(rsSizeUnchanged);
  }
  return "";
}

}  // namespace rasterkit
