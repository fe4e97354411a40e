#include <array>
#include <cstddef>
#include <utility>

#include <rasterkit/drawing/ink/ternary_rows.h>

namespace rasterkit::detail {
namespace {

/// Bit `first` of the truth table of a unary function.
template <unsigned table>
uint32_t Unary(uint32_t a) {
  if constexpr (table == 0) return 0;
  if constexpr (table == 1) return ~a;
  if constexpr (table == 2) return a;
  return ~uint32_t{0};
}

/// The upper half of the truth table applies where b is 1, the lower half where it is 0.
template <unsigned table>
uint32_t Binary(uint32_t b, uint32_t a) {
  constexpr unsigned kLow = table & 3, kHigh = table >> 2;
  if constexpr (kLow == kHigh) {
    return Unary<kLow>(a);
  } else {
    return (Unary<kHigh>(a) & b) | (Unary<kLow>(a) & ~b);
  }
}

template <unsigned table>
uint32_t Ternary(uint32_t c, uint32_t b, uint32_t a) {
  constexpr unsigned kLow = table & 15, kHigh = table >> 4;
  if constexpr (kLow == kHigh) {
    return Binary<kLow>(b, a);
  } else {
    return (Binary<kHigh>(b, a) & c) | (Binary<kLow>(b, a) & ~c);
  }
}

using Row = void (*)(const uint32_t*, const uint32_t*, uint32_t*, int);

template <unsigned table>
void RowOf(const uint32_t* brush, const uint32_t* source, uint32_t* picture, int count) {
  for (int i = 0; i < count; ++i) picture[i] = Ternary<table>(brush[i], source[i], picture[i]);
}

template <size_t... tables>
constexpr std::array<Row, 256> MakeRows(std::index_sequence<tables...>) {
  return {RowOf<tables>...};
}

constexpr std::array<Row, 256> kRows = MakeRows(std::make_index_sequence<256>());

/// Returns round(value / 255) for values up to 255 * 255.
constexpr uint32_t Divide255(uint32_t value) {
  return (value + 128 + ((value + 128) >> 8)) >> 8;
}

uint32_t Mix(uint32_t drawn, uint32_t picture, uint32_t coverage) {
  uint32_t mixed = 0;
  for (int shift = 0; shift < 32; shift += 8) {
    const uint32_t d = (drawn >> shift) & 255, p = (picture >> shift) & 255;
    mixed |= Divide255(d * coverage + p * (255 - coverage)) << shift;
  }
  return mixed;
}

}  // namespace

void TernaryRow(TernaryCode code, const uint32_t* brush, const uint32_t* source, uint32_t* picture,
                int count) {
  kRows[code](brush, source, picture, count);
}

void MixRow(const uint32_t* drawn, const uint8_t* coverage, uint32_t* picture, int count) {
  for (int i = 0; i < count; ++i) {
    if (coverage[i] == 255) {
      picture[i] = drawn[i];
    } else if (coverage[i] != 0) {
      picture[i] = Mix(drawn[i], picture[i], coverage[i]);
    }
  }
}

}  // namespace rasterkit::detail
