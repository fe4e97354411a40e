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
constexpr unsigned kByteBits = 8;
/// Bits after a refill, unless the strip ends.
constexpr int kRefilled = 56;
/// Enough for a mode and for a run.
constexpr int kEnough = 24;

enum class Mode : uint8_t { none, ones, pass, horizontal, vertical };

/// Code words at the beginning of some bits: ones, each of which puts a change below the one above,
/// and the one after them.
struct ModeEntry {
  Mode mode = Mode::none;
  /// Number of ones, and bits of all code words.
  uint8_t ones = 0, length = 0;
  /// Pixels from the change above, plus 3 for `vertical`.
  uint8_t shift = 0;
};

constexpr int kModeBits = 10;

template <class Table, class Entry>
constexpr void Enter(Table& table, const G4Code& code, int bits, const Entry& entry) {
  const int rest = bits - code.length;
  for (unsigned i = 0; i < 1u << rest; i++) {
    table[(static_cast<unsigned>(code.bits) << rest) + i] = entry;
  }
}

constexpr std::array<ModeEntry, 1 << kModeBits> MakeModes() {
  std::array<ModeEntry, 1 << kModeBits> modes{};
  for (int ones = 0; ones <= kModeBits; ones++) {
    // Followed by a 0 of an unknown code word, or by one that does not fit.
    const auto number = static_cast<uint8_t>(ones);
    const auto bits = static_cast<uint16_t>((1u << ones) - 1);
    const ModeEntry entry{ones > 0 ? Mode::ones : Mode::none, number, number, 0};
    Enter(modes, {bits, number}, kModeBits, entry);
    const auto enter = [&](Mode mode, const G4Code& code, int shift) {
      const auto length = static_cast<uint8_t>(ones + code.length);
      if (length > kModeBits) return;
      Enter(modes, {static_cast<uint16_t>(bits << code.length | code.bits), length}, kModeBits,
            ModeEntry{mode, number, length, static_cast<uint8_t>(shift)});
    };
    enter(Mode::pass, kG4Pass, 0);
    enter(Mode::horizontal, kG4Horizontal, 0);
    for (int shift = 0; shift <= 2 * kG4MostVertical; shift++) {
      if (shift == kG4MostVertical) continue;
      enter(Mode::vertical, kG4Vertical[static_cast<size_t>(shift)], shift);
    }
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
constexpr int kCopied = 8;
static_assert(kCopied <= G4Changes::kSlack);

/// Turns the bits from `first` to `end - 1`.
void TurnBits(uint64_t* words, int32_t first, int32_t end) {
  size_t word = static_cast<uint32_t>(first) / kWindowBits;
  const size_t last = static_cast<uint32_t>(end) / kWindowBits;
  // All bits from a place to the end of its word.
  const uint64_t fromFirst = ~uint64_t{0} >> static_cast<uint32_t>(first) % kWindowBits;
  const uint64_t fromEnd = ~uint64_t{0} >> static_cast<uint32_t>(end) % kWindowBits;
  if (word == last) {
    words[word] ^= __builtin_bswap64(fromFirst ^ fromEnd);
    return;
  }
  words[word] ^= __builtin_bswap64(fromFirst);
  for (++word; word != last; ++word) words[word] = ~words[word];
  words[last] ^= __builtin_bswap64(~fromEnd);
}

/// The first bits of a number, as many as a change is away from the one above, for each shift.
constexpr std::array<uint32_t, 2 * kG4MostVertical + 1> kShiftedBits = {
    0xE0000000, 0xC0000000, 0x80000000, 0, 0x80000000, 0xC0000000, 0xE0000000};

/// Turns the bits between a change and the one above.
inline void TurnShifted(uint64_t* words, int32_t above, int32_t here, unsigned shift) {
  const auto first = static_cast<uint32_t>(std::min(above, here));
  uint8_t* const bytes = reinterpret_cast<uint8_t*>(words) + first / kByteBits;
  uint32_t bits;
  std::memcpy(&bits, bytes, sizeof bits);
  bits ^= __builtin_bswap32(kShiftedBits[shift] >> first % kByteBits);
  std::memcpy(bytes, &bits, sizeof bits);
}

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
      words_(static_cast<size_t>(width) / kWindowBits + 2,
             bits.isWhiteOne ? ~uint64_t{0} : uint64_t{0}) {}

bool G4Decoder::NextPiece() {
  if (isAtEnd_) return false;
  piece_ = next_ ? next_() : std::span<const uint8_t>();
  isAtEnd_ = piece_.empty();
  return !isAtEnd_;
}

/// The next bits of the strip. Never referred to, so that it stays in registers while a row is
/// read.
template <bool isLowBitFirst>
struct G4Decoder::Window {
  uint64_t bits;
  /// Bits of `bits` that are taken from the bytes; those behind them can be there, too.
  int there;
  const uint8_t *next, *end;

  explicit Window(const G4Decoder& decoder)
      : bits(decoder.window_),
        there(decoder.there_),
        next(decoder.piece_.data()),
        end(next + decoder.piece_.size()) {}

  /// Makes sure that a mode or a part of a run can be read, unless the strip ends: behind it there
  /// are zeros, which no code word begins with.
  [[gnu::always_inline]] void Fill(G4Decoder& decoder) {
    if (there >= kEnough) return;
    if (end - next < static_cast<std::ptrdiff_t>(sizeof bits)) {
      *this = FilledSlowly(decoder, *this);
      return;
    }
    uint64_t word;
    std::memcpy(&word, next, sizeof word);
    if constexpr (isLowBitFirst) word = ReversedBitsOfBytes(word);
    bits |= __builtin_bswap64(word) >> there;
    next += (kWindowBits - 1 - there) >> 3;
    there |= kRefilled;
  }
  int Ones() const { return std::min(std::countl_one(bits), there); }
  /// False if the strip has fewer bits.
  [[gnu::always_inline]] bool Take(int count) {
    bits <<= count;
    there -= count;
    return there >= 0;
  }
  void Store(G4Decoder& decoder) const {
    decoder.window_ = bits;
    decoder.there_ = there;
    decoder.piece_ = {next, end};
  }

 private:
  [[gnu::noinline]] static Window FilledSlowly(G4Decoder& decoder, Window window) {
    while (window.there < kRefilled) {
      if (window.next == window.end) {
        if (!decoder.NextPiece()) break;
        window.next = decoder.piece_.data();
        window.end = window.next + decoder.piece_.size();
      }
      uint64_t byte = *window.next++;
      if constexpr (isLowBitFirst) byte = ReversedBitsOfBytes(byte) & 0xFF;
      window.bits |= byte << (kRefilled - window.there);
      window.there += 8;
    }
    return window;
  }
};

namespace {

/// The length of the next run, or a negative number.
template <class Window, class Table>
[[gnu::always_inline]] inline int ReadRun(G4Decoder& decoder, Window& window, const Table& table,
                                          int width) {
  int run = 0;
  for (;;) {
    window.Fill(decoder);
    const RunEntry entry = table.At(window.bits);
    if (entry.length == 0 || !window.Take(entry.length)) return -1;
    run += entry.run;
    if (entry.run < kG4ShortRuns) return run;
    if (run > width) return -1;
  }
}

}  // namespace

template <bool isLowBitFirst>
bool G4Decoder::ReadChanges() {
  Window<isLowBitFirst> window(*this);
  const int width = width_;
  const int32_t* const above = above_.Places();
  int32_t* const here = here_.Places();
  const int lastAbove = above_.Count();
  // The words hold the row above. Each change turns all bits right of it: those of the changes
  // above up to `b` and of the changes here, of which any two can be taken together.
  uint64_t* const words = words_.data();
  // Left of the next change, the change above that counts, number of changes.
  int left = -1, b = 0, count = 0;
  for (;;) {
    window.Fill(*this);
    const ModeEntry entry = kModes[window.bits >> (kWindowBits - kModeBits)];
    int ones = entry.ones;
    const bool isChain = ones == kModeBits;
    if (isChain) ones = window.Ones();
    const bool isLast = b + ones > lastAbove && ones > 0;
    if (isLast) ones = std::max(lastAbove - b, 0) + 1;
    // No branch for the usual numbers: they are hard to foresee.
    std::memcpy(here + count, above + b, kCopied * sizeof *here);
    for (int i = kCopied; i < ones; i += kCopied) {
      std::memcpy(here + count + i, above + b + i, kCopied * sizeof *here);
    }
    if (isLast) {
      // At the right edge.
      if (!window.Take(ones)) return false;
      count += ones - 1;
      b += ones;
      break;
    }
    count += ones;
    b += ones;
    left = ones > 0 ? above[b - 1] : left;
    if (!window.Take(isChain ? ones : entry.length)) return false;
    if (entry.mode == Mode::ones) continue;
    if (entry.mode == Mode::vertical) {
      const int place = above[b] + entry.shift - kG4MostVertical;
      if (place <= left || place > width) return false;
      left = place;
      if (left == width) break;
      here[count++] = place;
      TurnShifted(words, above[b], place, entry.shift);
      b++;
      // Left of the change above, the one before that can come again. Rarely.
      if (__builtin_expect_with_probability(above[b - 2] > left, 0, 0.999)) {
        TurnBits(words, above[b - 2], above[b - 1]);
        b -= 2;
      }
    } else if (entry.mode == Mode::horizontal) {
      const bool isBlack = count % 2 != 0;
      const int first =
          isBlack ? ReadRun(*this, window, kBlacks, width) : ReadRun(*this, window, kWhites, width);
      const int second =
          isBlack ? ReadRun(*this, window, kWhites, width) : ReadRun(*this, window, kBlacks, width);
      if (first < 0 || second < 0 || (first == 0 && left >= 0)) return false;
      const int middle = std::max(left, 0) + first;
      left = middle + second;
      if (left > width || (second == 0 && middle < width)) return false;
      if (middle == width) break;
      here[count++] = middle;
      TurnBits(words, middle, left);
      if (left == width) break;
      here[count++] = left;
    } else if (entry.mode == Mode::pass) {
      left = above[b + 1];
      if (left >= width) return false;
      TurnBits(words, above[b], left);
      b += 2;
    } else {
      return false;
    }
    for (; above[b] <= left; b += 2) TurnBits(words, above[b], above[b + 1]);
  }
  for (; b < lastAbove; b += 2) TurnBits(words, above[b], above[b + 1]);
  window.Store(*this);
  here_.End(count);
  return true;
}

bool G4Decoder::ReadRow() {
  const bool isRead = bits_.isLowBitFirst ? ReadChanges<true>() : ReadChanges<false>();
  if (isRead) std::swap(above_, here_);
  return isRead;
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
