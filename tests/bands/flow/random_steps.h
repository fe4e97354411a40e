#pragma once

#include <algorithm>
#include <functional>
#include <string>

#include <rasterkit/bands/stages.h>

/// Steps of all kinds with numbers that a generator, or a fuzzer, chooses.
namespace rasterkit::test {

/// Returns a number from 0 to `below - 1`.
using Pick = std::function<int(int below)>;

struct RandomSteps {
  Stages stages;
  std::string text;
};

namespace steps {

/// The longest side of a result.
inline constexpr int kMostSide = 240;

inline Resampling PickResampling(const Pick& pick) {
  Resampling how;
  how.filter = static_cast<Filter>(pick(4));
  how.fill.kind = pick(2) == 0 ? Fill::Kind::automatic : Fill::Kind::color;
  how.fill.color = static_cast<TColor>(pick(256) * 0x10101);
  return how;
}

inline ColorChange PickChange(const Pick& pick) {
  switch (pick(11)) {
    case 0:
      return MakeGray{pick(2) == 0};
    case 1:
      return MakeMono{pick(2) == 0 ? std::optional<int>() : pick(257), clBlack, clWhite};
    case 2:
      return AdjustColors{pick(201) - 100, pick(201) - 100, pick(201) - 100,
                          pick(201) - 100, pick(201) - 100, pick(201) - 100};
    case 3:
      return WhitenLight{pick(256), pick(2) == 0};
    case 4:
      return RecolorByGray{pick(256), pick(2) == 0, static_cast<TColor>(pick(256)),
                           pick(2) == 0 ? std::optional<int>() : pick(256)};
    case 5:
      return ReplaceKeyColor{static_cast<TColor>(pick(256)), pick(2) == 0};
    case 6:
      return WhiteForPdf{};
    case 7:
      return PaintTransparency{static_cast<TColor>(pick(256) << 8)};
    case 8:
      return SwapOpacity{};
    case 9:
      return UsePalette{DefaultPalette(pick(2) == 0 ? pf4bit : pf8bit)};
    default: {
      constexpr int kBits[] = {1, 4, 8, 24, 32};
      return SetBits{kBits[pick(5)]};
    }
  }
}

/// Adds one step; returns the size of its result.
inline Sides AddStep(RandomSteps& steps, const Pick& pick, Sides size, bool hasColors) {
  const auto add = [&](std::unique_ptr<Stage> stage, const std::string& text) {
    steps.stages.push_back(std::move(stage));
    steps.text += text + "; ";
  };
  const auto sizeText = [](Sides sides) {
    return std::to_string(sides.width) + " x " + std::to_string(sides.height);
  };
  switch (pick(hasColors ? 8 : 5)) {
    case 0: {
      const int quarters = pick(4);
      add(TurnStage(size, quarters), "turn " + std::to_string(quarters));
      return quarters % 2 == 0 ? size : Sides{size.height, size.width};
    }
    case 1: {
      const bool isLeftRight = pick(2) == 0;
      add(MirrorStage(size, isLeftRight ? MirrorAxis::leftRight : MirrorAxis::topBottom),
          isLeftRight ? "mirror left-right" : "mirror top-bottom");
      return size;
    }
    case 2: {
      const int left = pick(size.width), top = pick(size.height);
      const Sides part{1 + pick(size.width - left), 1 + pick(size.height - top)};
      add(CropStage(size, left, top, part.width, part.height),
          "crop " + std::to_string(left) + "," + std::to_string(top) + " " + sizeText(part));
      return part;
    }
    case 3: {
      const Sides target{1 + pick(std::min(kMostSide, 2 * size.width)),
                         1 + pick(std::min(kMostSide, 2 * size.height))};
      const auto filter = static_cast<Filter>(pick(4));
      add(ResizeStage(size, target, filter),
          "resize " + sizeText(target) + " filter " + std::to_string(static_cast<int>(filter)));
      return target;
    }
    case 4: {
      const double degrees = pick(4) == 0 ? 90 * pick(4) : pick(3600) / 10.0;
      const Sides made = FrameOfRotation(size, degrees).sides;
      if (std::max(made.width, made.height) > kMostSide) return size;
      add(RotateStage(size, degrees, PickResampling(pick)), "rotate " + std::to_string(degrees));
      return made;
    }
    default: {
      const ColorChange change = PickChange(pick);
      add(ChangeStage(size, change), "change " + std::to_string(change.index()));
      return size;
    }
  }
}

}  // namespace steps

/// `hasColors`: the picture is a raster, so that changes of color are possible.
inline RandomSteps PickSteps(const Pick& pick, Sides source, bool hasColors, int count) {
  RandomSteps made;
  for (int i = 0; i < count; ++i) source = steps::AddStep(made, pick, source, hasColors);
  return made;
}

}  // namespace rasterkit::test
