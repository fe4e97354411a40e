#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <string_view>

#include <fmt/format.h>

#include <rasterkit/codecs/jp2/jp2_boxes.h>
#include <rasterkit/codecs/jp2/jp2_file.h>
#include <rasterkit/codecs/jp2/jp2_signature.h>
#include <rasterkit/codecs/rows/byte_marks.h>
#include <rasterkit/metadata/ifd.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

using Bytes = std::span<const uint8_t>;
using Uuid = std::array<uint8_t, 16>;

constexpr size_t kMostMetadata = size_t{64} << 20, kMostProfile = size_t{16} << 20;
constexpr size_t kMostSmallBox = size_t{1} << 20;

constexpr Uuid kGeoTiff = {0xB1, 0x4B, 0xF8, 0xBD, 0x08, 0x3D, 0x4B, 0x43,
                           0xA5, 0xAE, 0x8C, 0xD7, 0xD5, 0xA6, 0xCE, 0x03};
constexpr Uuid kXmp = {0xBE, 0x7A, 0xCF, 0xCB, 0x97, 0xA9, 0x42, 0xE8,
                       0x9C, 0x71, 0x99, 0x94, 0x91, 0xE3, 0xAF, 0xAC};
/// The letters "JpgTiffExif->JP2".
constexpr Uuid kExif = {0x4A, 0x70, 0x67, 0x54, 0x69, 0x66, 0x66, 0x45,
                        0x78, 0x69, 0x66, 0x2D, 0x3E, 0x4A, 0x50, 0x32};
constexpr Uuid kPhotoshopExif = {0x05, 0x37, 0xCD, 0xAB, 0x9D, 0x0C, 0x44, 0x31,
                                 0xA7, 0x2A, 0xFA, 0x56, 0x1F, 0x2A, 0x11, 0x3E};
constexpr Uuid kIptc = {0x33, 0xC7, 0xA4, 0xD2, 0xB8, 0x1D, 0x47, 0x23,
                        0xA0, 0xBA, 0xF1, 0xA3, 0xE0, 0x97, 0xAD, 0x38};

Jp2Component DepthOf(uint8_t byte) {
  constexpr uint8_t kSigned = 0x80;
  Jp2Component depth;
  depth.bits = (byte & ~kSigned) + 1;
  depth.isSigned = (byte & kSigned) != 0;
  return depth;
}

/// Numbers of an entry have as many bytes as its column needs, with the sign extended.
int32_t EntryNumber(Bytes bytes, const Jp2Component& depth) {
  uint32_t number = 0;
  for (const uint8_t byte : bytes) number = number << 8 | byte;
  const uint32_t mask = depth.bits < 32 ? (uint32_t{1} << depth.bits) - 1 : ~uint32_t{0};
  number &= mask;
  const bool isNegative = depth.isSigned && (number >> (depth.bits - 1) & 1) != 0;
  return static_cast<int32_t>(isNegative ? number | ~mask : number);
}

class FileReader {
 public:
  explicit FileReader(TStream& stream) : stream_(stream) {}

  Jp2File Read() {
    const uint64_t begin = stream_.Position(), end = stream_.Size();
    std::array<uint8_t, 4> first{};
    const size_t count = stream_.Read(first);
    if (IsJp2Codestream(std::span(first).first(count))) {
      codestreamAt_ = begin;
      codestreamBytes_ = end - begin;
    } else {
      ReadBoxes(Jp2Boxes(stream_, begin, end));
    }
    if (codestreamBytes_ == 0) Fail("the file has no codestream");
    if (isGml_ && file_.geoTiff.empty()) {
      Warn("a position in GML data is not read");
      file_.unreadPosition = "map position in GML data";
    }
    file_.codestream = ReadJp2Codestream(stream_, codestreamAt_, codestreamBytes_);
    return std::move(file_);
  }

 private:
  [[noreturn]] static void Fail(const char* what) {
    throw FormatError(std::string("JPEG 2000: ") + what);
  }
  void Warn(std::string_view what) { file_.warnings.push_back(fmt::format("JPEG 2000: {}", what)); }

  void ReadBoxes(Jp2Boxes boxes) {
    while (boxes.Next()) {
      if (!boxes.IsWhole()) Warn("the file is cut off");
      ReadBox(boxes);
    }
  }

