#include <QTransform>
#include <algorithm>
#include <cmath>
#include <exception>
#include <filesystem>
#include <new>
#include <system_error>
#include <utility>

#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/codecs/decode_frame.h>
#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/jpeg/jpeg_picture.h>
#include <rasterkit/jpegexif/photo_queries.h>
#include <rasterkit/pictures/reading/picture_file.h>
#include <rasterkit/qt/bitmap_image.h>
#include <rasterkit/qt/preview/preview_decoder.h>
#include <rasterkit/raster/stretch/halftone.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/memory/picture_memory_scope.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit::detail {
namespace {

/// About a second of decoding, and a moderate amount of memory for a dialog.
constexpr uint64_t kPreviewMemory = uint64_t{384} << 20;

std::atomic<Isolation> isolation = Isolation::none;

/// Thrown to cancel decoding. Not an Error, so that no handler reports it as damage.
struct Canceled {};

/// A file stream whose reads fail after cancellation.
class CanceledStream : public TStream {
 public:
  CanceledStream(const std::string& fileName, const std::atomic<bool>& isCanceled)
      : file_(fileName), isCanceled_(isCanceled) {}

  size_t Read(std::span<uint8_t> target) override {
    // In pieces: a decoder that reads the whole file at once could not be canceled.
    constexpr size_t kPiece = size_t{4} << 20;
    size_t done = 0;
    while (done < target.size()) {
      if (isCanceled_.load(std::memory_order_relaxed)) throw Canceled();
      const size_t count = file_.Read(target.subspan(done, std::min(kPiece, target.size() - done)));
      if (count == 0) break;
      done += count;
    }
    return done;
  }
  void Write(std::span<const uint8_t> source) override { file_.Write(source); }
  uint64_t Position() const override { return file_.Position(); }
  void SetPosition(uint64_t position) override { file_.SetPosition(position); }
  uint64_t Size() const override { return file_.Size(); }

 private:
  TFileStream file_;
  const std::atomic<bool>& isCanceled_;
};

/// An unknown file goes to the decoder, which reports it as broken.
bool IsDecoded(PictureType type) {
  const Codec* codec = FindFrameCodec(type);
  return codec == nullptr || codec->IsDecoded();
}

int Shrunk(int length, double factor) {
  return std::max(1, static_cast<int>(std::lround(length * factor)));
}

/// The decoded picture, its size in the file, and the counter-clockwise degrees by which loading
/// rotates it.
struct DecodedFile {
  Raster picture;
  int width = 0, height = 0;
  int rotation = 0;
};

/// Returns the picture with at most `side` x `side` pixels.
Raster Shrink(DecodedFile& file, int side) {
  Raster& raster = file.picture;
  const int longest = std::max(file.width, file.height);
  if (longest <= side) return std::move(raster);
  const double factor = static_cast<double>(side) / longest;
  const bool hasAlpha = raster.Format() == pf32bit && raster.alphaFormat == afDefined;
  Raster small(hasAlpha ? pf32bit : pf24bit, Shrunk(file.width, factor),
               Shrunk(file.height, factor));
  small.alphaFormat = hasAlpha ? afDefined : afIgnored;
  CopyHalftone(small, {0, 0, small.Width(), small.Height()}, raster);
  return small;
}

/// Returns the counter-clockwise degrees by which loading rotates the photo; 0 if its EXIF data is
/// damaged.
int RotationOf(const std::string& fileName) {
  if (GetGraphicsType(ExtractFileExt(fileName)) != gtJpg) return 0;
  int rotation = 0;
  try {
    GetJpgRotation(fileName, rotation);
  } catch (const std::exception&) {
    return 0;
  }
  return rotation;
}

DecodedFile Whole(Raster picture) {
  const int width = picture.Width(), height = picture.Height();
  return {std::move(picture), width, height};
}

/// A photograph is decoded smaller, but at least at twice the size of its preview.
DecodedFile DecodePhoto(const std::string& fileName, TStream& stream, int side) {
  const uint64_t start = stream.Position();
  const PictureHeader header = ReadJpegFront(stream);
  stream.SetPosition(start);
  const auto isEnough = [&](int denominator) {
    return std::max(header.width, header.height) / denominator >= 2 * side &&
           std::min(header.width, header.height) >= denominator;
  };
  int denominator = 8;
  while (denominator > 1 && !isEnough(denominator)) denominator /= 2;
  return {DecodeSmallerJpeg(stream, denominator), header.width, header.height,
          RotationOf(fileName)};
}

DecodedFile DecodeHere(const std::string& fileName, PictureType type, TStream& stream, int side) {
  if (type == PictureType::jpeg) return DecodePhoto(fileName, stream, side);
  return Whole(PictureOfFrame(DecodeFrame(stream)));
}

DecodedFile DecodeIsolated(const std::string& fileName, const std::atomic<bool>& isCanceled) {
  PictureReading reading;
  reading.isolation = Isolation::process;
  reading.keepGoing = [&] { return !isCanceled; };
  LoadedFrame read;
  ReadPicture(read, fileName, reading);
  DecodedFile file = Whole(PictureOfFrame(std::move(read.frame)));
  const bool isPhoto = GetGraphicsType(ExtractFileExt(fileName)) == gtJpg;
  if (isPhoto && read.type == PictureType::jpeg) file.rotation = read.photo.rotation.value_or(0);
  return file;
}

Preview Decode(const std::string& fileName, int side, const std::atomic<bool>& isCanceled) {
  CanceledStream stream(fileName, isCanceled);
  const PictureType type = SniffPictureType(stream);
  if (!IsDecoded(type)) return {{}, rsPreviewNone};
  DecodedFile file = isolation == Isolation::process ? DecodeIsolated(fileName, isCanceled)
                                                     : DecodeHere(fileName, type, stream, side);
  Preview preview;
  preview.width = file.width;
  preview.height = file.height;
  if (isCanceled) return preview;
  preview.image = ImageOfOwned(Shrink(file, side));
  const int rotation = file.rotation;
  if (rotation != 0) {
    preview.image = preview.image.transformed(QTransform().rotate(-rotation));
    if (rotation % 180 != 0) std::swap(preview.width, preview.height);
  }
  if (preview.image.isNull()) preview.problem = rsPreviewNone;
  return preview;
}

/// Opening a pipe would wait for its other end.
bool IsPlainFile(const std::string& fileName) {
  std::error_code error;
  return std::filesystem::is_regular_file(ToPath(fileName), error);
}

}  // namespace

Preview DecodePreview(const std::string& fileName, int side, const std::atomic<bool>& isCanceled) {
  try {
    if (!IsPlainFile(fileName)) return {{}, rsPreviewNone};
    const PictureMemoryScope budget(kPreviewMemory);
    return Decode(fileName, std::max(side, 1), isCanceled);
  } catch (const Canceled&) {
    return {};
  } catch (const LimitError&) {
    return {{}, rsPreviewTooLarge};
  } catch (const std::bad_alloc&) {
    return {{}, rsPreviewTooLarge};
  } catch (const std::exception&) {
    return {{}, rsPreviewBroken};
  }
}

void SetPreviewIsolation(Isolation value) {
  isolation = value;
}

}  // namespace rasterkit::detail
