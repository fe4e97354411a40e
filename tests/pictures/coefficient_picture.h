#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <span>
#include <stdexcept>
#include <utility>
#include <vector>

#include <jpeglib.h>

/// The coefficients of a JPEG file, read and moved without the code under test.
namespace rasterkit::test {

/// Coefficients row by row: how fast a block changes across is the column.
using Block = std::array<int16_t, 64>;

struct ComponentBlocks {
  int columns = 0, rows = 0, h = 1, v = 1;
  std::array<uint16_t, 64> table{};
  std::vector<Block> blocks = {};
  friend bool operator==(const ComponentBlocks&, const ComponentBlocks&) = default;
};

struct CoefficientPicture {
  int width = 0, height = 0;
  bool isProgressive = false;
  int restartInterval = 0;
  std::vector<ComponentBlocks> components;
  friend bool operator==(const CoefficientPicture&, const CoefficientPicture&) = default;
};

inline CoefficientPicture CoefficientsOf(std::span<const uint8_t> file) {
  jpeg_decompress_struct codec;
  jpeg_error_mgr errors;
  codec.err = jpeg_std_error(&errors);
  errors.error_exit = [](j_common_ptr) { throw std::runtime_error("not a whole JPEG file"); };
  jpeg_create_decompress(&codec);
  jpeg_mem_src(&codec, file.data(), static_cast<unsigned long>(file.size()));
  jpeg_read_header(&codec, TRUE);
  jvirt_barray_ptr* const arrays = jpeg_read_coefficients(&codec);
  CoefficientPicture picture;
  picture.width = static_cast<int>(codec.image_width);
  picture.height = static_cast<int>(codec.image_height);
  picture.isProgressive = codec.progressive_mode != FALSE;
  picture.restartInterval = static_cast<int>(codec.restart_interval);
  for (int i = 0; i < codec.num_components; ++i) {
    const jpeg_component_info& info = codec.comp_info[i];
    ComponentBlocks component{static_cast<int>(info.width_in_blocks),
                              static_cast<int>(info.height_in_blocks), info.h_samp_factor,
                              info.v_samp_factor};
    std::copy_n(info.quant_table->quantval, 64, component.table.begin());
    for (int y = 0; y < component.rows; ++y) {
      JBLOCKARRAY row = (*codec.mem->access_virt_barray)(
          reinterpret_cast<j_common_ptr>(&codec), arrays[i], static_cast<JDIMENSION>(y), 1, FALSE);
      for (int x = 0; x < component.columns; ++x) {
        Block block;
        std::copy_n(row[0][x], 64, block.begin());
        component.blocks.push_back(block);
      }
    }
    picture.components.push_back(std::move(component));
  }
  if (errors.num_warnings > 0) throw std::runtime_error("a damaged JPEG file");
  jpeg_finish_decompress(&codec);
  jpeg_destroy_decompress(&codec);
  return picture;
}

/// Rows become columns.
inline CoefficientPicture Transposed(CoefficientPicture picture) {
  const auto exchanged = [](const auto& values) {
    auto result = values;
    for (size_t i = 0; i < 64; ++i) result[i % 8 * 8 + i / 8] = values[i];
    return result;
  };
  std::swap(picture.width, picture.height);
  for (ComponentBlocks& component : picture.components) {
    const ComponentBlocks old = component;
    std::swap(component.columns, component.rows);
    std::swap(component.h, component.v);
    component.table = exchanged(old.table);
    component.blocks.clear();
    for (int y = 0; y < component.rows; ++y) {
      for (int x = 0; x < component.columns; ++x) {
        component.blocks.push_back(exchanged(old.blocks[static_cast<size_t>(x * old.columns + y)]));
      }
    }
  }
  return picture;
}

/// The columns in reverse order: odd waves across change their sign. Whole units only.
inline CoefficientPicture Mirrored(CoefficientPicture picture) {
  for (ComponentBlocks& component : picture.components) {
    const ComponentBlocks old = component;
    for (int y = 0; y < component.rows; ++y) {
      for (int x = 0; x < component.columns; ++x) {
        const Block& from = old.blocks[static_cast<size_t>(y * old.columns + old.columns - 1 - x)];
        Block& to = component.blocks[static_cast<size_t>(y * old.columns + x)];
        for (size_t i = 0; i < 64; ++i) {
          to[i] = static_cast<int16_t>(i % 2 == 1 ? -from[i] : from[i]);
        }
      }
    }
  }
  return picture;
}

/// A part that begins at whole units.
inline CoefficientPicture Cropped(CoefficientPicture picture, int left, int top, int width,
                                  int height) {
  int mostH = 1, mostV = 1;
  for (const ComponentBlocks& component : picture.components) {
    mostH = std::max(mostH, component.h);
    mostV = std::max(mostV, component.v);
  }
  const auto blocks = [](int pixels, int factor, int most) {
    return (pixels * factor + 8 * most - 1) / (8 * most);
  };
  picture.width = width;
  picture.height = height;
  for (ComponentBlocks& component : picture.components) {
    const ComponentBlocks old = component;
    const int x0 = left * component.h / (8 * mostH), y0 = top * component.v / (8 * mostV);
    component.columns = blocks(width, component.h, mostH);
    component.rows = blocks(height, component.v, mostV);
    component.blocks.clear();
    for (int y = 0; y < component.rows; ++y) {
      for (int x = 0; x < component.columns; ++x) {
        component.blocks.push_back(
            old.blocks[static_cast<size_t>((y0 + y) * old.columns + x0 + x)]);
      }
    }
  }
  return picture;
}

inline CoefficientPicture Flipped(const CoefficientPicture& picture) {
  return Transposed(Mirrored(Transposed(picture)));
}

/// Quarter turns, counter-clockwise: rows become columns, then the rows are reversed.
inline CoefficientPicture Turned(CoefficientPicture picture, int quarters) {
  for (int i = 0; i < (quarters & 3); ++i) picture = Flipped(Transposed(picture));
  return picture;
}

/// What makes a picture of this EXIF orientation upright.
inline CoefficientPicture Upright(const CoefficientPicture& picture, int orientation) {
  switch (orientation) {
    case 2:
      return Mirrored(picture);
    case 3:
      return Turned(picture, 2);
    case 4:
      return Flipped(picture);
    case 5:
      return Transposed(picture);
    case 6:
      return Turned(picture, 3);
    case 7:
      return Turned(Transposed(picture), 2);
    case 8:
      return Turned(picture, 1);
    default:
      return picture;
  }
}

}  // namespace rasterkit::test
