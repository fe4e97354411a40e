#include <algorithm>
#include <stdexcept>

#include "tests/codecs/tiff/document/made_document.h"

namespace rasterkit::test {
namespace {

constexpr uint16_t kPointers[] = {330, 400, 34665, 34853, 40965};
constexpr uint16_t kPieces[] = {513, 519, 520, 521};

/// Reads a file with checks of its own.
class Parser {
 public:
  Parser(const ByteList& bytes, bool isStrict) : bytes_(bytes), isStrict_(isStrict) {
    isBigEndian_ = bytes.at(0) == 'M';
    isBig_ = Number(2, 2) == 43;
  }

  std::vector<MadeDirectory> Chain() {
    std::vector<MadeDirectory> chain;
    uint64_t at = Number(isBig_ ? 8 : 4, Width());
    while (at != 0) {
      if (chain.size() > 1000) throw std::out_of_range("chain");
      chain.push_back(Read(at));
      at = Number(next_, Width());
    }
    return chain;
  }

 private:
  int Width() const { return isBig_ ? 8 : 4; }
  uint64_t Number(uint64_t at, int count) const {
    uint64_t number = 0;
    for (int i = 0; i < count; i++) {
      const auto place = static_cast<uint64_t>(isBigEndian_ ? i : count - 1 - i);
      number = number << 8 | bytes_.at(static_cast<size_t>(at + place));
    }
    return number;
  }
  ByteList Piece(uint64_t at, uint64_t count) const {
    if (at > bytes_.size() || count > bytes_.size() - at) throw std::out_of_range("bytes");
    return {bytes_.begin() + static_cast<ptrdiff_t>(at),
            bytes_.begin() + static_cast<ptrdiff_t>(at + count)};
  }

  MadeTag Tag(uint64_t entry) const {
    MadeTag tag{static_cast<uint16_t>(Number(entry + 2, 2)), Number(entry + 4, Width()), {}};
    const uint64_t count = tag.count * static_cast<uint64_t>(BytesOfType(tag.type));
    const uint64_t inside = entry + 4 + static_cast<uint64_t>(Width());
    const bool isInside = count <= static_cast<uint64_t>(Width());
    const uint64_t at = isInside ? inside : Number(inside, Width());
    EXPECT_TRUE(!isStrict_ || isInside || at % 2 == 0) << "a value at an odd place";
    tag.bytes = Piece(at, count);
    const auto unit =
        static_cast<size_t>(tag.type == 5 || tag.type == 10 ? 4 : BytesOfType(tag.type));
    for (size_t i = 0; isBigEndian_ && i < tag.bytes.size(); i += unit) {
      std::reverse(tag.bytes.data() + i, tag.bytes.data() + i + unit);
    }
    return tag;
  }

  static std::vector<uint64_t> Numbers(const MadeTag& tag) {
    std::vector<uint64_t> numbers;
    const auto unit = static_cast<size_t>(BytesOfType(tag.type));
    for (size_t at = 0; at + unit <= tag.bytes.size(); at += unit) {
      uint64_t number = 0;
      for (size_t i = unit; i-- > 0;) number = number << 8 | tag.bytes[at + i];
      numbers.push_back(number);
    }
    return numbers;
  }

  uint64_t PieceBytes(uint16_t tag, uint64_t at, const MadeDirectory& directory) const {
    if (tag == 513) return directory.Number(514);
    if (tag == 519) return 64;
    uint64_t count = 16;
    for (uint64_t i = 0; i < 16; i++) count += bytes_.at(static_cast<size_t>(at + i));
    return count;
  }

  MadeDirectory Read(uint64_t at) {
    MadeDirectory directory;
    EXPECT_TRUE(!isStrict_ || at % 2 == 0) << "a directory at an odd place";
    const uint64_t count = Number(at, isBig_ ? 8 : 2);
    uint64_t entry = at + (isBig_ ? 8 : 2);
    int before = -1;
    std::map<uint16_t, MadeTag> tags;
    for (uint64_t i = 0; i < count; i++, entry += isBig_ ? 20 : 12) {
      const auto tag = static_cast<uint16_t>(Number(entry, 2));
      EXPECT_TRUE(!isStrict_ || int{tag} > before) << "tags are not in order";
      before = tag;
      if (BytesOfType(static_cast<uint16_t>(Number(entry + 2, 2))) == 0) {
        throw std::out_of_range("type");
      }
      tags.emplace(tag, Tag(entry));
    }
    const uint64_t next = entry;
    for (const bool isTiled : {false, true}) {
      const auto places = tags.extract(isTiled ? 324 : 273);
      const auto counts = tags.extract(isTiled ? 325 : 279);
      if (places.empty()) continue;
      directory.isTiled = isTiled;
      directory.placesType = places.mapped().type;
      directory.countsType = counts.empty() ? uint16_t{0} : counts.mapped().type;
      const std::vector<uint64_t> starts = Numbers(places.mapped());
      std::vector<uint64_t> sizes(starts.size());
      if (!counts.empty()) sizes = Numbers(counts.mapped());
      if (starts.size() != sizes.size()) throw std::out_of_range("sizes");
      for (size_t i = 0; i < std::min(starts.size(), sizes.size()); i++) {
        EXPECT_TRUE(!isStrict_ || starts[i] != 0 || sizes[i] == 0);
        directory.blocks.push_back(Piece(starts[i], sizes[i]));
      }
    }
    for (const uint16_t tag : kPointers) {
      const auto pointer = tags.extract(tag);
      if (pointer.empty()) continue;
      directory.pointerTypes[tag] = pointer.mapped().type;
      for (const uint64_t place : Numbers(pointer.mapped())) {
        directory.below[tag].push_back(Read(place));
      }
    }
    directory.tags = tags;
    for (const uint16_t tag : kPieces) {
      const auto places = directory.tags.extract(tag);
      if (places.empty()) continue;
      for (const uint64_t place : Numbers(places.mapped())) {
        directory.pieces[tag].push_back(Piece(place, PieceBytes(tag, place, directory)));
      }
    }
    next_ = next;
    return directory;
  }

  const ByteList& bytes_;
  const bool isStrict_;
  bool isBig_ = false, isBigEndian_ = false;
  uint64_t next_ = 0;
};

}  // namespace

std::vector<MadeDirectory> ReadMade(const ByteList& bytes) {
  try {
    return Parser(bytes, true).Chain();
  } catch (const std::out_of_range& error) {
    ADD_FAILURE() << "a place beyond the end: " << error.what();
    return {};
  }
}

std::optional<std::vector<MadeDirectory>> TryReadMade(const ByteList& bytes) {
  try {
    return Parser(bytes, false).Chain();
  } catch (const std::out_of_range&) {
    return std::nullopt;
  }
}

}  // namespace rasterkit::test
