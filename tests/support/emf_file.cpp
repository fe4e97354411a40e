#include "tests/support/emf_file.h"

namespace rasterkit::test {
namespace {

constexpr uint32_t kOldHeader = 88, kNewHeader = 108;

}  // namespace

EmfFile& EmfFile::Add(detail::EmfType type, const FieldBytes& fields) {
  FieldBytes record;
  record.Longs({static_cast<uint32_t>(type), 0}).Bytes(fields.bytes).PadTo(4);
  const auto size = static_cast<uint32_t>(record.bytes.size());
  for (int i = 0; i < 4; ++i) record.bytes[4 + i] = static_cast<uint8_t>(size >> (8 * i));
  records.insert(records.end(), record.bytes.begin(), record.bytes.end());
  ++recordCount;
  return *this;
}

std::vector<uint8_t> EmfFile::Bytes() const {
  const bool isNew = micrometersX != 0;
  const uint32_t fixed = isNew ? kNewHeader : kOldHeader;
  const auto text = static_cast<uint32_t>((description.size() * 2 + 3) / 4 * 4);
  const auto end = static_cast<uint32_t>(hasEnd ? 20 : 0);
  FieldBytes file;
  file.Longs({1, fixed + text});
  for (const int32_t side : bounds) file.Long(side);
  for (const int32_t side : frame) file.Long(side);
  file.Longs({0x464D4520, 0x10000, static_cast<int64_t>(fixed + text + records.size() + end)});
  file.Long(recordCount).Words({1, 0});
  file.Longs({static_cast<int64_t>(description.size()), description.empty() ? 0 : fixed, 0});
  file.Longs({deviceWidth, deviceHeight, deviceWidthMm, deviceHeightMm});
  if (isNew) file.Longs({0, 0, 0, micrometersX, micrometersY});
  file.Text(description).PadTo(4).Bytes(records);
  if (hasEnd) file.Longs({14, 20, 0, 16, 20});
  return file.bytes;
}

}  // namespace rasterkit::test
