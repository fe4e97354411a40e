#pragma once

// Strips as libtiff codes and decodes them.

#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <vector>

#include <tiffio.h>

namespace rasterkit::peer {

/// A file in memory.
class TiffBytes {
 public:
  std::vector<uint8_t> bytes;
  int messages = 0;

  struct Close {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
  };
  using Handle = std::unique_ptr<TIFF, Close>;

  Handle Open(const char* mode) {
    TIFFOpenOptions* options = TIFFOpenOptionsAlloc();
    TIFFOpenOptionsSetErrorHandlerExtR(options, Count, this);
    TIFFOpenOptionsSetWarningHandlerExtR(options, Count, this);
    position_ = 0;
    Handle handle(TIFFClientOpenExt("memory", mode, this, Read, Write, Seek, CloseNothing, Size,
                                    nullptr, nullptr, options));
    TIFFOpenOptionsFree(options);
    return handle;
  }

 private:
  static TiffBytes& Of(thandle_t self) { return *static_cast<TiffBytes*>(self); }
  static int Count(TIFF*, void* self, const char*, const char*, va_list) {
    Of(self).messages++;
    return 1;
  }
  static tmsize_t Read(thandle_t self, void* target, tmsize_t count) {
    auto& file = Of(self);
    const size_t there =
        file.position_ < file.bytes.size() ? file.bytes.size() - file.position_ : 0;
    const size_t taken = std::min(there, static_cast<size_t>(count));
    if (taken > 0) std::memcpy(target, file.bytes.data() + file.position_, taken);
    file.position_ += taken;
    return static_cast<tmsize_t>(taken);
  }
  static tmsize_t Write(thandle_t self, void* source, tmsize_t count) {
    auto& file = Of(self);
    const size_t end = file.position_ + static_cast<size_t>(count);
    if (file.bytes.size() < end) file.bytes.resize(end);
    std::memcpy(file.bytes.data() + file.position_, source, static_cast<size_t>(count));
    file.position_ = end;
    return count;
  }
  static toff_t Seek(thandle_t self, toff_t offset, int origin) {
    auto& file = Of(self);
    const size_t base = origin == SEEK_CUR   ? file.position_
                        : origin == SEEK_END ? file.bytes.size()
                                             : 0;
    file.position_ = base + offset;
    return file.position_;
  }
  static int CloseNothing(thandle_t) { return 0; }
  static toff_t Size(thandle_t self) { return Of(self).bytes.size(); }

  size_t position_ = 0;
};

inline void SetG4Tags(TIFF* tiff, int width, uint32_t height, bool isLowBitFirst) {
  TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<uint32_t>(width));
  TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, height);
  TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 1);
  TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
  TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, height);
  TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISWHITE);
  TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_CCITTFAX4);
  TIFFSetField(tiff, TIFFTAG_FILLORDER, isLowBitFirst ? FILLORDER_LSB2MSB : FILLORDER_MSB2LSB);
}

/// Rows without padding between them, black as 1, as one strip.
inline std::vector<uint8_t> EncodeByLibtiff(std::vector<uint8_t> rows, int width,
                                            bool isLowBitFirst) {
  const auto height = static_cast<uint32_t>(rows.size() / ((static_cast<size_t>(width) + 7) / 8));
  TiffBytes file;
  {
    const auto tiff = file.Open("wl");
    SetG4Tags(tiff.get(), width, height, isLowBitFirst);
    TIFFWriteEncodedStrip(tiff.get(), 0, rows.data(), static_cast<tmsize_t>(rows.size()));
  }
  const auto tiff = file.Open("r");
  std::vector<uint8_t> strip(TIFFGetStrileByteCount(tiff.get(), 0));
  const auto* start = file.bytes.data() + TIFFGetStrileOffset(tiff.get(), 0);
  std::copy_n(start, strip.size(), strip.begin());
  return strip;
}

struct LibtiffRows {
  std::vector<uint8_t> rows;
  bool isWhole = false;
  int messages = 0;
};

/// Decodes strips of one size.
class LibtiffDecoder {
 public:
  LibtiffDecoder(int width, uint32_t height, bool isLowBitFirst)
      : rowBytes_((static_cast<size_t>(width) + 7) / 8), height_(height) {
    {
      const auto tiff = file_.Open("wl");
      SetG4Tags(tiff.get(), width, height, isLowBitFirst);
      uint8_t byte = 0;
      TIFFWriteRawStrip(tiff.get(), 0, &byte, 1);
    }
    tiff_ = file_.Open("r");
  }

  LibtiffRows Decode(const std::vector<uint8_t>& strip) {
    LibtiffRows result;
    result.rows.resize(rowBytes_ * height_);
    file_.messages = 0;
    result.isWhole = DecodeTo(strip, result.rows);
    result.messages = file_.messages;
    return result;
  }
  bool DecodeTo(const std::vector<uint8_t>& strip, std::vector<uint8_t>& rows) {
    // The library turns the bits of the bytes for some codecs.
    strip_ = strip;
    return TIFFReadFromUserBuffer(tiff_.get(), 0, strip_.data(),
                                  static_cast<tmsize_t>(strip_.size()), rows.data(),
                                  static_cast<tmsize_t>(rows.size())) != 0;
  }

 private:
  const size_t rowBytes_;
  const uint32_t height_;
  std::vector<uint8_t> strip_;
  TiffBytes file_;
  TiffBytes::Handle tiff_;
};

}  // namespace rasterkit::peer
