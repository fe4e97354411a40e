#include <array>
#include <variant>

#include <fmt/core.h>

#include <rasterkit/dialogs/editor/step_names.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

/// Degrees with as many decimals as they have.
std::string DegreesText(double degrees) {
  std::string text = fmt::format("{:g}", degrees);
  if (const size_t point = text.find('.'); point != std::string::npos) {
    text.replace(point, 1, DecimalMark());
  }
  return text;
}

std::string NameOfTurn(const TurnStep& step) {
  constexpr std::array kNames = {rsStepTurnOver, rsStepTurnLeft, rsStepTurnOver, rsStepTurnRight};
  return ResourceString(kNames[static_cast<size_t>(step.quarters & 3)]);
}

std::string NameOfBits(const SetBits& change) {
  constexpr int kMostOfPalette = 8;
  if (change.bits > kMostOfPalette) {
    return FormatText(ResourceString(rsStepBits), std::array{std::to_string(change.bits)});
  }
  return FormatText(ResourceString(rsStepColors), std::array{std::to_string(1 << change.bits)});
}

std::string NameOfChange(const ColorChange& change) {
  if (const auto* bits = std::get_if<SetBits>(&change)) return NameOfBits(*bits);
  if (std::holds_alternative<MakeGray>(change)) return ResourceString(rsStepGray);
  if (std::holds_alternative<MakeMono>(change)) return ResourceString(rsStepMono);
  if (std::holds_alternative<AdjustColors>(change)) return ResourceString(rsChangeBitmapValues);
  return ResourceString(rsStepColorChange);
}

std::string WithSize(std::string_view text, const Picture& picture) {
  return FormatText(ResourceString(text),
                    std::array{std::to_string(picture.Width()), std::to_string(picture.Height())});
}

struct Namer {
  const Picture& after;

  std::string operator()(const TurnStep& step) const { return NameOfTurn(step); }
  std::string operator()(const MirrorStep& step) const {
    return ResourceString(step.axis == MirrorAxis::leftRight ? rsStepMirror : rsStepFlip);
  }
  std::string operator()(const RotateStep& step) const {
    return FormatText(ResourceString(rsStepRotate), std::array{DegreesText(step.degrees)});
  }
  std::string operator()(const NorthUpStep&) const { return ResourceString(rsStepNorthUp); }
  std::string operator()(const RecipeCrop&) const { return WithSize(rsStepCrop, after); }
  std::string operator()(const RecipeResize&) const { return WithSize(rsStepSize, after); }
  std::string operator()(const ChangeStep& step) const { return NameOfChange(step.change); }
  std::string operator()(const RecipeCombine&) const { return ResourceString(rsStepCombine); }
  std::string operator()(const RecipePalette&) const { return ResourceString(rsStepPalette); }
  std::string operator()(const PlaceStep&) const { return ResourceString(rsStepPlace); }
  std::string operator()(const EditStep&) const { return ResourceString(rsStepEdit); }
  std::string operator()(const StretchStep&) const { return ResourceString(rsStepStretch); }
  template <class Other>
  std::string operator()(const Other&) const {
    return ResourceString(rsStepOther);
  }
};

}  // namespace

std::string StepName(const RecipeStep& step, const Picture& after) {
  return std::visit(Namer{after}, step);
}

}  // namespace rasterkit
