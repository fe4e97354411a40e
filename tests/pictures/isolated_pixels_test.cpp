#include <functional>

#include <gtest/gtest.h>

#include <rasterkit/codecs/isolated_input.h>
#include <rasterkit/codecs/isolated_pixels.h>
#include <rasterkit/codecs/jpeg/jpeg_picture.h>
#include <rasterkit/codecs/messages/frame_fields.h>
#include <rasterkit/codecs/messages/header_fields.h>
#include <rasterkit/codecs/messages/writing_fields.h>
#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/runtime/error_class.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/worker/worker_program.h>

#include "tests/support/corpus.h"

/// Headers and pixels that a worker process reads equal those that this process reads.
namespace rasterkit {
namespace {

struct Result {
  std::vector<uint8_t> fields, bytes;
  std::string error;

  bool operator==(const Result&) const = default;
};

void Catch(Result& result, const std::function<void(detail::FieldWriter&)>& reading) {
  detail::FieldWriter fields;
  try {
    reading(fields);
  } catch (const Error& error) {
    result.error = ErrorClassName(error) + ": " + error.Reason();
  }
  result.fields = fields.Take();
}

Result HeaderOf(const std::string& file, bool isIsolated) {
  Result result;
  Catch(result, [&](detail::FieldWriter& fields) {
    PictureType type = PictureType::unknown;
    PictureHeader header;
    if (isIsolated) {
      header = detail::ReadHeaderIsolated(detail::OpenForWorker(file), type, {});
    } else {
      TFileStream stream(file);
      type = SniffPictureType(stream);
      header = ReadPictureHeader(stream, type);
    }
    fields.Enum(type);
    detail::WriteHeader(fields, header);
  });
  return result;
}

Result PixelsOf(const std::string& file, bool isIsolated) {
  Result result;
  Catch(result, [&](detail::FieldWriter& fields) {
    CodecReport report;
    Pixels pixels;
    if (isIsolated) {
      pixels = detail::DecodePixelsIsolated(detail::OpenForWorker(file), 1, &report, {});
    } else {
      TFileStream stream(file);
      const PictureType type = SniffPictureType(stream);
      pixels = DecodePixels(stream, type, {}, &report);
    }
    detail::WritePixels(fields, pixels);
    detail::WriteReport(fields, report);
    const auto bytes = detail::BytesOf(pixels);
    result.bytes.assign(bytes.begin(), bytes.end());
  });
  return result;
}

/// A quarter turn of as much of a JPEG picture as can be moved; of another one, all of it.
PictureMove QuarterTurnOf(const PictureHeader& header) {
  const PictureMove turn{0, 0, header.width, header.height, true, true, false};
  const auto* form = std::get_if<JpegForm>(&header.form);
  if (form == nullptr) return turn;
  return MovableJpegPart(*form, header.width, header.height, turn).value_or(turn);
}

/// A copy with other metadata: larger than one message between the processes. With `isTurned`, its
/// blocks are moved.
Result CopyOf(const std::string& file, bool isIsolated, bool isTurned = false) {
  Result result;
  Catch(result, [&](detail::FieldWriter& fields) {
    TFileStream stream(file);
    const PictureType type = SniffPictureType(stream);
    PictureWriting writing;
    const PictureHeader header = ReadPictureHeader(stream, type);
    writing.metadata = header.metadata;
    writing.form = header.form;
    writing.metadata.comments.emplace_back(60000, 'x');
    writing.metadata.xmp += std::string(30000, ' ');
    if (isTurned) writing.move = QuarterTurnOf(header);
    writing.makesThumbnail = isTurned;
    stream.SetPosition(0);
    TMemoryStream copy;
    const WrittenPicture written =
        isIsolated
            ? detail::CopyPictureIsolated(detail::OpenForWorker(file), type, writing, copy, {})
            : CopyPicture(type, stream, writing, copy);
    detail::WriteWritten(fields, written);
    result.bytes.assign(copy.Bytes().begin(), copy.Bytes().end());
  });
  return result;
}

TEST(IsolatedPixels, Copies_Should_EqualThoseMadeHere) {
  if (test::CorpusFolder().empty()) GTEST_SKIP() << "no corpus (RASTERKIT_CORPUS)";
  detail::SetWorkerProgram(RASTERKIT_WORKER);
  int copies = 0;
  for (const char* kind : {"jpeg", "png", "tiff"}) {
    for (const test::CorpusEntry& entry : test::CorpusEntries(kind)) {
      const std::string file = (test::CorpusFolder() / entry.at("path")).string();
      const Result copy = CopyOf(file, false);
      EXPECT_EQ(CopyOf(file, true), copy) << file << " " << copy.error;
      copies += copy.error.empty() ? 1 : 0;
    }
  }
  EXPECT_GT(copies, 100);
}

TEST(IsolatedPixels, MovedBlocks_Should_EqualThoseMovedHere) {
  if (test::CorpusFolder().empty()) GTEST_SKIP() << "no corpus (RASTERKIT_CORPUS)";
  detail::SetWorkerProgram(RASTERKIT_WORKER);
  int moved = 0;
  for (const test::CorpusEntry& entry : test::CorpusEntries("jpeg")) {
    const std::string file = (test::CorpusFolder() / entry.at("path")).string();
    const Result copy = CopyOf(file, false, true);
    EXPECT_EQ(CopyOf(file, true, true), copy) << file << " " << copy.error;
    moved += copy.error.empty() ? 1 : 0;
  }
  EXPECT_GT(moved, 20);
  const auto pngs = test::CorpusEntries("png");
  ASSERT_FALSE(pngs.empty());
  const std::string png = (test::CorpusFolder() / pngs[0].at("path")).string();
  EXPECT_NE(CopyOf(png, false, true).error.find("not moved without recompression"),
            std::string::npos);
}

TEST(IsolatedPixels, Should_EqualThoseReadHere) {
  if (test::CorpusFolder().empty()) GTEST_SKIP() << "no corpus (RASTERKIT_CORPUS)";
  detail::SetWorkerProgram(RASTERKIT_WORKER);
  int headers = 0, pictures = 0;
  for (const char* kind : {"bmp", "gif", "jpeg", "png", "tiff", "webp", "exif", "geotiff"}) {
    for (const test::CorpusEntry& entry : test::CorpusEntries(kind)) {
      const std::string file = (test::CorpusFolder() / entry.at("path")).string();
      const Result header = HeaderOf(file, false), pixels = PixelsOf(file, false);
      EXPECT_EQ(HeaderOf(file, true), header) << file << " " << header.error;
      EXPECT_EQ(PixelsOf(file, true), pixels) << file << " " << pixels.error;
      headers += header.error.empty() ? 1 : 0;
      pictures += pixels.error.empty() ? 1 : 0;
    }
  }
  EXPECT_GT(headers, 100);
  EXPECT_GT(pictures, 100);
}

}  // namespace
}  // namespace rasterkit
