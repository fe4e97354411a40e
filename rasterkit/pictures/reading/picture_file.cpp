#include <algorithm>
#include <exception>
#include <span>
#include <utility>

#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/codecs/decode_picture.h>
#include <rasterkit/codecs/isolated_input.h>
#include <rasterkit/codecs/list_metadata.h>
#include <rasterkit/codecs/messages/isolated_reading.h>
#include <rasterkit/codecs/rows/frame_format.h>
#include <rasterkit/codecs/tiff/tiff_decoder.h>
#include <rasterkit/codecs/unsized_picture.h>
#include <rasterkit/pictures/reading/picture_fields.h>
#include <rasterkit/pictures/reading/picture_file.h>
#include <rasterkit/pictures/reading/visible_rows.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/worker/worker_input.h>

namespace rasterkit {
namespace {

constexpr int kMostDecoders = 64;

void AddWarnings(PictureFile& file, const CodecReport& report) {
  file.warnings.insert(file.warnings.end(), report.warnings.begin(), report.warnings.end());
}

/// If the directories cannot be read, the decoder reports the error.
void ReadFacts(LoadedFrame& loaded, TStream& stream) {
  try {
    loaded.tiff = ReadTiffFacts(stream);
    loaded.photo.orientation = loaded.tiff->orientation;
    loaded.metadata = loaded.tiff->metadata;
  } catch (const Error&) {
  }
  stream.SetPosition(0);
}

/// TIFF files can be huge: facts and rows are read directly from the stream.
void LoadTiff(LoadedFrame& loaded, TStream& stream, const PictureReading& reading) {
  loaded.bytes = stream.Size();
  ReadFacts(loaded, stream);
  if (!reading.withPixels) return;
  CodecReport report;
  loaded.frame = DecodeTiff(stream, {std::clamp(reading.threads, 1, kMostDecoders)}, &report);
  loaded.grid = GridTypeOf(loaded.frame.format);
  AddWarnings(loaded, report);
}

void SetRows(LoadedFrame& loaded, Raster rows) {
  loaded.frame.format = detail::FrameFormatOf(rows);
  loaded.frame.rows = std::move(rows);
}

/// The other types are pictures, never grids.
void Take(LoadedFrame& loaded, Raster rows, const CodecReport& report) {
  SetRows(loaded, std::move(rows));
  AddWarnings(loaded, report);
}

bool IsMetafile(PictureType type) {
  return type == PictureType::wmf || type == PictureType::emf;
}

/// Facts of the records are stored even if drawing fails.
void LoadMetafile(LoadedFrame& loaded, std::span<const uint8_t> bytes,
                  const PictureReading& reading) {
  if (!reading.withPixels) return;
  TMetafile metafile;
  TSpanStream stream(bytes);
  metafile.LoadFromStream(stream);
  loaded.metafile = metafile.Facts();
  loaded.warnings = loaded.metafile->warnings;
  DrawnMetafile drawn = DrawMetafile(metafile, reading.drawing, reading.keepGoing);
  SetRows(loaded, std::move(drawn.rows));
  for (std::string& warning : drawn.warnings) {
    const auto& known = loaded.warnings;
    if (std::find(known.begin(), known.end(), warning) != known.end()) continue;
    loaded.warnings.push_back(std::move(warning));
  }
}

void LoadBytes(LoadedFrame& loaded, std::span<const uint8_t> bytes, const PictureReading& reading) {
  loaded.bytes = bytes.size();
  loaded.type = SniffPictureType(bytes);
  if (IsMetafile(loaded.type)) return LoadMetafile(loaded, bytes, reading);
  if (loaded.type == PictureType::tiff) {
    TSpanStream memory(bytes);
    return LoadTiff(loaded, memory, reading);
  }
  const PictureMetadata metadata = ReadMetadata(bytes);
  loaded.metadata = metadata.kinds;
  loaded.frames = metadata.pictures;
  const bool isJpeg = loaded.type == PictureType::jpeg;
  loaded.photo = isJpeg ? ReadPhotoFacts(bytes) : ReadExifFacts(metadata.exif);
  loaded.warnings = loaded.photo.warnings;
  if (!reading.withPixels) return;
  CodecReport report;
  Take(loaded, DecodePicture(bytes, &report), report);
}

/// True for formats whose files are read twice: once for metadata, once for the pixels.
bool HasMetadata(PictureType type) {
  const Codec* codec = FindCodec(type);
  return codec != nullptr && codec->readMetadata != nullptr;
}

/// Bitmap and TIFF files can be huge: their rows are read directly from the stream. A file that is
/// not a picture is not read at all. A pipe has no size and cannot be rewound.
void LoadStream(LoadedFrame& loaded, TStream& stream, const PictureReading& reading) {
  const bool isFile = stream.Size() > 0;
  if (isFile) loaded.type = SniffPictureType(stream);
  if (isFile && loaded.type == PictureType::tiff) return LoadTiff(loaded, stream, reading);
  if (isFile && !HasMetadata(loaded.type) && !IsMetafile(loaded.type)) {
    loaded.bytes = stream.Size();
    if (!reading.withPixels) return;
    CodecReport report;
    return Take(loaded, DecodePicture(stream, &report), report);
  }
  LoadBytes(loaded, isFile ? stream.ReadToEnd() : ReadUnsizedPicture(stream), reading);
}

/// The first bytes are compared here; everything else is left to the worker.
detail::WorkerReader ReaderOf(const detail::SystemFile& file) {
  const auto stream = detail::WorkerInputStream(detail::SameFile(file));
  return IsMetafile(SniffPictureType(*stream)) ? detail::WorkerReader::metafiles
                                               : detail::WorkerReader::pictures;
}

void ReadIsolated(LoadedFrame& picture, detail::SystemFile file, const PictureReading& reading) {
  detail::FieldWriter task;
  detail::WriteReading(task, reading);
  const detail::WorkerReader reader = ReaderOf(file);
  std::exception_ptr error;
  LoadedFrame read;
  const auto place = [&](detail::FieldReader& fields, uint64_t bytes) -> std::span<uint8_t> {
    error = detail::ReadOutcome(fields);
    const detail::FrameHead head = detail::ReadPictureHead(fields, read);
    fields.RequireEnd();
    read.frame = detail::NewFrame(head, bytes);
    return detail::RowsOf(read.frame.rows);
  };
  detail::ReadInWorker(reader, detail::WorkerTask::picture, task.Written(), std::move(file),
                       reading.keepGoing, place);
  read.frame.rows.ClearPadding();
  picture = std::move(read);
  if (error) std::rethrow_exception(error);
}

}  // namespace

void ReadPicture(LoadedFrame& picture, TStream& stream, const PictureReading& reading) {
  const LimitsScope limits;
  if (reading.isolation == Isolation::none) return LoadStream(picture, stream, reading);
  ReadIsolated(picture, detail::CopyForWorker(stream), reading);
}

void ReadPicture(LoadedFrame& picture, const std::string& fileName, const PictureReading& reading) {
  const LimitsScope limits;
  try {
    if (reading.isolation == Isolation::process) {
      return ReadIsolated(picture, detail::OpenForWorker(fileName), reading);
    }
    TFileStream stream(fileName);
    LoadStream(picture, stream, reading);
  } catch (Error& error) {
    error.AttachFile(fileName);
    throw;
  }
}

Raster TakeVisibleRows(LoadedFrame& picture) {
  if (picture.type != PictureType::tiff) return std::move(picture.frame.rows);
  CodecReport report;
  const std::string noData = picture.tiff ? picture.tiff->noData : std::string();
  Raster rows = VisibleRows(std::move(picture.frame), noData, report);
  AddWarnings(picture, report);
  return rows;
}

}  // namespace rasterkit
