#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

#include <rasterkit/codecs/g4/g4_encoder.h>

namespace rasterkit::detail {

namespace {

constexpr unsigned kWordBits = 64;
/// Bits that are written at a time.
constexpr int kWrittenBits = 32;
constexpr int kByteBits = 8;
/// The longest row takes less than 16 bits per pixel, and some.
constexpr size_t kRowBytesPerPixel = 2;
constexpr size_t kRowSlack = 64;

}  // namespace

G4Encoder::G4Encoder(int width, const G4Bits& bits)
    : bits_(bits),
      width_(width),
      above_(width),
      here_(width),
      words_((static_cast<size_t>(width) + kWordBits - 1) / kWordBits),
      wordsAbove_(words_.size()) {}

void G4Encoder::ReserveRow() {
  const size_t wanted = used_ + kRowBytesPerPixel * static_cast<size_t>(width_) + kRowSlack;
  if (bytes_.size() < wanted) bytes_.resize(std::max(wanted, bytes_.size() + bytes_.size() / 2));
}

/// `length` is at most kWrittenBits.
inline void G4Encoder::Put(uint64_t bits, int length) {
  window_ = window_ << length | bits;
  pending_ += length;
  if (pending_ < kWrittenBits) return;
  pending_ -= kWrittenBits;
  const uint32_t word = __builtin_bswap32(static_cast<uint32_t>(window_ >> pending_));
  std::memcpy(bytes_.data() + used_, &word, sizeof word);
  used_ += sizeof word;
}

inline void G4Encoder::Put(const G4Code& code) {
  Put(code.bits, code.length);
}

void G4Encoder::PutOnes(int count) {
  for (; count > kWrittenBits; count -= kWrittenBits) Put(~uint32_t{0}, kWrittenBits);
  if (count > 0) Put((uint64_t{1} << count) - 1, count);
}

inline void G4Encoder::PutRun(bool isBlack, int run) {
  const auto& codes = isBlack ? kG4BlackRuns.codes : kG4WhiteRuns.codes;
  while (run >= kG4LongestMakeUp + kG4ShortRuns) {
    Put(codes.back());
    run -= kG4LongestMakeUp;
  }
  if (run >= kG4ShortRuns) {
    Put(codes[static_cast<size_t>(kG4ShortRuns + run / kG4ShortRuns - 1)]);
    run %= kG4ShortRuns;
  }
  Put(codes[static_cast<size_t>(run)]);
}

void G4Encoder::FindChanges() {
  int32_t* next = here_.Places();
  uint64_t before = 0;
  const auto last = static_cast<unsigned>(width_) % kWordBits;
  for (size_t i = 0; i < words_.size(); i++) {
    const uint64_t word = words_[i];
    uint64_t changes = word ^ (word >> 1 | before << (kWordBits - 1));
    before = word;
    if (i + 1 == words_.size() && last != 0) changes &= ~(~uint64_t{0} >> last);
    const auto first = static_cast<int32_t>(i * kWordBits);
    while (changes != 0) {
      const int bit = std::countl_zero(changes);
      *next++ = first + bit;
      changes ^= uint64_t{1} << (kWordBits - 1) >> bit;
    }
  }
  here_.End(static_cast<int>(next - here_.Places()));
}

void G4Encoder::CodeRow() {
  const int width = width_;
  const int32_t* const above = above_.Places();
  const int32_t* const here = here_.Places();
  int left = -1, b = 0, a = 0;
  for (;;) {
    const int place = here[a];
    if (above[b] == place) {
      int ones = 1;
      while (here[a + ones] == above[b + ones] && here[a + ones - 1] < width) ones++;
      PutOnes(ones);
      a += ones;
      b += ones;
      left = here[a - 1];
      if (left == width) return;
      continue;
    }
    if (above[b + 1] < place) {
      Put(kG4Pass);
      left = above[b + 1];
      b += 2;
      continue;
    }
    const int shift = place - above[b];
    if (shift >= -kG4MostVertical && shift <= kG4MostVertical) {
      Put(kG4Vertical[static_cast<size_t>(shift + kG4MostVertical)]);
      left = place;
      if (left == width) return;
      a++;
      b += shift > 0 ? 1 : -1;
    } else {
      const bool isBlack = a % 2 != 0;
      Put(kG4Horizontal);
      PutRun(isBlack, place - std::max(left, 0));
      left = here[a + 1];
      PutRun(!isBlack, left - place);
      if (left == width) return;
      a += 2;
    }
    while (above[b] <= left) b += 2;
  }
}

void G4Encoder::Encode(const uint8_t* row) {
  ReserveRow();
  const size_t bytes = (static_cast<size_t>(width_) + kByteBits - 1) / kByteBits;
  words_.back() = 0;
  std::memcpy(words_.data(), row, bytes);
  const uint64_t turned = bits_.isWhiteOne ? ~uint64_t{0} : 0;
  for (uint64_t& word : words_) word = __builtin_bswap64(word) ^ turned;
  // Bits after the last pixel do not count.
  const auto last = static_cast<unsigned>(width_) % kWordBits;
  if (last != 0) words_.back() &= ~(~uint64_t{0} >> last);
  if (words_ == wordsAbove_) {
    PutOnes(above_.Count() + 1);
    return;
  }
  FindChanges();
  CodeRow();
  std::swap(above_, here_);
  std::swap(wordsAbove_, words_);
}

void G4Encoder::Encode(const uint8_t* row, size_t stride, size_t rows) {
  for (; rows > 0; rows--, row += stride) Encode(row);
}

std::vector<uint8_t> G4Encoder::TakeBytes() {
  std::vector<uint8_t> bytes(bytes_.begin(), bytes_.begin() + static_cast<std::ptrdiff_t>(used_));
  used_ = 0;
  if (bits_.isLowBitFirst) {
    for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(ReversedBitsOfBytes(byte));
  }
  return bytes;
}

std::vector<uint8_t> G4Encoder::EndStrip() {
  ReserveRow();
  Put(kG4EndOfLine);
  Put(kG4EndOfLine);
  for (; pending_ >= kByteBits; pending_ -= kByteBits) {
    bytes_[used_++] = static_cast<uint8_t>(window_ >> (pending_ - kByteBits));
  }
  if (pending_ > 0) bytes_[used_++] = static_cast<uint8_t>(window_ << (kByteBits - pending_));
  window_ = 0;
  pending_ = 0;
  above_.End(0);
  std::fill(wordsAbove_.begin(), wordsAbove_.end(), 0);
  return TakeBytes();
}

}  // namespace rasterkit::detail
