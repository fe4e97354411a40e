#include <algorithm>
#include <limits>

#include <fmt/format.h>

#include <rasterkit/codecs/jp2/jp2_plan.h>
#include <rasterkit/codecs/rows/byte_marks.h>
#include <rasterkit/codecs/rows/icc_profile.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

constexpr int kByte = 8, kWord = 16;
constexpr size_t kTrueColors = 3, kInks = 4;

uint32_t StepsUp(uint32_t place, uint32_t step) {
  return place / step + (place % step != 0);
}

size_t ColorsOf(ColorModel model) {
  switch (model) {
    case ColorModel::gray:
    case ColorModel::palette:
      return 1;
    case ColorModel::rgb:
      return kTrueColors;
    case ColorModel::cmyk:
      return kInks;
    default:
      return 0;
  }
}

class Planner {
 public:
  explicit Planner(const Jp2File& file) : file_(file) {}

  Jp2Plan Make() {
    SetSides();
    AddChannels();
    ChooseModel();
    Order();
    ChooseNumbers();
    ChooseFormat();
    return std::move(plan_);
  }

 private:
  void Warn(const char* what) { plan_.warnings.push_back(std::string("JPEG 2000: ").append(what)); }

  /// The finest component has one sample per pixel.
  void SetSides() {
    const Jp2Codestream& stream = file_.codestream;
    const auto step = [&](uint32_t Jp2Component::*side) {
      uint32_t least = std::numeric_limits<uint32_t>::max();
      for (const Jp2Component& one : stream.components) least = std::min(least, one.*side);
      return least;
    };
    plan_.stepX = step(&Jp2Component::stepX);
    plan_.stepY = step(&Jp2Component::stepY);
    plan_.firstX = StepsUp(stream.left, plan_.stepX);
    plan_.firstY = StepsUp(stream.top, plan_.stepY);
    plan_.width = Side(StepsUp(stream.right, plan_.stepX) - plan_.firstX);
    plan_.height = Side(StepsUp(stream.bottom, plan_.stepY) - plan_.firstY);
  }

  static int Side(uint32_t side) {
    constexpr auto kMost = static_cast<uint32_t>(std::numeric_limits<int>::max());
    if (side == 0) throw FormatError("JPEG 2000: the picture has no pixels");
    if (side > kMost) throw LimitError("JPEG 2000: the picture is too large");
    return static_cast<int>(side);
  }

  void AddChannels() {
    const auto& components = file_.codestream.components;
    const Jp2Palette& palette = file_.palette;
    std::vector<Jp2Mapping> mappings = file_.mappings;
    if (palette.columns.empty()) mappings.clear();
    if (mappings.empty()) {
      for (size_t i = 0; i < components.size() && palette.columns.empty(); ++i) {
        mappings.push_back({static_cast<uint16_t>(i), {}});
      }
      for (size_t i = 0; i < palette.columns.size(); ++i) {
        mappings.push_back({0, static_cast<uint8_t>(i)});
      }
    }
    for (const Jp2Mapping& mapping : mappings) AddChannel(mapping);
  }

  void AddChannel(const Jp2Mapping& mapping) {
    const auto& components = file_.codestream.components;
    const Jp2Palette& palette = file_.palette;
    const bool hasColumn = mapping.column && *mapping.column >= palette.columns.size();
    if (mapping.component >= components.size() || hasColumn) {
      throw FormatError("JPEG 2000: the palette is used for channels that the file lacks");
    }
    const Jp2Component& depth =
        mapping.column ? palette.columns[*mapping.column] : components[mapping.component];
    plan_.channels.push_back({mapping.component, mapping.column, depth.bits, depth.isSigned});
  }

  void ChooseModel() {
    plan_.layout.model = StatedModel();
    const size_t colors = ColorsOf(plan_.layout.model);
    if (colors <= plan_.channels.size()) return;
    Warn("the file has fewer channels than its color space; they are shown as gray");
    plan_.layout.model = ColorModel::gray;
    plan_.isYcc = false;
  }

  ColorModel StatedModel() {
    if (!file_.colorSpace) return file_.profile ? ModelOfProfile() : GuessedModel();
    switch (*file_.colorSpace) {
      case kJp2Srgb:
        return ColorModel::rgb;
      case kJp2Gray:
        return ColorModel::gray;
      case kJp2Ycc:
        plan_.isYcc = true;
        return ColorModel::rgb;
      case kJp2Cmyk:
        return ColorModel::cmyk;
      default:
        throw UnsupportedError(
            fmt::format("JPEG 2000: pictures in {} are not decoded", NameOf(*file_.colorSpace)));
    }
  }

