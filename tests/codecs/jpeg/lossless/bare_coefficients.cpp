#include "tests/codecs/jpeg/lossless/bare_coefficients.h"

#include <algorithm>
#include <cstdlib>
#include <random>
#include <string>
#include <utility>

namespace rasterkit::test {
namespace {

using reference::Block;

int MostOf(const BareJpeg& picture, int BareComponent::*factor) {
  int most = 1;
  for (const BareComponent& component : picture.components) {
    most = std::max(most, component.*factor);
  }
  return most;
}

int RoundedUp(int value, int unit) {
  return (value + unit - 1) / unit;
}

/// Rows and columns as the library rounds them.
void SetCounts(BareJpeg& picture) {
  const int mostH = MostOf(picture, &BareComponent::h), mostV = MostOf(picture, &BareComponent::v);
  for (BareComponent& component : picture.components) {
    component.columns = RoundedUp(picture.width * component.h, 8 * mostH);
    component.rows = RoundedUp(picture.height * component.v, 8 * mostV);
  }
}

}  // namespace

BareJpeg ReadBare(std::span<const uint8_t> file) {
  jpeg_decompress_struct codec{};
  jpeg_error_mgr errors{};
  codec.err = jpeg_std_error(&errors);
  errors.output_message = [](j_common_ptr) {};
  jpeg_create_decompress(&codec);
  jpeg_mem_src(&codec, file.data(), static_cast<unsigned long>(file.size()));
  jpeg_read_header(&codec, TRUE);
  BareJpeg picture;
  picture.restartInterval = static_cast<int>(codec.restart_interval);
  const long headerWarnings = errors.num_warnings;
  jvirt_barray_ptr* arrays = jpeg_read_coefficients(&codec);
  picture.width = static_cast<int>(codec.image_width);
  picture.height = static_cast<int>(codec.image_height);
  picture.space = codec.jpeg_color_space;
  picture.progressive = codec.progressive_mode != FALSE;
  picture.arithmetic = codec.arith_code != FALSE;
  picture.hasAdobe = codec.saw_Adobe_marker != FALSE;
  picture.hasJfif = codec.saw_JFIF_marker != FALSE;
  for (int i = 0; i < codec.num_components; i++) {
    const jpeg_component_info& info = codec.comp_info[i];
    BareComponent component;
    component.id = info.component_id;
    component.h = info.h_samp_factor;
    component.v = info.v_samp_factor;
    component.table = info.quant_tbl_no;
    if (info.quant_table != nullptr) {
      std::copy_n(info.quant_table->quantval, 64, component.steps.begin());
    }
    component.columns = static_cast<int>(info.width_in_blocks);
    component.rows = static_cast<int>(info.height_in_blocks);
    for (JDIMENSION y = 0; y < info.height_in_blocks; y++) {
      JBLOCKARRAY row = codec.mem->access_virt_barray(reinterpret_cast<j_common_ptr>(&codec),
                                                      arrays[i], y, 1, FALSE);
      for (JDIMENSION x = 0; x < info.width_in_blocks; x++) {
        Block block;
        std::copy_n(row[0][x], 64, block.begin());
        component.blocks.push_back(block);
      }
    }
    picture.components.push_back(std::move(component));
  }
  jpeg_finish_decompress(&codec);
  picture.warnings = errors.num_warnings - headerWarnings;
  jpeg_destroy_decompress(&codec);
  return picture;
}

std::vector<uint8_t> WriteBare(const BareJpeg& picture, const BareWriting& writing) {
  jpeg_compress_struct codec{};
  jpeg_error_mgr errors{};
  codec.err = jpeg_std_error(&errors);
  errors.output_message = [](j_common_ptr) {};
  jpeg_create_compress(&codec);
  unsigned char* memory = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&codec, &memory, &size);
  codec.image_width = static_cast<JDIMENSION>(picture.width);
  codec.image_height = static_cast<JDIMENSION>(picture.height);
  codec.input_components = static_cast<int>(picture.components.size());
  codec.in_color_space = picture.space;
  jpeg_set_defaults(&codec);
  jpeg_set_colorspace(&codec, picture.space);
  codec.write_JFIF_header = picture.hasJfif ? TRUE : FALSE;
  codec.write_Adobe_marker = picture.hasAdobe ? TRUE : FALSE;
  codec.optimize_coding = writing.optimizes && !picture.arithmetic ? TRUE : FALSE;
  codec.arith_code = picture.arithmetic ? TRUE : FALSE;
  codec.restart_interval = static_cast<unsigned>(picture.restartInterval);
  jvirt_barray_ptr arrays[MAX_COMPONENTS] = {};
  std::vector<jpeg_scan_info> scans = writing.scans;
  for (int i = 0; i < codec.num_components; i++) {
    const BareComponent& component = picture.components[static_cast<size_t>(i)];
    jpeg_component_info& info = codec.comp_info[i];
    info.component_id = component.id;
    info.h_samp_factor = component.h;
    info.v_samp_factor = component.v;
    info.quant_tbl_no = component.table;
    JQUANT_TBL*& table = codec.quant_tbl_ptrs[component.table];
    if (table == nullptr) table = jpeg_alloc_quant_table(reinterpret_cast<j_common_ptr>(&codec));
    std::copy(component.steps.begin(), component.steps.end(), table->quantval);
    const int columns = RoundedUp(component.columns, component.h) * component.h;
    const int rows = RoundedUp(component.rows, component.v) * component.v;
    arrays[i] = codec.mem->request_virt_barray(
        reinterpret_cast<j_common_ptr>(&codec), JPOOL_IMAGE, TRUE, static_cast<JDIMENSION>(columns),
        static_cast<JDIMENSION>(rows), static_cast<JDIMENSION>(component.v));
    if (writing.separatesComponents) {
      scans.push_back({1, {i}, 0, picture.progressive ? 0 : 63, 0, picture.progressive ? 1 : 0});
    }
  }
  if (writing.separatesComponents && picture.progressive) {
    for (int i = 0; i < codec.num_components; i++) {
      scans.push_back({1, {i}, 1, 63, 0, 1});
      scans.push_back({1, {i}, 0, 0, 1, 0});
      scans.push_back({1, {i}, 1, 63, 1, 0});
    }
  }
  if (!scans.empty()) {
    codec.scan_info = scans.data();
    codec.num_scans = static_cast<int>(scans.size());
  } else if (picture.progressive) {
    jpeg_simple_progression(&codec);
  }
  jpeg_write_coefficients(&codec, arrays);
  for (size_t i = 0; i < picture.components.size(); i++) {
    const BareComponent& component = picture.components[i];
    for (int y = 0; y < component.rows; y++) {
      JBLOCKARRAY row = codec.mem->access_virt_barray(
          reinterpret_cast<j_common_ptr>(&codec), arrays[i], static_cast<JDIMENSION>(y), 1, TRUE);
      for (int x = 0; x < component.columns; x++) {
        std::copy_n(component.At(x, y).begin(), 64, row[0][x]);
      }
    }
  }
  jpeg_finish_compress(&codec);
  jpeg_destroy_compress(&codec);
  std::vector<uint8_t> bytes(memory, memory + size);
  std::free(memory);
  return bytes;
}

