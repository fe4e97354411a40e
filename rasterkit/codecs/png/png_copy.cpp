#include <rasterkit/codecs/png/png_blocks.h>
#include <rasterkit/codecs/png/png_header.h>
#include <rasterkit/codecs/png/png_picture.h>
#include <rasterkit/codecs/png/png_signature.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace {

using namespace detail;

using Bytes = std::span<const uint8_t>;

constexpr uint32_t kData = PngKind("IDAT"), kEnd = PngKind("IEND"), kHeader = PngKind("IHDR");
constexpr uint32_t kProfile = PngKind("iCCP");
constexpr size_t kSignatureBytes = 8;

/// Finds the profile of the source. Throws UnsupportedError if the chunks of pixels are damaged:
/// copied as they are they would be damaged in the new file too, unnoticed.
Bytes RequireWhole(Bytes file) {
  Bytes profile;
  PngChunks chunks(file);
  while (chunks.Next()) {
    const PngChunk& chunk = chunks.Chunk();
    if (chunk.kind == kProfile && profile.empty()) profile = chunk.data;
    if (!IsAncillaryPng(chunk.kind) && !chunk.Holds()) {
      throw UnsupportedError("PNG: a checksum is wrong, the pixels cannot be copied unchanged");
    }
    RequireTime();
  }
  if (chunks.IsCutOff()) {
    throw UnsupportedError("PNG: the file is cut off, the pixels cannot be copied unchanged");
  }
  return profile;
}

void WriteAll(TStream& stream, const std::vector<OtherBlock>& blocks) {
  for (const OtherBlock& block : blocks) WritePngChunk(stream, block.kind, block.bytes);
}

}  // namespace

WrittenPicture CopyPng(Bytes file, const PictureWriting& writing, TStream& stream) {
  const LimitsScope limits;
  const PictureHeader source = ReadPngHeader(file);
  WrittenPicture written{source.form, source.layout, {}};
  PngBlockRules rules;
  rules.form = std::get<PngForm>(source.form);
  rules.isCopy = true;
  rules.sourceProfile = RequireWhole(file);
  const PngBlocks blocks = MakePngBlocks(writing.metadata, rules, written.changes);
  written.layout.profile = writing.metadata.profile;

  stream.Write(file.first(kSignatureBytes));
  PngChunks chunks(file);
  bool hasData = false;
  while (chunks.Next()) {
    const PngChunk& chunk = chunks.Chunk();
    if (IsPngMetadata(chunk) || IsKeptPngChunk(chunk)) continue;
    if (chunk.kind == kData && !hasData) {
      WriteAll(stream, blocks.beforePixels);
      hasData = true;
    }
    if (chunk.kind == kEnd) WriteAll(stream, blocks.behindPixels);
    stream.Write(chunk.whole);
    if (chunk.kind == kHeader) WriteAll(stream, blocks.beforePalette);
    RequireTime();
  }
  if (!chunks.Rest().empty()) stream.Write(chunks.Rest());
  return written;
}

}  // namespace rasterkit
