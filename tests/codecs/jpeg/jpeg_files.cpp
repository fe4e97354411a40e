#include "tests/codecs/jpeg/jpeg_files.h"

#include <cstdlib>

#include <gtest/gtest.h>

namespace rasterkit::test {

std::vector<uint8_t> MakeJpeg(const JpegRecipe& recipe) {
  jpeg_compress_struct codec{};
  jpeg_error_mgr errors{};
  codec.err = jpeg_std_error(&errors);
  jpeg_create_compress(&codec);
  unsigned char* memory = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&codec, &memory, &size);
  codec.image_width = static_cast<JDIMENSION>(recipe.width);
  codec.image_height = static_cast<JDIMENSION>(recipe.height);
  codec.input_components = recipe.components;
  codec.in_color_space = recipe.pixels;
  jpeg_set_defaults(&codec);
  if (recipe.file != JCS_UNKNOWN) jpeg_set_colorspace(&codec, recipe.file);
  if (!recipe.adobeMarker) codec.write_Adobe_marker = FALSE;
  jpeg_set_quality(&codec, recipe.quality, TRUE);
  if (recipe.progressive) jpeg_simple_progression(&codec);
  codec.arith_code = recipe.arithmetic;
  codec.restart_in_rows = recipe.restartRows;
  codec.density_unit = static_cast<UINT8>(recipe.densityUnit);
  codec.X_density = static_cast<UINT16>(recipe.densityX);
  codec.Y_density = static_cast<UINT16>(recipe.densityY);
  jpeg_start_compress(&codec, TRUE);
  std::vector<uint8_t> row(static_cast<size_t>(recipe.width * recipe.components));
  for (int y = 0; y < recipe.height; y++) {
    for (int x = 0; x < recipe.width; x++) {
      for (int c = 0; c < recipe.components; c++) {
        const int value = c == 0   ? x * 5 + y
                          : c == 1 ? y * 4 + 40
                          : c == 2 ? 255 - x * 3 - y
                                   : 60 + (x + y) / 2;
        row[static_cast<size_t>(x * recipe.components + c)] =
            static_cast<uint8_t>(std::min(255, std::max(0, value)));
      }
    }
    JSAMPROW rows[] = {row.data()};
    jpeg_write_scanlines(&codec, rows, 1);
  }
  jpeg_finish_compress(&codec);
  jpeg_destroy_compress(&codec);
  std::vector<uint8_t> bytes(memory, memory + size);
  std::free(memory);
  return bytes;
}

std::vector<uint8_t> BareDecode(std::span<const uint8_t> bytes, J_COLOR_SPACE space) {
  jpeg_decompress_struct codec{};
  jpeg_error_mgr errors{};
  codec.err = jpeg_std_error(&errors);
  jpeg_create_decompress(&codec);
  jpeg_mem_src(&codec, bytes.data(), static_cast<unsigned long>(bytes.size()));
  jpeg_read_header(&codec, TRUE);
  codec.out_color_space = space;
  jpeg_start_decompress(&codec);
  const size_t rowBytes = size_t{codec.output_width} * static_cast<size_t>(codec.output_components);
  std::vector<uint8_t> rows(rowBytes * codec.output_height);
  while (codec.output_scanline < codec.output_height) {
    JSAMPROW row[] = {rows.data() + codec.output_scanline * rowBytes};
    jpeg_read_scanlines(&codec, row, 1);
  }
  jpeg_finish_decompress(&codec);
  jpeg_destroy_decompress(&codec);
  return rows;
}

size_t FindMarker(std::span<const uint8_t> bytes, uint8_t marker) {
  size_t position = 2;
  while (position + 4 <= bytes.size()) {
    if (bytes[position + 1] == marker) return position + 2;
    position += 2 + static_cast<size_t>(bytes[position + 2] << 8 | bytes[position + 3]);
  }
  ADD_FAILURE() << "no marker " << int{marker};
  return 0;
}

}  // namespace rasterkit::test
