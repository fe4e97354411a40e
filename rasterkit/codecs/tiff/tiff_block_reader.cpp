#include <algorithm>
#include <cstring>
#include <iterator>

#include <rasterkit/codecs/g4/g4_strip.h>
#include <rasterkit/codecs/tiff/tiff_block_reader.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit::detail {

namespace {

/// Pictures up to this many bytes are searched for the last intact row of each damaged block, which
/// unpacks a block three times.
constexpr uint64_t kSearchedBytes = uint64_t{1} << 30;
/// The limit for a search that unpacks a block more often.
constexpr uint64_t kBisectedBytes = uint64_t{64} << 20;

/// A byte that is rarely in the picture by chance, different at each place.
uint8_t Mark(size_t place) {
  return static_cast<uint8_t>((static_cast<uint32_t>(place) * 0x9E3779B1u) >> 24);
}

uint16_t Reversed(uint16_t word) {
  return __builtin_bswap16(word);
}
uint32_t Reversed(uint32_t word) {
  return __builtin_bswap32(word);
}
uint64_t Reversed(uint64_t word) {
  return __builtin_bswap64(word);
}

/// Reverses the bytes of each word; the compiler vectorizes the loop.
template <typename Word>
void ReverseWords(uint8_t* bytes, size_t count) {
  for (size_t at = 0; at + sizeof(Word) <= count; at += sizeof(Word)) {
    Word word;
    std::memcpy(&word, bytes + at, sizeof word);
    const Word reversed = Reversed(word);
    std::memcpy(bytes + at, &reversed, sizeof word);
  }
}

/// While it lives, Deflate is unpacked by the library that writes everything up to an error; the
/// faster library only unpacks intact blocks.
class PatientDeflate {
 public:
  PatientDeflate(TIFF* tiff, int compression)
      : tiff_(compression == COMPRESSION_ADOBE_DEFLATE || compression == COMPRESSION_DEFLATE
                  ? tiff
                  : nullptr) {
    if (tiff_ && TIFFGetField(tiff_, TIFFTAG_DEFLATE_SUBCODEC, &usual_)) {
      TIFFSetField(tiff_, TIFFTAG_DEFLATE_SUBCODEC, DEFLATE_SUBCODEC_ZLIB);
    }
  }
  ~PatientDeflate() {
    if (tiff_) TIFFSetField(tiff_, TIFFTAG_DEFLATE_SUBCODEC, usual_);
  }
  PatientDeflate(const PatientDeflate&) = delete;
  PatientDeflate& operator=(const PatientDeflate&) = delete;

 private:
  TIFF* const tiff_;
  int usual_ = DEFLATE_SUBCODEC_ZLIB;
};

/// Gives a fax codec its first state. It keeps the runs of earlier strips, and a damaged row can
/// reach into them: its pixels would depend on what was read before.
void RenewFaxCodec(TIFF* tiff, int compression) {
  uint32_t options = 0;
  const bool hasOptions = compression == COMPRESSION_CCITTFAX3 &&
                          TIFFGetField(tiff, TIFFTAG_GROUP3OPTIONS, &options) == 1;
  // A change of the codec ends the one that is there.
  TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
  TIFFSetField(tiff, TIFFTAG_COMPRESSION, compression);
  if (hasOptions) TIFFSetField(tiff, TIFFTAG_GROUP3OPTIONS, options);
}

}  // namespace

void TurnSamples(uint8_t* bytes, size_t count, int bits) {
  switch (bits) {
    case 16:
      return ReverseWords<uint16_t>(bytes, count);
    case 24:
      return TIFFSwabArrayOfTriples(bytes, static_cast<tmsize_t>(count / 3));
    case 32:
      return ReverseWords<uint32_t>(bytes, count);
    case 64:
      return ReverseWords<uint64_t>(bytes, count);
    default:
      return;
  }
}

uint32_t TiffBlockReader::Read(uint32_t block, uint32_t first, uint32_t rows, uint8_t* target) {
  const size_t rowBytes = layout_.grid.rowBytes;
  const auto [offset, count] = ExtentOf(block);
  if (offset == 0 && count == 0) {
    FillSparse(target, rows * rowBytes);
    return rows;
  }
  if (!IsPlain()) return ReadPacked(block, offset, count, rows, target);
  const uint64_t skipped = uint64_t{first} * rowBytes;
  if (count <= skipped) return 0;
  return ReadPlain(offset + skipped, count - skipped, rows, target);
}

TiffExtent TiffBlockReader::ExtentOf(uint32_t block) const {
  if (!layout_.joinedStrips.empty()) return layout_.joinedStrips[block];
  return {TIFFGetStrileOffset(handle_.Tiff(), block),
          TIFFGetStrileByteCount(handle_.Tiff(), block)};
}

