#include <algorithm>
#include <array>
#include <cmath>

#include <rasterkit/dialogs/saving/result_words.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit::detail {
namespace {

/// The luminance table of the JPEG standard (annex K.1) for quality 50.
constexpr std::array<int, 64> kUsualTable = {
    16, 11, 10, 16, 24,  40,  51,  61,  12, 12, 14, 19, 26,  58,  60,  55,  //
    14, 13, 16, 24, 40,  57,  69,  56,  14, 17, 22, 29, 51,  87,  80,  62,  //
    18, 22, 37, 56, 68,  109, 103, 77,  24, 35, 55, 64, 81,  104, 113, 92,  //
    49, 64, 78, 87, 103, 121, 120, 101, 72, 92, 95, 98, 112, 100, 103, 99};

std::string Filled(std::string_view key, std::initializer_list<std::string> values) {
  return FormatText(ResourceString(key), {values.begin(), values.size()});
}

/// With one decimal at most, and the decimal mark of the texts.
std::string Number(double value) {
  const auto tenths = static_cast<int64_t>(std::llround(value * 10));
  std::string text = std::to_string(tenths / 10);
  if (tenths % 10 != 0) text += DecimalMark() + std::to_string(tenths % 10);
  return text;
}

int ScaledEntry(int entry, int quality) {
  const int scale = quality < 50 ? 5000 / quality : 200 - 2 * quality;
  return std::clamp((entry * scale + 50) / 100, 1, 255);
}

int64_t Distance(const std::array<uint16_t, 64>& table, int quality) {
  int64_t sum = 0;
  for (size_t i = 0; i < table.size(); ++i) {
    sum += std::abs(int64_t{table[i]} - ScaledEntry(kUsualTable[i], quality));
  }
  return sum;
}

std::string_view WordOf(LossKind kind) {
  switch (kind) {
    case LossKind::bits:
      return rsLossBits;
    case LossKind::colors:
      return rsLossColors;
    case LossKind::chroma:
      return rsLossChroma;
    case LossKind::alpha:
      return rsLossAlpha;
    case LossKind::transparentColor:
      return rsLossTransparentColor;
    case LossKind::noData:
      return rsLossNoData;
    case LossKind::damage:
      return rsLossDamage;
    case LossKind::pages:
      return rsLossPages;
    case LossKind::frames:
      return rsLossFrames;
    case LossKind::hiddenPictures:
      return rsLossHiddenPictures;
    case LossKind::position:
      return rsLossPosition;
    case LossKind::controlPoints:
      return rsLossControlPoints;
    case LossKind::coordinateSystem:
      return rsLossCoordinateSystem;
    case LossKind::sideFile:
      return rsLossSideFile;
    case LossKind::exif:
      return rsLossExif;
    case LossKind::gps:
      return rsLossGps;
    case LossKind::xmp:
      return rsLossXmp;
    case LossKind::iptc:
      return rsLossIptc;
    case LossKind::comment:
      return rsLossComment;
    case LossKind::text:
      return rsLossText;
    case LossKind::profile:
      return rsLossProfile;
    case LossKind::resolution:
      return rsLossResolution;
    case LossKind::thumbnail:
      return rsLossThumbnail;
    case LossKind::makerNote:
      return rsLossMakerNote;
    case LossKind::otherBlock:
      return rsLossOtherBlock;
    case LossKind::tiling:
      return rsLossTiling;
    case LossKind::records:
      break;
  }
  return rsLossRecords;
}

bool IsOfPixels(LossKind kind) {
  switch (kind) {
    case LossKind::bits:
    case LossKind::colors:
    case LossKind::chroma:
    case LossKind::alpha:
    case LossKind::transparentColor:
    case LossKind::damage:
      return true;
    default:
      return false;
  }
}

/// JPEG files, and TIFF files whose pixels are coded as JPEG.
bool IsLossyForm(const Report& report) {
  if (report.type == PictureType::jpeg) return true;
  constexpr int kOldJpeg = 6, kJpeg = 7;
  const auto* tiff = std::get_if<TiffForm>(&report.form);
  return tiff != nullptr && (tiff->compression == kOldJpeg || tiff->compression == kJpeg);
}

bool HasOtherDepth(const Picture& picture, const RecipeSave& save) {
  return save.bits && *save.bits < picture.Layout().BitsPerPixel();
}

std::string WhyAgain(const Picture& picture, const RecipeSave& save, const Report& report) {
  if (!report.moveNote.empty()) {
    const bool isEdge = report.moveNote.find("edge") != std::string::npos;
    return ResourceString(isEdge ? rsSavingWhyEdges : rsSavingWhyBlocks);
  }
  if (picture.SourceType() != report.type) return ResourceString(rsSavingWhyKind);
  if (save.quality || save.chromaX > 0 || save.chromaY > 0) {
    return ResourceString(rsSavingWhySettings);
  }
  if (save.lossless == Lossless::off) return ResourceString(rsSavingWhyWished);
  return ResourceString(rsSavingWhySteps);
}

}  // namespace

