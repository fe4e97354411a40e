#pragma once

// ITU-T T.6, written as the recommendation puts it: pixel by pixel, bit by bit.

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <rasterkit/codecs/g4/g4_codes.h>

namespace rasterkit::reference {

/// Pixels of a row, true for black.
using G4Row = std::vector<bool>;

/// Bits as text of 0 and 1.
inline std::string TextOf(const detail::G4Code& code) {
  std::string text;
  for (int i = code.length - 1; i >= 0; i--) text += (code.bits >> i & 1) != 0 ? '1' : '0';
  return text;
}

inline bool ColorAt(const G4Row& row, int x) {
  return x >= 0 && row[static_cast<size_t>(x)];
}

/// The first pixel right of `x` that differs from the pixel before it; the width if there is none.
inline int NextChange(const G4Row& row, int x) {
  const int width = static_cast<int>(row.size());
  for (int i = x + 1; i < width; i++) {
    if (ColorAt(row, i) != ColorAt(row, i - 1)) return i;
  }
  return width;
}

/// The first change of the row above right of `a0` to the color that is not `color`.
inline int ChangeAbove(const G4Row& above, int a0, bool color) {
  const int width = static_cast<int>(above.size());
  int b1 = NextChange(above, a0);
  while (b1 < width && ColorAt(above, b1) == color) b1 = NextChange(above, b1);
  return b1;
}

inline std::string TextOfRun(bool isBlack, int run) {
  const auto& codes = isBlack ? detail::kG4BlackRuns.codes : detail::kG4WhiteRuns.codes;
  std::string text;
  for (; run >= 2560 + 64; run -= 2560) text += TextOf(codes[64 + 39]);
  if (run >= 64) text += TextOf(codes[static_cast<size_t>(64 + run / 64 - 1)]);
  return text + TextOf(codes[static_cast<size_t>(run % 64)]);
}

inline std::string G4TextOfRow(const G4Row& above, const G4Row& row) {
  const int width = static_cast<int>(row.size());
  std::string text;
  int a0 = -1;
  bool color = false;
  while (a0 < width) {
    const int a1 = NextChange(row, a0), b1 = ChangeAbove(above, a0, color);
    const int b2 = NextChange(above, b1);
    if (b2 < a1) {
      text += TextOf(detail::kG4Pass);
      a0 = b2;
    } else if (a1 - b1 >= -3 && a1 - b1 <= 3) {
      text += TextOf(detail::kG4Vertical[static_cast<size_t>(a1 - b1 + 3)]);
      a0 = a1;
      color = !color;
    } else {
      const int a2 = NextChange(row, a1);
      text += TextOf(detail::kG4Horizontal) + TextOfRun(color, a1 - (a0 < 0 ? 0 : a0)) +
              TextOfRun(!color, a2 - a1);
      a0 = a2;
    }
  }
  return text;
}

/// A strip with its end, in whole bytes.
inline std::vector<uint8_t> EncodeG4Reference(const std::vector<G4Row>& rows, bool isLowBitFirst) {
  std::string text;
  for (size_t y = 0; y < rows.size(); y++) {
    text += G4TextOfRow(y == 0 ? G4Row(rows[0].size()) : rows[y - 1], rows[y]);
  }
  text += "000000000001000000000001";
  while (text.size() % 8 != 0) text += '0';
  std::vector<uint8_t> bytes(text.size() / 8);
  for (size_t i = 0; i < text.size(); i++) {
    if (text[i] == '0') continue;
    bytes[i / 8] = static_cast<uint8_t>(bytes[i / 8] | (isLowBitFirst ? 1 << i % 8 : 128 >> i % 8));
  }
  return bytes;
}

/// Reads code words of a strip. Nothing where it ends or a word is unknown.
class G4ReferenceBits {
 public:
  G4ReferenceBits(const std::vector<uint8_t>& bytes, bool isLowBitFirst) {
    for (const uint8_t byte : bytes) {
      for (int i = 0; i < 8; i++) {
        text_ += (byte >> (isLowBitFirst ? i : 7 - i) & 1) != 0 ? '1' : '0';
      }
    }
  }

