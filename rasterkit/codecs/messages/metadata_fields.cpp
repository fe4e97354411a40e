#include <rasterkit/codecs/messages/metadata_fields.h>

namespace rasterkit::detail {
namespace {

constexpr size_t kMostEntries = 256, kEntryBytes = 4;
constexpr size_t kMostBlockBytes = size_t{1} << 30;
constexpr size_t kMostBlocks = size_t{1} << 20;
/// The length alone.
constexpr size_t kLeastTextBytes = 4;

void WriteEntry(FieldWriter& fields, const tagPALETTEENTRY& entry) {
  fields.U8(entry.peRed);
  fields.U8(entry.peGreen);
  fields.U8(entry.peBlue);
  fields.U8(entry.peFlags);
}

tagPALETTEENTRY ReadEntry(FieldReader& fields) {
  tagPALETTEENTRY entry;
  entry.peRed = fields.U8();
  entry.peGreen = fields.U8();
  entry.peBlue = fields.U8();
  entry.peFlags = fields.U8();
  return entry;
}

std::vector<uint8_t> ReadBlock(FieldReader& fields) {
  const auto bytes = fields.Bytes(kMostBlockBytes);
  return {bytes.begin(), bytes.end()};
}

void WriteText(FieldWriter& fields, const PictureText& text) {
  const auto& [keyword, content, language, translatedKeyword, isInternational, isCompressed] = text;
  for (const std::string* part : {&keyword, &content, &language, &translatedKeyword}) {
    fields.ByteText(*part);
  }
  fields.Bool(isInternational);
  fields.Bool(isCompressed);
}

PictureText ReadText(FieldReader& fields) {
  PictureText text;
  auto& [keyword, content, language, translatedKeyword, isInternational, isCompressed] = text;
  for (std::string* part : {&keyword, &content, &language, &translatedKeyword}) {
    *part = fields.ByteText(kMostBlockBytes);
  }
  isInternational = fields.Bool();
  isCompressed = fields.Bool();
  return text;
}

void WriteBlocks(FieldWriter& fields, const std::vector<OtherBlock>& blocks) {
  fields.List(blocks, [&](const OtherBlock& block) {
    fields.U32(block.kind);
    fields.Bytes(block.bytes);
  });
}

std::vector<OtherBlock> ReadBlocks(FieldReader& fields) {
  return fields.List(kMostBlocks, 2 * kLeastTextBytes, [&] {
    OtherBlock block;
    block.kind = fields.U32();
    block.bytes = ReadBlock(fields);
    return block;
  });
}

}  // namespace

void WritePalette(FieldWriter& fields, const HPALETTE& palette) {
  fields.List(palette.Entries(), [&](const auto& entry) { WriteEntry(fields, entry); });
}

HPALETTE ReadPalette(FieldReader& fields) {
  return HPALETTE(fields.List(kMostEntries, kEntryBytes, [&] { return ReadEntry(fields); }));
}

void WriteProfile(FieldWriter& fields, const ColorProfile& profile) {
  fields.Bool(profile != nullptr);
  if (profile != nullptr) fields.Bytes(*profile);
}

ColorProfile ReadProfile(FieldReader& fields) {
  if (!fields.Bool()) return nullptr;
  return std::make_shared<const std::vector<uint8_t>>(ReadBlock(fields));
}

void WriteTags(FieldWriter& fields, const std::vector<TagValue>& tags) {
  fields.List(tags, [&](const TagValue& value) {
    const auto& [tag, type, count, bytes] = value;
    fields.U16(tag);
    fields.U16(type);
    fields.U64(count);
    fields.Bytes(bytes);
  });
}

std::vector<TagValue> ReadTags(FieldReader& fields) {
  constexpr size_t kLeastTagBytes = 16;
  return fields.List(kMostBlocks, kLeastTagBytes, [&] {
    TagValue value;
    auto& [tag, type, count, bytes] = value;
    tag = fields.U16();
    type = fields.U16();
    count = fields.U64();
    bytes = ReadBlock(fields);
    return value;
  });
}

void WriteMetadata(FieldWriter& fields, const Metadata& metadata) {
  const auto& [exif, xmp, extendedXmp, iptc, photoshop, profile, comments, texts, resolution,
               tiffTags, jpegSegments, pngChunks, hasJfif] = metadata;
  fields.Bytes(exif);
  fields.ByteText(xmp);
  fields.ByteText(extendedXmp);
  fields.Bytes(iptc);
  fields.Bytes(photoshop);
  WriteProfile(fields, profile);
  fields.List(comments, [&](const std::string& comment) { fields.ByteText(comment); });
  fields.List(texts, [&](const PictureText& text) { WriteText(fields, text); });
  fields.F64(resolution.x);
  fields.F64(resolution.y);
  WriteTags(fields, tiffTags);
  WriteBlocks(fields, jpegSegments);
  WriteBlocks(fields, pngChunks);
  fields.Bool(hasJfif);
}

Metadata ReadMetadata(FieldReader& fields) {
  constexpr size_t kLeastPictureText = 4 * kLeastTextBytes + 2;
  Metadata metadata;
  auto& [exif, xmp, extendedXmp, iptc, photoshop, profile, comments, texts, resolution, tiffTags,
         jpegSegments, pngChunks, hasJfif] = metadata;
  exif = ReadBlock(fields);
  xmp = fields.ByteText(kMostBlockBytes);
  extendedXmp = fields.ByteText(kMostBlockBytes);
  iptc = ReadBlock(fields);
  photoshop = ReadBlock(fields);
  profile = ReadProfile(fields);
  comments =
      fields.List(kMostBlocks, kLeastTextBytes, [&] { return fields.ByteText(kMostBlockBytes); });
  texts = fields.List(kMostBlocks, kLeastPictureText, [&] { return ReadText(fields); });
  resolution.x = fields.F64();
  resolution.y = fields.F64();
  tiffTags = ReadTags(fields);
  jpegSegments = ReadBlocks(fields);
  pngChunks = ReadBlocks(fields);
  hasJfif = fields.Bool();
  return metadata;
}

}  // namespace rasterkit::detail
