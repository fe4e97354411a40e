#include <algorithm>
#include <cstring>
#include <utility>

#include <fmt/format.h>

#include <rasterkit/codecs/tiff/rows/tiff_picture.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {

namespace {

/// Most messages for the caller; every damaged block can have its own.
constexpr size_t kMostNotes = 8;

/// Notes of the decoder about blocks of which every pixel is there.
bool IsHarmless(const std::string& note) {
  return note.find("not terminated with EOI code") != std::string::npos;
}

}  // namespace

void FillMissingPixels(const TiffTarget& target, size_t width, uint8_t* row) {
  const size_t pixelBytes = target.blankBytes > 0
                                ? target.blankBytes
                                : static_cast<size_t>(std::max(1, target.bitsPerPixel / 8));
  const size_t bytes = target.BytesOf(width);
  const auto& blank = target.blank;
  const bool isEven = std::all_of(blank.begin(), blank.begin() + pixelBytes,
                                  [&](uint8_t byte) { return byte == blank[0]; });
  if (isEven) {
    std::memset(row, blank[0], bytes);
    return;
  }
  for (size_t at = 0; at < bytes; at += pixelBytes) {
    std::memcpy(row + at, blank.data(), pixelBytes);
  }
}

TiffPart TiffPart::Common(const TiffPart& other) const {
  TiffPart common;
  common.left = std::max(left, other.left);
  common.top = std::max(top, other.top);
  common.width = std::min(Right(), other.Right()) - common.left;
  common.height = std::min(Bottom(), other.Bottom()) - common.top;
  return common;
}

TiffPart PlaceOfBlock(const TiffLayout& layout, uint32_t position) {
  const TiffBlockGrid& grid = layout.grid;
  TiffPart place;
  place.left = position % grid.across * grid.width;
  place.top = position / grid.across * grid.height;
  place.width = std::min(grid.width, layout.width - place.left);
  place.height = std::min(grid.height, layout.height - place.top);
  return place;
}

void TiffFaults::Add(uint32_t position, uint32_t missingRows, std::vector<std::string> notes) {
  if (missingRows == 0 && notes.empty()) return;
  const std::lock_guard lock(mutex_);
  faults_.emplace(position, Fault{missingRows, std::move(notes)});
}

TiffOutcome TiffFaults::Outcome(const TiffLayout& layout, const std::vector<bool>& wasRead) const {
  const std::lock_guard lock(mutex_);
  TiffOutcome outcome;
  outcome.blocks = static_cast<uint32_t>(std::count(wasRead.begin(), wasRead.end(), true));
  outcome.soundRows = layout.height;
  uint32_t emptyBlocks = 0;
  for (const auto& [position, fault] : faults_) {
    for (const std::string& note : fault.notes) {
      if (outcome.notes.size() < kMostNotes &&
          std::find(outcome.notes.begin(), outcome.notes.end(), note) == outcome.notes.end()) {
        outcome.notes.push_back(note);
      }
    }
    if (fault.missingRows == 0) continue;
    const TiffPart place = PlaceOfBlock(layout, position);
    outcome.damagedBlocks++;
    outcome.soundRows = std::min(outcome.soundRows, place.Bottom() - fault.missingRows);
    if (fault.missingRows == place.height) emptyBlocks++;
  }
  outcome.hasRows = outcome.blocks == 0 || emptyBlocks < outcome.blocks;
  if (outcome.blocks == layout.grid.PerPlane()) return outcome;
  // Rows that were not looked at may be sound or not.
  const uint32_t firstUnsound = std::exchange(outcome.soundRows, 0);
  const uint32_t across = layout.grid.across;
  for (uint32_t first = 0; first < wasRead.size(); first += across) {
    const auto row = wasRead.begin() + first;
    if (std::find(row, row + across, true) == row + across) continue;
    const TiffPart place = PlaceOfBlock(layout, first);
    outcome.partRows += place.height;
    outcome.soundRows += std::clamp(firstUnsound, place.top, place.Bottom()) - place.top;
  }
  return outcome;
}

void ReportOutcome(const TiffOutcome& outcome, uint32_t height, CodecReport& report) {
  if (!outcome.hasRows) {
    throw FormatError(
        "TIFF: " + (outcome.notes.empty() ? "nothing of the picture is there" : outcome.notes[0]));
  }
  const auto warn = [&](const std::string& text) { report.AddDamage("TIFF: " + text); };
  if (outcome.damagedBlocks > 0 && outcome.partRows > 0) {
    warn(outcome.soundRows > 0
             ? fmt::format("the data are damaged or end early, {} of the {} rows that were read "
                           "are complete",
                           outcome.soundRows, outcome.partRows)
             : fmt::format("{} of the {} strips or tiles that were read are damaged",
                           outcome.damagedBlocks, outcome.blocks));
  } else if (outcome.damagedBlocks > 0) {
    warn(outcome.soundRows > 0
             ? fmt::format("the data are damaged or end early, {} of {} rows are complete",
                           outcome.soundRows, height)
             : fmt::format("{} of {} strips or tiles are damaged", outcome.damagedBlocks,
                           outcome.blocks));
  }
  for (const std::string& note : outcome.notes) {
    if (outcome.damagedBlocks == 0 && IsHarmless(note)) {
      report.warnings.push_back("TIFF: " + note);
    } else {
      warn(note);
    }
  }
}

}  // namespace rasterkit::detail
