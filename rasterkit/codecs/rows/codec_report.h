#pragma once

#include <string>
#include <utility>
#include <vector>

namespace rasterkit {

/// What a decoder noticed without failing: "JPEG: premature end of data, 120 of 480 rows are
/// complete".
struct CodecReport {
  /// All that was noticed, in the order in which it was found.
  std::vector<std::string> warnings;
  /// Those of the warnings that say that pixels are missing or not the ones that were stored: rows
  /// beyond the end of the data, corrupt compressed data.
  std::vector<std::string> damage;

  /// Adds a text to the warnings and to the damage.
  void AddDamage(std::string text) {
    damage.push_back(text);
    warnings.push_back(std::move(text));
  }

  /// Appends what another report says.
  void Append(const CodecReport& other) {
    warnings.insert(warnings.end(), other.warnings.begin(), other.warnings.end());
    damage.insert(damage.end(), other.damage.begin(), other.damage.end());
  }
};

}  // namespace rasterkit
