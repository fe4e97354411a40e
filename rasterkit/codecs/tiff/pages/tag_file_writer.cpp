#include <algorithm>
#include <array>
#include <cstring>

#include <fmt/format.h>
#include <tiff.h>

#include <rasterkit/codecs/tiff/pages/tag_file_writer.h>
#include <rasterkit/codecs/tiff/pages/tag_reader.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {

namespace {

/// Little-endian, as in TagValue.
void Add(std::vector<uint8_t>& bytes, uint64_t number, int count) {
  for (int i = 0; i < count; i++) bytes.push_back(static_cast<uint8_t>(number >> 8 * i));
}

TagValue NumbersTag(uint16_t tag, uint16_t type, std::span<const uint64_t> numbers) {
  TagValue value{tag, type, numbers.size(), {}};
  const int count = TagTypeBytes(type);
  value.bytes.reserve(numbers.size() * static_cast<size_t>(count));
  for (const uint64_t number : numbers) Add(value.bytes, number, count);
  return value;
}

}  // namespace

TagValue WordsTag(uint16_t tag, std::span<const uint16_t> words) {
  const std::vector<uint64_t> numbers(words.begin(), words.end());
  return NumbersTag(tag, TIFF_SHORT, numbers);
}

TagValue WordTag(uint16_t tag, int word) {
  const uint64_t number = static_cast<uint64_t>(word) & 0xFFFF;
  return NumbersTag(tag, TIFF_SHORT, {&number, 1});
}

TagValue LongTag(uint16_t tag, uint32_t number) {
  const uint64_t wide = number;
  return NumbersTag(tag, TIFF_LONG, {&wide, 1});
}

TagValue BytesTag(uint16_t tag, uint16_t type, std::span<const uint8_t> bytes) {
  return {tag, type, bytes.size(), {bytes.begin(), bytes.end()}};
}

TagFileWriter::TagFileWriter(TStream& stream, bool isBig, bool isBigEndian)
    : stream_(stream), start_(stream.Position()), isBig_(isBig), isBigEndian_(isBigEndian) {
  std::vector<uint8_t> header(2, isBigEndian ? uint8_t{'M'} : uint8_t{'I'});
  Put(header, isBig ? 43 : 42, 2);
  if (isBig) {
    Put(header, 8, 2);
    Put(header, 0, 2);
  }
  Put(header, 0, isBig ? 8 : 4);
  stream_.Write(header);
  size_ = header.size();
}

void TagFileWriter::Put(std::vector<uint8_t>& bytes, uint64_t number, int count) const {
  const size_t at = bytes.size();
  Add(bytes, number, count);
  if (isBigEndian_) std::reverse(bytes.begin() + static_cast<ptrdiff_t>(at), bytes.end());
}

uint64_t TagFileWriter::End() {
  if (size_ % 2 != 0) {
    const uint8_t zero = 0;
    stream_.Write({&zero, 1});
    size_++;
  }
  return size_;
}

void TagFileWriter::RequireRoom(uint64_t bytes) const {
  if (!isBig_ && bytes > UINT32_MAX - size_) {
    throw LimitError("TIFF: a file above 4 GiB must be a BigTIFF file");
  }
}

uint64_t TagFileWriter::Append(std::span<const uint8_t> bytes) {
  const uint64_t at = End();
  Continue(bytes);
  return at;
}

void TagFileWriter::Continue(std::span<const uint8_t> bytes) {
  RequireRoom(bytes.size());
  stream_.Write(bytes);
  size_ += bytes.size();
}

TagValue TagFileWriter::PlacesTag(uint16_t tag, std::span<const uint64_t> places) const {
  return NumbersTag(tag, isBig_ ? TIFF_LONG8 : TIFF_LONG, places);
}

TagValue TagFileWriter::PointersTag(uint16_t tag, std::span<const uint64_t> places) const {
  return NumbersTag(tag, isBig_ ? TIFF_IFD8 : TIFF_IFD, places);
}

