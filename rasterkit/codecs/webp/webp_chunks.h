#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace rasterkit::detail {

/// The chunks of a WebP file, one after another.
class WebpChunks {
 public:
  explicit WebpChunks(std::span<const uint8_t> file);

  /// Goes to the next chunk; false when there is none.
  bool Next();

  bool IsNamed(std::string_view name) const;
  /// As much of it as the file holds.
  std::span<const uint8_t> Data() const { return data_; }
  bool IsWhole() const { return isWhole_; }

 private:
  std::span<const uint8_t> rest_, name_, data_;
  bool isWhole_ = false;
};

/// True when the file is shorter than it states itself.
bool IsWebpCutOff(std::span<const uint8_t> file);

}  // namespace rasterkit::detail