  static std::string NameOf(uint32_t colorSpace) {
    if (colorSpace == kJp2Lab) return "L*a*b* colors";
    if (colorSpace == kJp2WideYcc) return "YCC colors of a wide range";
    return fmt::format("the color space {}", colorSpace);
  }

  ColorModel ModelOfProfile() {
    constexpr size_t kSpaceAt = 16;
    const std::vector<uint8_t>& profile = *file_.profile;
    if (HasTextAt(profile, kSpaceAt, "GRAY")) return ColorModel::gray;
    if (HasTextAt(profile, kSpaceAt, "RGB ")) return ColorModel::rgb;
    if (HasTextAt(profile, kSpaceAt, "CMYK")) return ColorModel::cmyk;
    if (HasTextAt(profile, kSpaceAt, "Lab ")) {
      throw UnsupportedError("JPEG 2000: pictures in L*a*b* colors are not decoded");
    }
    return GuessedModel();
  }

  /// Three alike channels are red, green and blue; coarser second and third ones are chroma.
  ColorModel GuessedModel() {
    if (plan_.channels.size() < kTrueColors) return ColorModel::gray;
    const auto& components = file_.codestream.components;
    const auto at = [&](size_t i) { return components[plan_.channels[i].component]; };
    const auto isLike = [](const Jp2Component& one, const Jp2Component& other) {
      return one.stepX == other.stepX && one.stepY == other.stepY && one.bits == other.bits &&
             one.isSigned == other.isSigned;
    };
    if (!isLike(at(1), at(2))) return ColorModel::gray;
    plan_.isYcc = at(1).stepX > at(0).stepX;
    const bool isColor = plan_.isYcc || isLike(at(0), at(1));
    return isColor ? ColorModel::rgb : ColorModel::gray;
  }

  /// Brings the channels into the order of colors, further bands and alpha.
  void Order() {
    constexpr uint16_t kColor = 0, kOpacity = 1, kMultiplied = 2, kWhole = 0;
    const size_t colors = ColorsOf(plan_.layout.model);
    const size_t count = plan_.channels.size();
    std::vector<size_t> order(colors, count);
    std::optional<size_t> alpha;
    for (const Jp2Definition& one : file_.definitions) {
      if (one.channel >= count) continue;
      if (one.type == kColor && one.color >= 1 && one.color <= colors) {
        order[one.color - 1U] = one.channel;
      } else if ((one.type == kOpacity || one.type == kMultiplied) && one.color == kWhole &&
                 !alpha) {
        alpha = one.channel;
        plan_.layout.alpha = one.type == kMultiplied ? AlphaKind::associated : AlphaKind::straight;
      }
    }
    if (!IsOrder(order, alpha)) {
      if (!file_.definitions.empty()) Warn("the definitions of its channels are invalid");
      for (size_t i = 0; i < colors; ++i) order[i] = i;
      alpha.reset();
      plan_.layout.alpha = AlphaKind::none;
    }
    AddRest(order, alpha);
  }

  /// True if each color has a channel of its own.
  bool IsOrder(std::vector<size_t> order, std::optional<size_t> alpha) const {
    if (alpha) order.push_back(*alpha);
    std::sort(order.begin(), order.end());
    const bool isUnique = std::adjacent_find(order.begin(), order.end()) == order.end();
    return isUnique && (order.empty() || order.back() < plan_.channels.size());
  }

  void AddRest(std::vector<size_t> order, std::optional<size_t> alpha) {
    const size_t colors = order.size();
    std::vector<bool> isUsed(plan_.channels.size());
    for (const size_t one : order) isUsed[one] = true;
    if (alpha) isUsed[*alpha] = true;
    for (size_t i = 0; i < isUsed.size(); ++i) {
      if (!isUsed[i]) order.push_back(i);
    }
    plan_.layout.extraBands = static_cast<int>(order.size() - colors);
    if (alpha) order.push_back(*alpha);
    std::vector<Jp2Channel> channels;
    for (const size_t one : order) channels.push_back(plan_.channels[one]);
    plan_.channels = std::move(channels);
    plan_.layout.bands = static_cast<int>(plan_.channels.size());
  }

  bool IsColor() const { return plan_.layout.model != ColorModel::gray; }

