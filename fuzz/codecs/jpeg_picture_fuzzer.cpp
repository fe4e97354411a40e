// Any bytes as a JPEG file give a header or an Error. What has a header can be copied with other
// metadata, and the copy is coded as before. Decoded pixels can be written with the form of the
// file.

#include <algorithm>

#include <rasterkit/codecs/jpeg/jpeg_picture.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

#include "fuzz/require.h"

namespace {

using namespace rasterkit;

/// As in the fuzzer of decoding: a few bytes can claim a picture of any size.
constexpr uint64_t kPictureLimit = 4 << 20;

void CopyTwice(std::span<const uint8_t> file, const PictureHeader& header) {
  PictureWriting writing;
  writing.metadata = header.metadata;
  TMemoryStream same;
  CopyJpeg(file, writing, same);
  Require(std::equal(file.begin(), file.end(), same.Bytes().begin(), same.Bytes().end()));
  writing.metadata.comments.emplace_back("added");
  for (const bool dropsHidden : {false, true}) {
    writing.dropsHidden = dropsHidden;
    TMemoryStream copy;
    CopyJpeg(file, writing, copy);
    const PictureHeader again = ReadJpegHeader(copy.Bytes());
    Require(again.form == header.form);
    Require(again.width == header.width && again.height == header.height);
    Require(again.metadata.comments == writing.metadata.comments);
  }
}

void Write(std::span<const uint8_t> file, const PictureHeader& header) {
  const Pixels pixels = DecodeJpegPixels(file);
  if (WidthOf(pixels) * HeightOf(pixels) > 1 << 16) return;
  PictureWriting writing;
  writing.form = header.form;
  writing.metadata = header.metadata;
  TMemoryStream stream;
  const WrittenPicture written = WriteJpeg(pixels, writing, stream);
  const PictureHeader again = ReadJpegHeader(stream.Bytes());
  Require(again.form == written.form);
  Require(again.width == WidthOf(pixels) && again.height == HeightOf(pixels));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  SetPictureMemoryLimit(kPictureLimit);
  const std::span<const uint8_t> file(data, size);
  try {
    const PictureHeader header = ReadJpegHeader(file);
    CopyTwice(file, header);
    Write(file, header);
  } catch (const Error&) {
  }
  return 0;
}