/// False if a number does not fit 32 bits.
bool TagFileWriter::Narrow(TagValue& value) const {
  const bool isWide =
      value.type == TIFF_LONG8 || value.type == TIFF_SLONG8 || value.type == TIFF_IFD8;
  if (isBig_ || !isWide) return true;
  const bool isSigned = value.type == TIFF_SLONG8;
  std::vector<uint8_t> narrow;
  for (size_t at = 0; at + 8 <= value.bytes.size(); at += 8) {
    uint64_t number = 0;
    for (size_t i = 8; i-- > 0;) number = number << 8 | value.bytes[at + i];
    const auto low = static_cast<uint32_t>(number);
    const uint64_t back =
        isSigned ? static_cast<uint64_t>(int64_t{static_cast<int32_t>(low)}) : uint64_t{low};
    if (back != number) return false;
    Add(narrow, low, 4);
  }
  value.bytes = std::move(narrow);
  value.type = value.type == TIFF_LONG8    ? TIFF_LONG
               : value.type == TIFF_SLONG8 ? TIFF_SLONG
                                           : TIFF_IFD;
  return true;
}

/// From little-endian order to that of the file.
void TagFileWriter::Turn(TagValue& value) const {
  const auto unit = static_cast<size_t>(TagUnitBytes(value.type));
  if (!isBigEndian_ || unit < 2) return;
  for (size_t at = 0; at + unit <= value.bytes.size(); at += unit) {
    std::reverse(value.bytes.data() + at, value.bytes.data() + at + unit);
  }
}

StoredValue TagFileWriter::AppendValue(TagValue value) {
  Turn(value);
  return {value.type, value.count, Append(value.bytes)};
}

TagFileWriter::Written TagFileWriter::WriteDirectory(const TagMap& tags, const StoredMap& stored,
                                                     Changes& changes) {
  const int offsetBytes = isBig_ ? 8 : 4;
  std::map<uint16_t, std::vector<uint8_t>> entries;
  const auto put = [&](uint16_t tag, uint16_t type, uint64_t count) -> std::vector<uint8_t>& {
    std::vector<uint8_t>& entry = entries[tag];
    Put(entry, tag, 2);
    Put(entry, type, 2);
    Put(entry, count, offsetBytes);
    return entry;
  };
  for (const auto& [tag, value] : stored) {
    Put(put(tag, value.type, value.count), value.at, offsetBytes);
  }
  for (const auto& [tag, stated] : tags) {
    if (stored.contains(tag)) continue;
    TagValue value = stated;
    if (!Narrow(value)) {
      changes.Lose(LossKind::otherBlock, fmt::format("TIFF tag {}", tag),
                   "its 64-bit numbers need a BigTIFF file");
      continue;
    }
    Turn(value);
    std::vector<uint8_t>& entry = put(tag, value.type, value.count);
    if (value.bytes.size() <= static_cast<size_t>(offsetBytes)) {
      value.bytes.resize(static_cast<size_t>(offsetBytes));
      entry.insert(entry.end(), value.bytes.begin(), value.bytes.end());
    } else {
      Put(entry, Append(value.bytes), offsetBytes);
    }
  }
  if (entries.empty()) throw FormatError("TIFF: a directory has no tag that can be written");
  if (!isBig_ && entries.size() > UINT16_MAX) {
    throw LimitError("TIFF: a directory of more than 65,535 tags must be in a BigTIFF file");
  }
  std::vector<uint8_t> directory;
  Put(directory, entries.size(), isBig_ ? 8 : 2);
  for (const auto& [tag, entry] : entries) {
    directory.insert(directory.end(), entry.begin(), entry.end());
  }
  Put(directory, 0, offsetBytes);
  const uint64_t at = Append(directory);
  return {at, at + directory.size() - static_cast<uint64_t>(offsetBytes)};
}

void TagFileWriter::Link(uint64_t linkAt, uint64_t directoryAt) {
  std::vector<uint8_t> bytes;
  Put(bytes, directoryAt, isBig_ ? 8 : 4);
  stream_.SetPosition(start_ + linkAt);
  stream_.Write(bytes);
  stream_.SetPosition(start_ + size_);
}

void TagFileWriter::Finish() {
  stream_.SetPosition(start_ + size_);
}

}  // namespace rasterkit::detail
