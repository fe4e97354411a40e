#pragma once

#include <cstdint>
#include <exception>
#include <span>
#include <vector>

#include <tiffio.h>

#include <rasterkit/codecs/g4/g4_strip.h>
#include <rasterkit/codecs/tiff/pages/page_plan.h>
#include <rasterkit/codecs/tiff/tiff_handle.h>

namespace rasterkit::detail {

/// Compresses strips and tiles of a page by libtiff, G4 without it, for one thread. Keeps no file:
/// each block is handed out.
class BlockCoder {
 public:
  /// Throws FormatError with the text of libtiff if it does not take the plan.
  explicit BlockCoder(const PagePlan& plan);
  ~BlockCoder();
  BlockCoder(const BlockCoder&) = delete;
  BlockCoder& operator=(const BlockCoder&) = delete;

  /// The bytes of a block as they go to the file. `samples` are overwritten.
  std::vector<uint8_t> Encode(uint32_t block, std::span<uint8_t> samples);
  /// The tables that all blocks share (tag 347); empty for other compressions. Known after the
  /// first block.
  std::vector<uint8_t> JpegTables() const;

 private:
  template <typename... Values>
  void Set(uint32_t tag, Values... values) {
    Require(TIFFSetField(tiff_, tag, values...) == 1);
  }
  void SetTags(const PagePlan& plan);
  void SetColorTags(const PagePlan& plan);
  void Require(bool isDone);

  static tmsize_t OnRead(thandle_t self, void* target, tmsize_t count);
  static tmsize_t OnWrite(thandle_t self, void* bytes, tmsize_t count);
  static toff_t OnSeek(thandle_t self, toff_t offset, int origin);
  static toff_t OnSize(thandle_t self);
  static int OnClose(thandle_t self);

  const bool isTiled_;
  /// The strips that need no libtiff; their width is 0 if all of them need it.
  const G4Strip g4_;
  /// Bytes of the numbers that must be turned before libtiff turns them; 0 for none.
  size_t turnedBytes_ = 0;
  /// What libtiff writes since the last block; the place counts on, as in a file.
  std::vector<uint8_t> bytes_;
  uint64_t position_ = 0, size_ = 0;
  std::exception_ptr error_;
  bool isOpen_ = true;
  TiffMessages messages_;
  TIFF* tiff_ = nullptr;
};

}  // namespace rasterkit::detail
