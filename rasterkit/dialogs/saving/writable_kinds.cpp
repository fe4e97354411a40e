#include <algorithm>
#include <array>

#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/dialogs/saving/target_faults.h>
#include <rasterkit/dialogs/saving/writable_kinds.h>
#include <rasterkit/runtime/text.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit::detail {
namespace {

constexpr int kMostTries = 999;

std::string WithoutSpaces(std::string text) {
  text.erase(std::min(text.find_last_not_of(' ') + 1, text.size()));
  return text;
}

bool HasPosition(const Picture& picture) {
  return picture.GetPlacement().affine.has_value();
}

bool IsDeep(const Picture& picture) {
  return picture.Layout().bits > 8;
}

std::string_view NameKey(PictureType type) {
  switch (type) {
    case PictureType::bmp:
      return rsSavingKindBmp;
    case PictureType::jpeg:
      return rsSavingKindJpeg;
    case PictureType::png:
      return rsSavingKindPng;
    case PictureType::tiff:
      return rsSavingKindTiff;
    default:
      return rsSavingKindOther;
  }
}

}  // namespace

bool IsWritable(PictureType type) {
  const Codec* codec = FindCodec(type);
  return codec != nullptr && codec->write != nullptr;
}

std::vector<PictureType> WritableTypes(PictureType first) {
  std::vector<PictureType> types;
  if (IsWritable(first)) types.push_back(first);
  for (const PictureType type :
       {PictureType::jpeg, PictureType::png, PictureType::tiff, PictureType::bmp}) {
    if (type != first && IsWritable(type)) types.push_back(type);
  }
  for (const Codec& codec : CodecTable()) {
    const bool isListed = std::find(types.begin(), types.end(), codec.type) != types.end();
    if (!isListed && IsWritable(codec.type)) types.push_back(codec.type);
  }
  return types;
}

std::string EndingOf(const std::string& file) {
  const std::string name = file.substr(file.find_last_of('/') + 1);
  const size_t dot = name.find_last_of('.');
  if (dot == std::string::npos || name.find_first_not_of('.') > dot) return {};
  return WithoutSpaces(name.substr(dot));
}

PictureType TypeOfName(const std::string& file) {
  const Codec* codec = FindCodecOfExtension(EndingOf(file));
  return codec == nullptr ? PictureType::unknown : codec->type;
}

std::string NameForType(const std::string& file, PictureType type, const KnownEndings& endings) {
  const PictureType named = TypeOfName(file);
  if (named == type) return file;
  const auto known = endings.find(type);
  const Codec* codec = FindCodec(type);
  std::string ending;
  if (known != endings.end()) {
    ending = known->second;
  } else if (codec != nullptr) {
    ending = ".";
    ending += codec->extensions[0];
  }
  const size_t kept = named == PictureType::unknown ? file.size() : file.find_last_of('.');
  return file.substr(0, kept) + ending;
}

std::string ShortTypeName(PictureType type) {
  return UpperCase(PictureTypeName(type));
}

std::string PatternsOf(PictureType type) {
  const Codec* codec = FindCodec(type);
  std::string patterns;
  if (codec == nullptr) return patterns;
  for (const std::string_view extension : codec->extensions) {
    if (extension.empty()) continue;
    patterns += patterns.empty() ? "*." : " *.";
    patterns += extension;
  }
  return patterns;
}

std::string LongTypeName(PictureType type) {
  const std::string_view key = NameKey(type);
  const std::string values[] = {ShortTypeName(type), PatternsOf(type)};
  const std::span<const std::string> all = values;
  return FormatText(ResourceString(key), key == rsSavingKindOther ? all : all.subspan(1));
}

std::string PatternsToOpen() {
  std::string patterns;
  for (const Codec& codec : CodecTable()) {
    if (!patterns.empty()) patterns += ' ';
    patterns += PatternsOf(codec.type);
  }
  return patterns;
}

SuggestedType SuggestType(const Picture& picture, const std::string& file) {
  const PictureType named = TypeOfName(file), source = picture.SourceType();
  if (IsWritable(named)) return {named, SuggestionReason::asIs, PictureType::unknown};
  const PictureType wanted = named == PictureType::unknown ? source : named;
  if (IsWritable(wanted)) return {wanted, SuggestionReason::asIs, PictureType::unknown};
  SuggestedType suggested{PictureType::png, SuggestionReason::lossless, wanted};
  if (HasPosition(picture)) suggested = {PictureType::tiff, SuggestionReason::position, wanted};
  if (IsDeep(picture)) suggested = {PictureType::tiff, SuggestionReason::depth, wanted};
  // Pixels that were drawn have no kind to speak of.
  if (wanted == PictureType::unknown) suggested.reason = SuggestionReason::asIs;
  return suggested;
}

std::string FreeName(const std::string& file) {
  if (!IsExisting(file)) return file;
  const std::string ending = EndingOf(file);
  const std::string stem = file.substr(0, ending.empty() ? file.size() : file.find_last_of('.'));
  for (int number = 2; number <= kMostTries; ++number) {
    std::string name = stem + "-" + std::to_string(number) + ending;
    if (!IsExisting(name)) return name;
  }
  return {};
}

}  // namespace rasterkit::detail
