#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <utility>

#include <rasterkit/codecs/g4/g4_decoder.h>

namespace rasterkit::detail {

namespace {

static_assert(std::endian::native == std::endian::little);

constexpr int kWindowBits = 64;
/// Bits after a refill, unless the strip ends.
constexpr int kRefilled = 56;
/// Enough for a mode and for a run.
constexpr int kEnough = 24;

enum class Mode : uint8_t { none, pass, horizontal, vertical };

struct ModeEntry {
  Mode mode = Mode::none;
  uint8_t length = 0;
  int8_t shift = 0;
};

constexpr int kModeBits = 7;

template <class Table, class Entry>
constexpr void Enter(Table& table, const G4Code& code, int bits, const Entry& entry) {
  const int rest = bits - code.length;
  for (unsigned i = 0; i < 1u << rest; i++) {
    table[(static_cast<unsigned>(code.bits) << rest) + i] = entry;
  }
}

constexpr std::array<ModeEntry, 1 << kModeBits> MakeModes() {
  std::array<ModeEntry, 1 << kModeBits> modes{};
  Enter(modes, kG4Pass, kModeBits, ModeEntry{Mode::pass, kG4Pass.length, 0});
  Enter(modes, kG4Horizontal, kModeBits, ModeEntry{Mode::horizontal, kG4Horizontal.length, 0});
  for (int shift = -kG4MostVertical; shift <= kG4MostVertical; shift++) {
    const G4Code code = kG4Vertical[static_cast<size_t>(shift + kG4MostVertical)];
    Enter(modes, code, kModeBits,
          ModeEntry{Mode::vertical, code.length, static_cast<int8_t>(shift)});
  }
  return modes;
}

constexpr auto kModes = MakeModes();

/// A run, and the bits of its code word; 0 bits for an unknown one. Runs from 64 on go on.
struct RunEntry {
  uint16_t run = 0;
  uint8_t length = 0;
};

/// Code words of runs by their first bits, in two tables: long code words begin with zeros, so they
/// are found by their last bits, short ones by their first.
template <int kBits, int kZeros, int kShortBits>
struct RunTable {
  static constexpr unsigned kLongOnes = 1u << (kBits - kZeros);
  std::array<RunEntry, kLongOnes + (1u << kShortBits)> entries{};

  constexpr explicit RunTable(const G4RunCodes& runs) {
    for (size_t i = 0; i < runs.codes.size(); i++) {
      const G4Code& code = runs.codes[i];
      const auto run =
          static_cast<uint16_t>(i < kG4ShortRuns ? i : (i - kG4ShortRuns + 1) * kG4ShortRuns);
      const RunEntry entry{run, code.length};
      const unsigned first = static_cast<unsigned>(code.bits) << (kBits - code.length);
      for (unsigned bits = first; bits < first + (1u << (kBits - code.length)); bits++) {
        entries[IndexOf(bits)] = entry;
      }
    }
  }

