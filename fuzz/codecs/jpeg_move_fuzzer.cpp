// Any bytes as a JPEG file, any move: the largest part that can be moved is moved, or there is an
// Error and nothing is written. What was written has the form and the sides of the result, and can
// be moved back. The first bytes of the input choose the move.

#include <array>

#include <rasterkit/codecs/jpeg/jpeg_picture.h>
#include <rasterkit/codecs/jpeg/lossless/dc_picture.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

#include "fuzz/require.h"

namespace {

using namespace rasterkit;

/// A few bytes can claim a picture of any size.
constexpr uint64_t kPictureLimit = 8 << 20;
/// Four numbers of two bytes, and a byte of flags.
constexpr size_t kMoveBytes = 9;

PictureMove MoveOf(std::span<const uint8_t> bytes, const PictureHeader& header) {
  const auto number = [&](size_t i) { return bytes[2 * i] << 8 | bytes[2 * i + 1]; };
  const uint8_t flags = bytes[kMoveBytes - 1];
  PictureMove move{
      0, 0, header.width, header.height, (flags & 4) != 0, (flags & 2) != 0, (flags & 1) != 0};
  if ((flags & 8) == 0) {
    move.left = number(0);
    move.top = number(1);
    move.width = number(2) - 1;
    move.height = number(3) - 1;
  }
  return move;
}

PictureMove Back(const PictureMove& move, const PictureHeader& header) {
  PictureMove back{0,
                   0,
                   header.width,
                   header.height,
                   move.exchangesAxes,
                   move.reversesColumns,
                   move.reversesRows};
  if (move.exchangesAxes) std::swap(back.reversesColumns, back.reversesRows);
  return back;
}

/// True if it was written.
bool Write(std::span<const uint8_t> file, const PictureWriting& writing, TMemoryStream& stream) {
  try {
    CopyJpeg(file, writing, stream);
    return true;
  } catch (const Error&) {
    Require(stream.Bytes().empty());
    return false;
  }
}

void Move(std::span<const uint8_t> file, const PictureMove& wanted, bool makesThumbnail) {
  const PictureHeader header = ReadJpegHeader(file);
  const auto& form = std::get<JpegForm>(header.form);
  const auto part = MovableJpegPart(form, header.width, header.height, wanted);
  PictureWriting writing;
  writing.metadata = header.metadata;
  writing.makesThumbnail = makesThumbnail;
  writing.move = wanted;
  TMemoryStream moved;
  const bool isWritten = Write(file, writing, moved);
  if (part != wanted) Require(!isWritten);
  if (!part) return;
  if (part != wanted) {
    writing.move = part;
    if (!Write(file, writing, moved)) return;
  } else if (!isWritten) {
    return;
  }
  const PictureHeader again = ReadJpegHeader(moved.Bytes());
  Require(again.width == part->ResultWidth() && again.height == part->ResultHeight());
  const auto& newForm = std::get<JpegForm>(again.form);
  Require(newForm.progressive == form.progressive);
  Require(newForm.restartInterval == form.restartInterval);
  Require(newForm.adobeTransform == form.adobeTransform);
  const JpegForm expected = part->exchangesAxes ? Transposed(form) : form;
  Require(newForm.components == expected.components);
  const auto back = MovableJpegPart(newForm, again.width, again.height, Back(*part, again));
  if (!back) return;
  writing.metadata = again.metadata;
  writing.move = back;
  TMemoryStream source;
  Require(Write(moved.Bytes(), writing, source));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  SetPictureMemoryLimit(kPictureLimit);
  if (size < kMoveBytes) return 0;
  const std::span<const uint8_t> bytes(data, size);
  const std::span<const uint8_t> file = bytes.subspan(kMoveBytes);
  try {
    const PictureHeader header = ReadJpegHeader(file);
    Move(file, MoveOf(bytes, header), (bytes[kMoveBytes - 1] & 16) != 0);
    DecodeJpegEighth(file);
  } catch (const Error&) {
  }
  return 0;
}
