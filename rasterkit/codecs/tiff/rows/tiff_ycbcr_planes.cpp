#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <new>
#include <span>

#include <rasterkit/codecs/tiff/rows/tiff_ycbcr_planes.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {

namespace {

constexpr size_t kPlanes = 3;
/// Bytes of luma per read of uncompressed rows.
constexpr size_t kPieceBytes = 256 << 10;
constexpr size_t kMostNotes = 8;

/// The tables follow the structure in one block of memory.
constexpr size_t kTableBytes = sizeof(TIFFYCbCrToRGB) + sizeof(long) +
                               4 * 256 * sizeof(TIFFRGBValue) + 2 * 256 * sizeof(int) +
                               3 * 256 * sizeof(int32_t);

/// Numbers of a tag, which has a default.
std::span<float> Numbers(const TiffHandle& handle, uint32_t tag, size_t count) {
  float* numbers = nullptr;
  const bool isThere = TIFFGetFieldDefaulted(handle.Tiff(), tag, &numbers) != 0 && numbers;
  if (!isThere ||
      !std::all_of(numbers, numbers + count, [](float n) { return std::isfinite(n); })) {
    throw FormatError("TIFF: the coefficients of YCbCr colors are invalid");
  }
  return {numbers, count};
}

/// Converts YCbCr samples by the coefficients and the reference levels of a file, as libtiff does.
class YcbcrColors {
 public:
  /// Throws FormatError for invalid coefficients or levels, std::bad_alloc.
  explicit YcbcrColors(const TiffHandle& handle);

  /// Writes `width` pixels B G R; each sample of Cb and Cr is used for `step` pixels.
  void ToBgr(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, size_t step, size_t width,
             uint8_t* target) const;

 private:
  struct Free {
    void operator()(TIFFYCbCrToRGB* tables) const { _TIFFfree(tables); }
  };
  std::unique_ptr<TIFFYCbCrToRGB, Free> tables_;
};

YcbcrColors::YcbcrColors(const TiffHandle& handle) {
  const std::span<float> luma = Numbers(handle, TIFFTAG_YCBCRCOEFFICIENTS, 3);
  const std::span<float> levels = Numbers(handle, TIFFTAG_REFERENCEBLACKWHITE, 6);
  if (luma[1] == 0) throw FormatError("TIFF: the coefficients of YCbCr colors are invalid");
  tables_.reset(static_cast<TIFFYCbCrToRGB*>(_TIFFmalloc(static_cast<tmsize_t>(kTableBytes))));
  if (!tables_) throw std::bad_alloc();
  if (TIFFYCbCrToRGBInit(tables_.get(), luma.data(), levels.data()) < 0) {
    throw FormatError("TIFF: the coefficients of YCbCr colors are invalid");
  }
}

void YcbcrColors::ToBgr(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, size_t step,
                        size_t width, uint8_t* target) const {
  for (size_t x = 0; x < width; x++, target += 3) {
    uint32_t red = 0, green = 0, blue = 0;
    TIFFYCbCrtoRGB(tables_.get(), y[x], cb[x / step], cr[x / step], &red, &green, &blue);
    target[0] = static_cast<uint8_t>(blue);
    target[1] = static_cast<uint8_t>(green);
    target[2] = static_cast<uint8_t>(red);
  }
}

/// Pixels per sample of Cb and Cr.
struct Subsampling {
  uint16_t across = 2, down = 2;
};

uint32_t Fewer(uint32_t count, uint32_t factor) {
  return (count + factor - 1) / factor;
}

Subsampling SubsamplingOf(const TiffHandle& handle) {
  Subsampling sampling;
  TIFFGetFieldDefaulted(handle.Tiff(), TIFFTAG_YCBCRSUBSAMPLING, &sampling.across, &sampling.down);
  const auto isValid = [](int factor) { return factor == 1 || factor == 2 || factor == 4; };
  if (!isValid(sampling.across) || !isValid(sampling.down)) {
    throw FormatError("TIFF: the subsampling of YCbCr colors is invalid");
  }
  return sampling;
}

/// The layout of a plane of Cb or Cr.
TiffLayout ChromaLayout(TiffLayout layout, const Subsampling& sampling) {
  layout.grid.height = Fewer(layout.grid.height, sampling.down);
  // libtiff's JPEG decoder puts the shorter rows at the distance of full ones.
  if (layout.compression != COMPRESSION_JPEG) {
    layout.grid.rowBytes = Fewer(layout.grid.width, sampling.across);
  }
  return layout;
}

/// Reads the planes on one thread: such files are rare and small.
class PlanesReader {
 public:
  PlanesReader(TiffHandle& handle, const TiffLayout& layout, const TiffBlanks& blanks,
               const TiffTarget& target)
      : handle_(handle),
        layout_(layout),
        target_(target),
        colors_(handle),
        luma_(handle, layout, blanks),
        sampling_(ActualSampling(blanks)),
        chromaLayout_(ChromaLayout(layout, sampling_)),
        chroma_(handle, chromaLayout_, blanks) {}

