#include <algorithm>
#include <array>

#include <rasterkit/dialogs/saving/result_words.h>
#include <rasterkit/dialogs/saving/saving_model.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

/// A value of a setting with its text; nothing stands for that of the source.
template <typename T>
struct Setting {
  T value;
  std::string_view text;
};

constexpr std::array<Setting<int>, 5> kDepths = {{{32, rsSavingDepth32},
                                                  {24, rsSavingDepth24},
                                                  {8, rsSavingDepth8},
                                                  {4, rsSavingDepth4},
                                                  {1, rsSavingDepth1}}};

struct Sampling {
  int x, y;
  std::string_view text;
};
constexpr std::array<Sampling, 3> kSamplings = {
    {{1, 1, rsSaving444}, {2, 1, rsSaving422}, {2, 2, rsSaving420}}};

constexpr std::array<Setting<Lossless>, 3> kMoves = {{{Lossless::exact, rsSavingMoveExact},
                                                      {Lossless::trim, rsSavingMoveTrim},
                                                      {Lossless::off, rsSavingMoveOff}}};

constexpr std::array<Setting<TiffCompression>, 5> kCompressions = {
    {{TiffCompression::none, rsSavingCompressionNone},
     {TiffCompression::lzw, rsSavingCompressionLzw},
     {TiffCompression::deflate, rsSavingCompressionDeflate},
     {TiffCompression::packBits, rsSavingCompressionPackBits},
     {TiffCompression::group4, rsSavingCompressionGroup4}}};

constexpr std::array<Setting<RecipeSave::Keep>, 3> kKeeps = {
    {{RecipeSave::Keep::all, rsSavingKeepAll},
     {RecipeSave::Keep::withoutGps, rsSavingKeepWithoutGps},
     {RecipeSave::Keep::nothing, rsSavingKeepNothing}}};

constexpr int kGreatestLevel = 12;
constexpr int kUsualQuality = 90;

std::string LevelText(int level) {
  switch (level) {
    case 0:
      return ResourceString(rsSavingLevelNone);
    case 1:
      return ResourceString(rsSavingLevelQuick);
    case kGreatestLevel:
      return ResourceString(rsSavingLevelSmallest);
    default:
      return std::to_string(level);
  }
}

template <typename Table, typename Value>
int PositionIn(const Table& table, const Value& value) {
  const auto at = std::find_if(table.begin(), table.end(),
                               [&](const auto& setting) { return setting.value == value; });
  return at == table.end() ? 0 : static_cast<int>(at - table.begin());
}

template <typename Table>
bool IsIn(const Table& table, int position) {
  return position >= 0 && static_cast<size_t>(position) < table.size();
}

}  // namespace

SavingList SavingModel::Types() const {
  SavingList list;
  for (const PictureType type : types_) {
    if (type == type_) list.position = static_cast<int>(list.texts.size());
    list.texts.push_back(detail::LongTypeName(type));
  }
  return list;
}

/// JPEG files have color or gray, and only a BMP file has 32 bits without opacity.
bool SavingModel::IsDepthOffered(int bits) const {
  constexpr int kColor = 24, kWithAlpha = 32;
  if (HasQuality()) return bits == kColor;
  const bool hasAlpha = picture_.Layout().alpha != AlphaKind::none;
  return bits != kWithAlpha || hasAlpha || type_ == PictureType::bmp;
}

SavingList SavingModel::Depths() const {
  const std::string bits = std::to_string(picture_.Layout().BitsPerPixel());
  SavingList list{{FormatText(ResourceString(rsSavingDepthAsIs), {&bits, 1})}, 0};
  for (const auto& [value, text] : kDepths) {
    if (!IsDepthOffered(value)) continue;
    if (save_.bits == value) list.position = static_cast<int>(list.texts.size());
    list.texts.push_back(ResourceString(text));
  }
  if (save_.bits && list.position == 0 && !HasQuality()) {
    // A depth that a recipe states.
    const std::string stated = std::to_string(*save_.bits);
    list.position = static_cast<int>(list.texts.size());
    list.texts.push_back(FormatText(ResourceString(rsSavingDepthOther), {&stated, 1}));
  }
  return list;
}

void SavingModel::ChooseDepth(int position) {
  if (position == Depths().position) return;
  std::optional<int> bits;
  int at = 0;
  for (const auto& [value, text] : kDepths) {
    if (!IsDepthOffered(value)) continue;
    if (++at == position) bits = value;
  }
  if (bits == save_.bits) return;
  save_.bits = bits;
  Change();
}

bool SavingModel::HasSampling() const {
  const ColorModel model = picture_.Layout().model;
  const bool isGray = model == ColorModel::gray || model == ColorModel::grayWhiteIsZero;
  return HasQuality() && (!isGray || save_.bits == 24);
}

int SavingModel::Quality() const {
  return save_.quality.value_or(sourceQuality_.value_or(kUsualQuality));
}

