#include <algorithm>
#include <array>
#include <optional>

#include <rasterkit/codecs/jpeg/lossless/scan_script.h>

namespace rasterkit::detail {
namespace {

using Script = std::vector<jpeg_scan_info>;

/// Lowest bit of a coefficient that was not written yet.
constexpr int kNone = -1;
constexpr int kMostShift = 10;

std::optional<int> IndexOf(const JpegForm& form, int id) {
  std::optional<int> found;
  for (size_t i = 0; i < form.components.size(); i++) {
    if (form.components[i].id != id) continue;
    // Two components of one name cannot be told apart.
    if (found) return std::nullopt;
    found = static_cast<int>(i);
  }
  return found;
}

std::optional<jpeg_scan_info> ScanOf(const JpegSegment& part, const JpegForm& form) {
  const std::span<const uint8_t> header = part.payload;
  jpeg_scan_info scan{};
  const size_t count = header.empty() ? 0 : header[0];
  constexpr size_t kFixedBytes = 4;
  if (count < 1 || count > MAX_COMPS_IN_SCAN || header.size() < kFixedBytes + 2 * count) {
    return std::nullopt;
  }
  scan.comps_in_scan = static_cast<int>(count);
  for (size_t i = 0; i < count; i++) {
    const auto index = IndexOf(form, header[1 + 2 * i]);
    if (!index || (i > 0 && *index <= scan.component_index[i - 1])) return std::nullopt;
    scan.component_index[i] = *index;
  }
  const std::span<const uint8_t> range = header.subspan(1 + 2 * count);
  scan.Ss = form.progressive ? range[0] : 0;
  scan.Se = form.progressive ? range[1] : DCTSIZE2 - 1;
  scan.Ah = form.progressive ? range[2] >> 4 : 0;
  scan.Al = form.progressive ? range[2] & 15 : 0;
  return scan;
}

bool CanInterleave(const JpegForm& form, const jpeg_scan_info& scan) {
  int blocks = 0;
  for (int i = 0; i < scan.comps_in_scan; i++) {
    const auto& component = form.components[static_cast<size_t>(scan.component_index[i])];
    blocks += component.h * component.v;
  }
  return scan.comps_in_scan == 1 || blocks <= C_MAX_BLOCKS_IN_MCU;
}

/// What the scans so far have written: the lowest bit of each coefficient of each component.
class Progress {
 public:
  explicit Progress(size_t components) : bits_(components) {
    for (auto& bits : bits_) bits.fill(kNone);
  }

  /// Adds a scan; false if the library does not write such a one here.
  bool Add(const jpeg_scan_info& scan, bool isProgressive) {
    const bool isDc = scan.Ss == 0;
    if (isProgressive) {
      if (scan.Se < scan.Ss || scan.Se >= DCTSIZE2) return false;
      if (scan.Ah > kMostShift || scan.Al > kMostShift) return false;
      if (isDc ? scan.Se != 0 : scan.comps_in_scan != 1) return false;
    }
    for (int i = 0; i < scan.comps_in_scan; i++) {
      auto& bits = bits_[static_cast<size_t>(scan.component_index[i])];
      if (!isDc && bits[0] == kNone) return false;
      for (int k = scan.Ss; k <= scan.Se; k++) {
        int& lowest = bits[static_cast<size_t>(k)];
        if (lowest == kNone ? scan.Ah != 0 : scan.Ah != lowest || scan.Al != lowest - 1) {
          return false;
        }
        lowest = scan.Al;
      }
    }
    return true;
  }

  bool IsWhole() const {
    return std::all_of(bits_.begin(), bits_.end(), [](const auto& bits) {
      return std::all_of(bits.begin(), bits.end(), [](int lowest) { return lowest == 0; });
    });
  }

 private:
  std::vector<std::array<int, DCTSIZE2>> bits_;
};

/// The scans of the file; empty if the library cannot write them.
Script OwnScans(const JpegParts& parts, const JpegForm& form) {
  Script script;
  Progress progress(form.components.size());
  const auto add = [&](const JpegSegment& part) {
    if (part.marker != jpeg_marker::kScan) return true;
    const auto scan = ScanOf(part, form);
    if (!scan || !CanInterleave(form, *scan) || !progress.Add(*scan, form.progressive)) {
      return false;
    }
    script.push_back(*scan);
    return true;
  };
  const bool isWritable = std::all_of(parts.head.begin(), parts.head.end(), add) &&
                          std::all_of(parts.later.begin(), parts.later.end(), add);
  return isWritable && progress.IsWhole() ? script : Script();
}

Script PlainScans(const JpegForm& form) {
  Script script;
  const auto add = [&](int component, int first, int last) {
    jpeg_scan_info scan{};
    scan.comps_in_scan = 1;
    scan.component_index[0] = component;
    scan.Ss = first;
    scan.Se = last;
    script.push_back(scan);
  };
  const int count = static_cast<int>(form.components.size());
  for (int i = 0; i < count; i++) add(i, 0, form.progressive ? 0 : DCTSIZE2 - 1);
  for (int i = 0; form.progressive && i < count; i++) add(i, 1, DCTSIZE2 - 1);
  return script;
}

}  // namespace

Script ScanScriptFor(const JpegParts& parts, const JpegForm& form) {
  Script own = OwnScans(parts, form);
  if (!own.empty()) return own;
  jpeg_scan_info all{};
  const size_t count = form.components.size();
  if (count > MAX_COMPS_IN_SCAN) return PlainScans(form);
  all.comps_in_scan = static_cast<int>(count);
  for (size_t i = 0; i < count; i++) all.component_index[i] = static_cast<int>(i);
  return CanInterleave(form, all) ? Script() : PlainScans(form);
}

}  // namespace rasterkit::detail
