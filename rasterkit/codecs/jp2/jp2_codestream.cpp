#include <algorithm>
#include <array>
#include <span>
#include <string_view>

#include <rasterkit/codecs/jp2/jp2_codestream.h>
#include <rasterkit/metadata/ifd.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {
namespace {

using Bytes = std::span<const uint8_t>;

constexpr uint16_t kStart = 0xFF4F, kSizes = 0xFF51, kCoding = 0xFF52, kComment = 0xFF64,
                   kTilePart = 0xFF90, kFirstMarker = 0xFF30;
constexpr size_t kMostComponents = 16384;

[[noreturn]] void Refuse(const char* what) {
  throw FormatError(std::string("JPEG 2000: ") + what);
}

class MainHeader {
 public:
  MainHeader(TStream& stream, uint64_t at, uint64_t bytes) : stream_(stream) {
    result_.at = at;
    result_.bytes = bytes;
    next_ = at;
    end_ = at + bytes;
  }

  Jp2Codestream Read() {
    if (Word() != kStart) Refuse("the codestream has no start");
    bool hasSizes = false;
    for (uint16_t marker = Word(); marker != kTilePart; marker = Word()) {
      RequireTime();
      if (marker < kFirstMarker) Refuse("the header of the codestream is damaged");
      const std::vector<uint8_t> segment = Segment(marker);
      if (hasSizes != (marker != kSizes)) Refuse("the codestream does not begin with its sizes");
      hasSizes = true;
      if (marker == kSizes) ReadSizes(segment);
      if (marker == kCoding) ReadCoding(segment);
      if (marker == kComment) ReadComment(segment);
    }
    if (!hasSizes) Refuse("the codestream has no sizes");
    result_.headerBytes = next_ - 2 - result_.at;
    return std::move(result_);
  }

 private:
  uint16_t Word() {
    std::array<uint8_t, 2> bytes{};
    if (end_ - next_ < bytes.size()) Refuse("the header of the codestream is cut off");
    stream_.SetPosition(next_);
    stream_.ReadExactly(bytes);
    next_ += bytes.size();
    return OrderedBytes(bytes, true).Word(0);
  }

  /// The content of a segment that is looked at, after the length.
  std::vector<uint8_t> Segment(uint16_t marker) {
    const uint16_t length = Word();
    if (length < 2) Refuse("a segment of the codestream has no length");
    const uint64_t bytes = length - 2U;
    if (end_ - next_ < bytes) Refuse("the header of the codestream is cut off");
    std::vector<uint8_t> content;
    if (marker == kSizes || marker == kCoding || marker == kComment) {
      content.resize(static_cast<size_t>(bytes));
      stream_.SetPosition(next_);
      stream_.ReadExactly(content);
    }
    next_ += bytes;
    return content;
  }

  void ReadSizes(Bytes segment) {
    constexpr size_t kRight = 2, kLeft = 10, kTileWidth = 18, kTileLeft = 26, kCount = 34,
                     kFirst = 36, kComponentBytes = 3;
    if (segment.size() < kFirst) Refuse("the sizes of the codestream are cut off");
    const OrderedBytes numbers(segment, true);
    const auto pair = [&](size_t at, uint32_t& x, uint32_t& y) {
      x = numbers.Long(at);
      y = numbers.Long(at + 4);
    };
    pair(kRight, result_.right, result_.bottom);
    pair(kLeft, result_.left, result_.top);
    pair(kTileWidth, result_.tileWidth, result_.tileHeight);
    pair(kTileLeft, result_.tileLeft, result_.tileTop);
    const size_t count = numbers.Word(kCount);
    if (count < 1 || count > kMostComponents) Refuse("the number of components is invalid");
    if (segment.size() < kFirst + count * kComponentBytes) Refuse("the components are cut off");
    for (size_t i = 0; i < count; ++i) {
      AddComponent(segment.subspan(kFirst + i * kComponentBytes, kComponentBytes));
    }
    RequireSizes();
  }

  void AddComponent(Bytes bytes) {
    constexpr uint8_t kSigned = 0x80;
    constexpr int kMostBits = 38;
    Jp2Component component;
    component.bits = (bytes[0] & ~kSigned) + 1;
    component.isSigned = (bytes[0] & kSigned) != 0;
    component.stepX = bytes[1];
    component.stepY = bytes[2];
    if (component.bits > kMostBits) Refuse("the bits of a component are invalid");
    if (component.stepX == 0 || component.stepY == 0) Refuse("a component has no samples");
    result_.components.push_back(component);
  }