  void ChooseNumbers() {
    constexpr int kMostBits = 31;
    PixelLayout& layout = plan_.layout;
    int bits = 1;
    bool isSigned = false;
    for (const Jp2Channel& channel : plan_.channels) {
      bits = std::max(bits, channel.bits);
      isSigned = isSigned || (channel.isSigned && !IsColor());
    }
    for (const Jp2Channel& channel : plan_.channels) {
      // The sign takes a bit of its own.
      if (isSigned && !channel.isSigned) bits = std::max(bits, channel.bits + 1);
    }
    if (bits > kMostBits) {
      throw UnsupportedError(fmt::format(
          "JPEG 2000: samples of {} bits are not decoded, at most {}", bits, kMostBits));
    }
    layout.type = NumberTypeFor(bits, isSigned);
    layout.bits = isSigned ? static_cast<int>(kByte * BytesOf(layout.type)) : bits;
    TakeProfile();
  }

  void TakeProfile() {
    if (!file_.profile) return;
    const ColorModel model = plan_.layout.model;
    ProfileSpace space = ProfileSpace::rgb;
    if (model == ColorModel::gray) space = ProfileSpace::gray;
    if (model == ColorModel::cmyk) space = ProfileSpace::cmyk;
    if (!ProfileFits(file_.profile, space)) {
      return Warn("the color profile is invalid or of another kind and is ignored");
    }
    plan_.layout.profile = file_.profile;
  }

  static NumberType NumberTypeFor(int bits, bool isSigned) {
    if (bits <= kByte) return isSigned ? NumberType::int8 : NumberType::uint8;
    if (bits <= kWord) return isSigned ? NumberType::int16 : NumberType::uint16;
    return isSigned ? NumberType::int32 : NumberType::uint32;
  }

  void ChooseFormat() {
    PixelLayout& layout = plan_.layout;
    if (IsIndexed()) return ChooseIndexed();
    const bool isPlain = layout.bits == 1 || layout.bits == kByte / 2 || layout.bits == kByte;
    if (layout.type != NumberType::uint8 || !isPlain || layout.extraBands > 0) return;
    if (layout.model == ColorModel::gray && layout.bands == 1) {
      plan_.format = IndexedFormat(layout.bits);
    }
    if (layout.model != ColorModel::rgb || layout.bits != kByte) return;
    if (layout.alpha == AlphaKind::none) plan_.format = pf24bit;
    if (layout.alpha == AlphaKind::straight) plan_.format = pf32bit;
  }

  static TPixelFormat IndexedFormat(int bits) {
    if (bits == 1) return pf1bit;
    return bits <= kByte / 2 ? pf4bit : pf8bit;
  }

  /// Colors of 8 bits, all from one component.
  bool IsIndexed() const {
    constexpr size_t kMostEntries = 256;
    const auto isColumn = [](const Jp2Channel& channel) {
      return channel.column && channel.bits == kByte && !channel.isSigned;
    };
    const Jp2Component& index = file_.codestream.components.front();
    return file_.codestream.components.size() == 1 && index.bits <= kByte && !index.isSigned &&
           file_.palette.entries <= kMostEntries && !plan_.isYcc &&
           plan_.layout.model == ColorModel::rgb && plan_.channels.size() == kTrueColors &&
           std::all_of(plan_.channels.begin(), plan_.channels.end(), isColumn);
  }

  void ChooseIndexed() {
    PixelLayout& layout = plan_.layout;
    std::vector<tagPALETTEENTRY> entries;
    for (size_t i = 0; i < file_.palette.entries; ++i) {
      const auto color = [&](size_t channel) {
        return static_cast<uint8_t>(file_.palette.Number(i, *plan_.channels[channel].column));
      };
      entries.push_back({color(0), color(1), color(2), 0});
    }
    const int bits = file_.codestream.components.front().bits;
    plan_.format = IndexedFormat(bits);
    layout.type = NumberType::uint8;
    layout.bits = StoredBitsPerPixel(*plan_.format);
    layout.bands = 1;
    layout.model = ColorModel::palette;
    layout.palette = HPALETTE(std::span<const tagPALETTEENTRY>(entries).first(
        std::min(entries.size(), size_t{1} << layout.bits)));
    plan_.channels = {{0, {}, bits, false}};
  }

  const Jp2File& file_;
  Jp2Plan plan_;
};

}  // namespace

Jp2Plan PlanOf(const Jp2File& file) {
  return Planner(file).Make();
}

}  // namespace rasterkit::detail
