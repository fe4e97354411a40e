#pragma once

#include <cstdint>

/// Words of 15 and 16 bits as colors, written straight from the rule.
namespace rasterkit::reference {

/// A channel of `bits` bits as eight: its bits, and from the first one on again what is missing.
inline int WidenedChannel(int value, int bits) {
  int widened = 0;
  for (int i = 0; i < 8; i++) widened = widened * 2 + value / (1 << (bits - 1 - i % bits)) % 2;
  return widened;
}

struct WordColor {
  uint8_t blue, green, red;
};

/// `greenBits` is 5 or 6; red lies above green, blue is lowest.
inline WordColor ColorOfWord(int word, int greenBits) {
  const int green = word / 32 % (1 << greenBits), red = word / (32 << greenBits) % 32;
  return {static_cast<uint8_t>(WidenedChannel(word % 32, 5)),
          static_cast<uint8_t>(WidenedChannel(green, greenBits)),
          static_cast<uint8_t>(WidenedChannel(red, 5))};
}

}  // namespace rasterkit::reference