uint32_t TiffBlockReader::ReadPlain(uint64_t offset, uint64_t count, uint32_t rows,
                                    uint8_t* target) {
  const size_t rowBytes = layout_.grid.rowBytes;
  const auto wanted = static_cast<size_t>(std::min<uint64_t>(count, rows * uint64_t{rowBytes}));
  const size_t there = handle_.Source().ReadAt(offset, {target, wanted});
  ToProcessorOrder(target, there / rowBytes * rowBytes);
  const auto whole = static_cast<uint32_t>(there / rowBytes);
  if (whole < rows) errors_.emplace_back("the data end early");
  return whole;
}

void TiffBlockReader::ToProcessorOrder(uint8_t* bytes, size_t count) const {
  if (HasLowBitsFirst(handle_)) {
    TIFFReverseBits(bytes, static_cast<tmsize_t>(count));
  }
  if (!TIFFIsByteSwapped(handle_.Tiff())) return;
  TurnSamples(bytes, count, layout_.bits);
}

void TiffBlockReader::FillSparse(uint8_t* target, size_t bytes) const {
  if (blanks_.sparseBytes == 1) {
    std::memset(target, blanks_.sparse[0], bytes);
    return;
  }
  for (size_t at = 0; at + blanks_.sparseBytes <= bytes; at += blanks_.sparseBytes) {
    std::memcpy(target + at, blanks_.sparse.data(), blanks_.sparseBytes);
  }
}

uint32_t TiffBlockReader::ReadPacked(uint32_t block, uint64_t offset, uint64_t count, uint32_t rows,
                                     uint8_t* target) {
  const uint64_t size = handle_.Source().Size();
  const uint64_t left = offset < size ? size - offset : 0;
  const auto wanted = static_cast<size_t>(std::min(count, left));
  RequirePictureMemory(wanted, "TIFF: a strip or tile");
  if (raw_.Size() < wanted) raw_ = PixelMemory(wanted);
  const size_t there = handle_.Source().ReadAt(offset, {raw_.Data(), wanted});
  if (there < count) errors_.emplace_back("the data end early");
  if (there == 0) return 0;
  if (layout_.compression == COMPRESSION_LZW &&
      LzwStyleOf({raw_.Data(), there}, HasLowBitsFirst(handle_)) != layout_.lzwStyle) {
    errors_.emplace_back("a strip or tile does not start like the others");
    return 0;
  }
  const uint32_t unpacked = UnpackedRows(rows);
  if (Unpack(block, there, unpacked, target)) return rows;
  if (IsFax() || PictureBytes() > kSearchedBytes) return 0;
  const size_t errorsSoFar = errors_.size();
  const uint32_t sound = std::min(rows, RowsThere(block, there, unpacked, target));
  errors_.resize(errorsSoFar);
  return sound;
}

bool TiffBlockReader::Unpack(uint32_t block, size_t rawBytes, uint32_t rows, uint8_t* target) {
  if (UnpackG4(rawBytes, rows, target)) return true;
  const size_t bytes = rows * layout_.grid.rowBytes;
  if (MayLeaveGaps()) std::memset(target, blanks_.whiteByte, bytes);
  if (!IsDeflate()) return UnpackOnto(block, rawBytes, rows, target);
  // The codec can report success for data that end within a code: what it did not write is found by
  // its last byte.
  uint8_t& last = target[bytes - 1];
  uint8_t mark = Mark(block + bytes);
  last = mark;
  if (!UnpackOnto(block, rawBytes, rows, target)) return false;
  if (last != mark) return true;
  last = mark = static_cast<uint8_t>(~mark);
  if (!UnpackOnto(block, rawBytes, rows, target)) return false;
  if (last != mark) return true;
  errors_.emplace_back("the data end early");
  return false;
}

bool TiffBlockReader::IsDeflate() const {
  return layout_.compression == COMPRESSION_ADOBE_DEFLATE ||
         layout_.compression == COMPRESSION_DEFLATE;
}

/// Decodes a strip without libtiff. False if its rows and its words must come from there.
bool TiffBlockReader::UnpackG4(size_t rawBytes, uint32_t rows, uint8_t* target) const {
  if (layout_.compression != COMPRESSION_CCITTFAX4 || layout_.bits != 1 ||
      handle_.Field<uint16_t>(TIFFTAG_SAMPLESPERPIXEL, 1) != 1) {
    return false;
  }
  const G4Strip strip{layout_.grid.width, rows, HasLowBitsFirst(handle_)};
  return strip.RowBytes() == layout_.grid.rowBytes &&
         DecodeG4Strip({raw_.Data(), rawBytes}, strip, blanks_.whiteByte, target);
}