BareJpeg RandomBare(int width, int height, J_COLOR_SPACE space,
                    const std::vector<BareSampling>& samplings, unsigned seed) {
  std::mt19937 random(seed);
  BareJpeg picture;
  picture.width = width;
  picture.height = height;
  picture.space = space;
  picture.hasJfif = space == JCS_GRAYSCALE || space == JCS_YCbCr;
  picture.hasAdobe = space == JCS_RGB || space == JCS_CMYK || space == JCS_YCCK;
  for (size_t i = 0; i < samplings.size(); i++) {
    BareComponent component;
    component.id = static_cast<int>(i) + 1;
    component.h = samplings[i].h;
    component.v = samplings[i].v;
    component.table = static_cast<int>(std::min<size_t>(i, 3));
    picture.components.push_back(component);
  }
  SetCounts(picture);
  for (size_t i = 0; i < picture.components.size(); i++) {
    BareComponent& component = picture.components[i];
    for (size_t k = 0; k < 64; k++) {
      component.steps[k] = static_cast<uint16_t>(1 + k + 3 * component.table);
    }
    component.blocks.resize(static_cast<size_t>(component.columns) *
                            static_cast<size_t>(component.rows));
    for (Block& block : component.blocks) {
      block.fill(0);
      block[0] = static_cast<int16_t>(random() % 600) - 300;
      for (int n = 0; n < 6; n++) block[random() % 64] = static_cast<int16_t>(random() % 61) - 30;
    }
  }
  return picture;
}

