#include "samples/exif_block.h"

#include <cmath>

namespace rasterkit::samples {
namespace {

/// Types of directory entries.
enum FieldType : uint16_t {
  fieldByte = 1,
  fieldAscii = 2,
  fieldShort = 3,
  fieldLong = 4,
  fieldRational = 5
};

/// Writes numbers in either byte order.
class Block {
 public:
  explicit Block(ByteOrder order) : order_(order) {
    const uint8_t mark = order == ByteOrder::intel ? 'I' : 'M';
    bytes_ = {mark, mark};
    Word(42);
    Long(8);
  }

  void Word(uint32_t value) { Number(value, 2); }
  void Long(uint32_t value) { Number(value, 4); }
  void Rational(double value) {
    Long(static_cast<uint32_t>(std::lround(value * 1000)));
    Long(1000);
  }

  /// Tag, type, count; four bytes of value or offset follow.
  void Entry(uint16_t tag, FieldType type, uint32_t count) {
    Word(tag);
    Word(type);
    Long(count);
  }
  void ShortEntry(uint16_t tag, uint16_t value) {
    Entry(tag, fieldShort, 1);
    Word(value);
    Word(0);
  }
  void LetterEntry(uint16_t tag, char letter) {
    Entry(tag, fieldAscii, 2);
    bytes_.insert(bytes_.end(), {static_cast<uint8_t>(letter), 0, 0, 0});
  }
  void ByteEntry(uint16_t tag, uint8_t value) {
    Entry(tag, fieldByte, 1);
    bytes_.insert(bytes_.end(), {value, 0, 0, 0});
  }

  const std::vector<uint8_t>& Bytes() const { return bytes_; }

 private:
  void Number(uint32_t value, int count) {
    for (int i = 0; i < count; ++i) {
      const int shift = 8 * (order_ == ByteOrder::intel ? i : count - 1 - i);
      bytes_.push_back(static_cast<uint8_t>(value >> shift));
    }
  }

  ByteOrder order_;
  std::vector<uint8_t> bytes_;
};

void DegreesMinutesSeconds(Block& block, double degrees) {
  degrees = std::abs(degrees);
  const double minutes = (degrees - std::floor(degrees)) * 60;
  block.Rational(std::floor(degrees));
  block.Rational(std::floor(minutes));
  block.Rational((minutes - std::floor(minutes)) * 60);
}

/// The GPS directory at `start` and behind it the values that do not fit into their entries.
void GpsDirectory(Block& block, uint32_t start, const Place& place) {
  constexpr uint32_t kEntries = 6, kRationalTriple = 24;
  const uint32_t values = start + 2 + 12 * kEntries + 4;
  block.Word(kEntries);
  block.LetterEntry(1, place.latitude < 0 ? 'S' : 'N');
  block.Entry(2, fieldRational, 3);
  block.Long(values);
  block.LetterEntry(3, place.longitude < 0 ? 'W' : 'E');
  block.Entry(4, fieldRational, 3);
  block.Long(values + kRationalTriple);
  block.ByteEntry(5, place.altitude < 0 ? 1 : 0);
  block.Entry(6, fieldRational, 1);
  block.Long(values + 2 * kRationalTriple);
  block.Long(0);
  DegreesMinutesSeconds(block, place.latitude);
  DegreesMinutesSeconds(block, place.longitude);
  block.Rational(std::abs(place.altitude));
}

std::vector<uint8_t> ExifBlock(ByteOrder order, int orientation,
                               const std::optional<Place>& place) {
  constexpr uint16_t kOrientationTag = 274, kGpsPointerTag = 34853;
  const uint16_t entries = place ? 2 : 1;
  Block block(order);
  block.Word(entries);
  block.ShortEntry(kOrientationTag, static_cast<uint16_t>(orientation));
  const uint32_t behind = 8 + 2 + 12u * entries + 4;
  if (place) {
    block.Entry(kGpsPointerTag, fieldLong, 1);
    block.Long(behind);
  }
  block.Long(0);
  if (place) GpsDirectory(block, behind, *place);
  return block.Bytes();
}

}  // namespace

std::vector<uint8_t> WithExif(const std::vector<uint8_t>& jpeg, ByteOrder order, int orientation,
                              const std::optional<Place>& place) {
  const std::vector<uint8_t> block = ExifBlock(order, orientation, place);
  const size_t length = block.size() + 8;
  std::vector<uint8_t> result(jpeg.begin(), jpeg.begin() + 2);
  result.insert(result.end(), {0xFF, 0xE1, static_cast<uint8_t>(length >> 8),
                               static_cast<uint8_t>(length), 'E', 'x', 'i', 'f', 0, 0});
  result.insert(result.end(), block.begin(), block.end());
  result.insert(result.end(), jpeg.begin() + 2, jpeg.end());
  return result;
}

}  // namespace rasterkit::samples