  void ReadBox(const Jp2Boxes& box) {
    switch (box.Type()) {
      case BoxType("jp2h"):
        return ReadHeader(box.Inner());
      case BoxType("jpch"):
      case BoxType("jplh"):
        return ReadOtherHeader(box.Inner());
      case BoxType("jp2c"):
        return TakeCodestream(box);
      case BoxType("ftbl"):
        if (codestreamBytes_ == 0) {
          throw UnsupportedError("JPEG 2000: pixels in fragments are not read");
        }
        return;
      case BoxType("uuid"):
        return ReadUuid(box);
      case BoxType("xml "):
        return ReadXml(box);
      case BoxType("asoc"):
        return NoteAssociation(box);
      default:
        return;
    }
  }

  void TakeCodestream(const Jp2Boxes& box) {
    if (codestreamBytes_ != 0) {
      ++file_.codestreams;
      return;
    }
    codestreamAt_ = box.ContentAt();
    codestreamBytes_ = box.ContentBytes();
  }

  void ReadHeader(Jp2Boxes boxes) {
    while (boxes.Next()) ReadHeaderBox(boxes);
  }

  /// Headers of one codestream and of one layer: what the header of all lacks.
  void ReadOtherHeader(Jp2Boxes boxes) {
    if (file_.codestreams > 1) return;
    while (boxes.Next()) {
      if (boxes.Type() == BoxType("cgrp")) {
        ReadHeader(boxes.Inner());
      } else {
        ReadHeaderBox(boxes);
      }
    }
  }

  void ReadHeaderBox(const Jp2Boxes& box) {
    switch (box.Type()) {
      case BoxType("colr"):
        return ReadColors(box);
      case BoxType("pclr"):
        return ReadPalette(box.Content(kMostSmallBox));
      case BoxType("cmap"):
        return ReadMappings(box.Content(kMostSmallBox));
      case BoxType("cdef"):
        return ReadDefinitions(box.Content(kMostSmallBox));
      case BoxType("res "):
        return ReadResolutions(box.Inner());
      default:
        return;
    }
  }

  void ReadColors(const Jp2Boxes& box) {
    constexpr uint8_t kEnumerated = 1, kProfile = 2, kAnyProfile = 3;
    constexpr size_t kHead = 3, kNumberEnd = 7;
    const std::vector<uint8_t> bytes = box.Content(kMostProfile);
    if (bytes.size() <= kHead) return Warn("a color space is damaged and is ignored");
    const uint8_t method = bytes[0];
    if (method == kEnumerated && bytes.size() >= kNumberEnd) {
      if (!file_.colorSpace) file_.colorSpace = OrderedBytes(bytes, true).Long(kHead);
    } else if (method == kProfile || method == kAnyProfile) {
      if (file_.profile) return;
      file_.profile =
          std::make_shared<const std::vector<uint8_t>>(bytes.begin() + kHead, bytes.end());
    }
  }

  void ReadPalette(const std::vector<uint8_t>& bytes) {
    constexpr size_t kHead = 3, kMostEntries = 1024;
    constexpr int kMostBits = 31;
    if (!file_.palette.columns.empty()) return;
    if (bytes.size() < kHead) Fail("the palette is damaged");
    Jp2Palette palette;
    palette.entries = OrderedBytes(bytes, true).Word(0);
    const size_t columns = bytes[2];
    if (palette.entries < 1 || palette.entries > kMostEntries || columns < 1 ||
        bytes.size() < kHead + columns) {
      Fail("the palette is damaged");
    }
    size_t at = kHead;
    for (size_t i = 0; i < columns; ++i) palette.columns.push_back(DepthOf(bytes[at++]));
    for (size_t i = 0; i < palette.entries * columns; ++i) {
      const Jp2Component& depth = palette.columns[i % columns];
      if (depth.bits > kMostBits) Fail("the palette is damaged");
      const auto size = static_cast<size_t>((depth.bits + 7) / 8);
      if (bytes.size() - at < size) Fail("the palette is cut off");
      palette.numbers.push_back(EntryNumber(Bytes(bytes).subspan(at, size), depth));
      at += size;
    }
    file_.palette = std::move(palette);
  }

  void ReadMappings(const std::vector<uint8_t>& bytes) {
    constexpr size_t kEntry = 4, kType = 2, kColumn = 3;
    constexpr uint8_t kDirect = 0;
    if (!file_.mappings.empty()) return;
    const OrderedBytes numbers(bytes, true);
    for (size_t at = 0; at + kEntry <= bytes.size(); at += kEntry) {
      Jp2Mapping mapping;
      mapping.component = numbers.Word(at);
      if (bytes[at + kType] != kDirect) mapping.column = bytes[at + kColumn];
      file_.mappings.push_back(mapping);
    }
  }

