#include "tests/codecs/jp2/jp2_files.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>

#include <openjpeg.h>

namespace rasterkit::test {
namespace {

struct Target {
  ByteList bytes;
  size_t position = 0;
};

OPJ_SIZE_T WriteSome(void* source, OPJ_SIZE_T bytes, void* data) {
  auto& target = *static_cast<Target*>(data);
  target.bytes.resize(std::max(target.bytes.size(), target.position + bytes));
  std::memcpy(target.bytes.data() + target.position, source, bytes);
  target.position += bytes;
  return bytes;
}

OPJ_OFF_T SkipSome(OPJ_OFF_T bytes, void* data) {
  static_cast<Target*>(data)->position += static_cast<size_t>(bytes);
  return bytes;
}

OPJ_BOOL SeekTo(OPJ_OFF_T position, void* data) {
  static_cast<Target*>(data)->position = static_cast<size_t>(position);
  return OPJ_TRUE;
}

void Report(const char* message, void*) {
  std::fputs(message, stderr);
}

using ImagePtr = std::unique_ptr<opj_image_t, decltype(&opj_image_destroy)>;

int StepsUp(int place, int step) {
  return (place + step - 1) / step;
}

ImagePtr ImageOf(const CodestreamOfJp2& picture) {
  std::vector<opj_image_cmptparm_t> parameters;
  for (const PlaneOfJp2& plane : picture.planes) {
    opj_image_cmptparm_t one{};
    one.dx = static_cast<OPJ_UINT32>(plane.stepX);
    one.dy = static_cast<OPJ_UINT32>(plane.stepY);
    const int left = StepsUp(picture.left, plane.stepX), top = StepsUp(picture.top, plane.stepY);
    one.w = static_cast<OPJ_UINT32>(StepsUp(picture.left + picture.width, plane.stepX) - left);
    one.h = static_cast<OPJ_UINT32>(StepsUp(picture.top + picture.height, plane.stepY) - top);
    one.prec = static_cast<OPJ_UINT32>(plane.bits);
    one.sgnd = plane.isSigned ? 1 : 0;
    parameters.push_back(one);
  }
  ImagePtr image(opj_image_create(static_cast<OPJ_UINT32>(parameters.size()), parameters.data(),
                                  OPJ_CLRSPC_UNSPECIFIED),
                 &opj_image_destroy);
  image->x0 = static_cast<OPJ_UINT32>(picture.left);
  image->y0 = static_cast<OPJ_UINT32>(picture.top);
  image->x1 = static_cast<OPJ_UINT32>(picture.left + picture.width);
  image->y1 = static_cast<OPJ_UINT32>(picture.top + picture.height);
  for (size_t i = 0; i < picture.planes.size(); ++i) {
    const opj_image_comp_t& plane = image->comps[i];
    for (OPJ_UINT32 y = 0; y < plane.h; ++y) {
      for (OPJ_UINT32 x = 0; x < plane.w; ++x) {
        const int number = static_cast<int>(i), column = static_cast<int>(x),
                  row = static_cast<int>(y);
        plane.data[y * plane.w + x] = picture.sample
                                          ? picture.sample(number, column, row)
                                          : PatternOfJp2(picture.planes[i], number, column, row);
      }
    }
  }
  return image;
}

}  // namespace

int PatternOfJp2(const PlaneOfJp2& plane, int number, int x, int y) {
  const auto mixed = static_cast<uint32_t>(x * 7919 + y * 104729 + number * 1299709 + x * y * 31);
  const uint32_t mask = (uint32_t{1} << plane.bits) - 1;
  const auto value = static_cast<int>((mixed * 2654435761U >> (32 - plane.bits)) & mask);
  return plane.isSigned ? value - (1 << (plane.bits - 1)) : value;
}

ByteList EncodeCodestream(const CodestreamOfJp2& picture) {
  opj_cparameters_t parameters;
  opj_set_default_encoder_parameters(&parameters);
  parameters.tcp_numlayers = 1;
  parameters.cp_disto_alloc = 1;
  parameters.tcp_rates[0] = 0;
  parameters.numresolution = picture.levels + 1;
  parameters.tcp_mct = picture.mixesColors ? 1 : 0;
  std::string comment(picture.comment);
  parameters.cp_comment = comment.data();
  parameters.image_offset_x0 = picture.left;
  parameters.image_offset_y0 = picture.top;
  if (picture.tileWidth > 0) {
    parameters.tile_size_on = OPJ_TRUE;
    parameters.cp_tdx = picture.tileWidth;
    parameters.cp_tdy = picture.tileHeight;
  }
  const ImagePtr image = ImageOf(picture);
  const std::unique_ptr<opj_codec_t, decltype(&opj_destroy_codec)> codec(
      opj_create_compress(OPJ_CODEC_J2K), &opj_destroy_codec);
  opj_set_error_handler(codec.get(), Report, nullptr);
  Target target;
  const std::unique_ptr<opj_stream_t, decltype(&opj_stream_destroy)> stream(
      opj_stream_create(1 << 16, OPJ_FALSE), &opj_stream_destroy);
  opj_stream_set_user_data(stream.get(), &target, nullptr);
  opj_stream_set_write_function(stream.get(), WriteSome);
  opj_stream_set_skip_function(stream.get(), SkipSome);
  opj_stream_set_seek_function(stream.get(), SeekTo);
  const bool isWritten = opj_setup_encoder(codec.get(), &parameters, image.get()) &&
                         opj_start_compress(codec.get(), image.get(), stream.get()) &&
                         opj_encode(codec.get(), stream.get()) &&
                         opj_end_compress(codec.get(), stream.get());
  if (!isWritten) throw std::runtime_error("the codestream was not written");
  return target.bytes;
}

ByteList Join(std::initializer_list<ByteList> parts) {
  ByteList whole;
  for (const ByteList& part : parts) whole.insert(whole.end(), part.begin(), part.end());
  return whole;
}

ByteList BigEndian16(int number) {
  return {static_cast<uint8_t>(number >> 8), static_cast<uint8_t>(number)};
}

ByteList BigEndian32(uint32_t number) {
  return Join({BigEndian16(static_cast<int>(number >> 16)),
               BigEndian16(static_cast<int>(number & 0xFFFF))});
}

ByteList BoxOfJp2(std::string_view type, const ByteList& content) {
  return Join({BigEndian32(static_cast<uint32_t>(content.size() + 8)),
               ByteList(type.begin(), type.end()), content});
}

ByteList UuidBox(std::string_view uuid, const ByteList& content) {
  ByteList id;
  for (size_t i = 0; i < uuid.size(); i += 2) {
    id.push_back(static_cast<uint8_t>(std::stoi(std::string(uuid.substr(i, 2)), nullptr, 16)));
  }
  return BoxOfJp2("uuid", Join({id, content}));
}

ByteList ColorBox(uint32_t colorSpace) {
  return BoxOfJp2("colr", Join({{1, 0, 0}, BigEndian32(colorSpace)}));
}

ByteList ProfileBox(const ByteList& profile) {
  return BoxOfJp2("colr", Join({{2, 0, 0}, profile}));
}

ByteList DefinitionBox(const std::vector<std::array<int, 3>>& channels) {
  ByteList content = BigEndian16(static_cast<int>(channels.size()));
  for (const auto& channel : channels) {
    for (const int number : channel) content = Join({content, BigEndian16(number)});
  }
  return BoxOfJp2("cdef", content);
}

ByteList FileOfJp2(const ByteList& codestream, const ByteList& headerBoxes,
                   const ByteList& others) {
  const ByteList sizes(codestream.begin() + 8, codestream.begin() + 16);
  const ByteList rest = {0, 3, 7, 7, 0, 0};
  // Height, then width.
  const ByteList imageHeader =
      BoxOfJp2("ihdr", Join({ByteList(sizes.begin() + 4, sizes.end()),
                             ByteList(sizes.begin(), sizes.begin() + 4), rest}));
  return Join({BoxOfJp2("jP  ", {0x0D, 0x0A, 0x87, 0x0A}),
               BoxOfJp2("ftyp", {'j', 'p', '2', ' ', 0, 0, 0, 0, 'j', 'p', '2', ' '}),
               BoxOfJp2("jp2h", Join({imageHeader, headerBoxes})), others,
               BoxOfJp2("jp2c", codestream)});
}

}  // namespace rasterkit::test
