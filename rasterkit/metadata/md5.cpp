#include <bit>
#include <cmath>
#include <cstring>
#include <vector>

#include <rasterkit/metadata/md5.h>

namespace rasterkit::detail {
namespace {

constexpr size_t kBlockBytes = 64;

/// The constants are the first 32 bits of the fraction of |sin(i + 1)|; doubles hold them exactly.
std::array<uint32_t, 64> MakeSines() {
  std::array<uint32_t, 64> sines;
  for (size_t i = 0; i < sines.size(); ++i) {
    sines[i] =
        static_cast<uint32_t>(std::floor(std::abs(std::sin(static_cast<double>(i + 1))) * 0x1p32));
  }
  return sines;
}

using State = std::array<uint32_t, 4>;

struct Mixed {
  uint32_t value;
  size_t word;
};

/// The mix of the three last words in step i, and the word of the block that is added.
Mixed Mix(const State& s, size_t i) {
  switch (i / 16) {
    case 0:
      return {(s[1] & s[2]) | (~s[1] & s[3]), i};
    case 1:
      return {(s[3] & s[1]) | (~s[3] & s[2]), (5 * i + 1) % 16};
    case 2:
      return {s[1] ^ s[2] ^ s[3], (3 * i + 5) % 16};
    default:
      return {s[2] ^ (s[1] | ~s[3]), 7 * i % 16};
  }
}

void AddBlock(State& state, const uint8_t* block) {
  static const std::array<uint32_t, 64> sines = MakeSines();
  constexpr int kTurns[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};
  std::array<uint32_t, 16> words;
  for (size_t i = 0; i < words.size(); ++i) {
    const uint8_t* at = block + 4 * i;
    words[i] =
        uint32_t{at[0]} | uint32_t{at[1]} << 8 | uint32_t{at[2]} << 16 | uint32_t{at[3]} << 24;
  }
  State s = state;
  for (size_t i = 0; i < sines.size(); ++i) {
    const Mixed mixed = Mix(s, i);
    const uint32_t sum = s[0] + mixed.value + sines[i] + words[mixed.word];
    s = {s[3], s[1] + std::rotl(sum, kTurns[i / 16][i % 4]), s[1], s[2]};
  }
  for (size_t i = 0; i < s.size(); ++i) state[i] += s[i];
}

}  // namespace

std::array<uint8_t, 16> Md5(std::span<const uint8_t> bytes) {
  State state = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476};
  size_t at = 0;
  for (; at + kBlockBytes <= bytes.size(); at += kBlockBytes) AddBlock(state, &bytes[at]);
  std::vector<uint8_t> rest(bytes.begin() + static_cast<std::ptrdiff_t>(at), bytes.end());
  rest.push_back(0x80);
  while (rest.size() % kBlockBytes != kBlockBytes - 8) rest.push_back(0);
  for (int i = 0; i < 8; ++i) {
    rest.push_back(static_cast<uint8_t>(uint64_t{bytes.size()} * 8 >> 8 * i));
  }
  for (size_t i = 0; i < rest.size(); i += kBlockBytes) AddBlock(state, &rest[i]);
  std::array<uint8_t, 16> digest;
  for (size_t i = 0; i < digest.size(); ++i) {
    digest[i] = static_cast<uint8_t>(state[i / 4] >> 8 * (i % 4));
  }
  return digest;
}

std::string Md5Text(std::span<const uint8_t> bytes) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  for (const uint8_t byte : Md5(bytes)) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text;
}

}  // namespace rasterkit::detail
