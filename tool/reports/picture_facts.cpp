#include "tool/reports/picture_facts.h"

#include <algorithm>
#include <functional>
#include <new>
#include <span>

#include <fmt/format.h>

#include <rasterkit/codecs/isolated_input.h>
#include <rasterkit/codecs/isolated_pixels.h>
#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/codecs/unsized_picture.h>
#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/pictures/reading/picture_file.h>
#include <rasterkit/raster/pixel_format.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/limits.h>

#include "tool/command/exit_code.h"
#include "tool/command/interruption.h"
#include "tool/command/isolation_option.h"
#include "tool/command/limit_options.h"
#include "tool/command/standard_input.h"
#include "tool/pictures/picture_input.h"
#include "tool/reports/exif_dates.h"
#include "tool/reports/layout_facts.h"

namespace rasterkit::tool {
namespace {

/// The reason without the file name, which the line of `info` already contains.
std::string ReasonOf(const std::string& message, const std::string& file) {
  const std::string prefix = file + ": ";
  return message.rfind(prefix, 0) == 0 ? message.substr(prefix.size()) : message;
}

/// Decodes the pixels, and throws them away.
void LoadForFacts(LoadedFrame& loaded, const std::string& file) {
  MetafileDrawing drawing;
  drawing.isForFacts = true;
  LoadFrameInto(loaded, file, 1, drawing);
}

bool IsMetafile(PictureType type) {
  return type == PictureType::wmf || type == PictureType::emf;
}

std::vector<std::string> MetadataNames(const Metadata& metadata) {
  std::vector<MetadataKind> kinds;
  const auto add = [&](bool is, MetadataKind kind) {
    if (is) kinds.push_back(kind);
  };
  add(!metadata.exif.empty(), MetadataKind::exif);
  add(!metadata.xmp.empty(), MetadataKind::xmp);
  add(!metadata.iptc.empty(), MetadataKind::iptc);
  add(!metadata.comments.empty(), MetadataKind::comment);
  add(!metadata.texts.empty(), MetadataKind::text);
  add(metadata.profile != nullptr, MetadataKind::profile);
  return MetadataKindNames(kinds);
}

void TakePhotograph(PictureFacts& facts, const Metadata& metadata) {
  constexpr uint16_t kMake = 271, kModel = 272;
  if (metadata.exif.empty()) return;
  const ExifBlock block(metadata.exif);
  facts.date = DateOf(block);
  facts.make = block.Text(ExifDirectoryId::main, kMake);
  facts.model = block.Text(ExifDirectoryId::main, kModel);
}

void TakePlacement(PictureFacts& facts, std::span<const TagValue> tags) {
  facts.placement = ReadPlacement(facts.file, tags, facts.width, facts.height);
  const std::vector<std::string>& warnings = facts.placement.warnings;
  facts.warnings.insert(facts.warnings.end(), warnings.begin(), warnings.end());
}

void TakeHeader(PictureFacts& facts, const PictureHeader& header, PictureType type) {
  RequirePictureSize(static_cast<uint64_t>(header.width), static_cast<uint64_t>(header.height),
                     fmt::format("a picture of {} x {} pixels", header.width, header.height));
  facts.width = header.width;
  facts.height = header.height;
  facts.bits = ShownBits(header.layout, type);
  facts.paletteEntries = ShownPaletteEntries(header.layout, type);
  facts.transparent = header.layout.alpha != AlphaKind::none;
  facts.grid = GridName(header.layout, type);
  const Resolution& resolution = header.metadata.resolution;
  if (resolution.IsKnown()) facts.dpi = {resolution.x, resolution.y};
  facts.metadata =
      facts.tiff ? MetadataKindNames(facts.tiff->metadata) : MetadataNames(header.metadata);
  facts.pages = facts.tiff ? facts.tiff->pages : header.frames;
  facts.photo.orientation = header.orientation;
  facts.warnings.insert(facts.warnings.end(), header.warnings.begin(), header.warnings.end());
  facts.lostPages = header.lostPages;
  if (!header.lostPages.empty()) facts.warnings.push_back(header.lostPages);
  TakePhotograph(facts, header.metadata);
  TakePlacement(facts, header.positionTags);
}

/// If the directories cannot be read, reading the header reports the error.
void TakeTiffFacts(PictureFacts& facts, TStream& stream) {
  try {
    facts.tiff = ReadTiffFacts(stream);
  } catch (const Error&) {
  }
  stream.SetPosition(0);
}

/// What the photo query answers, and the position of the photograph.
void TakePhotoFacts(PictureFacts& facts, const PhotoFacts& photo) {
  facts.photo.rotation = photo.rotation;
  facts.photo.gps = photo.gps;
  facts.warnings.insert(facts.warnings.begin(), photo.warnings.begin(), photo.warnings.end());
}

void TakeMetafile(PictureFacts& facts, TStream& stream) {
  facts.metafile = ReadMetafileFacts(stream.ReadToEnd());
  facts.width = facts.metafile->width;
  facts.height = facts.metafile->height;
  facts.bits = StoredBitsPerPixel(pf24bit);
  facts.photo.rotation = 0;
  facts.warnings = facts.metafile->warnings;
}

/// The first bytes of a JPEG file hold what the photo query looks at.
std::vector<uint8_t> StartOf(TStream& stream) {
  constexpr uint64_t kMost = 256 * 1024;
  std::vector<uint8_t> start(static_cast<size_t>(std::min(kMost, stream.Size())));
  stream.SetPosition(0);
  start.resize(stream.Read(start));
  return start;
}

/// A worker process draws a metafile to read its facts.
void TakeDrawn(PictureFacts& facts) {
  LoadedFrame loaded;
  LoadForFacts(loaded, facts.file);
  facts.metafile = loaded.metafile;
  facts.width = facts.metafile->width;
  facts.height = facts.metafile->height;
  facts.bits = StoredBitsPerPixel(pf24bit);
  facts.photo.rotation = 0;
  facts.warnings = loaded.warnings;
}

/// HEIF files are always read in a worker process.
PictureHeader ReadHeaderOf(TStream& stream, PictureType type) {
  if (type != PictureType::heif) return ReadPictureFront(stream, type);
  return detail::ReadHeaderIsolated(detail::CopyForWorker(stream), type, ContinueUnlessInterrupted);
}

void ReadFacts(PictureFacts& facts, TStream& stream) {
  const PictureType type = SniffPictureType(stream);
  facts.type = PictureTypeName(type);
  facts.bytes = stream.Size();
  if (facts.bytes == 0) throw FormatError("the file is empty");
  if (IsMetafile(type)) return TakeMetafile(facts, stream);
  if (type == PictureType::tiff) TakeTiffFacts(facts, stream);
  const PictureHeader header = ReadHeaderOf(stream, type);
  if (type == PictureType::jpeg) {
    TakePhotoFacts(facts, ReadPhotoFacts(StartOf(stream)));
  } else {
    TakePhotoFacts(facts, ReadExifFacts(header.metadata.exif));
    facts.photo.rotation = 0;
  }
  TakeHeader(facts, header, type);
}

/// A pipe has no size and cannot be rewound.
void ReadFacts(PictureFacts& facts) {
  const InterruptibleInput waiting(facts.file);
  TFileStream stream(facts.file);
  if (stream.Size() > 0) return ReadFacts(facts, stream);
  TMemoryStream memory(ReadUnsizedPicture(stream));
  ReadFacts(facts, memory);
}

/// Calls a function that reads the file. Returns what is wrong with it, or an empty text.
std::string ProblemOf(const std::string& file, const std::function<void()>& reading) {
  try {
    reading();
    return {};
  } catch (const Failure& failure) {
    if (failure.Code() == exitInterrupted) throw;
    return ReasonOf(failure.what(), file);
  } catch (const Error& error) {
    return ReasonWithOption(error);
  } catch (const std::bad_alloc&) {
    return "out of memory";
  }
}

/// The same facts from worker processes: this one looks at the first bytes alone.
void ReadIsolated(PictureFacts& facts) {
  LoadedFrame loaded;
  PictureReading reading;
  reading.withPixels = false;
  reading.isolation = Isolation::process;
  reading.keepGoing = ContinueUnlessInterrupted;
  ReadPicture(loaded, facts.file, reading);
  facts.type = PictureTypeName(loaded.type);
  facts.bytes = loaded.bytes;
  facts.tiff = loaded.tiff;
  if (IsMetafile(loaded.type)) return TakeDrawn(facts);
  PictureType type = loaded.type;
  const PictureHeader header = detail::ReadHeaderIsolated(detail::OpenForWorker(facts.file), type,
                                                          ContinueUnlessInterrupted);
  const bool hasOwnReader = type == PictureType::jp2 || type == PictureType::heif;
  TakePhotoFacts(facts, hasOwnReader ? ReadExifFacts(header.metadata.exif) : loaded.photo);
  if (type != PictureType::jpeg) facts.photo.rotation = 0;
  TakeHeader(facts, header, type);
}

void TakePdfFacts(PictureFacts& facts) {
  // Other programs would take a PDF file under another name for a picture.
  if (!IsPdfName(facts.file)) {
    facts.error += "; the name of a PDF file must end in .pdf";
    return;
  }
  facts.error =
      ProblemOf(facts.file, [&] { facts.pdf = GatherPdfFacts(facts.file, facts.warnings); });
}

void DecodeStream(TStream& stream, CodecReport& report) {
  const PictureType type = SniffPictureType(stream);
  stream.SetPosition(0);
  if (type == PictureType::heif) {
    detail::DecodePixelsIsolated(detail::CopyForWorker(stream), 1, &report,
                                 ContinueUnlessInterrupted);
    return;
  }
  static_cast<void>(DecodePixels(stream, type, {}, &report));
}

/// Decodes the pixels of a picture that is not drawn, and throws them away.
void DecodeForFacts(const std::string& file, CodecReport& report) {
  const InterruptibleInput waiting(file);
  if (ReadingIsolation() == Isolation::process) {
    detail::DecodePixelsIsolated(detail::OpenForWorker(file), 1, &report,
                                 ContinueUnlessInterrupted);
    return;
  }
  TFileStream stream(file);
  if (stream.Size() > 0) return DecodeStream(stream, report);
  TMemoryStream memory(ReadUnsizedPicture(stream));
  DecodeStream(memory, report);
}

/// Decoders say in this way how much of the data is there.
bool IsDamage(const std::string& warning) {
  return warning.ends_with(" rows are complete");
}

void Verify(PictureFacts& facts) {
  CodecReport report;
  facts.error = ProblemOf(facts.file, [&] {
    if (!facts.metafile) return DecodeForFacts(facts.file, report);
    LoadedFrame loaded;
    LoadForFacts(loaded, facts.file);
    report.warnings = loaded.warnings;
  });
  const auto add = [](std::vector<std::string>& texts, const std::string& text) {
    if (std::find(texts.begin(), texts.end(), text) == texts.end()) texts.push_back(text);
  };
  facts.damage = report.damage;
  for (const std::string& warning : report.warnings) {
    add(facts.warnings, warning);
    if (IsDamage(warning)) add(facts.damage, warning);
  }
  if (facts.error.empty() && !facts.damage.empty()) {
    facts.error = fmt::format("the pixels are damaged: {}", fmt::join(facts.damage, "; "));
  }
  if (facts.error.empty()) facts.error = facts.lostPages;
  facts.verified = facts.error.empty();
}

}  // namespace

PictureFacts GatherFacts(const std::string& file, bool verifies) {
  PictureFacts facts;
  facts.file = ReadableName(file);
  const bool isIsolated = ReadingIsolation() == Isolation::process;
  facts.error = ProblemOf(facts.file, [&] { isIsolated ? ReadIsolated(facts) : ReadFacts(facts); });
  facts.isKnown = facts.error.empty();
  if (facts.type == PictureTypeName(PictureType::pdf)) TakePdfFacts(facts);
  if (verifies && facts.isKnown) Verify(facts);
  facts.file = file;
  return facts;
}

}  // namespace rasterkit::tool
