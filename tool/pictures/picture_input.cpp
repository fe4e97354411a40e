#include "tool/pictures/picture_input.h"

#include <functional>
#include <new>

#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/stream.h>

#include "tool/command/exit_code.h"
#include "tool/command/interruption.h"
#include "tool/command/isolation_option.h"
#include "tool/command/limit_options.h"
#include "tool/command/standard_input.h"
#include "tool/pictures/change_picture.h"

namespace rasterkit::tool {
namespace {

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

/// HEIC and JPEG 2000.
bool IsForPicturesOnly(const std::string& file) {
  const std::string name = ReadableName(file);
  try {
    const InterruptibleInput waiting(name);
    TFileStream stream(name);
    if (stream.Size() == 0) return false;
    const Codec* const codec = FindCodec(SniffPictureType(stream));
    return codec != nullptr && codec->IsForPicturesOnly();
  } catch (const Error&) {
    return false;
  }
}

}  // namespace

void LoadFrameInto(LoadedFrame& frame, const std::string& file, int threads,
                   const MetafileDrawing& drawing) {
  PictureReading reading;
  reading.threads = threads;
  reading.drawing = drawing;
  reading.keepGoing = ContinueUnlessInterrupted;
  reading.isolation = ReadingIsolation();
  const std::string name = ReadableName(file);
  Guarded(file, [&] {
    const InterruptibleInput waiting(name);
    ReadPicture(frame, name, reading);
  });
}

LoadedPicture LoadPicture(const std::string& file, int threads, const MetafileDrawing& drawing) {
  LoadedPicture picture;
  if (IsForPicturesOnly(file)) {
    picture.bitmap = LoadUpright(file);
    return picture;
  }
  LoadedFrame loaded;
  LoadFrameInto(loaded, file, threads, drawing);
  Guarded(file, [&] { picture.bitmap = std::make_unique<TBitmap>(TakeVisibleRows(loaded)); });
  static_cast<PictureFile&>(picture) = std::move(loaded);
  return picture;
}

}  // namespace rasterkit::tool
