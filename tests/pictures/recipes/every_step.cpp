#include "tests/pictures/recipes/every_step.h"

#include <algorithm>
#include <cmath>

#include <rasterkit/pictures/reading/picture_size.h>
#include <rasterkit/pictures/recipes/step_kinds.h>

namespace rasterkit::test {
namespace {

/// Values within the ranges of a step's keys; see step_fields.h.
class Picker {
 public:
  explicit Picker(std::mt19937& random) : random_(random) {}

  int Whole(int least, int most) {
    return std::uniform_int_distribution<int>(least, most)(random_);
  }
  bool Flag() { return Whole(0, 1) == 1; }
  TColor Color() { return Whole(0, 0xFFFFFF); }

  /// Also numbers of all exponents, whose text is long.
  double Number(double least, double most) {
    switch (Whole(0, 3)) {
      case 0:
        return std::floor(std::uniform_real_distribution<double>(least, most)(random_));
      case 1: {
        const double any =
            std::ldexp(std::uniform_real_distribution<double>(-1, 1)(random_), Whole(-300, 30));
        return any >= least && any <= most ? any : least;
      }
      default:
        return std::uniform_real_distribution<double>(least, most)(random_);
    }
  }
  double Coordinate() { return Number(-1e12, 1e12); }

  template <class Value>
  Value One(std::initializer_list<Value> values) {
    return values.begin()[Whole(0, static_cast<int>(values.size()) - 1)];
  }

  template <class Make>
  auto Maybe(const Make& make) -> std::optional<decltype(make())> {
    if (Flag()) return make();
    return std::nullopt;
  }

  std::string Text() {
    static const std::vector<std::string> kParts = {"a",    "Z",    "\"", "\\", "/", "\n",
                                                    "\x01", " ",    "ä",  "€",  "😀", "{}",
                                                    ",",    "\x7F", "0.", ":",  "~", "\t"};
    std::string text;
    const int parts = Whole(0, 12);
    for (int i = 0; i < parts; ++i) {
      text += kParts[static_cast<size_t>(Whole(0, static_cast<int>(kParts.size()) - 1))];
    }
    return text;
  }

  Filter AnyFilter() {
    return One({Filter::automatic, Filter::nearest, Filter::linear, Filter::area});
  }

  NumberStretch Stretch() {
    using Kind = NumberStretch::Kind;
    NumberStretch stretch;
    stretch.kind = One({Kind::automatic, Kind::minMax, Kind::percent, Kind::fixed, Kind::full});
    stretch.percent = Number(0, 49.9);
    stretch.least = Number(-1e300, 1e300);
    stretch.greatest = stretch.least > 0 ? -1.5 : Number(1, 1e300);
    return stretch;
  }