  void ReadDefinitions(const std::vector<uint8_t>& bytes) {
    constexpr size_t kHead = 2, kEntry = 6;
    if (!file_.definitions.empty()) return;
    const OrderedBytes numbers(bytes, true);
    for (size_t at = kHead; at + kEntry <= bytes.size(); at += kEntry) {
      file_.definitions.push_back({numbers.Word(at), numbers.Word(at + 2), numbers.Word(at + 4)});
    }
  }

  /// Where the picture was scanned with a known resolution, this counts before the one for showing
  /// it.
  void ReadResolutions(Jp2Boxes boxes) {
    Resolution shown;
    while (boxes.Next()) {
      const std::vector<uint8_t> bytes = boxes.Content(kMostSmallBox);
      if (boxes.Type() == BoxType("resc")) file_.resolution = ResolutionIn(bytes);
      if (boxes.Type() == BoxType("resd")) shown = ResolutionIn(bytes);
    }
    if (!file_.resolution.IsKnown()) file_.resolution = shown;
  }

  /// Fractions of dots per meter with powers of ten: vertical, then horizontal.
  Resolution ResolutionIn(const std::vector<uint8_t>& bytes) {
    constexpr size_t kBytes = 10, kExponents = 8;
    constexpr double kMetersPerInch = 0.0254, kMost = 1e6, kLeast = 1e-3;
    if (bytes.size() < kBytes) return {};
    const OrderedBytes numbers(bytes, true);
    const auto dots = [&](size_t at, size_t exponentAt) {
      const double over = numbers.Word(at), under = numbers.Word(at + 2);
      const auto exponent = static_cast<int8_t>(bytes[exponentAt]);
      const double value = over / under * std::pow(10.0, exponent) * kMetersPerInch;
      return under > 0 && value >= kLeast && value <= kMost ? RoundedDots(value) : 0;
    };
    const Resolution resolution{dots(4, kExponents + 1), dots(0, kExponents)};
    if (resolution.IsKnown()) return resolution;
    Warn("the resolution is invalid and is ignored");
    return {};
  }

  /// Whole dots per inch where the fraction is one of them, rounded.
  static double RoundedDots(double dots) {
    constexpr double kSlack = 1e-4;
    const double whole = std::round(dots);
    return std::abs(dots - whole) <= whole * kSlack ? whole : dots;
  }

  void ReadUuid(const Jp2Boxes& box) {
    const std::vector<uint8_t> bytes = box.Content(kMostMetadata);
    Uuid id{};
    if (bytes.size() < id.size()) return Warn("a box without an identifier is ignored");
    std::copy_n(bytes.begin(), id.size(), id.begin());
    const Bytes content = Bytes(bytes).subspan(id.size());
    if (id == kGeoTiff) {
      Take(file_.geoTiff, content, "a second position is ignored");
    } else if (id == kXmp) {
      if (file_.xmp.empty()) file_.xmp.assign(content.begin(), content.end());
    } else if (id == kExif || id == kPhotoshopExif) {
      using std::string_view_literals::operator""sv;
      constexpr std::string_view kJpegPrefix = "Exif\0\0"sv;
      const bool hasPrefix = StartsWith(content, kJpegPrefix);
      Take(file_.exif, hasPrefix ? content.subspan(kJpegPrefix.size()) : content,
           "a second EXIF block is ignored");
    } else if (id == kIptc) {
      Take(file_.iptc, content, "a second IPTC block is ignored");
    } else {
      file_.others.push_back(fmt::format("a private box of {} bytes", content.size()));
    }
  }

  void Take(std::vector<uint8_t>& target, Bytes content, const char* otherwise) {
    if (!target.empty()) return Warn(otherwise);
    target.assign(content.begin(), content.end());
  }

  void ReadXml(const Jp2Boxes& box) {
    file_.others.push_back(fmt::format("XML data of {} bytes", box.ContentBytes()));
  }

  void NoteAssociation(const Jp2Boxes& box) {
    constexpr std::string_view kGml = "gml.data";
    Jp2Boxes inner = box.Inner();
    while (inner.Next()) {
      if (inner.Type() != BoxType("lbl ")) continue;
      if (StartsWith(inner.Content(kMostSmallBox), kGml)) {
        isGml_ = true;
        return;
      }
    }
    file_.others.push_back(fmt::format("associated data of {} bytes", box.ContentBytes()));
  }

  TStream& stream_;
  Jp2File file_;
  uint64_t codestreamAt_ = 0, codestreamBytes_ = 0;
  bool isGml_ = false;
};

}  // namespace

Jp2File ReadJp2File(TStream& stream) {
  return FileReader(stream).Read();
}

}  // namespace rasterkit::detail
