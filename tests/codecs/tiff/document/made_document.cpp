#include "tests/codecs/tiff/document/made_document.h"

#include <algorithm>

namespace rasterkit::test {
namespace {

/// Writes directories at the end of the file, values before or after them.
class Maker {
 public:
  Maker(bool isBig, bool isBigEndian, std::mt19937& random, std::vector<ByteList>* gaps)
      : isBig_(isBig), isBigEndian_(isBigEndian), random_(random), gaps_(gaps) {
    bytes_ = isBigEndian ? ByteList{'M', 'M'} : ByteList{'I', 'I'};
    Number(isBig ? 43 : 42, 2);
    if (isBig) Number(8, 2);
    if (isBig) Number(0, 2);
    Number(0, Width());
  }

  ByteList Make(const std::vector<MadeDirectory>& chain) {
    size_t linkAt = isBig_ ? 8 : 4;
    for (const MadeDirectory& directory : chain) {
      const auto [at, nextAt] = Write(directory);
      Patch(linkAt, at, Width());
      linkAt = nextAt;
    }
    return bytes_;
  }

 private:
  struct Places {
    size_t at = 0, linkAt = 0;
  };
  int Width() const { return isBig_ ? 8 : 4; }

  void Number(uint64_t number, int count) {
    bytes_.resize(bytes_.size() + static_cast<size_t>(count));
    Patch(bytes_.size() - static_cast<size_t>(count), number, count);
  }
  void Patch(size_t at, uint64_t number, int count) {
    for (int i = 0; i < count; i++) {
      const int place = isBigEndian_ ? count - 1 - i : i;
      bytes_[at + static_cast<size_t>(place)] = static_cast<uint8_t>(number >> 8 * i);
    }
  }
  /// At an even place after a gap.
  size_t Append(const ByteList& bytes) {
    const ByteList gap = RandomBytes(16 + bytes_.size() % 2 + 2 * (random_() % 8), random_);
    bytes_.insert(bytes_.end(), gap.begin(), gap.end());
    if (gaps_) gaps_->push_back(gap);
    const size_t at = bytes_.size();
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    return at;
  }

  static MadeTag Numbers(uint16_t type, const std::vector<uint64_t>& numbers) {
    MadeDirectory holder;
    return holder.Set(1, type, numbers).tags.at(1);
  }

  ByteList InOrder(const MadeTag& tag) const {
    ByteList bytes = tag.bytes;
    const auto unit =
        static_cast<size_t>(tag.type == 5 || tag.type == 10 ? 4 : BytesOfType(tag.type));
    for (size_t at = 0; isBigEndian_ && at < bytes.size(); at += unit) {
      std::reverse(bytes.data() + at, bytes.data() + at + unit);
    }
    return bytes;
  }

  Places Write(const MadeDirectory& directory) {
    std::map<uint16_t, MadeTag> tags = directory.tags;
    if (!directory.blocks.empty()) {
      std::vector<uint64_t> places, counts;
      for (const ByteList& block : directory.blocks) {
        places.push_back(block.empty() ? 0 : Append(block));
        counts.push_back(block.size());
      }
      tags[directory.isTiled ? 324 : 273] = Numbers(directory.placesType, places);
      if (directory.countsType != 0) {
        tags[directory.isTiled ? 325 : 279] = Numbers(directory.countsType, counts);
      }
    }
    for (const auto& [tag, below] : directory.below) {
      std::vector<uint64_t> places;
      for (const MadeDirectory& one : below) places.push_back(Write(one).at);
      const auto type = directory.pointerTypes.find(tag);
      tags[tag] =
          Numbers(type == directory.pointerTypes.end() ? uint16_t{4} : type->second, places);
    }
    for (const auto& [tag, pieces] : directory.pieces) {
      std::vector<uint64_t> places;
      for (const ByteList& piece : pieces) places.push_back(Append(piece));
      tags[tag] = Numbers(4, places);
    }
    const size_t countBytes = isBig_ ? 8 : 2, entryBytes = isBig_ ? 20 : 12;
    const ByteList empty(countBytes + tags.size() * entryBytes + static_cast<size_t>(Width()));
    size_t at = random_() % 2 == 0 ? Append(empty) : 0;
    std::map<uint16_t, uint64_t> placeOf;
    for (const auto& [tag, value] : tags) {
      if (value.bytes.size() > static_cast<size_t>(Width())) placeOf[tag] = Append(InOrder(value));
    }
    if (at == 0) at = Append(empty);
    Patch(at, tags.size(), static_cast<int>(countBytes));
    size_t entry = at + countBytes;
    for (const auto& [tag, value] : tags) {
      Patch(entry, tag, 2);
      Patch(entry + 2, value.type, 2);
      Patch(entry + 4, value.count, Width());
      const size_t valueAt = entry + 4 + static_cast<size_t>(Width());
      if (placeOf.contains(tag)) {
        Patch(valueAt, placeOf[tag], Width());
      } else {
        const ByteList inside = InOrder(value);
        std::copy(inside.begin(), inside.end(), bytes_.begin() + static_cast<ptrdiff_t>(valueAt));
      }
      entry += entryBytes;
    }
    return {at, entry};
  }

