#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace rasterkit::detail {

/// The chunks of a WebP file, one after another.
class WebpChunks {
 public:
  explicit WebpChunks(std::span<const uint8_t> file);

  /// Goes to the next chunk; false if there is none.
  bool Next();

  bool IsNamed(std::string_view name) const;
  /// The part of the data that the file holds.
  std::span<const uint8_t> Data() const { return data_; }
  bool IsWhole() const { return isWhole_; }

 private:
  std::span<const uint8_t> rest_, name_, data_;
  bool isWhole_ = false;
};

/// True if the file is shorter than its header states.
bool IsWebpCutOff(std::span<const uint8_t> file);

}  // namespace rasterkit::detail
