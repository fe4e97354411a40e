#pragma once

#include <memory>
#include <string>

#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/isolation.h>

namespace rasterkit {

/// Loads the first picture of a file for viewing, by content, regardless of its name: all formats
/// of the codec table, and metafiles at 96 pixels per inch on white. With Isolation::process, a
/// worker process reads the file: use it for untrusted files. The caller owns the bitmap. It has
/// the rows as stored, without the turn that a photograph needs; the numbers of a grid become
/// grays. Warnings are added to `report`. May be called on any thread; at most as many worker
/// processes as processors run at once, and further calls wait.
///
/// Throws FileError if the file cannot be opened, FormatError or UnsupportedError if it is no
/// readable picture, LimitError if it exceeds the limits of the calling thread (see Limits), and
/// std::bad_alloc; every Error names the file. A file that makes the worker process crash gives a
/// FormatError. Throws UnsupportedError if the program rasterkit-worker is not installed.
RASTERKIT_EXPORT std::unique_ptr<TBitmap> LoadBitmap(const std::string& fileName,
                                                     Isolation isolation = Isolation::process,
                                                     CodecReport* report = nullptr);

}  // namespace rasterkit
