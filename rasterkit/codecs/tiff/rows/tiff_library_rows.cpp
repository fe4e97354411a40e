#include <algorithm>
#include <cstring>

#include <rasterkit/codecs/tiff/rows/tiff_library_rows.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {

namespace {

constexpr size_t kMessageBytes = 1024;

/// libtiff's converter; the destructor ends it.
class RgbaImage {
 public:
  explicit RgbaImage(TIFF* tiff) {
    // The converter delivers the last row first. With an orientation that starts with the last row,
    // it keeps the order.
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_BOTLEFT);
    char message[kMessageBytes] = "";
    const bool isMade =
        TIFFRGBAImageOK(tiff, message) != 0 && TIFFRGBAImageBegin(&image_, tiff, 0, message) != 0;
    if (!isMade) throw UnsupportedError(std::string("TIFF: ") + message);
  }
  ~RgbaImage() { TIFFRGBAImageEnd(&image_); }
  RgbaImage(const RgbaImage&) = delete;
  RgbaImage& operator=(const RgbaImage&) = delete;

  bool Read(uint32_t y, uint32_t width, uint32_t rows, uint32_t* pixels) {
    image_.row_offset = static_cast<int>(y);
    image_.col_offset = 0;
    return TIFFRGBAImageGet(&image_, pixels, width, rows) != 0;
  }

 private:
  TIFFRGBAImage image_{};
};

void WriteRow(const uint32_t* pixels, size_t width, size_t pixelBytes, uint8_t* target) {
  for (size_t x = 0; x < width; x++, target += pixelBytes) {
    target[0] = static_cast<uint8_t>(TIFFGetB(pixels[x]));
    target[1] = static_cast<uint8_t>(TIFFGetG(pixels[x]));
    target[2] = static_cast<uint8_t>(TIFFGetR(pixels[x]));
    if (pixelBytes == 4) target[3] = static_cast<uint8_t>(TIFFGetA(pixels[x]));
  }
}

}  // namespace

TiffOutcome ReadTiffByLibrary(TiffHandle& handle, const TiffLayout& layout,
                              const TiffTarget& target) {
  RgbaImage image(handle.Tiff());
  const auto pixelBytes = static_cast<size_t>(target.bitsPerPixel / 8);
  const uint32_t band = std::min(layout.grid.height, layout.height);
  PixelMemory pixels(size_t{layout.width} * band * sizeof(uint32_t));
  auto* words = reinterpret_cast<uint32_t*>(pixels.Data());
  TiffOutcome outcome;
  outcome.soundRows = layout.height;
  for (uint32_t y = 0; y < layout.height; y += band) {
    RequireTime();
    const uint32_t rows = std::min(band, layout.height - y);
    // Rows that the library cannot decode stay white.
    std::memset(pixels.Data(), 0xFF, pixels.Size());
    outcome.blocks++;
    const bool isWhole = image.Read(y, layout.width, rows, words);
    handle.Source().RethrowKept();
    if (isWhole) {
      outcome.hasRows = true;
    } else {
      outcome.damagedBlocks++;
      outcome.soundRows = std::min(outcome.soundRows, y);
    }
    for (uint32_t i = 0; i < rows; i++) {
      WriteRow(words + size_t{i} * layout.width, layout.width, pixelBytes, target.Row(y + i));
    }
  }
  outcome.notes = handle.Messages().TakeErrors();
  for (std::string& text : handle.Messages().TakeWarnings()) {
    outcome.notes.push_back(std::move(text));
  }
  return outcome;
}

}  // namespace rasterkit::detail
