#include <limits>

#include <rasterkit/codecs/messages/frame_fields.h>
#include <rasterkit/codecs/messages/header_fields.h>
#include <rasterkit/codecs/messages/metadata_fields.h>
#include <rasterkit/codecs/messages/writing_fields.h>

namespace rasterkit::detail {
namespace {

constexpr int kMostQuality = 100, kMostChroma = 4, kMostThreads = 64, kMostPngLevel = 12;
constexpr size_t kMostLosses = 1000, kLeastLossBytes = 12, kMostTextBytes = size_t{1} << 16;

void WriteMove(FieldWriter& fields, const PictureMove& move) {
  const auto& [left, top, width, height, exchanges, reversesColumns, reversesRows] = move;
  for (const int number : {left, top, width, height}) fields.I32(number);
  for (const bool flag : {exchanges, reversesColumns, reversesRows}) fields.Bool(flag);
}

/// The codec checks the numbers against its picture.
PictureMove ReadMove(FieldReader& fields) {
  PictureMove move;
  constexpr int kMost = std::numeric_limits<int>::max();
  for (int* number : {&move.left, &move.top}) *number = fields.I32In(0, kMost);
  for (int* number : {&move.width, &move.height}) *number = fields.I32In(1, kMost);
  for (bool* flag : {&move.exchangesAxes, &move.reversesColumns, &move.reversesRows}) {
    *flag = fields.Bool();
  }
  return move;
}

}  // namespace

void WriteWriting(FieldWriter& fields, const PictureWriting& writing) {
  const auto& [form, metadata, positionTags, quality, chromaX, chromaY, dropsHidden, move,
               makesThumbnail, threads, pngLevel] = writing;
  WriteForm(fields, form);
  WriteMetadata(fields, metadata);
  WriteTags(fields, positionTags);
  fields.Optional(quality, [&](int value) { fields.I32(value); });
  fields.I32(chromaX);
  fields.I32(chromaY);
  fields.Bool(dropsHidden);
  fields.Optional(move, [&](const PictureMove& value) { WriteMove(fields, value); });
  fields.Bool(makesThumbnail);
  fields.I32(threads);
  fields.Optional(pngLevel, [&](int value) { fields.I32(value); });
}

PictureWriting ReadWriting(FieldReader& fields) {
  PictureWriting writing;
  auto& [form, metadata, positionTags, quality, chromaX, chromaY, dropsHidden, move, makesThumbnail,
         threads, pngLevel] = writing;
  form = ReadForm(fields);
  metadata = ReadMetadata(fields);
  positionTags = ReadTags(fields);
  quality = fields.Optional([&]() -> int { return fields.I32In(1, kMostQuality); });
  chromaX = fields.I32In(0, kMostChroma);
  chromaY = fields.I32In(0, kMostChroma);
  dropsHidden = fields.Bool();
  move = fields.Optional([&] { return ReadMove(fields); });
  makesThumbnail = fields.Bool();
  threads = fields.I32In(1, kMostThreads);
  pngLevel = fields.Optional([&]() -> int { return fields.I32In(0, kMostPngLevel); });
  return writing;
}

void WriteWritten(FieldWriter& fields, const WrittenPicture& written) {
  const auto& [form, layout, changes] = written;
  WriteForm(fields, form);
  WriteLayout(fields, layout);
  fields.List(changes.losses, [&](const Loss& loss) {
    fields.Enum(loss.kind);
    fields.ByteText(loss.what);
    fields.ByteText(loss.why);
  });
  WriteWarnings(fields, changes.notes);
}

WrittenPicture ReadWritten(FieldReader& fields) {
  WrittenPicture written;
  auto& [form, layout, changes] = written;
  form = ReadForm(fields);
  layout = ReadLayout(fields);
  changes.losses = fields.List(kMostLosses, kLeastLossBytes, [&] {
    Loss loss;
    loss.kind = fields.Enum(LossKind::records);
    loss.what = fields.ByteText(kMostTextBytes);
    loss.why = fields.ByteText(kMostTextBytes);
    return loss;
  });
  changes.notes = ReadWarnings(fields);
  return written;
}

}  // namespace rasterkit::detail