 private:
  std::mt19937& random_;
};

void Vary(Picker& pick, TurnStep& step) {
  step.quarters = pick.Whole(-3, 3);
}

void Vary(Picker& pick, MirrorStep& step) {
  step.axis = pick.One({MirrorAxis::leftRight, MirrorAxis::topBottom});
}

void Vary(Picker& pick, RotateOptions& options) {
  using Kind = rasterkit::Fill::Kind;
  options.fill.kind = pick.One(
      {Kind::color, Kind::transparent, Kind::noData, Kind::edge, Kind::automatic, Kind::usual});
  options.fill.color = pick.Color();
  options.filter = pick.AnyFilter();
}

void Vary(Picker& pick, RotateStep& step) {
  step.degrees = pick.Number(-1e9, 1e9);
  Vary(pick, step.options);
}

void Vary(Picker& pick, NorthUpStep& step) {
  Vary(pick, step.options);
}

void Vary(Picker& pick, RecipeCrop& step) {
  step.unit =
      pick.One({LengthUnit::pixels, LengthUnit::percent, LengthUnit::millimeters, LengthUnit::map});
  step.left = pick.Number(-1e12, 0), step.right = pick.Number(1e-12, 1e12);
  step.top = pick.Number(-1e12, 0), step.bottom = pick.Number(1e-12, 1e12);
  if (step.left == step.right) step.right = step.left + 1;
  if (!(step.left < step.right)) std::swap(step.left, step.right);
  if (!(step.top < step.bottom)) std::swap(step.top, step.bottom);
  if (step.unit == LengthUnit::map) std::swap(step.top, step.bottom);
  step.outside = pick.One({Outside::refuse, Outside::clip});
}

void Vary(Picker& pick, RecipeResize& step) {
  step.unit = pick.One({LengthUnit::pixels, LengthUnit::percent, LengthUnit::millimeters});
  const double most = step.unit == LengthUnit::pixels ? kLargestSide : 1e9;
  step.width = pick.Number(1, most);
  step.height = pick.Flag() ? 0 : pick.Number(1, most);
  if (pick.Flag()) std::swap(step.width, step.height);
  step.dpi = pick.Flag() ? 0 : pick.Number(0, 1e5);
  step.options.filter = pick.AnyFilter();
}

void Vary(Picker& pick, MakeGray& step) {
  step.trueColor = pick.Flag();
}

void Vary(Picker& pick, MakeMono& step) {
  step.threshold = pick.Maybe([&] { return pick.Whole(0, 256); });
  step.dark = pick.Color();
  step.light = pick.Color();
}

void Vary(Picker& pick, AdjustColors& step) {
  for (int* value :
       {&step.brightness, &step.contrast, &step.sharpen, &step.red, &step.green, &step.blue}) {
    *value = pick.Flag() ? pick.Whole(-100, 100) : 0;
  }
}

void Vary(Picker& pick, WhitenLight& step) {
  step = {pick.Whole(0, 255), pick.Flag()};
}

void Vary(Picker& pick, RecolorByGray& step) {
  step = {pick.Whole(0, 255), pick.Flag(), pick.Color(),
          pick.Maybe([&] { return pick.Whole(0, 255); })};
}

void Vary(Picker& pick, ReplaceKeyColor& step) {
  step = {pick.Color(), pick.Flag()};
}

void Vary(Picker&, WhiteForPdf&) {}

void Vary(Picker& pick, PaintTransparency& step) {
  step.background = pick.Color();
}

void Vary(Picker&, SwapOpacity&) {}

void Vary(Picker& pick, SetPaletteEntries& step) {
  const int count = pick.Whole(0, 5);
  for (int i = 0; i < count; ++i) step.entries.emplace_back(pick.Whole(0, 255), pick.Color());
  step.first = pick.Maybe([&] { return pick.Color(); });
}

void Vary(Picker& pick, SetBits& step) {
  step.bits = pick.One({1, 4, 8, 15, 16, 24, 32});
}

void Vary(Picker& pick, RecipeCombine& step) {
  step.slot = "mark";
  step.options.mode = pick.One({CombineMode::automatic, CombineMode::key, CombineMode::transparent,
                                CombineMode::shadow, CombineMode::overwrite, CombineMode::intoWhite,
                                CombineMode::watermark, CombineMode::grid});
  step.options.percent = pick.Whole(0, 100);
  step.options.gray = pick.Flag();
  step.options.align = pick.One({CombineAlign::automatic, CombineAlign::map, CombineAlign::none});
  step.options.filter = pick.AnyFilter();
  step.stretch = pick.Maybe([&] { return pick.Stretch(); });
}

void Vary(Picker&, RecipePalette& step) {
  step.slot = "colors";
}

void Vary(Picker& pick, PlaceStep& step) {
  Affine& affine = step.affine;
  for (double* number : {&affine.xPerColumn, &affine.yPerColumn, &affine.xPerRow, &affine.yPerRow,
                         &affine.x, &affine.y}) {
    *number = pick.Coordinate();
  }
}

void Vary(Picker& pick, EditStep& step) {
  MetadataEdit& edit = step.edit;
  for (bool* flag : {&edit.stripAll, &edit.stripProfile, &edit.stripGps, &edit.stripThumbnail,
                     &edit.stripMakerNote}) {
    *flag = pick.Flag();
  }
  edit.resolution = pick.Maybe([&] {
    return Resolution{pick.Number(0, 1e5), pick.Number(0, 1e5)};
  });
  const int removed = pick.Whole(0, 3), set = pick.Whole(0, 3);
  for (int i = 0; i < removed; ++i) edit.remove.push_back(pick.Text());
  for (int i = 0; i < set; ++i) edit.set.push_back({pick.Text(), pick.Text()});
  edit.gps = pick.Maybe([&] {
    return GpsPosition{pick.Number(-90, 90), pick.Number(-180, 180),
                       pick.Maybe([&] { return pick.Number(-4e6, 4e6); })};
  });
  edit.date = pick.Maybe([&] { return pick.Text(); });
}

void Vary(Picker& pick, RecipeCopy& step) {
  step = {"stated", pick.Flag(), pick.Flag(), pick.Flag(), pick.Flag(), pick.Flag(), pick.Flag()};
}

void Vary(Picker& pick, StretchStep& step) {
  step.stretch = pick.Stretch();
}

void Vary(Picker& pick, RecipeSave& save) {
  save.type = pick.Maybe([&] {
    return pick.One({PictureType::bmp, PictureType::jpeg, PictureType::png, PictureType::tiff});
  });
  save.bits = pick.Maybe([&] { return pick.One({1, 4, 8, 15, 16, 24, 32}); });
  save.compression = pick.Maybe([&] {
    return pick.One({TiffCompression::standard, TiffCompression::none, TiffCompression::lzw,
                     TiffCompression::deflate, TiffCompression::packBits, TiffCompression::group4});
  });
  save.quality = pick.Maybe([&] { return pick.Whole(1, 100); });
  const auto sampling =
      pick.One<std::pair<int, int>>({{0, 0}, {1, 1}, {2, 1}, {2, 2}, {1, 2}, {4, 1}});
  save.chromaX = sampling.first, save.chromaY = sampling.second;
  save.pngLevel = pick.Maybe([&] { return pick.Whole(0, 12); });
  save.lossless = pick.One({Lossless::exact, Lossless::trim, Lossless::off});
  save.background = pick.Color();
  using Keep = RecipeSave::Keep;
  save.metadata = pick.One({Keep::all, Keep::withoutGps, Keep::nothing});
}

/// Makes a step of each kind in turn.
template <class Function>
void ForEachPlain(const Function& function) {
  detail::ForEachStepKind([&]<class Plain>(std::type_identity<Plain> plain) {
    if constexpr (detail::kIsStep<Plain>) function(plain);
  });
}

int CountOfKinds() {
  int count = 0;
  ForEachPlain([&](auto) { ++count; });
  return count;
}

}  // namespace

RecipeStep RandomStep(std::mt19937& random) {
  Picker pick(random);
  int rest = pick.Whole(0, CountOfKinds() - 1);
  RecipeStep step;
  ForEachPlain([&]<class Plain>(std::type_identity<Plain>) {
    if (rest-- != 0) return;
    Plain plain{};
    Vary(pick, plain);
    step = detail::StepOfKind(std::move(plain));
  });
  return step;
}

Recipe RandomRecipe(std::mt19937& random) {
  Picker pick(random);
  Recipe recipe;
  recipe.madeWith = pick.Text();
  recipe.isAsStored = pick.Flag();
  const int count = pick.Whole(0, 8);
  for (int i = 0; i < count; ++i) recipe.steps.push_back(RandomStep(random));
  Vary(pick, recipe.save);
  return recipe;
}

std::vector<RecipeStep> EveryStep() {
  MetadataEdit edit;
  edit.resolution = Resolution{300, 300};
  edit.set = {{"Artist", "A. Person"}};
  edit.gps = GpsPosition{48.5, 9.25, 300};
  edit.date = "2019-07-04T13:05:09";
  edit.stripMakerNote = true;
  SetPaletteEntries entries;
  entries.entries = {{3, RGB(250, 10, 20)}};
  entries.first = RGB(1, 2, 3);
  return {StretchStep{{NumberStretch::Kind::percent, 1, 0, 255}},
          TurnStep{1},
          MirrorStep{MirrorAxis::topBottom},
          RecipeCrop{LengthUnit::percent, 5, 5, 96, 97},
          NorthUpStep{},
          RotateStep{12.5, {{Fill::Kind::color, RGB(200, 220, 240)}, Filter::linear}},
          RecipeCrop{LengthUnit::millimeters, 0.5, 0.5, 1000, 1000, Outside::clip},
          RecipeResize{LengthUnit::percent, 180, 0},
          RecipeResize{LengthUnit::pixels, 61, 47, 150, {Filter::linear}},
          ChangeStep{AdjustColors{10, 20, 30, 5, -5, 15}},
          ChangeStep{WhitenLight{240, false}},
          ChangeStep{RecolorByGray{30, true, RGB(20, 30, 90), {}}},
          ChangeStep{ReplaceKeyColor{RGB(9, 8, 7), true}},
          ChangeStep{SwapOpacity{}},
          ChangeStep{SwapOpacity{}},
          ChangeStep{PaintTransparency{RGB(255, 250, 240)}},
          ChangeStep{WhiteForPdf{}},
          RecipeCombine{"mark", {CombineMode::transparent, 40, true, CombineAlign::none}},
          RecipeCombine{"mark", {CombineMode::watermark, 0, false, CombineAlign::none}},
          ChangeStep{MakeGray{true}},
          RecipePalette{"colors"},
          ChangeStep{entries},
          PlaceStep{{2, 0, 0, -2, 5000, 7000}},
          RecipeCrop{LengthUnit::map, 5010.5, 6990.25, 5099, 6920},
          EditStep{edit},
          RecipeCopy{"stated"},
          ChangeStep{SetBits{24}},
          ChangeStep{MakeMono{std::nullopt, RGB(10, 20, 30), clWhite}}};
}

}  // namespace rasterkit::test