  /// The number that belongs to the next code word.
  std::optional<int> Next(const std::map<std::string, int>& codes) {
    for (size_t length = 1; length <= 13 && at_ + length <= text_.size(); length++) {
      const auto found = codes.find(text_.substr(at_, length));
      if (found == codes.end()) continue;
      at_ += length;
      return found->second;
    }
    return std::nullopt;
  }

  std::optional<int> NextRun(const std::map<std::string, int>& codes) {
    int run = 0;
    for (;;) {
      const auto part = Next(codes);
      if (!part) return part;
      run += *part;
      if (*part < 64) return run;
    }
  }

 private:
  std::string text_;
  size_t at_ = 0;
};

inline std::map<std::string, int> MapOfRuns(const detail::G4RunCodes& runs) {
  std::map<std::string, int> codes;
  for (int i = 0; i < 64 + 40; i++) {
    codes[TextOf(runs.codes[static_cast<size_t>(i)])] = i < 64 ? i : (i - 63) * 64;
  }
  return codes;
}

/// The next row, or nothing if it is not exactly as an encoder can write it.
inline std::optional<G4Row> DecodeG4Row(G4ReferenceBits& bits, const G4Row& above) {
  constexpr int kPass = 100, kHorizontal = 101;
  static const std::map<std::string, int> kModes = {
      {"1", 0},       {"011", 1},      {"010", -1},     {"000011", 2},       {"000010", -2},
      {"0000011", 3}, {"0000010", -3}, {"0001", kPass}, {"001", kHorizontal}};
  static const std::map<std::string, int> kRuns[] = {MapOfRuns(detail::kG4WhiteRuns),
                                                     MapOfRuns(detail::kG4BlackRuns)};
  const int width = static_cast<int>(above.size());
  G4Row row(above.size());
  int a0 = -1;
  bool color = false;
  const auto paint = [&](int end, bool isBlack) {
    for (int x = a0 < 0 ? 0 : a0; x < end; x++) row[static_cast<size_t>(x)] = isBlack;
    a0 = end;
  };
  while (a0 < width) {
    const auto mode = bits.Next(kModes);
    if (!mode) return std::nullopt;
    const int b1 = ChangeAbove(above, a0, color);
    if (*mode == kPass) {
      const int b2 = NextChange(above, b1);
      if (b2 >= width) return std::nullopt;
      paint(b2, color);
    } else if (*mode == kHorizontal) {
      const auto first = bits.NextRun(kRuns[color ? 1 : 0]);
      const auto second = bits.NextRun(kRuns[color ? 0 : 1]);
      if (!first || !second || (*first == 0 && a0 >= 0)) return std::nullopt;
      const int a1 = (a0 < 0 ? 0 : a0) + *first, a2 = a1 + *second;
      if (a2 > width || (*second == 0 && a1 < width)) return std::nullopt;
      paint(a1, color);
      paint(a2, !color);
    } else {
      const int a1 = b1 + *mode;
      if (a1 <= a0 || a1 > width) return std::nullopt;
      paint(a1, color);
      color = !color;
    }
  }
  return row;
}

/// The regular rows of a strip, at most `height`.
inline std::vector<G4Row> DecodeG4Reference(const std::vector<uint8_t>& strip, int width,
                                            size_t height, bool isLowBitFirst) {
  G4ReferenceBits bits(strip, isLowBitFirst);
  std::vector<G4Row> rows;
  G4Row above(static_cast<size_t>(width));
  while (rows.size() < height) {
    auto row = DecodeG4Row(bits, above);
    if (!row) break;
    above = *row;
    rows.push_back(std::move(*row));
  }
  return rows;
}

}  // namespace rasterkit::reference
