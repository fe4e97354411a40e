#include "tests/support/webp_file.h"

#include <cstring>

#include <webp/encode.h>

namespace rasterkit::test {
namespace {

using ByteList = std::vector<uint8_t>;

ByteList Encode(const Raster& raster, const WebPConfig& config) {
  WebPPicture picture;
  WebPPictureInit(&picture);
  picture.use_argb = 1;
  picture.width = raster.Width();
  picture.height = raster.Height();
  const auto stride = static_cast<int>(raster.Stride());
  if (raster.Format() == pf32bit) {
    WebPPictureImportBGRA(&picture, raster.Row(0), stride);
  } else {
    WebPPictureImportBGR(&picture, raster.Row(0), stride);
  }
  WebPMemoryWriter writer;
  WebPMemoryWriterInit(&writer);
  picture.writer = WebPMemoryWrite;
  picture.custom_ptr = &writer;
  ByteList file;
  if (WebPEncode(&config, &picture)) file.assign(writer.mem, writer.mem + writer.size);
  WebPMemoryWriterClear(&writer);
  WebPPictureFree(&picture);
  return file;
}

void AddNumber(ByteList& bytes, uint32_t value, int count) {
  for (int i = 0; i < count; i++) bytes.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

void AddBytes(ByteList& bytes, const ByteList& more) {
  bytes.insert(bytes.end(), more.begin(), more.end());
}

}  // namespace

ByteList LosslessWebp(const Raster& raster) {
  WebPConfig config;
  WebPConfigInit(&config);
  config.lossless = 1;
  config.exact = 1;
  return Encode(raster, config);
}

ByteList LossyWebp(const Raster& raster, float quality) {
  WebPConfig config;
  WebPConfigInit(&config);
  config.quality = quality;
  return Encode(raster, config);
}

ByteList ChunksOfWebp(const ByteList& file) {
  return {file.begin() + 12, file.end()};
}

ByteList WebpChunk(const std::string& name, const ByteList& data) {
  ByteList chunk(name.begin(), name.end());
  AddNumber(chunk, static_cast<uint32_t>(data.size()), 4);
  AddBytes(chunk, data);
  if (data.size() % 2 != 0) chunk.push_back(0);
  return chunk;
}

ByteList WebpHeaderChunk(int flags, uint32_t width, uint32_t height) {
  ByteList data;
  AddNumber(data, static_cast<uint32_t>(flags), 4);
  AddNumber(data, width - 1, 3);
  AddNumber(data, height - 1, 3);
  return WebpChunk("VP8X", data);
}

ByteList WebpFrameChunk(uint32_t left, uint32_t top, uint32_t width, uint32_t height,
                        const ByteList& chunks) {
  ByteList data;
  AddNumber(data, left / 2, 3);
  AddNumber(data, top / 2, 3);
  AddNumber(data, width - 1, 3);
  AddNumber(data, height - 1, 3);
  AddNumber(data, 100, 3);
  data.push_back(0);
  AddBytes(data, chunks);
  return WebpChunk("ANMF", data);
}

ByteList WebpFile(const ByteList& chunks) {
  ByteList file = {'R', 'I', 'F', 'F'};
  AddNumber(file, static_cast<uint32_t>(chunks.size() + 4), 4);
  AddBytes(file, {'W', 'E', 'B', 'P'});
  AddBytes(file, chunks);
  return file;
}

}  // namespace rasterkit::test
