#include <algorithm>
#include <string>
#include <vector>

#include <fmt/format.h>

#include <rasterkit/codecs/gif/gif_picture.h>
#include <rasterkit/codecs/gif/gif_signature.h>
#include <rasterkit/codecs/rows/byte_marks.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

using Bytes = std::span<const uint8_t>;
using detail::StartsWith;

constexpr size_t kScreenBytes = 13, kPictureBytes = 10;
constexpr uint8_t kPicture = 0x2C, kExtension = 0x21, kEnd = 0x3B;
constexpr uint8_t kText = 0x01, kControl = 0xF9, kComment = 0xFE, kApplication = 0xFF;

int WordAt(Bytes bytes, size_t offset) {
  return bytes[offset] | bytes[offset + 1] << 8;
}

/// Bytes of the palette that a byte of flags announces.
size_t PaletteBytes(uint8_t flags) {
  constexpr uint8_t kHasPalette = 0x80;
  return (flags & kHasPalette) != 0 ? size_t{6} << (flags & 7) : 0;
}

HPALETTE PaletteOf(Bytes bytes) {
  std::vector<tagPALETTEENTRY> entries;
  for (size_t i = 0; i + 2 < bytes.size(); i += 3) {
    entries.push_back({bytes[i], bytes[i + 1], bytes[i + 2], 0});
  }
  return HPALETTE(entries);
}

/// Screen header and palette are followed by extensions and pictures. Each has a mark, a header and
/// sub-blocks, which start with their lengths; a length of 0 ends them.
class HeaderReader {
 public:
  explicit HeaderReader(Bytes file) : rest_(file) {}

  PictureHeader Read() {
    if (!detail::IsGif(rest_)) throw FormatError("GIF: the file has no GIF header");
    const Bytes screen = Take(kScreenBytes);
    if (isCutOff_) throw FormatError("GIF: the file ends in its header");
    header_.width = WordAt(screen, 6);
    header_.height = WordAt(screen, 8);
    header_.layout.model = ColorModel::palette;
    header_.layout.bands = 1;
    header_.layout.palette = PaletteOf(Take(PaletteBytes(screen[10])));
    while (!isCutOff_ && !isAtEnd_) ReadBlock();
    if (frames_ == 0) throw FormatError("GIF: the file holds no picture");
    if (isCutOff_) {
      header_.warnings.emplace_back("GIF: the file is cut off");
    } else if (!rest_.empty()) {
      header_.hiddenOthers.push_back(
          fmt::format("{} bytes after the end of the picture", rest_.size()));
    }
    if (!header_.layout.palette) header_.layout.palette = GrayPalette(256);
    header_.frames = frames_;
    header_.layout.profile = header_.metadata.profile;
    return std::move(header_);
  }

 private:
  Bytes Take(size_t count) {
    isCutOff_ = isCutOff_ || count > rest_.size();
    const Bytes taken = rest_.first(std::min(count, rest_.size()));
    rest_ = rest_.subspan(taken.size());
    return taken;
  }

  /// Takes sub-blocks with their end; gives them as they stand in the file.
  Bytes TakeBlocks() {
    const Bytes start = rest_;
    for (;;) {
      const Bytes length = Take(1);
      if (isCutOff_ || length[0] == 0) break;
      Take(length[0]);
    }
    return start.first(start.size() - rest_.size());
  }

  static std::vector<uint8_t> Joined(Bytes blocks) {
    std::vector<uint8_t> joined;
    while (!blocks.empty() && blocks[0] != 0) {
      const size_t length = std::min<size_t>(blocks[0], blocks.size() - 1);
      const Bytes block = blocks.subspan(1, length);
      joined.insert(joined.end(), block.begin(), block.end());
      blocks = blocks.subspan(length + 1);
    }
    return joined;
  }

  void ReadBlock() {
    const Bytes mark = Take(1);
    if (isCutOff_) return;
    if (mark[0] == kEnd) {
      isAtEnd_ = true;
    } else if (mark[0] == kPicture) {
      ReadPicture();
    } else if (mark[0] == kExtension) {
      const Bytes label = Take(1);
      const Bytes blocks = isCutOff_ ? Bytes() : TakeBlocks();
      if (!isCutOff_) AddExtension(label[0], blocks);
    } else {
      header_.warnings.emplace_back("GIF: a block has no valid mark");
      isAtEnd_ = true;
      rest_ = {};
    }
  }

  void ReadPicture() {
    const Bytes place = Take(kPictureBytes - 1);
    if (isCutOff_) return;
    const Bytes palette = Take(PaletteBytes(place[8]));
    if (frames_++ == 0) {
      // A screen that is too small grows.
      header_.width = std::max(header_.width, WordAt(place, 0) + WordAt(place, 4));
      header_.height = std::max(header_.height, WordAt(place, 2) + WordAt(place, 6));
      if (WordAt(place, 4) == 0 || WordAt(place, 6) == 0) {
        throw FormatError("GIF: the picture has no size");
      }
      if (!palette.empty()) header_.layout.palette = PaletteOf(palette);
    }
    // The code size stands in front of the compressed data.
    Take(1);
    TakeBlocks();
  }

  void AddExtension(uint8_t label, Bytes blocks) {
    if (label == kControl) {
      constexpr uint8_t kHasTransparent = 1;
      const bool isTransparent = blocks.size() > 4 && (blocks[1] & kHasTransparent) != 0;
      if (frames_ == 0) {
        header_.layout.alpha = isTransparent ? AlphaKind::transparentColor : AlphaKind::none;
      }
    } else if (label == kComment) {
      const std::vector<uint8_t> text = Joined(blocks);
      header_.metadata.comments.emplace_back(text.begin(), text.end());
    } else if (label == kApplication) {
      AddApplication(blocks);
    } else if (label == kText) {
      header_.hiddenOthers.emplace_back("a text that is drawn over the picture");
    }
  }

  void AddApplication(Bytes blocks) {
    constexpr size_t kNameBytes = 11;
    if (blocks.size() < kNameBytes + 1) return;
    const Bytes name = blocks.subspan(1, kNameBytes);
    const Bytes content = blocks.subspan(kNameBytes + 1);
    if (StartsWith(name, "XMP DataXMP")) {
      AddXmp(content);
    } else if (StartsWith(name, "ICCRGBG1012")) {
      auto profile = std::make_shared<const std::vector<uint8_t>>(Joined(content));
      if (!header_.metadata.profile && !profile->empty()) header_.metadata.profile = profile;
    } else if (!StartsWith(name, "NETSCAPE2.0") && !StartsWith(name, "ANIMEXTS1.0")) {
      header_.hiddenOthers.push_back(
          fmt::format("an application block of {} bytes", content.size()));
    }
  }

  /// The packet stands there as it is, without lengths. Bytes from 255 down to 0 follow it, so that
  /// a reader of sub-blocks finds their end wherever it is.
  void AddXmp(Bytes content) {
    constexpr size_t kTailBytes = 258;
    if (content.size() < kTailBytes || content[content.size() - kTailBytes] != 1) {
      header_.warnings.emplace_back("GIF: the XMP packet is damaged");
      return;
    }
    const Bytes packet = content.first(content.size() - kTailBytes);
    if (header_.metadata.xmp.empty()) header_.metadata.xmp.assign(packet.begin(), packet.end());
  }

  Bytes rest_;
  PictureHeader header_;
  int frames_ = 0;
  bool isCutOff_ = false, isAtEnd_ = false;
};

}  // namespace

PictureHeader ReadGifHeader(Bytes file) {
  return HeaderReader(file).Read();
}

}  // namespace rasterkit