void SavingModel::UseOwnQuality(bool isOwn) {
  if (isOwn == HasOwnQuality()) return;
  save_.quality = isOwn ? std::optional(Quality()) : std::nullopt;
  Change();
}

void SavingModel::SetQuality(int quality) {
  const int inRange = std::clamp(quality, 1, 100);
  if (HasOwnQuality() ? save_.quality == inRange : Quality() == inRange) return;
  save_.quality = inRange;
  Change();
}

SavingList SavingModel::Samplings() const {
  SavingList list;
  list.texts.push_back(sourceSampling_.empty() ? ResourceString(rsSavingSamplingUsual)
                                               : FormatText(ResourceString(rsSavingSamplingSource),
                                                            {&sourceSampling_, 1}));
  for (const auto& [x, y, text] : kSamplings) {
    if (save_.chromaX == x && save_.chromaY == y) {
      list.position = static_cast<int>(list.texts.size());
    }
    list.texts.push_back(ResourceString(text));
  }
  return list;
}

void SavingModel::ChooseSampling(int position) {
  const bool isOwn = IsIn(kSamplings, position - 1);
  const auto at = static_cast<size_t>(position - 1);
  const int x = isOwn ? kSamplings[at].x : 0, y = isOwn ? kSamplings[at].y : 0;
  if (x == save_.chromaX && y == save_.chromaY) return;
  save_.chromaX = x;
  save_.chromaY = y;
  Change();
}

bool SavingModel::HasMoves() const {
  const bool mayMove =
      planned_.report && (planned_.report->isMoved || !planned_.report->moveNote.empty());
  return HasQuality() && (mayMove || save_.lossless != Lossless::exact);
}

SavingList SavingModel::Moves() const {
  SavingList list{{}, PositionIn(kMoves, save_.lossless)};
  for (const auto& move : kMoves) list.texts.push_back(ResourceString(move.text));
  return list;
}

void SavingModel::ChooseMove(int position) {
  if (!IsIn(kMoves, position)) return;
  const Lossless lossless = kMoves[static_cast<size_t>(position)].value;
  if (lossless == save_.lossless) return;
  save_.lossless = lossless;
  Change();
}

SavingList SavingModel::Compressions() const {
  const bool isTiff = picture_.SourceType() == PictureType::tiff;
  SavingList list;
  list.texts.push_back(
      ResourceString(isTiff ? rsSavingCompressionSource : rsSavingCompressionStandard));
  if (save_.compression && *save_.compression != TiffCompression::standard) {
    list.position = PositionIn(kCompressions, *save_.compression) + 1;
  }
  for (const auto& compression : kCompressions) {
    list.texts.push_back(ResourceString(compression.text));
  }
  return list;
}

void SavingModel::ChooseCompression(int position) {
  std::optional<TiffCompression> compression;
  if (IsIn(kCompressions, position - 1)) {
    compression = kCompressions[static_cast<size_t>(position - 1)].value;
  }
  if (compression == save_.compression) return;
  save_.compression = compression;
  Change();
}

SavingList SavingModel::Levels() const {
  SavingList list;
  list.texts.push_back(ResourceString(rsSavingLevelAuto));
  for (int level = 0; level <= kGreatestLevel; ++level) list.texts.push_back(LevelText(level));
  if (save_.pngLevel) list.position = std::clamp(*save_.pngLevel, 0, kGreatestLevel) + 1;
  return list;
}

void SavingModel::ChooseLevel(int position) {
  std::optional<int> level;
  if (position > 0 && position <= kGreatestLevel + 1) level = position - 1;
  if (level == save_.pngLevel) return;
  save_.pngLevel = level;
  Change();
}

SavingList SavingModel::Keeps() const {
  SavingList list{{}, PositionIn(kKeeps, save_.metadata)};
  for (const auto& keep : kKeeps) list.texts.push_back(ResourceString(keep.text));
  return list;
}

void SavingModel::ChooseKeep(int position) {
  if (!IsIn(kKeeps, position)) return;
  const RecipeSave::Keep keep = kKeeps[static_cast<size_t>(position)].value;
  if (keep == save_.metadata) return;
  save_.metadata = keep;
  Change();
}

std::string SavingModel::FactsText() const {
  return detail::PictureWords(picture_);
}

std::string SavingModel::LosslessText() const {
  return planned_.report ? detail::LosslessWords(picture_, Filtered(), *planned_.report) : "";
}

bool SavingModel::IsLossless() const {
  return planned_.report && detail::KeepsPixels(picture_, Filtered(), *planned_.report);
}

std::string SavingModel::LossText() const {
  return planned_.report ? detail::LossWords(*planned_.report) : "";
}

bool SavingModel::HasLosses() const {
  return planned_.report && !planned_.report->losses.empty();
}

std::string SavingModel::LossDetails() const {
  return planned_.report ? detail::LossDetails(*planned_.report) : "";
}

}  // namespace rasterkit