  TiffOutcome Read() {
    RequireUndisturbedRows();
    const TiffBlockGrid& grid = layout_.grid;
    outcome_.blocks = grid.PerPlane();
    outcome_.soundRows = layout_.height;
    uint32_t emptyBlocks = 0;
    for (uint32_t i = 0; i < outcome_.blocks; i++) emptyBlocks += ReadBlock(i) == 0 ? 1 : 0;
    outcome_.hasRows = emptyBlocks < outcome_.blocks;
    return std::move(outcome_);
  }

 private:
  Subsampling ActualSampling(const TiffBlanks& blanks);
  void RequireUndisturbedRows() const;
  uint32_t ReadBlock(uint32_t position);
  uint32_t ReadPiece(uint32_t position, uint32_t first, uint32_t rows);
  void Keep(std::vector<std::string> notes);
  uint32_t ChromaRows(uint32_t rows) const { return Fewer(rows, sampling_.down); }
  uint8_t* Plane(size_t plane, uint32_t rows) {
    PixelMemory& memory = planes_[plane];
    const TiffLayout& layout = plane == 0 ? layout_ : chromaLayout_;
    const size_t bytes = layout.grid.rowBytes * rows;
    if (memory.Size() < bytes) memory = PixelMemory(bytes);
    return memory.Data();
  }