std::string SizeWords(uint64_t bytes) {
  constexpr double kKib = 1024;
  const auto size = static_cast<double>(bytes);
  if (size < kKib) return Filled(rsSavingBytes, {std::to_string(bytes)});
  if (size < kKib * kKib) return Filled(rsSavingKib, {Number(size / kKib)});
  if (size < kKib * kKib * kKib) return Filled(rsSavingMib, {Number(size / kKib / kKib)});
  return Filled(rsSavingGib, {Number(size / kKib / kKib / kKib)});
}

std::string PictureWords(const Picture& picture) {
  const auto bits = static_cast<uint64_t>(picture.Layout().BitsPerPixel());
  const auto width = static_cast<uint64_t>(picture.Width());
  const auto height = static_cast<uint64_t>(picture.Height());
  const uint64_t bytes = (width * bits + 7) / 8 * height;
  std::string words = Filled(rsSavingFacts, {std::to_string(width), std::to_string(height),
                                             std::to_string(bits), SizeWords(bytes)});
  const Resolution& resolution = picture.GetMetadata().resolution;
  if (!resolution.IsKnown()) return words + ", " + ResourceString(rsSavingNoDpi);
  const std::string x = Number(resolution.x), y = Number(resolution.y);
  return words + ", " + (x == y ? Filled(rsSavingDpi, {x}) : Filled(rsSavingDpiXY, {x, y}));
}

bool KeepsPixels(const Picture& picture, const RecipeSave& save, const Report& report) {
  if (report.isCopied || report.isMoved) return true;
  const bool losesPixels = std::any_of(report.losses.begin(), report.losses.end(),
                                       [](const Loss& loss) { return IsOfPixels(loss.kind); });
  return !IsLossyForm(report) && !losesPixels && !HasOtherDepth(picture, save);
}

std::string LosslessWords(const Picture& picture, const RecipeSave& save, const Report& report) {
  if (report.isCopied) return ResourceString(rsSavingCopied);
  if (report.isMoved) {
    return ResourceString(report.moveNote.empty() ? rsSavingMoved : rsSavingMovedTrimmed);
  }
  if (IsLossyForm(report)) return Filled(rsSavingAgain, {WhyAgain(picture, save, report)});
  if (KeepsPixels(picture, save, report)) return ResourceString(rsSavingKeepsPixels);
  if (HasOtherDepth(picture, save)) {
    return Filled(rsSavingChangesPixels, {ResourceString(rsSavingWhyDepth)});
  }
  return Filled(rsSavingChangesPixels, {ResourceString(rsSavingWhyPixels)});
}

std::string LossWords(const Report& report) {
  std::string words;
  std::vector<LossKind> said;
  for (const Loss& loss : report.losses) {
    if (std::find(said.begin(), said.end(), loss.kind) != said.end()) continue;
    said.push_back(loss.kind);
    if (!words.empty()) words += ", ";
    words += ResourceString(WordOf(loss.kind));
  }
  return words.empty() ? ResourceString(rsSavingNoLoss) : Filled(rsSavingLost, {words});
}

std::string LossDetails(const Report& report) {
  std::string details;
  for (const Loss& loss : report.losses) details += loss.what + ": " + loss.why + "\n";
  for (const std::string& note : report.notes) details += note + "\n";
  for (const std::string& file : report.sideFiles) details += file + "\n";
  for (const std::string& warning : report.warnings) details += warning + "\n";
  if (!details.empty()) details.pop_back();
  return details;
}

std::optional<int> QualityOf(const Form& form) {
  const auto* jpeg = std::get_if<JpegForm>(&form);
  if (jpeg == nullptr || jpeg->components.empty()) return std::nullopt;
  const auto& table = jpeg->tables[static_cast<size_t>(jpeg->components[0].table) % 4];
  if (!table) return std::nullopt;
  int best = 1;
  for (int quality = 2; quality <= 100; ++quality) {
    if (Distance(*table, quality) < Distance(*table, best)) best = quality;
  }
  return best;
}

std::string SamplingOf(const Form& form) {
  const auto* jpeg = std::get_if<JpegForm>(&form);
  if (jpeg == nullptr || jpeg->components.size() < 3) return {};
  const JpegForm::Component &luma = jpeg->components[0], &chroma = jpeg->components[1];
  if (chroma.h != 1 || chroma.v != 1) {
    return luma.h == chroma.h && luma.v == chroma.v ? "4:4:4" : "?";
  }
  if (luma.h == 1 && luma.v == 1) return "4:4:4";
  if (luma.h == 2 && luma.v == 1) return "4:2:2";
  if (luma.h == 2 && luma.v == 2) return "4:2:0";
  if (luma.h == 1 && luma.v == 2) return "4:4:0";
  if (luma.h == 4 && luma.v == 1) return "4:1:1";
  return std::to_string(luma.h) + " × " + std::to_string(luma.v);
}

}  // namespace rasterkit::detail
