#include <algorithm>
#include <bit>
#include <limits>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/utf8.h>
#include <rasterkit/runtime/worker/fields.h>

namespace rasterkit::detail {
namespace {

constexpr int kBitsPerByte = 8;

bool IsUtf8(std::string_view text) {
  for (size_t position = 0; position < text.size();) {
    const Utf8Step step = NextUtf8(text, position);
    if (!step.valid) return false;
    position += step.bytes;
  }
  return true;
}

std::span<const uint8_t> BytesOf(std::string_view text) {
  return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

std::string TextOf(std::span<const uint8_t> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

}  // namespace

void ThrowBadMessage(std::string_view what) {
  throw FormatError("the process that reads the file sent an invalid message: " +
                    std::string(what));
}

void FieldWriter::Number(uint64_t value, size_t size) {
  for (size_t i = 0; i < size; ++i) {
    bytes_.push_back(static_cast<uint8_t>(value >> (i * kBitsPerByte)));
  }
}

void FieldWriter::F64(double value) {
  U64(std::bit_cast<uint64_t>(value));
}

void FieldWriter::Count(size_t items) {
  if (items > std::numeric_limits<uint32_t>::max()) throw LimitError("message: list too long");
  U32(static_cast<uint32_t>(items));
}

void FieldWriter::Bytes(std::span<const uint8_t> bytes) {
  Count(bytes.size());
  bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
}

void FieldWriter::Text(std::string_view text) {
  Bytes(BytesOf(text));
}

void FieldWriter::ByteText(std::string_view text) {
  Bytes(BytesOf(text));
}

std::span<const uint8_t> FieldReader::Take(size_t size) {
  if (size > rest_.size()) ThrowBadMessage("it ends too early");
  const auto taken = rest_.first(size);
  rest_ = rest_.subspan(size);
  return taken;
}

uint64_t FieldReader::Number(size_t size) {
  uint64_t value = 0;
  int shift = 0;
  for (const uint8_t byte : Take(size)) {
    value |= static_cast<uint64_t>(byte) << shift;
    shift += kBitsPerByte;
  }
  return value;
}

double FieldReader::F64() {
  return std::bit_cast<double>(U64());
}

bool FieldReader::Bool() {
  const uint8_t value = U8();
  if (value > 1) ThrowBadMessage("a Boolean is neither 0 nor 1");
  return value == 1;
}

int32_t FieldReader::I32In(int32_t least, int32_t most) {
  const int32_t value = I32();
  if (value < least || value > most) ThrowBadMessage("a number is out of range");
  return value;
}

uint32_t FieldReader::U32In(uint32_t least, uint32_t most) {
  const uint32_t value = U32();
  if (value < least || value > most) ThrowBadMessage("a number is out of range");
  return value;
}

std::span<const uint8_t> FieldReader::Bytes(size_t mostBytes) {
  return Take(Count(mostBytes));
}

std::string FieldReader::ByteText(size_t mostBytes) {
  return TextOf(Bytes(mostBytes));
}

std::string FieldReader::Text(size_t mostBytes) {
  std::string text = ByteText(mostBytes);
  if (!IsUtf8(text)) ThrowBadMessage("a text is not valid UTF-8");
  return text;
}

size_t FieldReader::Count(size_t most, size_t leastBytes) {
  const size_t count = U32();
  if (count > most) ThrowBadMessage("a list is too long");
  if (leastBytes > 0 && count > rest_.size() / leastBytes) ThrowBadMessage("it ends too early");
  return count;
}

void FieldReader::RequireEnd() const {
  if (!rest_.empty()) ThrowBadMessage("bytes are left at its end");
}

}  // namespace rasterkit::detail