  TiffHandle& handle_;
  const TiffLayout& layout_;
  const TiffTarget& target_;
  const YcbcrColors colors_;
  TiffBlockReader luma_;
  const Subsampling sampling_;
  const TiffLayout chromaLayout_;
  TiffBlockReader chroma_;
  PixelMemory planes_[kPlanes];
  TiffOutcome outcome_;
};

/// Some writers leave the tag at its default of 2 x 2 and write planes of full size.
Subsampling PlanesReader::ActualSampling(const TiffBlanks& blanks) {
  const Subsampling sampling = SubsamplingOf(handle_);
  constexpr Subsampling kFull{1, 1};
  const TiffBlockGrid& grid = layout_.grid;
  const uint32_t block = grid.PerPlane();  // the first one of Cb
  const uint32_t rows = grid.isTiled ? grid.height : std::min(grid.height, layout_.height);
  if (sampling.across * sampling.down == 1) return kFull;
  if (layout_.compression == COMPRESSION_JPEG) return sampling;
  if (layout_.compression == COMPRESSION_NONE) {
    const uint64_t full = uint64_t{grid.rowBytes} * rows;
    return TIFFGetStrileByteCount(handle_.Tiff(), block) >= full ? kFull : sampling;
  }
  TiffBlockReader reader(handle_, layout_, blanks);
  PixelMemory memory(grid.rowBytes * reader.UnpackedRows(rows));
  return reader.Read(block, 0, rows, memory.Data()) == rows ? kFull : sampling;
}

/// libtiff undoes a predictor in rows of full length.
void PlanesReader::RequireUndisturbedRows() const {
  const bool isPacked = layout_.compression == COMPRESSION_LZW ||
                        layout_.compression == COMPRESSION_ADOBE_DEFLATE ||
                        layout_.compression == COMPRESSION_DEFLATE;
  if (sampling_.across == 1 || !isPacked) return;
  uint16_t predictor = PREDICTOR_NONE;
  if (TIFFGetField(handle_.Tiff(), TIFFTAG_PREDICTOR, &predictor) && predictor != PREDICTOR_NONE) {
    throw UnsupportedError("TIFF: subsampled planes with a predictor are not supported");
  }
}

void PlanesReader::Keep(std::vector<std::string> notes) {
  for (std::string& note : notes) {
    std::vector<std::string>& kept = outcome_.notes;
    if (kept.size() < kMostNotes && std::find(kept.begin(), kept.end(), note) == kept.end()) {
      kept.push_back(std::move(note));
    }
  }
}

/// Reads rows of all planes; returns how many of them every plane has.
uint32_t PlanesReader::ReadPiece(uint32_t position, uint32_t first, uint32_t rows) {
  const uint32_t perPlane = layout_.grid.PerPlane();
  uint32_t there = luma_.Read(position, first, rows, Plane(0, luma_.UnpackedRows(rows)));
  Keep(luma_.TakeErrors());
  const uint32_t chromaRows = ChromaRows(rows);
  for (uint32_t plane = 1; plane < kPlanes && there > 0; plane++) {
    const uint32_t chromaThere =
        chroma_.Read(plane * perPlane + position, first / sampling_.down, chromaRows,
                     Plane(plane, chroma_.UnpackedRows(chromaRows)));
    Keep(chroma_.TakeErrors());
    there =
        static_cast<uint32_t>(std::min<uint64_t>(there, uint64_t{chromaThere} * sampling_.down));
  }
  return there;
}

/// Returns the number of rows that were there; the others become white.
uint32_t PlanesReader::ReadBlock(uint32_t position) {
  const TiffBlockGrid& grid = layout_.grid;
  const uint32_t left = position % grid.across * grid.width;
  const uint32_t top = position / grid.across * grid.height;
  const size_t width = std::min(grid.width, layout_.width - left);
  const uint32_t height = std::min(grid.height, layout_.height - top);
  uint32_t piece = height;
  if (luma_.IsPlain()) {
    const size_t rows = kPieceBytes / grid.rowBytes / sampling_.down * sampling_.down;
    piece = static_cast<uint32_t>(std::min<size_t>(std::max<size_t>(rows, sampling_.down), height));
  }
  uint32_t done = 0;
  while (done < height) {
    const uint32_t rows = std::min(piece, height - done);
    const uint32_t there = ReadPiece(position, done, rows);
    for (uint32_t i = 0; i < there; i++) {
      const size_t chromaAt = i / sampling_.down * chromaLayout_.grid.rowBytes;
      colors_.ToBgr(planes_[0].Data() + i * grid.rowBytes, planes_[1].Data() + chromaAt,
                    planes_[2].Data() + chromaAt, sampling_.across, width,
                    target_.Row(top + done + i) + size_t{left} * 3);
    }
    done += there;
    if (there < rows) break;
  }
  for (uint32_t y = done; y < height; y++) {
    std::memset(target_.Row(top + y) + size_t{left} * 3, 0xFF, width * 3);
  }
  if (done < height) {
    outcome_.damagedBlocks++;
    outcome_.soundRows = std::min(outcome_.soundRows, top + done);
  }
  return done;
}

}  // namespace

TiffOutcome ReadTiffYcbcrPlanes(TiffHandle& handle, const TiffLayout& layout,
                                const TiffBlanks& blanks, const TiffTarget& target) {
  return PlanesReader(handle, layout, blanks, target).Read();
}

}  // namespace rasterkit::detail
