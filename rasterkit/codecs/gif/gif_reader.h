#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <gif_lib.h>

namespace rasterkit::detail {

/// A giflib decoder for bytes in memory; the destructor closes it.
class GifReader {
 public:
  /// Reads the header and the global palette.
  explicit GifReader(std::span<const uint8_t> bytes);
  ~GifReader();
  GifReader(const GifReader&) = delete;
  GifReader& operator=(const GifReader&) = delete;

  /// Goes to the data of the first picture; `Gif()` then has its place, size and palette.
  void FindFirstPicture();

  const GifFileType& Gif() const { return *gif_; }
  /// The transparent palette entry, if there is one.
  std::optional<int> TransparentIndex() const { return transparentIndex_; }
  /// True if the file ends within the picture data.
  bool IsCutOff() const { return isCutOff_; }

  /// Decodes the next `width` pixels; false if there are no more.
  bool ReadRow(uint8_t* row, int width);

  /// "GIF: " and the last message of giflib.
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
