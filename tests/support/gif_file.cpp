#include "tests/support/gif_file.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>

namespace rasterkit::test {
namespace {

using ByteList = std::vector<uint8_t>;

void AddWord(ByteList& bytes, unsigned value) {
  bytes.push_back(static_cast<uint8_t>(value));
  bytes.push_back(static_cast<uint8_t>(value >> 8));
}

/// Codes of growing length, the lowest bit first.
class CodeWriter {
 public:
  void Write(unsigned code, int bits) {
    held_ |= static_cast<uint64_t>(code) << heldBits_;
    for (heldBits_ += bits; heldBits_ >= 8; heldBits_ -= 8, held_ >>= 8)
      bytes_.push_back(static_cast<uint8_t>(held_));
  }
  ByteList Finish() {
    if (heldBits_ > 0) bytes_.push_back(static_cast<uint8_t>(held_));
    return std::move(bytes_);
  }

 private:
  ByteList bytes_;
  uint64_t held_ = 0;
  int heldBits_ = 0;
};

/// Packs indexes: a code for the longest run that came before, and a new code for it and the next
/// index.
ByteList Pack(const ByteList& indexes, int bits) {
  constexpr unsigned kMostCodes = 4096;
  const unsigned clear = 1u << bits, end = clear + 1;
  std::map<std::pair<unsigned, uint8_t>, unsigned> codes;
  unsigned next = end + 1;
  int length = bits + 1;
  CodeWriter writer;
  const auto restart = [&] {
    writer.Write(clear, length);
    codes.clear();
    next = end + 1;
    length = bits + 1;
  };
  restart();
  std::optional<unsigned> run;
  for (const uint8_t index : indexes) {
    if (!run) {
      run = index;
      continue;
    }
    const auto known = codes.find({*run, index});
    if (known != codes.end()) {
      run = known->second;
      continue;
    }
    writer.Write(*run, length);
    codes[{*run, index}] = next++;
    if (next > 1u << length && length < 12) length++;
    if (next == kMostCodes) restart();
    run = index;
  }
  if (run) writer.Write(*run, length);
  // The reader has made one more code by now.
  if (next == 1u << length && length < 12) length++;
  writer.Write(end, length);
  return writer.Finish();
}

void AddBlocks(ByteList& bytes, const ByteList& data) {
  for (size_t at = 0; at < data.size(); at += 255) {
    const size_t count = std::min<size_t>(255, data.size() - at);
    bytes.push_back(static_cast<uint8_t>(count));
    const auto first = data.begin() + static_cast<std::ptrdiff_t>(at);
    bytes.insert(bytes.end(), first, first + static_cast<std::ptrdiff_t>(count));
  }
  bytes.push_back(0);
}

/// The mark and the size of a palette as a header's flags state them.
unsigned PaletteFlags(const HPALETTE& palette) {
  if (!palette) return 0;
  unsigned exponent = 0;
  while (2 << exponent < palette.Count()) exponent++;
  return 0x80 | exponent;
}

void AddPalette(ByteList& bytes, const HPALETTE& palette) {
  for (const tagPALETTEENTRY& entry : palette.Entries())
    bytes.insert(bytes.end(), {entry.peRed, entry.peGreen, entry.peBlue});
}

ByteList IndexesInFileOrder(const GifPicture& picture) {
  ByteList ordered;
  const auto addRow = [&](size_t y) {
    const auto row = picture.indexes.begin() + static_cast<std::ptrdiff_t>(y * picture.width);
    ordered.insert(ordered.end(), row, row + picture.width);
  };
  if (!picture.interlaced) {
    ordered = picture.indexes;
  } else {
    for (size_t y = 0; y < picture.height; y += 8) addRow(y);
    for (size_t y = 4; y < picture.height; y += 8) addRow(y);
    for (size_t y = 2; y < picture.height; y += 4) addRow(y);
    for (size_t y = 1; y < picture.height; y += 2) addRow(y);
  }
  ordered.resize(std::min(ordered.size(), picture.stopAfter.value_or(ordered.size())));
  return ordered;
}

void AddPicture(ByteList& bytes, const GifPicture& picture) {
  if (picture.transparent) {
    const ByteList control = GifExtension(0xF9, {1, 10, 0, *picture.transparent});
    bytes.insert(bytes.end(), control.begin(), control.end());
  }
  bytes.push_back(',');
  for (const unsigned word : {picture.left, picture.top, picture.width, picture.height})
    AddWord(bytes, word);
  bytes.push_back(
      static_cast<uint8_t>(PaletteFlags(picture.palette) | (picture.interlaced ? 0x40 : 0)));
  AddPalette(bytes, picture.palette);
  bytes.push_back(static_cast<uint8_t>(picture.bits));
  AddBlocks(bytes, Pack(IndexesInFileOrder(picture), picture.bits));
}

}  // namespace

std::vector<uint8_t> GifExtension(uint8_t function, const std::vector<uint8_t>& data) {
  ByteList bytes = {'!', function};
  AddBlocks(bytes, data);
  return bytes;
}

std::vector<uint8_t> GifFile::Bytes() const {
  constexpr std::string_view kSignature = "GIF89a";
  ByteList bytes(kSignature.begin(), kSignature.end());
  AddWord(bytes, screenWidth);
  AddWord(bytes, screenHeight);
  bytes.push_back(static_cast<uint8_t>(PaletteFlags(palette)));
  bytes.push_back(background);
  bytes.push_back(0);
  AddPalette(bytes, palette);
  bytes.insert(bytes.end(), extensions.begin(), extensions.end());
  for (const GifPicture& picture : pictures) AddPicture(bytes, picture);
  bytes.push_back(';');
  return bytes;
}

GifFile PlainGif(uint16_t width, uint16_t height, int bits) {
  const int colors = 1 << bits;
  std::vector<tagPALETTEENTRY> entries;
  for (int i = 0; i < colors; i++) {
    entries.push_back({static_cast<uint8_t>(i * 7 + 3), static_cast<uint8_t>(255 - i),
                       static_cast<uint8_t>(i * 5), 0});
  }
  GifPicture picture;
  picture.width = width;
  picture.height = height;
  picture.bits = std::max(2, bits);
  for (int y = 0; y < height; y++)
    for (int x = 0; x < width; x++)
      picture.indexes.push_back(static_cast<uint8_t>((x * x + 3 * y) % colors));
  GifFile file;
  file.screenWidth = width;
  file.screenHeight = height;
  file.palette = HPALETTE(entries);
  file.pictures.push_back(std::move(picture));
  return file;
}

}  // namespace rasterkit::test