BareJpeg MovedBare(const BareJpeg& source, const PictureMove& move) {
  BareJpeg moved = source;
  moved.width = move.exchangesAxes ? move.height : move.width;
  moved.height = move.exchangesAxes ? move.width : move.height;
  const bool isSingle = source.components.size() == 1;
  const int mostH = MostOf(source, &BareComponent::h), mostV = MostOf(source, &BareComponent::v);
  for (size_t i = 0; i < source.components.size(); i++) {
    const BareComponent& from = source.components[i];
    BareComponent& to = moved.components[i];
    const int h = isSingle ? 1 : from.h, v = isSingle ? 1 : from.v;
    const int unitX = 8 * (isSingle ? 1 : mostH), unitY = 8 * (isSingle ? 1 : mostV);
    const int left = move.left * h / unitX, top = move.top * v / unitY;
    const int right = RoundedUp((move.left + move.width) * h, unitX);
    const int bottom = RoundedUp((move.top + move.height) * v, unitY);
    std::vector<std::vector<Block>> grid;
    for (int y = top; y < bottom; y++) {
      grid.emplace_back();
      for (int x = left; x < right; x++) grid.back().push_back(from.At(x, y));
    }
    if (move.exchangesAxes) {
      std::swap(to.h, to.v);
      std::vector<std::vector<Block>> turned(static_cast<size_t>(right - left));
      for (size_t y = 0; y < turned.size(); y++) {
        for (const auto& row : grid) turned[y].push_back(row[y]);
      }
      grid = turned;
      for (size_t k = 0; k < 64; k++) to.steps[k] = from.steps[k % 8 * 8 + k / 8];
    }
    if (move.reversesRows) std::reverse(grid.begin(), grid.end());
    to.rows = static_cast<int>(grid.size());
    to.columns = static_cast<int>(grid[0].size());
    to.blocks.clear();
    for (auto& row : grid) {
      if (move.reversesColumns) std::reverse(row.begin(), row.end());
      for (const Block& block : row) {
        to.blocks.push_back(reference::TurnedBlock(block, move.exchangesAxes, move.reversesColumns,
                                                   move.reversesRows));
      }
    }
  }
  return moved;
}

std::string DifferenceOf(const BareJpeg& a, const BareJpeg& b) {
  const auto text = [](const char* name, long one, long other) {
    return std::string(name) + " " + std::to_string(one) + " and " + std::to_string(other);
  };
  if (a.width != b.width) return text("width", a.width, b.width);
  if (a.height != b.height) return text("height", a.height, b.height);
  if (a.space != b.space) return text("color space", a.space, b.space);
  if (a.progressive != b.progressive) return text("progressive", a.progressive, b.progressive);
  if (a.hasAdobe != b.hasAdobe) return text("Adobe segment", a.hasAdobe, b.hasAdobe);
  if (a.restartInterval != b.restartInterval) {
    return text("restart interval", a.restartInterval, b.restartInterval);
  }
  if (a.components.size() != b.components.size()) return "number of components";
  for (size_t i = 0; i < a.components.size(); i++) {
    const BareComponent& one = a.components[i];
    const BareComponent& other = b.components[i];
    const std::string name = "component " + std::to_string(i) + ": ";
    if (one.id != other.id) return name + text("id", one.id, other.id);
    if (one.h != other.h) return name + text("h", one.h, other.h);
    if (one.v != other.v) return name + text("v", one.v, other.v);
    if (one.table != other.table) return name + text("table", one.table, other.table);
    if (one.steps != other.steps) return name + "quantization table";
    if (one.columns != other.columns) return name + text("columns", one.columns, other.columns);
    if (one.rows != other.rows) return name + text("rows", one.rows, other.rows);
    for (size_t k = 0; k < one.blocks.size(); k++) {
      if (one.blocks[k] != other.blocks[k]) return name + "block " + std::to_string(k);
    }
  }
  return {};
}

}  // namespace rasterkit::test
