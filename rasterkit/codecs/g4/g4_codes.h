#pragma once

#include <array>
#include <cstdint>

namespace rasterkit::detail {

/// Bits of a code word, the first one in the highest of `length` bits.
struct G4Code {
  uint16_t bits = 0;
  uint8_t length = 0;
};

/// Runs up to this many pixels have a code word of their own; longer ones are made up of multiples
/// of 64.
inline constexpr int kG4ShortRuns = 64;
/// Code words of multiples of 64, from 64 to 2560.
inline constexpr int kG4MakeUps = 40;
inline constexpr int kG4LongestMakeUp = 64 * kG4MakeUps;

/// Code words of the runs of one color: those of 0 to 63 pixels, then those of 64, 128 ... 2560.
struct G4RunCodes {
  std::array<G4Code, kG4ShortRuns + kG4MakeUps> codes;
};

namespace g4 {

/// Reads code words, written with 0 and 1, apart by spaces.
consteval G4RunCodes ParseRunCodes(const char* text) {
  G4RunCodes result{};
  for (G4Code& code : result.codes) {
    for (; *text == ' '; ++text) {
    }
    for (; *text == '0' || *text == '1'; ++text) {
      code.bits = static_cast<uint16_t>(code.bits * 2 + (*text - '0'));
      code.length++;
    }
  }
  return result;
}

}  // namespace g4

// ITU-T T.4, tables 2 and 3. The last line of both, 1792 to 2560 pixels, is the same.

inline constexpr G4RunCodes kG4WhiteRuns = g4::ParseRunCodes(
    "00110101 000111 0111 1000 1011 1100 1110 1111 10011 10100 00111 01000 001000 000011 110100 "
    "110101 101010 101011 0100111 0001100 0001000 0010111 0000011 0000100 0101000 0101011 0010011 "
    "0100100 0011000 00000010 00000011 00011010 00011011 00010010 00010011 00010100 00010101 "
    "00010110 00010111 00101000 00101001 00101010 00101011 00101100 00101101 00000100 00000101 "
    "00001010 00001011 01010010 01010011 01010100 01010101 00100100 00100101 01011000 01011001 "
    "01011010 01011011 01001010 01001011 00110010 00110011 00110100 "
    "11011 10010 010111 0110111 00110110 00110111 01100100 01100101 01101000 01100111 011001100 "
    "011001101 011010010 011010011 011010100 011010101 011010110 011010111 011011000 011011001 "
    "011011010 011011011 010011000 010011001 010011010 011000 010011011 "
    "00000001000 00000001100 00000001101 000000010010 000000010011 000000010100 000000010101 "
    "000000010110 000000010111 000000011100 000000011101 000000011110 000000011111");

inline constexpr G4RunCodes kG4BlackRuns = g4::ParseRunCodes(
    "0000110111 010 11 10 011 0011 0010 00011 000101 000100 0000100 0000101 0000111 00000100 "
    "00000111 000011000 0000010111 0000011000 0000001000 00001100111 00001101000 00001101100 "
    "00000110111 00000101000 00000010111 00000011000 000011001010 000011001011 000011001100 "
    "000011001101 000001101000 000001101001 000001101010 000001101011 000011010010 000011010011 "
    "000011010100 000011010101 000011010110 000011010111 000001101100 000001101101 000011011010 "
    "000011011011 000001010100 000001010101 000001010110 000001010111 000001100100 000001100101 "
    "000001010010 000001010011 000000100100 000000110111 000000111000 000000100111 000000101000 "
    "000001011000 000001011001 000000101011 000000101100 000001011010 000001100110 000001100111 "
    "0000001111 000011001000 000011001001 000001011011 000000110011 000000110100 000000110101 "
    "0000001101100 0000001101101 0000001001010 0000001001011 0000001001100 0000001001101 "
    "0000001110010 0000001110011 0000001110100 0000001110101 0000001110110 0000001110111 "
    "0000001010010 0000001010011 0000001010100 0000001010101 0000001011010 0000001011011 "
    "0000001100100 0000001100101 "
    "00000001000 00000001100 00000001101 000000010010 000000010011 000000010100 000000010101 "
    "000000010110 000000010111 000000011100 000000011101 000000011110 000000011111");

// ITU-T T.6, table 1.

inline constexpr G4Code kG4Pass{0b0001, 4};
inline constexpr G4Code kG4Horizontal{0b001, 3};
/// A change 3, 2, 1 pixels left of the one above, below it, 1, 2, 3 pixels right of it.
inline constexpr std::array<G4Code, 7> kG4Vertical{{{0b0000010, 7},
                                                    {0b000010, 6},
                                                    {0b010, 3},
                                                    {0b1, 1},
                                                    {0b011, 3},
                                                    {0b000011, 6},
                                                    {0b0000011, 7}}};
inline constexpr int kG4MostVertical = 3;
/// Two of them end a strip.
inline constexpr G4Code kG4EndOfLine{1, 12};

/// How bits of rows and of compressed bytes stand.
struct G4Bits {
  /// The first compressed bit is the lowest of its byte (fill order 2).
  bool isLowBitFirst = false;
  /// A white pixel is a 1 in the rows. Black is what begins second: rows start with a white run,
  /// which may have no pixels.
  bool isWhiteOne = false;
};

/// Reverses the order of the bits in each byte.
inline uint64_t ReversedBitsOfBytes(uint64_t word) {
  word = (word >> 4 & 0x0F0F0F0F0F0F0F0Fu) | (word & 0x0F0F0F0F0F0F0F0Fu) << 4;
  word = (word >> 2 & 0x3333333333333333u) | (word & 0x3333333333333333u) << 2;
  return (word >> 1 & 0x5555555555555555u) | (word & 0x5555555555555555u) << 1;
}

}  // namespace rasterkit::detail
