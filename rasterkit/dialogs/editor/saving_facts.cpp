#include <algorithm>
#include <array>

#include <rasterkit/dialogs/editor/saving_facts.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

constexpr int kJpegInTiff = 7;

/// Whether the compression of such a file changes pixels.
bool IsLossy(const Report& plan) {
  if (plan.type == PictureType::jpeg) return true;
  const auto* tiff = std::get_if<TiffForm>(&plan.form);
  return tiff != nullptr && tiff->compression == kJpegInTiff;
}

bool LosesPixels(const Report& plan) {
  return std::any_of(plan.losses.begin(), plan.losses.end(),
                     [](const Loss& loss) { return loss.kind <= LossKind::damage; });
}

/// "the pixels are compressed again: REASON"
std::string ReasonIn(const std::string& note) {
  const size_t colon = note.find(": ");
  return colon == std::string::npos ? note : note.substr(colon + 2);
}

}  // namespace

std::string SavingText(const Report& plan) {
  if (plan.isMoved) {
    const std::string note = plan.moveNote.empty() ? "" : "; " + plan.moveNote;
    return ResourceString(rsSavingMoved) + note;
  }
  if (plan.isCopied) return ResourceString(rsSavesCopy);
  if (IsLossy(plan)) {
    if (plan.moveNote.empty()) return ResourceString(rsSavesAnew);
    return FormatText(ResourceString(rsSavesAnewBecause), std::array{ReasonIn(plan.moveNote)});
  }
  return LosesPixels(plan) ? "" : ResourceString(rsSavesExact);
}

std::vector<std::string> LossTexts(const Report& plan) {
  std::vector<std::string> texts;
  for (const Loss& loss : plan.losses) {
    texts.push_back(loss.why.empty()
                        ? loss.what
                        : FormatText(ResourceString(rsLoss), std::array{loss.what, loss.why}));
  }
  return texts;
}

std::string MebibyteText(uint64_t bytes) {
  constexpr uint64_t kTenth = (uint64_t{1} << 20) / 10;
  const uint64_t tenths = std::max<uint64_t>(bytes == 0 ? 0 : 1, (bytes + kTenth / 2) / kTenth);
  return std::to_string(tenths / 10) + DecimalMark() + std::to_string(tenths % 10);
}

}  // namespace rasterkit
