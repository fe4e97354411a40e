#include "tests/support/wmf_file.h"

namespace rasterkit::test {

WmfFile& WmfFile::Add(detail::WmfFunction function, const FieldBytes& parameters) {
  FieldBytes padded = parameters;
  padded.PadTo(2);
  FieldBytes record;
  record.Long(static_cast<int64_t>(3 + padded.bytes.size() / 2));
  record.Word(static_cast<uint16_t>(function)).Bytes(padded.bytes);
  records.insert(records.end(), record.bytes.begin(), record.bytes.end());
  return *this;
}

std::vector<uint8_t> WmfFile::Bytes() const {
  FieldBytes file;
  if (box) {
    file.Long(detail::kWmfPlaceableKey).Word(0);
    for (const int16_t side : *box) file.Word(side);
    file.Word(unitsPerInch).Long(0);
    uint16_t sum = 0;
    for (size_t i = 0; i < file.bytes.size(); i += 2) {
      sum = static_cast<uint16_t>(sum ^ (file.bytes[i] | file.bytes[i + 1] << 8));
    }
    file.Word(sum);
  }
  const size_t end = hasEnd ? 6 : 0;
  file.Words({1, 9, 0x300});
  file.Long(static_cast<int64_t>((18 + records.size() + end) / 2));
  file.Word(objects).Long(static_cast<int64_t>(records.size() / 2)).Word(0);
  file.Bytes(records);
  if (hasEnd) file.Long(3).Word(0);
  return file.bytes;
}

}  // namespace rasterkit::test
