#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

/// Builds EXIF data and the JPEG files around it, byte by byte, in either byte order.
namespace rasterkit::test {

enum class ByteOrder { intel, motorola };

/// A directory entry with the bytes of its value; `count` is what the entry claims.
struct TiffEntry {
  uint16_t tag = 0;
  uint16_t type = 0;
  uint32_t count = 0;
  std::string value;
};

/// Writes TIFF structures in one byte order.
class TiffWriter {
 public:
  explicit TiffWriter(ByteOrder order) : order_(order) {}

  std::string Word(uint32_t value) const { return Number(value, 2); }
  std::string Long(uint32_t value) const { return Number(value, 4); }

  TiffEntry Short(uint16_t tag, uint16_t value) const { return {tag, 3, 1, Word(value)}; }
  TiffEntry LongEntry(uint16_t tag, uint32_t value) const { return {tag, 4, 1, Long(value)}; }
  TiffEntry Ascii(uint16_t tag, const std::string& text) const {
    return {tag, 2, static_cast<uint32_t>(text.size() + 1), text + '\0'};
  }
  TiffEntry Bytes(uint16_t tag, const std::string& bytes, uint16_t type = 1) const {
    return {tag, type, static_cast<uint32_t>(bytes.size()), bytes};
  }
  TiffEntry Rationals(uint16_t tag,
                      const std::vector<std::pair<uint32_t, uint32_t>>& values) const {
    TiffEntry entry{tag, 5, static_cast<uint32_t>(values.size()), ""};
    for (const auto& [numerator, denominator] : values) {
      entry.value += Long(numerator) + Long(denominator);
    }
    return entry;
  }
  /// The pointer to the GPS directory; `Tiff` fills in where it lies.
  TiffEntry GpsPointer() const { return {34853, 4, 1, std::string()}; }

  std::string Header(uint32_t firstDirectory = 8) const {
    return std::string(order_ == ByteOrder::intel ? "II" : "MM") + Word(42) + Long(firstDirectory);
  }

  /// A directory that lies at `offset`, its long values right behind it, with a link to the next
  /// directory.
  std::string Directory(uint32_t offset, const std::vector<TiffEntry>& entries,
                        uint32_t next = 0) const {
    std::string directory = Word(static_cast<uint32_t>(entries.size()));
    const uint32_t valuesAt = offset + static_cast<uint32_t>(DirectoryBytes(entries.size()));
    std::string values;
    for (const TiffEntry& entry : entries) {
      directory += Word(entry.tag) + Word(entry.type) + Long(entry.count);
      if (entry.value.size() <= 4) {
        directory += entry.value + std::string(4 - entry.value.size(), '\0');
      } else {
        directory += Long(valuesAt + static_cast<uint32_t>(values.size()));
        values += entry.value;
      }
    }
    return directory + Long(next) + values;
  }

  /// Header, main directory, and a GPS directory where the main one has a GpsPointer.
  std::string Tiff(std::vector<TiffEntry> entries, const std::vector<TiffEntry>& gps = {}) const {
    uint32_t gpsAt = 8 + static_cast<uint32_t>(DirectoryBytes(entries.size()));
    for (const TiffEntry& entry : entries) {
      if (entry.value.size() > 4) gpsAt += static_cast<uint32_t>(entry.value.size());
    }
    bool hasGps = false;
    for (TiffEntry& entry : entries) {
      if (entry.tag != 34853 || !entry.value.empty()) continue;
      entry.value = Long(gpsAt);
      hasGps = true;
    }
    return Header() + Directory(8, entries) + (hasGps ? Directory(gpsAt, gps) : "");
  }

 private:
  static size_t DirectoryBytes(size_t entries) { return 2 + 12 * entries + 4; }

  std::string Number(uint32_t value, int bytes) const {
    std::string text;
    for (int i = 0; i < bytes; ++i) {
      const int place = order_ == ByteOrder::intel ? i : bytes - 1 - i;
      text += static_cast<char>(value >> 8 * place & 0xFF);
    }
    return text;
  }

  ByteOrder order_;
};

/// A marker section; the length counts its own two bytes.
inline std::string JpegSection(uint8_t marker, const std::string& content) {
  const size_t length = content.size() + 2;
  std::string section = "\xFF";
  section += static_cast<char>(marker);
  section += static_cast<char>(length >> 8 & 0xFF);
  section += static_cast<char>(length & 0xFF);
  return section + content;
}

inline std::string ExifContent(const std::string& tiff) {
  return std::string("Exif\0\0", 6) + tiff;
}

inline std::string ExifSection(const std::string& tiff) {
  return JpegSection(0xE1, ExifContent(tiff));
}

inline std::string XmpSection() {
  return JpegSection(0xE1, std::string("http://ns.adobe.com/xap/1.0/\0<x:xmpmeta/>", 42));
}

/// Start marker, the sections, a start of scan and a few bytes behind it. Has a header but no
/// picture.
inline std::string JpegOf(const std::vector<std::string>& sections) {
  std::string file = "\xFF\xD8";
  for (const std::string& section : sections) file += section;
  return file + JpegSection(0xDA, std::string(10, '\1')) + "scan" + "\xFF\xD9";
}

/// A JPEG header whose EXIF section states just an orientation.
inline std::string JpegWithOrientation(int orientation, ByteOrder order = ByteOrder::intel) {
  const TiffWriter writer(order);
  return JpegOf(
      {ExifSection(writer.Tiff({writer.Short(274, static_cast<uint16_t>(orientation))}))});
}

}  // namespace rasterkit::test
