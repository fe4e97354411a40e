#pragma once

#include <array>
#include <cstdint>
#include <string>

#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// One marker section of a JPEG file.
struct TSection {
  /// Bytes of the section from its two length bytes on; the marker itself is not stored.
  std::string Data;
  /// Second byte of the marker.
  int32_t DType = 0;
  /// Length as stored in the file, its own two bytes included.
  int32_t Size = 0;
  /// Not used by the reader.
  int32_t Base = 0;
};

using PSection = TSection*;

/// Second bytes of the markers that are used here.
enum JpegMarker : int32_t {
  kMarkerSoi = 0xD8,
  kMarkerEoi = 0xD9,
  kMarkerSos = 0xDA,
  kMarkerApp0 = 0xE0,
  kMarkerApp1 = 0xE1,
  kMarkerApp2 = 0xE2,
  kMarkerApp12 = 0xEC,
  kMarkerApp13 = 0xED,
  kMarkerApp14 = 0xEE,
  kMarkerCom = 0xFE,
};

namespace detail {

/// Reads the small pieces of a JPEG header with few system calls, and little more than the header:
/// the sections of a photo usually arrive with the first read, and its picture data is not read.
class SectionReader {
 public:
  /// Reads from the stream's position on. The stream must outlive the reader, which moves its
  /// position ahead.
  explicit SectionReader(TStream& stream) : stream_(stream), fetched_(stream.Position()) {}
  SectionReader(const SectionReader&) = delete;
  SectionReader& operator=(const SectionReader&) = delete;

  /// Reads the next byte; 0 after the end.
  uint8_t ReadByte();
  /// Reads a big-endian word, with 0 for bytes after the end.
  int32_t ReadWord();
  /// Appends `count` bytes to `target`, zeros for those after the end.
  void Append(std::string& target, size_t count);
  void Skip(size_t count);
  /// Tells whether a read went beyond the end.
  bool IsPastEnd() const { return isPastEnd_; }
  /// Position of the next byte in the stream.
  uint64_t Position() const { return fetched_ - (end_ - next_); }

 private:
  bool Refill();

  TStream& stream_;
  /// Position in the stream after the buffered bytes.
  uint64_t fetched_;
  size_t next_ = 0;
  size_t end_ = 0;
  bool isPastEnd_ = false;
  std::array<uint8_t, 16 * 1024> buffer_;
};

}  // namespace detail
}  // namespace rasterkit
