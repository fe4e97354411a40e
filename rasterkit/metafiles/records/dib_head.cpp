#include <algorithm>
#include <string>

#include <rasterkit/metafiles/records/dib_head.h>
#include <rasterkit/metafiles/records/metafile_bytes.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit::detail {
namespace {

uint32_t MaskBytes(const DibHead& head) {
  if (head.headerBytes != kBmpInfoHeader) return 0;
  if (head.compression == BmpCompression::bitFields) return 12;
  return head.compression == BmpCompression::alphaBitFields ? 16 : 0;
}

void ReadFields(std::span<const uint8_t> bytes, DibHead& head, uint64_t& stated) {
  MetafileBytes fields(bytes, 4);
  if (head.IsCore()) {
    head.width = fields.Word();
    head.height = fields.Word();
    fields.Skip(2);
    head.bits = fields.Word();
    return;
  }
  head.width = fields.Int();
  head.height = fields.Int();
  fields.Skip(2);
  head.bits = fields.Word();
  if (head.headerBytes < bmp_field::kCompression + 4) return;
  head.compression = static_cast<BmpCompression>(fields.Long());
  if (head.headerBytes < bmp_field::kColorsUsed + 4) return;
  fields.SetPosition(bmp_field::kColorsUsed);
  stated = fields.Long();
}

/// Masks equal to the default ones count as no masks.
bool HasFourthByte(const DibHead& head, std::span<const uint8_t> bytes) {
  if (head.bits != 32) return false;
  if (head.compression == BmpCompression::none) return true;
  const bool hasMasks = head.compression == BmpCompression::bitFields ||
                        head.compression == BmpCompression::alphaBitFields;
  if (!hasMasks || bytes.size() < bmp_field::kMasks + 12) return false;
  MetafileBytes fields(bytes, bmp_field::kMasks);
  const uint32_t red = fields.Long(), green = fields.Long(), blue = fields.Long();
  return red == kBmpMasks888.red && green == kBmpMasks888.green && blue == kBmpMasks888.blue;
}

void Put(std::vector<uint8_t>& bytes, size_t offset, uint32_t value) {
  for (int i = 0; i < 4; ++i) bytes[offset + i] = static_cast<uint8_t>(value >> (8 * i));
}

/// Returns entry `index` of the color table; indexes are looked up in the palette.
tagPALETTEENTRY TableEntry(const DibHead& head, std::span<const uint8_t> table, size_t index,
                           const DibRequest& request) {
  const uint8_t* entry = table.data() + index * head.entryBytes;
  if (request.colors == DibColors::colors) return {entry[2], entry[1], entry[0], 0};
  const HPALETTE palette = request.palette ? request.palette : DefaultPalette(pf8bit);
  return palette.Entry(entry[0] | entry[1] << 8);
}

std::vector<tagPALETTEENTRY> Table(const DibHead& head, std::span<const uint8_t> bytes,
                                   const DibRequest& request) {
  std::vector<tagPALETTEENTRY> entries;
  if (head.bits > 8 || head.IsEmbedded()) return entries;
  const uint64_t most = uint64_t{1} << head.bits;
  if (head.entryBytes == 0) {
    const HPALETTE palette = request.palette ? request.palette : DefaultPalette(pf8bit);
    const auto own = palette.Entries();
    entries.assign(own.begin(), own.begin() + std::min<ptrdiff_t>(own.size(), most));
  } else {
    const std::span<const uint8_t> table =
        bytes.subspan(std::min<uint64_t>(head.tableOffset, bytes.size()));
    const uint64_t count = std::min({most, head.entries, uint64_t{table.size() / head.entryBytes}});
    for (uint64_t i = 0; i < count; ++i) entries.push_back(TableEntry(head, table, i, request));
  }
  // A BMP file that states 0 entries has all of them, so write at least one.
  if (entries.empty()) entries.emplace_back();
  return entries;
}

/// Returns the header and masks of the BMP file.
std::vector<uint8_t> FileHead(const DibHead& head, std::span<const uint8_t> bytes,
                              const DibRequest& request) {
  const size_t count = head.headerBytes + MaskBytes(head);
  std::vector<uint8_t> result(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(count));
  if (head.IsCore()) return result;
  if (request.rows) {
    const auto rows = static_cast<uint32_t>(*request.rows);
    Put(result, bmp_field::kHeight, head.height < 0 ? 0 - rows : rows);
  }
  if (request.keepsAlpha && head.hasFourthByte) {
    result.resize(kBmpV4Header);
    Put(result, 0, kBmpV4Header);
    const uint32_t masks[] = {kBmpMasks888.red, kBmpMasks888.green, kBmpMasks888.blue,
                              kBmpAlpha8888};
    for (size_t i = 0; i < 4; ++i) Put(result, bmp_field::kMasks + 4 * i, masks[i]);
  }
  // The offset of an embedded profile would point outside the file, so state sRGB instead.
  if (result.size() >= kBmpV4Header) Put(result, bmp_field::kColorSpace, kBmpSrgb);
  return result;
}

}  // namespace

DibHead ReadDibHead(std::span<const uint8_t> bytes, DibColors colors) {
  DibHead head;
  head.headerBytes = MetafileBytes(bytes).Long();
  if (!IsBmpHeaderSize(head.headerBytes) || head.headerBytes > bytes.size()) {
    throw FormatError("metafile: a bitmap header of " + std::to_string(head.headerBytes) +
                      " bytes is truncated or unknown");
  }
  uint64_t stated = 0;
  ReadFields(bytes, head, stated);
  head.tableOffset = uint64_t{head.headerBytes} + MaskBytes(head);
  if (head.tableOffset > bytes.size()) throw FormatError("metafile: bitmap masks are truncated");
  head.hasFourthByte = HasFourthByte(head, bytes);
  head.entries = stated;
  if (head.entries == 0 && head.bits <= 8 && !head.IsEmbedded()) {
    head.entries = uint64_t{1} << head.bits;
  }
  head.entryBytes = head.IsCore() ? 3 : 4;
  if (colors == DibColors::paletteIndexes) head.entryBytes = 2;
  if (colors == DibColors::noTable) head.entryBytes = 0;
  return head;
}

std::vector<uint8_t> DibAsFile(const DibHead& head, const DibParts& parts,
                               const DibRequest& request) {
  RequirePictureMemory(parts.bits.size(), "metafile: a bitmap");
  std::vector<uint8_t> file(kBmpFileHeaderBytes);
  file[0] = 'B';
  file[1] = 'M';
  const std::vector<uint8_t> fileHead = FileHead(head, parts.head, request);
  file.insert(file.end(), fileHead.begin(), fileHead.end());
  const std::vector<tagPALETTEENTRY> entries = Table(head, parts.head, request);
  if (!head.IsCore() && head.headerBytes >= bmp_field::kColorsUsed + 4) {
    Put(file, kBmpFileHeaderBytes + bmp_field::kColorsUsed, static_cast<uint32_t>(entries.size()));
  }
  for (const tagPALETTEENTRY& entry : entries) {
    file.insert(file.end(), {entry.peBlue, entry.peGreen, entry.peRed});
    if (!head.IsCore()) file.push_back(0);
  }
  Put(file, 10, static_cast<uint32_t>(file.size()));
  file.insert(file.end(), parts.bits.begin(), parts.bits.end());
  return file;
}

}  // namespace rasterkit::detail
