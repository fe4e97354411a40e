#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

/// Documents as trees of directories, written and read here without the code under test.
namespace rasterkit::test {

using ByteList = std::vector<uint8_t>;

struct MadeTag {
  uint16_t type = 3;
  uint64_t count = 0;
  /// Little-endian.
  ByteList bytes;
};

/// A directory with everything that it leads to. Tags that hold places are not among `tags`.
struct MadeDirectory {
  std::map<uint16_t, MadeTag> tags;
  /// Encoded strips or tiles; an empty one has no place in the file.
  std::vector<ByteList> blocks;
  bool isTiled = false;
  /// Types of the lists of places and sizes: 3, 4 or 16; 0 leaves the sizes out.
  uint16_t placesType = 4, countsType = 4;
  /// Directories below, by tag, and the types of these tags.
  std::map<uint16_t, std::vector<MadeDirectory>> below;
  std::map<uint16_t, uint16_t> pointerTypes;
  /// Bytes that places of 513, 519, 520 and 521 lead to.
  std::map<uint16_t, std::vector<ByteList>> pieces;

  MadeDirectory& Set(uint16_t tag, uint16_t type, std::vector<uint64_t> numbers);
  MadeDirectory& SetBytes(uint16_t tag, uint16_t type, ByteList bytes);
  uint64_t Number(uint16_t tag, uint64_t otherwise = 0) const;
};

int BytesOfType(uint16_t type);

/// Writes a chain of directories in a random arrangement. Everything stands apart, with gaps of
/// random bytes that `gaps` returns.
ByteList WriteMade(const std::vector<MadeDirectory>& chain, bool isBig, bool isBigEndian,
                   std::mt19937& random, std::vector<ByteList>* gaps = nullptr);

/// Reads a chain of directories; fails the test where the file breaks a rule: order of tags, odd
/// places, places beyond the end.
std::vector<MadeDirectory> ReadMade(const ByteList& bytes);
/// The same for a file that may break rules; nothing if it cannot be read.
std::optional<std::vector<MadeDirectory>> TryReadMade(const ByteList& bytes);

/// Same tags with types and values, same blocks and same directories below. Integers of 64 bits may
/// have become such of 32 bits, or the other way round.
testing::AssertionResult SameDirectory(const MadeDirectory& expected, const MadeDirectory& actual);

ByteList RandomBytes(size_t count, std::mt19937& random);

/// A page with strips or tiles and a tag of each type, all with random values.
MadeDirectory RandomPage(std::mt19937& random);
/// The same with directories below it of every kind, nested.
MadeDirectory RichPage(std::mt19937& random);
/// A smaller copy (1) or a mask (4) for a page.
MadeDirectory RandomRelative(uint32_t subfileType, std::mt19937& random);

/// Every byte string of at least 16 bytes that a page holds: blocks, values, what is below it.
std::vector<ByteList> LongBytesOf(const MadeDirectory& page);

bool Contains(const ByteList& whole, const ByteList& part);

}  // namespace rasterkit::test
