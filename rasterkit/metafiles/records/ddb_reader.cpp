#include <algorithm>

#include <rasterkit/metafiles/records/ddb_reader.h>

namespace rasterkit::detail {
namespace {

struct DdbHead {
  int width = 0, height = 0;
  size_t rowBytes = 0;
  TPixelFormat format = pf1bit;
};

DdbHead ReadHead(MetafileBytes& fields) {
  fields.Skip(2);  // type
  DdbHead head;
  head.width = fields.Short();
  head.height = fields.Short();
  head.rowBytes = fields.Word();
  const uint8_t planes = fields.Byte(), bits = fields.Byte();
  const bool isKnown = planes == 1 && (bits == 1 || bits == 24 || bits == 32);
  if (!isKnown) throw UnsupportedError("WMF: a device-dependent bitmap has an unsupported depth");
  head.format = bits == 1 ? pf1bit : bits == 24 ? pf24bit : pf32bit;
  const bool fits =
      head.width > 0 && head.height > 0 &&
      head.rowBytes >= (static_cast<size_t>(head.width) * static_cast<size_t>(bits) + 7) / 8;
  if (!fits) throw FormatError("WMF: a device-dependent bitmap has an invalid size");
  return head;
}

Raster ReadRows(MetafileBytes& fields, const DdbHead& head) {
  const auto rows = fields.Take(static_cast<size_t>(head.height) * head.rowBytes);
  Raster raster(head.format, head.width, head.height);
  for (int y = 0; y < head.height; ++y) {
    const auto row = rows.subspan(static_cast<size_t>(y) * head.rowBytes, raster.RowBytes());
    std::copy(row.begin(), row.end(), raster.Row(y));
  }
  raster.ClearPadding();
  return raster;
}

}  // namespace

Raster ReadDdb(MetafileBytes& fields) {
  const DdbHead head = ReadHead(fields);
  return ReadRows(fields, head);
}

Raster ReadDdbPattern(MetafileBytes& fields) {
  constexpr size_t kPointerAndRoom = 4 + 18;
  const DdbHead head = ReadHead(fields);
  fields.Skip(kPointerAndRoom);
  return ReadRows(fields, head);
}

}  // namespace rasterkit::detail
