#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include <rasterkit/codecs/g4/g4_codes.h>

#include "tests/reference/g4_reference.h"

namespace rasterkit::tests {

/// Rows of (width + 7) / 8 bytes without padding between them.
struct PackedRows {
  int width = 0;
  size_t height = 0;
  std::vector<uint8_t> bytes;

  PackedRows(int w, size_t h) : width(w), height(h), bytes(RowBytes() * h) {}
  size_t RowBytes() const { return (static_cast<size_t>(width) + 7) / 8; }
  uint8_t* Row(size_t y) { return bytes.data() + y * RowBytes(); }
  const uint8_t* Row(size_t y) const { return bytes.data() + y * RowBytes(); }
  bool At(int x, size_t y) const { return (Row(y)[x / 8] >> (7 - x % 8) & 1) != 0; }
  void Set(int x, size_t y, bool isBlack) {
    const auto bit = static_cast<uint8_t>(128 >> x % 8);
    uint8_t& byte = Row(y)[x / 8];
    byte = static_cast<uint8_t>(isBlack ? byte | bit : byte & ~bit);
  }
  /// All bits turned, those after the last pixel too.
  PackedRows Turned() const {
    PackedRows turned = *this;
    for (uint8_t& byte : turned.bytes) byte = static_cast<uint8_t>(~byte);
    return turned;
  }
  std::vector<reference::G4Row> Pixels() const {
    std::vector<reference::G4Row> rows(height, reference::G4Row(static_cast<size_t>(width)));
    for (size_t y = 0; y < height; y++) {
      for (int x = 0; x < width; x++) rows[y][static_cast<size_t>(x)] = At(x, y);
    }
    return rows;
  }
};

inline PackedRows PackedOf(const std::vector<reference::G4Row>& rows, int width, size_t height) {
  PackedRows packed(width, height);
  for (size_t y = 0; y < rows.size(); y++) {
    for (int x = 0; x < width; x++) packed.Set(x, y, rows[y][static_cast<size_t>(x)]);
  }
  return packed;
}

/// Rows of runs of about `run` pixels, whose edges move by up to `jitter` from row to row; some are
/// new, some white, some black.
inline PackedRows RandomRows(std::mt19937& random, int width, size_t height, int run, int jitter) {
  PackedRows rows(width, height);
  const auto upTo = [&](int most) {
    return static_cast<int>(random() % static_cast<unsigned>(most + 1));
  };
  std::vector<int> edges;
  for (size_t y = 0; y < height; y++) {
    const int kind = upTo(15);
    if (kind == 0 || edges.empty()) {
      edges.clear();
      for (int x = upTo(run); x < width; x += 1 + upTo(2 * run)) edges.push_back(x);
    } else if (kind == 1) {
      edges.clear();
    } else if (kind == 2) {
      edges.assign(1, 0);
    } else if (kind > 4) {
      for (int& edge : edges) edge += upTo(2 * jitter) - jitter;
    }
    bool isBlack = false;
    size_t next = 0;
    for (int x = 0; x < width; x++) {
      for (; next < edges.size() && edges[next] <= x; next++) isBlack = !isBlack;
      rows.Set(x, y, isBlack);
    }
  }
  return rows;
}

}  // namespace rasterkit::tests
