#include <string>

#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/codecs/unsized_picture.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace {

/// The row of a format that is read here; throws for the others.
const Codec& ReadableCodec(PictureType type) {
  const Codec* codec = FindCodec(type);
  if (codec == nullptr) throw FormatError("the data is not a picture of a known type");
  if (codec->readHeader == nullptr) {
    throw UnsupportedError(std::string("pictures of the kind ") + codec->name + " are not decoded");
  }
  return *codec;
}

/// The row of a format with the function; throws for the others.
template <class Function>
const Codec& CodecWith(Function Codec::*function, PictureType type, const char* reason) {
  const Codec* codec = FindCodec(type);
  if (codec == nullptr || codec->*function == nullptr) {
    throw UnsupportedError(std::string("pictures of the kind ") + PictureTypeName(type) + reason);
  }
  return *codec;
}

/// Calls `read` with the stream, or with the bytes of a pipe, which gives them only once.
template <class Read>
auto ReadSized(TStream& stream, const Read& read) {
  if (stream.Size() > stream.Position()) return read(stream);
  TMemoryStream memory(ReadUnsizedPicture(stream));
  return read(memory);
}

Pixels DecodeAll(const Codec& codec, TStream& stream, const FrameOptions& options,
                 CodecReport* report) {
  if (codec.decodePixels != nullptr) return codec.decodePixels(stream, options, report);
  if (codec.decodeStream != nullptr) return codec.decodeStream(stream, report);
  return codec.decodeBytes(stream.ReadToEnd(), report);
}

}  // namespace

PictureHeader ReadPictureHeader(TStream& stream, PictureType type) {
  const LimitsScope limits;
  const Codec& codec = ReadableCodec(type);
  return ReadSized(stream, [&](TStream& sized) { return codec.readHeader(sized); });
}

PictureHeader ReadPictureFront(TStream& stream, PictureType type) {
  const LimitsScope limits;
  const Codec& codec = ReadableCodec(type);
  const auto read = codec.readFront != nullptr ? codec.readFront : codec.readHeader;
  return ReadSized(stream, [&](TStream& sized) { return read(sized); });
}

Pixels DecodePixels(TStream& stream, PictureType type, const FrameOptions& options,
                    CodecReport* report) {
  const LimitsScope limits(options.limits ? *options.limits : CurrentLimits());
  const Codec& codec = ReadableCodec(type);
  return ReadSized(stream,
                   [&](TStream& sized) { return DecodeAll(codec, sized, options, report); });
}

std::unique_ptr<RowReader> OpenRows(TStream& stream, PictureType type,
                                    const FrameOptions& options) {
  const LimitsScope limits(options.limits ? *options.limits : CurrentLimits());
  const Codec& codec = ReadableCodec(type);
  // A pipe gives its bytes only once.
  if (codec.openRows == nullptr || stream.Size() <= stream.Position()) return nullptr;
  return codec.openRows(stream, options);
}

bool CanWrite(PictureType type) {
  const Codec* codec = FindCodec(type);
  return codec != nullptr && codec->write != nullptr;
}

bool CanCopy(PictureType type) {
  const Codec* codec = FindCodec(type);
  return codec != nullptr && codec->copy != nullptr;
}

WrittenPicture WritePicture(PictureType type, const Pixels& pixels, const PictureWriting& writing,
                            TStream& stream) {
  const LimitsScope limits;
  return CodecWith(&Codec::write, type, " are not written").write(pixels, writing, stream);
}

std::unique_ptr<RowWriter> OpenWriter(PictureType type, const Pixels& like, WrittenSize size,
                                      const PictureWriting& writing, TStream& stream) {
  const LimitsScope limits;
  const Codec& codec = CodecWith(&Codec::write, type, " are not written");
  if (codec.openWriter == nullptr) return nullptr;
  return codec.openWriter(like, size, writing, stream);
}

WrittenPicture CopyPicture(PictureType type, TStream& source, const PictureWriting& writing,
                           TStream& stream) {
  const LimitsScope limits;
  const Codec& codec = CodecWith(&Codec::copy, type, " are not copied");
  if (writing.move && type != PictureType::jpeg) {
    throw UnsupportedError(std::string("pictures of the kind ") + codec.name +
                           " are not moved without recompression");
  }
  return ReadSized(source, [&](TStream& sized) { return codec.copy(sized, writing, stream); });
}

}  // namespace rasterkit
