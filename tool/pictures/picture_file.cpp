#include "tool/pictures/picture_file.h"

#include <algorithm>
#include <functional>
#include <new>

#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/codecs/decode_picture.h>
#include <rasterkit/codecs/metadata.h>
#include <rasterkit/codecs/tiff/tiff_decoder.h>
#include <rasterkit/codecs/unsized_picture.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

#include "tool/command/exit_code.h"
#include "tool/command/interruption.h"
#include "tool/command/limit_options.h"
#include "tool/pictures/visible_rows.h"

namespace rasterkit::tool {
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
void LoadTiff(LoadedFrame& loaded, TStream& stream, int threads) {
  loaded.bytes = stream.Size();
  ReadFacts(loaded, stream);
  CodecReport report;
  loaded.frame = DecodeTiff(stream, {std::min(threads, kMostDecoders)}, &report);
  loaded.grid = GridTypeOf(loaded.frame.format);
  AddWarnings(loaded, report);
}

/// The other types are pictures, never grids.
void Take(LoadedFrame& loaded, Raster rows, const CodecReport& report) {
  loaded.frame.rows = std::move(rows);
  AddWarnings(loaded, report);
}

bool IsMetafile(PictureType type) {
  return type == PictureType::wmf || type == PictureType::emf;
}

/// Facts of the records are stored even if drawing fails.
void LoadMetafile(LoadedFrame& loaded, std::span<const uint8_t> bytes,
                  const MetafileDrawing& drawing) {
  TMetafile metafile;
  TSpanStream stream(bytes);
  metafile.LoadFromStream(stream);
  loaded.metafile = metafile.Facts();
  loaded.warnings = loaded.metafile->warnings;
  DrawnMetafile drawn = DrawMetafile(metafile, drawing);
  loaded.frame.rows = std::move(drawn.rows);
  for (std::string& warning : drawn.warnings) {
    const auto& known = loaded.warnings;
    if (std::find(known.begin(), known.end(), warning) != known.end()) continue;
    loaded.warnings.push_back(std::move(warning));
  }
}

void LoadBytes(LoadedFrame& loaded, std::span<const uint8_t> bytes, int threads,
               const MetafileDrawing& drawing) {
  loaded.bytes = bytes.size();
  loaded.type = SniffPictureType(bytes);
  if (IsMetafile(loaded.type)) return LoadMetafile(loaded, bytes, drawing);
  if (loaded.type == PictureType::tiff) {
    TSpanStream memory(bytes);
    return LoadTiff(loaded, memory, threads);
  }
  const PictureMetadata metadata = ReadMetadata(bytes);
  loaded.metadata = metadata.kinds;
  loaded.frames = metadata.pictures;
  const bool isJpeg = loaded.type == PictureType::jpeg;
  loaded.photo = isJpeg ? ReadPhotoFacts(bytes) : ReadExifFacts(metadata.exif);
  loaded.warnings = loaded.photo.warnings;
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
void LoadStream(LoadedFrame& loaded, TStream& stream, int threads, const MetafileDrawing& drawing) {
  const bool isFile = stream.Size() > 0;
  if (isFile) loaded.type = SniffPictureType(stream);
  if (isFile && loaded.type == PictureType::tiff) return LoadTiff(loaded, stream, threads);
  if (isFile && !HasMetadata(loaded.type) && !IsMetafile(loaded.type)) {
    loaded.bytes = stream.Size();
    CodecReport report;
    return Take(loaded, DecodePicture(stream, &report), report);
  }
  LoadBytes(loaded, isFile ? stream.ReadToEnd() : ReadUnsizedPicture(stream), threads, drawing);
}

/// Runs a function that reads the file; adds the file name to errors.
void Guarded(const std::string& file, const std::function<void()>& reading) {
  try {
    reading();
  } catch (const Error& error) {
    throw Failure(exitInputUnreadable, file + ": " + ReasonWithOption(error));
  } catch (const std::bad_alloc&) {
    throw Failure(exitInputUnreadable, file + ": out of memory");
  }
}

Raster RowsToLookAt(LoadedFrame& loaded) {
  if (loaded.type != PictureType::tiff) return std::move(loaded.frame.rows);
  CodecReport report;
  const std::string noData = loaded.tiff ? loaded.tiff->noData : std::string();
  Raster rows = VisibleRows(std::move(loaded.frame), noData, report);
  AddWarnings(loaded, report);
  return rows;
}

}  // namespace

void LoadFrameInto(LoadedFrame& frame, const std::string& file, int threads,
                   const MetafileDrawing& drawing) {
  Guarded(file, [&] {
    const LimitsScope limits;
    const InterruptibleInput waiting(file);
    TFileStream stream(file);
    LoadStream(frame, stream, threads, drawing);
  });
}

LoadedPicture LoadPicture(const std::string& file, int threads, const MetafileDrawing& drawing) {
  LoadedFrame loaded;
  LoadFrameInto(loaded, file, threads, drawing);
  LoadedPicture picture;
  Guarded(file, [&] { picture.bitmap = std::make_unique<TBitmap>(RowsToLookAt(loaded)); });
  static_cast<PictureFile&>(picture) = std::move(loaded);
  return picture;
}

}  // namespace rasterkit::tool
