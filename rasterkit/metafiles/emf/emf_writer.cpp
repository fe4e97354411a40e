#include <algorithm>
#include <cmath>
#include <limits>

#include <rasterkit/metafiles/emf/emf_writer.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit::detail {
namespace {

constexpr uint32_t kHeaderBytes = 108, kEndBytes = 20;
constexpr int64_t kVersion = 0x10000;
constexpr size_t kMostHandles = 0xFFFF;

void AppendRecord(std::vector<uint8_t>& to, EmfType type, std::span<const uint8_t> fields) {
  EmfFields head;
  head.Long(static_cast<uint32_t>(type));
  head.Long(static_cast<int64_t>(kEmfRecordHead + fields.size()));
  to.insert(to.end(), head.Bytes().begin(), head.Bytes().end());
  to.insert(to.end(), fields.begin(), fields.end());
}

/// Right and bottom are included; a box that ends before it starts means an empty drawing.
RectD HeaderBounds(const EmfPicture& picture) {
  if (!picture.drawn) return {0, 0, -1, -1};
  const RectD& drawn = *picture.drawn;
  const double right = picture.width - 1, bottom = picture.height - 1;
  return {std::clamp(std::floor(drawn.left), 0.0, right),
          std::clamp(std::floor(drawn.top), 0.0, bottom),
          std::clamp(std::ceil(drawn.right) - 1, 0.0, right),
          std::clamp(std::ceil(drawn.bottom) - 1, 0.0, bottom)};
}

}  // namespace

EmfFields& EmfFields::Put(int64_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) bytes_.push_back(static_cast<uint8_t>(value >> (8 * i)));
  return *this;
}

EmfFields& EmfFields::Longs(std::initializer_list<int64_t> values) {
  for (const int64_t value : values) Long(value);
  return *this;
}

EmfFields& EmfFields::Number(double value) {
  if (std::isnan(value)) value = 0;
  constexpr double kLeast = std::numeric_limits<int32_t>::min();
  constexpr double kMost = std::numeric_limits<int32_t>::max();
  return Long(static_cast<int64_t>(std::clamp(std::nearbyint(value), kLeast, kMost)));
}

EmfFields& EmfFields::Rect(const RectD& rect) {
  return Number(rect.left).Number(rect.top).Number(rect.right).Number(rect.bottom);
}

EmfFields& EmfFields::SizedRect(const RectD& rect) {
  return Number(rect.left).Number(rect.top).Number(rect.Width()).Number(rect.Height());
}

EmfFields& EmfFields::Append(std::span<const uint8_t> more) {
  bytes_.insert(bytes_.end(), more.begin(), more.end());
  return *this;
}

EmfFields& EmfFields::Pad() {
  while (bytes_.size() % 4 != 0) bytes_.push_back(0);
  return *this;
}

void EmfWriter::Add(EmfType type, const EmfFields& fields) {
  EmfFields padded = fields;
  padded.Pad();
  RequirePictureMemory(records_.size() + padded.Size(), "EMF: the records");
  AppendRecord(records_, type, padded.Bytes());
  ++count_;
}

std::vector<uint8_t> EmfWriter::Finish(const EmfPicture& picture) {
  const uint64_t bytes = uint64_t{kHeaderBytes} + records_.size() + kEndBytes;
  if (bytes > std::numeric_limits<uint32_t>::max()) {
    throw LimitError("EMF: a file can have at most 4 GiB");
  }
  constexpr int64_t kMicrometersPerHundredth = 10;
  EmfFields fields;
  fields.Rect(HeaderBounds(picture));
  fields.Longs({0, 0, picture.widthMm100, picture.heightMm100, kEmfSignature, kVersion});
  fields.Longs({static_cast<int64_t>(bytes), int64_t{count_} + 2});
  fields.Word(static_cast<int64_t>(std::min(picture.handles, kMostHandles))).Word(0);
  fields.Longs({0, 0, 0});  // no description, no palette
  fields.Longs({picture.width, picture.height});
  // Whole millimeters, at least 1, as other programs divide by them.
  fields.Number(std::max(1.0, picture.widthMm100 / 100.0));
  fields.Number(std::max(1.0, picture.heightMm100 / 100.0));
  fields.Longs({0, 0, 0});  // no pixel format
  fields.Longs({picture.widthMm100 * kMicrometersPerHundredth,
                picture.heightMm100 * kMicrometersPerHundredth});
  std::vector<uint8_t> file;
  AppendRecord(file, EmfType::header, fields.Bytes());
  file.insert(file.end(), records_.begin(), records_.end());
  // No palette entries, and the record size once more.
  AppendRecord(file, EmfType::endOfFile, EmfFields().Longs({0, 16, kEndBytes}).Bytes());
  return file;
}

}  // namespace rasterkit::detail