  const bool isBig_, isBigEndian_;
  std::mt19937& random_;
  std::vector<ByteList>* const gaps_;
  ByteList bytes_;
};

bool IsInteger(uint16_t type) {
  return type == 4 || type == 9 || type == 16 || type == 17;
}

/// The integers as numbers of 64 bits.
ByteList Widened(const MadeTag& tag) {
  if (tag.type != 4 && tag.type != 9) return tag.bytes;
  ByteList wide;
  for (size_t at = 0; at < tag.bytes.size(); at += 4) {
    wide.insert(wide.end(), tag.bytes.begin() + static_cast<ptrdiff_t>(at),
                tag.bytes.begin() + static_cast<ptrdiff_t>(at + 4));
    const bool isNegative = tag.type == 9 && tag.bytes[at + 3] >= 0x80;
    wide.insert(wide.end(), 4, isNegative ? 0xFF : 0);
  }
  return wide;
}

testing::AssertionResult SameTags(const MadeDirectory& expected, const MadeDirectory& actual) {
  if (expected.tags.size() != actual.tags.size()) {
    return testing::AssertionFailure()
           << expected.tags.size() << " tags became " << actual.tags.size();
  }
  for (const auto& [number, tag] : expected.tags) {
    const auto found = actual.tags.find(number);
    if (found == actual.tags.end()) {
      return testing::AssertionFailure() << "tag " << number << " is missing";
    }
    const MadeTag& other = found->second;
    const bool isSame = tag.type == other.type && tag.bytes == other.bytes;
    const bool isWidened =
        IsInteger(tag.type) && IsInteger(other.type) &&
        (tag.type == 9 || tag.type == 17) == (other.type == 9 || other.type == 17) &&
        Widened(tag) == Widened(other);
    if (tag.count != other.count || (!isSame && !isWidened)) {
      return testing::AssertionFailure()
             << "tag " << number << " differs: type " << tag.type << " count " << tag.count
             << ", then type " << other.type << " count " << other.count;
    }
  }
  return testing::AssertionSuccess();
}

}  // namespace

int BytesOfType(uint16_t type) {
  constexpr int kBytes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4, 0, 0, 8, 8, 8};
  return type < std::size(kBytes) ? kBytes[type] : 0;
}

MadeDirectory& MadeDirectory::Set(uint16_t tag, uint16_t type, std::vector<uint64_t> numbers) {
  MadeTag value{type, numbers.size(), {}};
  for (const uint64_t number : numbers) {
    for (int i = 0; i < BytesOfType(type); i++) {
      value.bytes.push_back(static_cast<uint8_t>(number >> 8 * i));
    }
  }
  tags[tag] = value;
  return *this;
}

MadeDirectory& MadeDirectory::SetBytes(uint16_t tag, uint16_t type, ByteList bytes) {
  const uint64_t count = bytes.size() / static_cast<size_t>(BytesOfType(type));
  tags[tag] = {type, count, std::move(bytes)};
  return *this;
}

uint64_t MadeDirectory::Number(uint16_t tag, uint64_t otherwise) const {
  const auto found = tags.find(tag);
  if (found == tags.end()) return otherwise;
  uint64_t number = 0;
  const auto unit = static_cast<size_t>(BytesOfType(found->second.type));
  for (size_t i = unit; i-- > 0;) number = number << 8 | found->second.bytes.at(i);
  return number;
}

ByteList WriteMade(const std::vector<MadeDirectory>& chain, bool isBig, bool isBigEndian,
                   std::mt19937& random, std::vector<ByteList>* gaps) {
  return Maker(isBig, isBigEndian, random, gaps).Make(chain);
}

