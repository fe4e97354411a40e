#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <gif_lib.h>

namespace rasterkit::detail {

/// The giflib decoder over bytes in memory, closed on every way out.
class GifReader {
 public:
  /// Reads the header and the global palette.
  explicit GifReader(std::span<const uint8_t> bytes);
  ~GifReader();
  GifReader(const GifReader&) = delete;
  GifReader& operator=(const GifReader&) = delete;

  /// Goes to the data of the first picture, whose place, size and palette `Gif()` then tells.
  void FindFirstPicture();

  const GifFileType& Gif() const { return *gif_; }
  /// The entry that the picture does not show, if it names one.
  std::optional<int> TransparentIndex() const { return transparentIndex_; }
  /// True when the file ends within the picture data.
  bool IsCutOff() const { return isCutOff_; }

  /// Decodes the next `width` pixels; false when there are no more.
  bool ReadRow(uint8_t* row, int width);

  /// "GIF: " and what giflib said last.
  std::string Reason() const;

 private:
  static int OnRead(GifFileType* gif, GifByteType* target, int count);

  void ReadExtension();
  void MendEnd();
  [[noreturn]] void Throw() const;

  std::span<const uint8_t> bytes_;
  size_t position_ = 0;
  bool ranDry_ = false;
  bool isCutOff_ = false;
  std::vector<uint8_t> mended_;
  std::optional<int> transparentIndex_;
  int openError_ = 0;
  GifFileType* gif_ = nullptr;
};

}  // namespace rasterkit::detail