bool TiffBlockReader::UnpackOnto(uint32_t block, size_t rawBytes, uint32_t rows, uint8_t* target) {
  const size_t bytes = rows * layout_.grid.rowBytes;
  if (IsFax()) RenewFaxCodec(handle_.Tiff(), layout_.compression);
  // Fax codecs continue after damaged rows and report success.
  const bool isWhole =
      TIFFReadFromUserBuffer(handle_.Tiff(), block, raw_.Data(), static_cast<tmsize_t>(rawBytes),
                             target, static_cast<tmsize_t>(bytes)) != 0;
  std::vector<std::string> texts = handle_.Messages().TakeErrors();
  for (std::string& text : handle_.Messages().TakeWarnings()) texts.push_back(std::move(text));
  if (IsFax() && !texts.empty()) ClearUnreadRow(rows, target);
  const bool isComplete = isWhole && (texts.empty() || !IsFax() || !IsBlank({target, bytes}));
  std::move(texts.begin(), texts.end(), std::back_inserter(errors_));
  return isComplete;
}

bool TiffBlockReader::IsFax() const {
  switch (layout_.compression) {
    case COMPRESSION_CCITTRLE:
    case COMPRESSION_CCITTRLEW:
    case COMPRESSION_CCITTFAX3:
    case COMPRESSION_CCITTFAX4:
      return true;
    default:
      return false;
  }
}

/// A fax codec leaves a row of zeros at an error; if 0 is black that would be a line across the
/// picture. Only untouched rows may follow: otherwise the zeros may be real.
void TiffBlockReader::ClearUnreadRow(uint32_t rows, uint8_t* target) const {
  const size_t rowBytes = layout_.grid.rowBytes;
  const auto row = [&](uint32_t y) { return std::span(target + y * rowBytes, rowBytes); };
  uint32_t written = rows;
  while (written > 0 && IsBlank(row(written - 1))) written--;
  if (written == 0 || written == rows) return;
  const std::span<uint8_t> last = row(written - 1);
  // The bits beyond the right edge of the picture do not count.
  const auto edge = static_cast<uint8_t>(0xFF00 >> (layout_.grid.width - 1) % 8 >> 1);
  const bool isUnread =
      (last.back() & edge) == 0 &&
      std::all_of(last.begin(), last.end() - 1, [](uint8_t byte) { return byte == 0; });
  if (isUnread) std::fill(last.begin(), last.end(), blanks_.whiteByte);
}

bool TiffBlockReader::IsBlank(std::span<const uint8_t> bytes) const {
  return std::all_of(bytes.begin(), bytes.end(),
                     [&](uint8_t byte) { return byte == blanks_.whiteByte; });
}

/// Number of complete rows that the codec writes before it fails.
uint32_t TiffBlockReader::RowsWritten(uint32_t block, size_t rawBytes, uint32_t rows,
                                      uint8_t* target) {
  size_t end = rows * layout_.grid.rowBytes;
  for (size_t i = 0; i < end; i++) target[i] = Mark(i);
  const PatientDeflate patient(handle_.Tiff(), layout_.compression);
  UnpackOnto(block, rawBytes, rows, target);
  while (end > 0 && target[end - 1] == Mark(end - 1)) end--;
  return static_cast<uint32_t>(end / layout_.grid.rowBytes);
}

uint32_t TiffBlockReader::RowsThere(uint32_t block, size_t rawBytes, uint32_t rows,
                                    uint8_t* target) {
  // If only these rows are requested, the codec does not fail.
  uint32_t unsound = RowsWritten(block, rawBytes, rows, target);
  if (unsound == 0 || Unpack(block, rawBytes, unsound, target)) return unsound;
  if (PictureBytes() > kBisectedBytes) return 0;
  // Finds the greatest number of rows that unpack without an error: fewer rows need fewer bytes.
  uint32_t sound = 0;
  while (unsound - sound > 1) {
    const uint32_t middle = sound + (unsound - sound) / 2;
    (Unpack(block, rawBytes, middle, target) ? sound : unsound) = middle;
  }
  if (sound > 0) Unpack(block, rawBytes, sound, target);
  return sound;
}

/// Bytes of all unpacked blocks.
uint64_t TiffBlockReader::PictureBytes() const {
  const uint64_t block = uint64_t{layout_.grid.rowBytes} * layout_.grid.height;
  return block * layout_.grid.PerPlane() * layout_.planes.size();
}

bool TiffBlockReader::MayLeaveGaps() const {
  switch (layout_.compression) {
    case COMPRESSION_LZW:
    case COMPRESSION_PACKBITS:
    case COMPRESSION_ZSTD:
    case COMPRESSION_LZMA:
      return false;
    default:
      return true;
  }
}

}  // namespace rasterkit::detail
