#include <algorithm>
#include <array>
#include <vector>

#include <rasterkit/metadata/foreign_blocks.h>
#include <rasterkit/metadata/png/png_chunks.h>

namespace rasterkit::detail {
namespace {

struct HelpingChunk {
  uint32_t kind;
  const char* what;
};

constexpr std::array kHelping = {HelpingChunk{PngKind("bKGD"), "the background color"},
                                 HelpingChunk{PngKind("tIME"), "the time of the last change"},
                                 HelpingChunk{PngKind("hIST"), "the histogram of the palette"},
                                 HelpingChunk{PngKind("sBIT"), "the number of significant bits"}};

/// The four letters; a damaged file can have any bytes there.
std::string LettersOf(uint32_t kind) {
  std::string letters;
  for (int shift = 24; shift >= 0; shift -= 8) {
    const char letter = static_cast<char>(kind >> shift);
    letters += letter > ' ' && letter <= '~' ? letter : '?';
  }
  return letters;
}

/// "PNG chunk abCd", "PNG chunks abCd, teSt"; a file can have thousands, so not all are named.
std::string ListOf(const std::string& kind, std::vector<std::string> names) {
  constexpr size_t kMostNames = 12;
  names.erase(std::unique(names.begin(), names.end()), names.end());
  std::string list = kind + (names.size() == 1 ? " " : "s ");
  for (size_t i = 0; i < std::min(names.size(), kMostNames); ++i) {
    if (i > 0) list += ", ";
    list += names[i];
  }
  if (names.size() > kMostNames) {
    list += " and " + std::to_string(names.size() - kMostNames) + " more";
  }
  return list;
}

std::string NoPlaceIn(const std::string& format) {
  return format + " has no place for it";
}

}  // namespace

void LosePngChunks(const Metadata& metadata, const std::string& format, Changes& changes) {
  std::vector<std::string> names;
  for (const OtherBlock& chunk : metadata.pngChunks) {
    if (StatesPlainSrgb(chunk)) continue;
    const auto* helping =
        std::find_if(kHelping.begin(), kHelping.end(),
                     [&](const HelpingChunk& row) { return row.kind == chunk.kind; });
    if (helping == kHelping.end()) {
      names.push_back(LettersOf(chunk.kind));
    } else {
      changes.Note(std::string(helping->what) + " (" + LettersOf(chunk.kind) +
                   ") is not written: " + NoPlaceIn(format));
    }
  }
  if (names.empty()) return;
  std::sort(names.begin(), names.end());
  changes.Lose(LossKind::otherBlock, ListOf("PNG chunk", std::move(names)), NoPlaceIn(format));
}

void LoseTiffTags(const Metadata& metadata, const std::string& format, Changes& changes) {
  if (metadata.tiffTags.empty()) return;
  std::vector<uint16_t> numbers;
  for (const TagValue& tag : metadata.tiffTags) numbers.push_back(tag.tag);
  std::sort(numbers.begin(), numbers.end());
  std::vector<std::string> names;
  for (const uint16_t number : numbers) names.push_back(std::to_string(number));
  changes.Lose(LossKind::otherBlock, ListOf("TIFF tag", std::move(names)), NoPlaceIn(format));
}

}  // namespace rasterkit::detail
