#include "tests/pictures/document/raw_pages.h"

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>
#include <stdexcept>

namespace rasterkit::test {
namespace {

constexpr uint16_t kStripAt = 273, kStripBytes = 279, kTileAt = 324, kTileBytes = 325;
constexpr uint16_t kPointers[] = {330, 400, 34665, 34853, 40965};
/// Places of streams and tables of old-style JPEG.
constexpr uint16_t kStreamAt = 513, kStreamBytes = 514, kTables[] = {519, 520, 521};
constexpr int kDeepest = 4;

size_t BytesOfType(uint16_t type) {
  switch (type) {
    case 1:
    case 2:
    case 6:
    case 7:
      return 1;
    case 3:
    case 8:
      return 2;
    case 4:
    case 9:
    case 11:
    case 13:
      return 4;
    case 5:
    case 10:
    case 12:
    case 16:
    case 17:
    case 18:
      return 8;
    default:
      throw std::runtime_error("a tag of an unknown type");
  }
}

class Reader {
 public:
  explicit Reader(std::span<const uint8_t> bytes) : bytes_(bytes) {
    file_.isBigEndian = Byte(0) == 'M';
    file_.isBigTiff = Number(2, 2) == 43;
  }

  RawDocument Read() {
    uint64_t at = file_.isBigTiff ? Number(8, 8) : Number(4, 4);
    while (at != 0) {
      if (file_.chain.size() > 5000) throw std::runtime_error("the chain does not end");
      file_.chain.push_back(Directory(at, 0));
      at = next_;
    }
    return std::move(file_);
  }

 private:
  uint8_t Byte(uint64_t at) const {
    if (at >= bytes_.size()) throw std::runtime_error("a place beyond the end");
    return bytes_[at];
  }
  uint64_t Number(uint64_t at, size_t size) const {
    uint64_t number = 0;
    for (size_t i = 0; i < size; ++i) {
      number = number << 8 | Byte(at + (file_.isBigEndian ? i : size - 1 - i));
    }
    return number;
  }
  std::string Text(uint64_t at, uint64_t size) const {
    if (size > bytes_.size() || at > bytes_.size() - size) {
      throw std::runtime_error("bytes beyond the end");
    }
    return {reinterpret_cast<const char*>(bytes_.data()) + at, static_cast<size_t>(size)};
  }
  std::vector<uint64_t> Numbers(uint64_t at, uint16_t type, uint64_t count) const {
    std::vector<uint64_t> numbers;
    const size_t size = BytesOfType(type);
    for (uint64_t i = 0; i < count; ++i) numbers.push_back(Number(at + i * size, size));
    return numbers;
  }

  uint64_t NumberOf(const RawTag& tag) const {
    uint64_t number = 0;
    const size_t size = tag.bytes.size();
    for (size_t i = 0; i < size; ++i) {
      const char byte = tag.bytes[file_.isBigEndian ? i : size - 1 - i];
      number = number << 8 | static_cast<uint8_t>(byte);
    }
    return number;
  }

  RawPage Directory(uint64_t at, int depth) {
    if (depth > kDeepest) throw std::runtime_error("directories too deep");
    RawPage page;
    const size_t wordBytes = file_.isBigTiff ? 8 : 4, entryBytes = file_.isBigTiff ? 20 : 12;
    const size_t countBytes = file_.isBigTiff ? 8 : 2;
    const uint64_t count = Number(at, countBytes);
    std::vector<uint64_t> places, sizes;
    uint64_t stream = 0;
    std::map<uint16_t, std::vector<uint64_t>> pointers;
    for (uint64_t i = 0; i < count; ++i) {
      const uint64_t entry = at + countBytes + i * entryBytes;
      const auto tag = static_cast<uint16_t>(Number(entry, 2));
      RawTag value{static_cast<uint16_t>(Number(entry + 2, 2)), Number(entry + 4, wordBytes), {}};
      const uint64_t size = value.count * BytesOfType(value.type);
      uint64_t place = entry + 4 + wordBytes;
      if (size > wordBytes) place = Number(place, wordBytes);
      if (tag == kStripAt || tag == kTileAt) {
        places = Numbers(place, value.type, value.count);
      } else if (tag == kStripBytes || tag == kTileBytes) {
        sizes = Numbers(place, value.type, value.count);
      } else if (std::count(std::begin(kPointers), std::end(kPointers), tag) > 0) {
        pointers[tag] = Numbers(place, value.type, value.count);
      } else if (tag == kStreamAt) {
        stream = Numbers(place, value.type, 1).at(0);
      } else if (std::count(std::begin(kTables), std::end(kTables), tag) == 0) {
        value.bytes = Text(place, size);
        page.tags[tag] = std::move(value);
      }
    }
    const uint64_t next = Number(at + countBytes + count * entryBytes, wordBytes);
    for (size_t i = 0; i < places.size(); ++i) page.blocks.push_back(Text(places[i], sizes.at(i)));
    if (stream != 0 && page.tags.contains(kStreamBytes)) {
      page.blocks.push_back(Text(stream, NumberOf(page.tags.at(kStreamBytes))));
    }
    for (const auto& [tag, targets] : pointers) {
      for (const uint64_t target : targets) page.below[tag].push_back(Directory(target, depth + 1));
    }
    next_ = next;
    return page;
  }

  std::span<const uint8_t> bytes_;
  RawDocument file_;
  uint64_t next_ = 0;
};

}  // namespace

uint64_t RawPage::Number(uint16_t tag) const {
  const RawTag& value = tags.at(tag);
  const size_t size = value.type == 3 ? 2 : 4;
  // Only for files of the usual order.
  uint64_t number = 0;
  for (size_t i = 0; i < size; ++i) {
    number |= uint64_t{static_cast<uint8_t>(value.bytes.at(i))} << 8 * i;
  }
  return number;
}

RawDocument ReadRawPages(std::span<const uint8_t> bytes) {
  return Reader(bytes).Read();
}

RawDocument ReadRawPages(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(stream), {}};
  return ReadRawPages({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
}

void PrintTo(const RawPage& page, std::ostream* out) {
  constexpr size_t kMostShown = 12;
  for (const auto& [tag, value] : page.tags) {
    *out << tag << " (" << value.type << ", " << value.count << "):" << std::hex;
    for (const char byte : value.bytes.substr(0, kMostShown)) {
      *out << ' ' << static_cast<int>(static_cast<uint8_t>(byte));
    }
    *out << std::dec << "; ";
  }
  *out << page.blocks.size() << " blocks of "
       << std::hash<std::string>()(page.blocks.empty() ? "" : page.blocks[0]);
  for (const auto& [tag, pages] : page.below) {
    *out << "; below " << tag << ": ";
    for (const RawPage& below : pages) PrintTo(below, out);
  }
}

uint64_t SubfileType(const RawPage& page) {
  const auto found = page.tags.find(254);
  if (found == page.tags.end()) return 0;
  for (const char byte : found->second.bytes) {
    if (byte != 0) return static_cast<uint8_t>(byte);
  }
  return 0;
}

std::vector<std::vector<RawPage>> PagesOf(const RawDocument& document) {
  constexpr uint64_t kCopyOrMask = 5;
  std::vector<std::vector<RawPage>> pages;
  for (const RawPage& page : document.chain) {
    if (pages.empty() || (SubfileType(page) & kCopyOrMask) == 0) pages.emplace_back();
    pages.back().push_back(page);
  }
  return pages;
}

}  // namespace rasterkit::test