  static constexpr unsigned IndexOf(unsigned bits) {
    return bits < kLongOnes ? bits : kLongOnes + (bits >> (kBits - kShortBits));
  }
  RunEntry At(uint64_t window) const {
    return entries[IndexOf(static_cast<unsigned>(window >> (kWindowBits - kBits)))];
  }
};

constexpr RunTable<12, 7, 9> kWhites(kG4WhiteRuns);
constexpr RunTable<13, 4, 6> kBlacks(kG4BlackRuns);

/// Changes that are copied at a time.
constexpr int kCopied = 4;
static_assert(kCopied <= G4Changes::kSlack);

}  // namespace

G4Decoder::G4Decoder(std::span<const uint8_t> strip, int width, const G4Bits& bits)
    : G4Decoder(NextBytes(), width, bits) {
  piece_ = strip;
}

G4Decoder::G4Decoder(NextBytes next, int width, const G4Bits& bits)
    : bits_(bits),
      width_(width),
      next_(std::move(next)),
      above_(width),
      here_(width),
      words_(static_cast<size_t>(width) / kWindowBits + 1) {
  Paint();
}

bool G4Decoder::NextPiece() {
  if (isAtEnd_) return false;
  piece_ = next_ ? next_() : std::span<const uint8_t>();
  isAtEnd_ = piece_.empty();
  return !isAtEnd_;
}

/// Fills the window. Behind the end of the strip there are zeros, which no code word begins with.
template <bool isLowBitFirst>
inline void G4Decoder::Refill() {
  if (piece_.size() >= sizeof window_) {
    uint64_t word;
    std::memcpy(&word, piece_.data(), sizeof word);
    if constexpr (isLowBitFirst) word = ReversedBitsOfBytes(word);
    window_ |= __builtin_bswap64(word) >> there_;
    piece_ = piece_.subspan(static_cast<size_t>(kWindowBits - 1 - there_) >> 3);
    there_ |= kRefilled;
    return;
  }
  while (there_ < kRefilled && (!piece_.empty() || NextPiece())) {
    uint64_t byte = piece_.front();
    if constexpr (isLowBitFirst) byte = ReversedBitsOfBytes(byte) & 0xFF;
    // The bits can be there already.
    window_ |= byte << (kRefilled - there_);
    there_ += 8;
    piece_ = piece_.subspan(1);
  }
}

inline void G4Decoder::Consume(int count) {
  window_ <<= count;
  there_ -= count;
}

/// The length of the next run, or a negative number.
template <bool isLowBitFirst>
inline int G4Decoder::ReadRun(bool isBlack) {
  int run = 0;
  for (;;) {
    if (there_ < kEnough) Refill<isLowBitFirst>();
    const RunEntry entry = isBlack ? kBlacks.At(window_) : kWhites.At(window_);
    if (entry.length == 0 || entry.length > there_) return -1;
    Consume(entry.length);
    run += entry.run;
    if (entry.run < kG4ShortRuns) return run;
    if (run > width_) return -1;
  }
}

template <bool isLowBitFirst>
bool G4Decoder::ReadChanges() {
  const int width = width_;
  const int32_t* const above = above_.Places();
  int32_t* const here = here_.Places();
  const int lastAbove = above_.Count();
  // Left of the next change, of the change above that counts, number of changes.
  int left = -1, b = 0, count = 0;
  isSame_ = true;
  for (;;) {
    if (there_ < kEnough) Refill<isLowBitFirst>();
    // Each 1 puts a change below the next one above.
    const int ones = std::min(std::countl_one(window_), there_);
    if (ones > 0) {
      const int taken = std::min(ones, std::max(lastAbove - b, 0) + 1);
      for (int i = 0; i < taken; i += kCopied) {
        std::memcpy(here + count + i, above + b + i, kCopied * sizeof *here);
      }
      Consume(taken);
      count += taken;
      b += taken;
      left = here[count - 1];
      if (left == width) {
        count--;
        break;
      }
      if (there_ < kEnough) continue;
    }
    const ModeEntry entry = kModes[window_ >> (kWindowBits - kModeBits)];
    if (entry.length > there_) return false;
    Consume(entry.length);
    isSame_ = false;
    if (entry.mode == Mode::vertical) {
      const int place = above[b] + entry.shift;
      if (place <= left || place > width) return false;
      left = place;
      if (left == width) break;
      here[count++] = place;
      b += entry.shift >= 0 ? 1 : -1;
    } else if (entry.mode == Mode::horizontal) {
      const bool isBlack = count % 2 != 0;
      const int first = ReadRun<isLowBitFirst>(isBlack);
      const int second = ReadRun<isLowBitFirst>(!isBlack);
      if (first < 0 || second < 0 || (first == 0 && left >= 0)) return false;
      const int middle = std::max(left, 0) + first;
      left = middle + second;
      if (left > width || (second == 0 && middle < width)) return false;
      if (middle == width) break;
      here[count++] = middle;
      if (left == width) break;
      here[count++] = left;
    } else if (entry.mode == Mode::pass) {
      left = above[b + 1];
      if (left >= width) return false;
      b += 2;
    } else {
      return false;
    }
    while (above[b] <= left) b += 2;
  }
  if (there_ < 0) return false;
  if (!isSame_) here_.End(count);
  return true;
}

bool G4Decoder::ReadRow() {
  const bool isRead = bits_.isLowBitFirst ? ReadChanges<true>() : ReadChanges<false>();
  if (!isRead) return false;
  if (!isSame_) {
    std::swap(above_, here_);
    Paint();
  }
  return true;
}

/// Makes the words of the row from its changes.
void G4Decoder::Paint() {
  const uint64_t white = bits_.isWhiteOne ? ~uint64_t{0} : 0;
  uint64_t* const words = words_.data();
  std::fill(words_.begin(), words_.end(), white);
  const int32_t* place = above_.Places();
  // A change turns all bits from its own to the end of its word and all words up to the next one.
  const auto turn = [&](size_t word, int bit) {
    words[word] ^= __builtin_bswap64(~uint64_t{0} >> bit);
  };
  for (; *place < width_; place += 2) {
    const auto first = static_cast<unsigned>(place[0]), end = static_cast<unsigned>(place[1]);
    turn(first / kWindowBits, static_cast<int>(first % kWindowBits));
    turn(end / kWindowBits, static_cast<int>(end % kWindowBits));
    for (size_t i = first / kWindowBits + 1; i <= end / kWindowBits; i++) words[i] = ~words[i];
  }
}

bool G4Decoder::Decode(uint8_t* target) {
  isIrregular_ = isIrregular_ || !ReadRow();
  if (isIrregular_) return false;
  row_++;
  std::memcpy(target, words_.data(), (static_cast<size_t>(width_) + 7) / 8);
  return true;
}

size_t G4Decoder::Decode(uint8_t* target, size_t stride, size_t rows) {
  size_t done = 0;
  while (done < rows && Decode(target)) {
    done++;
    target += stride;
  }
  return done;
}

}  // namespace rasterkit::detail