testing::AssertionResult SameDirectory(const MadeDirectory& expected, const MadeDirectory& actual) {
  if (const auto same = SameTags(expected, actual); !same) return same;
  if (expected.blocks != actual.blocks || expected.isTiled != actual.isTiled) {
    return testing::AssertionFailure() << "blocks differ";
  }
  if (expected.pieces != actual.pieces) return testing::AssertionFailure() << "pieces differ";
  if (expected.below.size() != actual.below.size()) {
    return testing::AssertionFailure() << "directories below are missing";
  }
  for (const auto& [tag, below] : expected.below) {
    const auto found = actual.below.find(tag);
    if (found == actual.below.end() || found->second.size() != below.size()) {
      return testing::AssertionFailure() << "directories of tag " << tag << " are missing";
    }
    for (size_t i = 0; i < below.size(); i++) {
      if (const auto same = SameDirectory(below[i], found->second[i]); !same) {
        return testing::AssertionFailure() << "below tag " << tag << ": " << same.message();
      }
    }
  }
  return testing::AssertionSuccess();
}

ByteList RandomBytes(size_t count, std::mt19937& random) {
  ByteList bytes(count);
  for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random());
  return bytes;
}

MadeDirectory RandomPage(std::mt19937& random) {
  MadeDirectory page;
  page.isTiled = random() % 2 == 0;
  const uint64_t count = 1 + random() % 5;
  for (uint64_t i = 0; i < count; i++)
    page.blocks.push_back(RandomBytes(16 + random() % 90, random));
  // Some blocks are absent.
  if (count > 2 && random() % 3 == 0) page.blocks[1].clear();
  page.Set(256, 4, {16 * (1 + random() % 9)}).Set(257, 4, {16 * count});
  // Compressed, so that the lists of sizes count.
  page.Set(258, 3, {8}).Set(259, 3, {5}).Set(262, 3, {1}).Set(277, 3, {1});
  if (page.isTiled) {
    page.Set(322, 4, {16}).Set(323, 4, {16});
  } else {
    page.Set(278, 4, {16});
    page.countsType = random() % 2 == 0 ? 3 : 4;
  }
  uint16_t tag = 50000;
  for (const uint16_t type : {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}) {
    const auto unit = static_cast<size_t>(BytesOfType(type));
    page.SetBytes(tag++, type, RandomBytes(unit, random));
    page.SetBytes(tag++, type, RandomBytes(unit * (16 + random() % 9), random));
  }
  if (random() % 2 == 0) page.SetBytes(700, 1, RandomBytes(5000, random));
  if (random() % 2 == 0) page.Set(297, 3, {random() % 9, 9});
  return page;
}

MadeDirectory RandomRelative(uint32_t subfileType, std::mt19937& random) {
  return RandomPage(random).Set(254, 4, {subfileType});
}

MadeDirectory RichPage(std::mt19937& random) {
  MadeDirectory page = RandomPage(random);
  MadeDirectory exif;
  exif.SetBytes(37500, 7, RandomBytes(60, random)).Set(34855, 3, {400});
  exif.below[40965].emplace_back().SetBytes(1, 2, {'R', '9', '8', 0});
  page.below[34665] = {exif};
  page.below[34853].emplace_back().SetBytes(2, 5, RandomBytes(24, random));
  page.below[400].emplace_back().SetBytes(401, 7, RandomBytes(20, random));
  MadeDirectory inner = RandomRelative(1, random);
  inner.below[330] = {RandomRelative(1, random)};
  page.below[330] = {inner, RandomRelative(1, random), RandomRelative(4, random)};
  page.pointerTypes[330] = 13;
  return page;
}

std::vector<ByteList> LongBytesOf(const MadeDirectory& page) {
  constexpr size_t kLong = 16;
  std::vector<ByteList> all;
  const auto add = [&](const ByteList& bytes) {
    if (bytes.size() >= kLong) all.push_back(bytes);
  };
  for (const ByteList& block : page.blocks) add(block);
  for (const auto& [tag, value] : page.tags) add(value.bytes);
  for (const auto& [tag, pieces] : page.pieces) {
    for (const ByteList& piece : pieces) add(piece);
  }
  for (const auto& [tag, below] : page.below) {
    for (const MadeDirectory& one : below) {
      const std::vector<ByteList> more = LongBytesOf(one);
      all.insert(all.end(), more.begin(), more.end());
    }
  }
  return all;
}

bool Contains(const ByteList& whole, const ByteList& part) {
  return std::search(whole.begin(), whole.end(), part.begin(), part.end()) != whole.end();
}

}  // namespace rasterkit::test