  /// The first tile must hold the corner of the picture.
  void RequireSizes() const {
    const auto holds = [](uint32_t tile, uint32_t side, uint32_t low, uint32_t high) {
      return side > 0 && low < high && tile <= low && uint64_t{tile} + side > low;
    };
    if (!holds(result_.tileLeft, result_.tileWidth, result_.left, result_.right) ||
        !holds(result_.tileTop, result_.tileHeight, result_.top, result_.bottom)) {
      Refuse("the sizes of the picture and its tiles are invalid");
    }
  }

  void ReadCoding(Bytes segment) {
    constexpr size_t kLayers = 2, kMix = 4, kLevels = 5, kWidth = 6, kHeight = 7, kPrecincts = 10;
    constexpr int kMostLevels = 32, kMostSide = 10, kMostArea = 12;
    constexpr uint8_t kHasPrecincts = 1, kLow = 0x0F;
    if (segment.size() < kPrecincts) Refuse("the coding style is cut off");
    result_.layers = OrderedBytes(segment, true).Word(kLayers);
    result_.mixesColors = segment[kMix] != 0;
    result_.levels = segment[kLevels];
    result_.blockWidth = (segment[kWidth] & kLow) + 2;
    result_.blockHeight = (segment[kHeight] & kLow) + 2;
    if (result_.layers == 0 || result_.levels > kMostLevels || result_.blockWidth > kMostSide ||
        result_.blockHeight > kMostSide || result_.blockWidth + result_.blockHeight > kMostArea) {
      Refuse("the coding style is invalid");
    }
    result_.precincts.clear();
    if ((segment[0] & kHasPrecincts) == 0) return;
    const size_t resolutions = static_cast<size_t>(result_.levels) + 1;
    if (segment.size() < kPrecincts + resolutions) Refuse("the coding style is cut off");
    for (size_t i = 0; i < resolutions; ++i) {
      const uint8_t sides = segment[kPrecincts + i];
      result_.precincts.push_back({sides & kLow, sides >> 4});
    }
  }

  void ReadComment(Bytes segment) {
    constexpr size_t kMostComments = 100, kTextAt = 2;
    constexpr uint16_t kLatin = 1;
    constexpr std::string_view kSigns[] = {"Created by ", "Kakadu-"};
    if (segment.size() <= kTextAt || result_.comments.size() >= kMostComments) return;
    if (OrderedBytes(segment, true).Word(0) != kLatin) return;
    const Bytes text = segment.subspan(kTextAt);
    const std::string comment(text.begin(), text.end());
    const auto isSign = [&](std::string_view sign) { return comment.starts_with(sign); };
    if (std::none_of(std::begin(kSigns), std::end(kSigns), isSign)) {
      result_.comments.push_back(comment);
    }
  }

  TStream& stream_;
  uint64_t next_ = 0, end_ = 0;
  Jp2Codestream result_;
};

uint64_t Steps(uint32_t from, uint32_t to, uint32_t step) {
  return (uint64_t{to} - from + step - 1) / step;
}

}  // namespace

uint64_t Jp2Codestream::TilesAcross() const {
  return Steps(tileLeft, right, tileWidth);
}

uint64_t Jp2Codestream::TilesDown() const {
  return Steps(tileTop, bottom, tileHeight);
}

uint64_t BytesOfWholeParts(TStream& stream, const Jp2Codestream& codestream) {
  constexpr size_t kHeader = 12, kLengthAt = 6;
  std::array<uint8_t, kHeader> bytes{};
  const uint64_t end = codestream.bytes;
  for (uint64_t at = codestream.headerBytes; at < end;) {
    RequireTime();
    stream.SetPosition(codestream.at + at);
    const auto left = static_cast<size_t>(std::min<uint64_t>(kHeader, end - at));
    const size_t count = stream.Read(std::span(bytes).first(left));
    const OrderedBytes numbers(bytes, true);
    // The end marker, or damage that the library finds.
    if (count < 2 || numbers.Word(0) != kTilePart) return end;
    if (count < kHeader) return at;
    const uint32_t length = numbers.Long(kLengthAt);
    // The last part may reach to the end.
    if (length < kHeader || length > end - at) return end;
    at += length;
  }
  return end;
}

Jp2Codestream ReadJp2Codestream(TStream& stream, uint64_t at, uint64_t bytes) {
  return MainHeader(stream, at, bytes).Read();
}

}  // namespace rasterkit::detail
