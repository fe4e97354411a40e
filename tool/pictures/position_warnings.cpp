#include "tool/pictures/position_warnings.h"

#include <algorithm>
#include <filesystem>
#include <set>

#include <fmt/format.h>

#include <rasterkit/metadata/edit/tag_names.h>
#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/exif_places.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/stream.h>
#include <rasterkit/runtime/text.h>

#include "tool/command/standard_input.h"
#include "tool/pictures/change_pages.h"

namespace rasterkit::tool {
namespace {

bool NamesCoordinates(const std::string& text) {
  constexpr std::string_view kWords[] = {"gps",  "latitude", "longitude", "\"lat\"", "lat:",
                                         "lat=", "\"lon\"",  "\"lng\"",   "geotag",  "geopoint"};
  const std::string lower = LowerCase(text);
  return std::any_of(std::begin(kWords), std::end(kWords),
                     [&](std::string_view word) { return lower.find(word) != std::string::npos; });
}

/// The beginning of a file; empty if there is none.
std::string StartOf(const std::string& file) {
  constexpr int64_t kMostBytes = 4'000'000;
  try {
    if (!std::filesystem::is_regular_file(file)) return {};
    TFileStream stream(file);
    std::vector<uint8_t> bytes(static_cast<size_t>(std::min<int64_t>(stream.Size(), kMostBytes)));
    stream.Read(std::span(bytes));
    return {bytes.begin(), bytes.end()};
  } catch (const Error&) {
    return {};
  } catch (const std::filesystem::filesystem_error&) {
    return {};
  }
}

}  // namespace

bool StripsPosition(const PictureOptions& options) {
  const MetadataEdit edit = EditOfOthers(options);
  return edit.stripGps || std::any_of(edit.remove.begin(), edit.remove.end(), [](const auto& name) {
           return FindTagGroup(name) == TagGroup::gps;
         });
}

std::vector<std::string> WarningsOfMetadata(const Metadata& metadata) {
  std::vector<std::string> warnings;
  std::string userComment;
  if (!metadata.exif.empty()) {
    const ExifBlock exif(metadata.exif);
    if (exif.Has(ExifDirectoryId::exif, exif::kMakerNote)) {
      warnings.emplace_back(
          "the maker note stays; some cameras write positions there (--strip-maker-note removes "
          "it)");
    }
    constexpr uint16_t kUserComment = 37510;
    if (const auto value = exif.Get(ExifDirectoryId::exif, kUserComment)) {
      // Every second byte of such a comment can be a zero.
      std::copy_if(value->bytes.begin(), value->bytes.end(), std::back_inserter(userComment),
                   [](uint8_t byte) { return byte != 0; });
    }
  }
  if (NamesCoordinates(userComment)) {
    warnings.emplace_back(
        "the comment of the EXIF block seems to state a position (exif --remove UserComment "
        "removes it)");
  }
  const bool isInComment =
      std::any_of(metadata.comments.begin(), metadata.comments.end(), NamesCoordinates) ||
      std::any_of(metadata.texts.begin(), metadata.texts.end(),
                  [](const PictureText& text) { return NamesCoordinates(text.text); });
  if (isInComment) {
    warnings.emplace_back(
        "a comment seems to state a position (exif --remove Comment removes all comments)");
  }
  return warnings;
}

std::vector<std::string> WarningsOfOtherFiles(const Job& job) {
  std::vector<std::string> warnings;
  if (IsStandardStream(job.output)) return warnings;
  const std::string stem = std::filesystem::path(job.output).replace_extension().string();
  const std::set<std::string> names = {job.output + ".aux.xml", job.output + ".xmp", stem + ".xmp",
                                       stem + ".XMP"};
  for (const std::string& name : names) {
    if (NamesCoordinates(StartOf(name))) {
      warnings.push_back(fmt::format("{}: this file beside the output states a position", name));
    }
  }
  if (job.saving.keepsBackup) {
    warnings.emplace_back("the backup of the old file keeps the position (--no-backup makes none)");
  }
  return warnings;
}

}  // namespace rasterkit::tool
