#include "tool/reports/exif_facts.h"

#include <new>

#include <fmt/core.h>

#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/codecs/unsized_picture.h>
#include <rasterkit/metadata/edit/exif_tag_table.h>
#include <rasterkit/metadata/edit/exif_value_text.h>
#include <rasterkit/metadata/jpeg_segments.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/pictures/reading/photo_facts.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/stream.h>
#include <rasterkit/runtime/text.h>

#include "tool/command/exit_code.h"
#include "tool/command/interruption.h"
#include "tool/command/isolation_option.h"
#include "tool/command/limit_options.h"
#include "tool/command/standard_input.h"
#include "tool/pictures/photo_sections.h"
#include "tool/reports/exif_dates.h"

namespace rasterkit::tool {
namespace {

using Id = ExifDirectoryId;

struct DirectoryName {
  Id id;
  const char* name;
};
constexpr DirectoryName kDirectories[] = {{Id::main, "main"},
                                          {Id::exif, "exif"},
                                          {Id::gps, "gps"},
                                          {Id::interop, "interop"},
                                          {Id::thumbnail, "thumbnail"}};

/// Reads the whole file. Of an endless device it reads only the first bytes.
std::vector<uint8_t> ReadAll(const std::string& file) {
  if (IsStandardStream(file)) return TakeStandardInput();
  const InterruptibleInput waiting(file);
  TFileStream stream(file);
  if (stream.Size() > 0) return stream.ReadToEnd();
  return ReadUnsizedPicture(stream);
}

/// Throws for types of which no file holds metadata of a photograph.
void RequireMetadata(PictureType type) {
  switch (type) {
    case PictureType::jpeg:
    case PictureType::png:
    case PictureType::tiff:
    case PictureType::webp:
    case PictureType::heif:
    case PictureType::jp2:
      return;
    case PictureType::unknown:
      throw FormatError("this is no picture file");
    default:
      throw UnsupportedError(fmt::format(
          "this is a {} file, which holds no metadata of a photograph", PictureTypeName(type)));
  }
}

void TakeThumbnail(ExifFacts& facts, const ExifBlock& block) {
  const std::span<const uint8_t> bytes = ThumbnailOf(block);
  if (bytes.empty()) return;
  const PhotoHeader header = ReadPhotoHeader(bytes);
  facts.thumbnail = ExifFacts::Thumbnail{bytes.size(), header.width, header.height};
}

void TakeFields(ExifFacts& facts, const ExifBlock& block) {
  for (const DirectoryName& directory : kDirectories) {
    for (const TagValue& value : block.All(directory.id)) {
      const ExifTagFact* fact = FindExifTag(directory.id, value.tag);
      facts.fields.push_back({directory.name, value.tag,
                              fact != nullptr ? std::string(fact->name) : std::string(),
                              TextOfExifValue(value)});
    }
  }
}

void TakeExif(ExifFacts& facts, std::span<const uint8_t> exif) {
  constexpr uint16_t kUserComment = 37510;
  if (exif.empty()) return;
  const ExifBlock block({exif.begin(), exif.end()});
  const std::string order(exif.begin(),
                          exif.begin() + std::min<std::ptrdiff_t>(2, std::ssize(exif)));
  if (order == "II" || order == "MM") facts.byteOrder = order;
  if (block.IsDamaged()) facts.warnings.emplace_back("EXIF: the section is damaged");
  facts.date = DateOf(block);
  if (const auto comment = block.Get(Id::exif, kUserComment)) {
    const std::string text = TextOfExifValue(*comment);
    const bool isText = text != fmt::format("{} bytes", comment->bytes.size()) && !text.empty();
    if (isText) facts.comments.push_back(text);
  }
  TakeThumbnail(facts, block);
  TakeFields(facts, block);
}

/// A file that is cut off is shown as far as it goes.
void TakeJpeg(ExifFacts& facts, const std::vector<uint8_t>& jpeg) {
  facts.photo = ReadPhotoFacts(jpeg);
  facts.warnings = facts.photo.warnings;
  PhotoHeader header = ReadPhotoHeader(jpeg);
  facts.width = header.width;
  facts.height = header.height;
  if (!header.leadsToPixels) {
    facts.warnings.emplace_back("JPEG: the header does not lead to picture data");
  }
  facts.comments = std::move(header.comments);
  for (PhotoSection& section : header.sections) {
    facts.sections.push_back(
        {std::move(section.marker), std::move(section.kind), section.place, section.bytes});
  }
  TakeExif(facts, FindExif(jpeg));
}

void TakeMetadata(ExifFacts& facts, const Metadata& metadata) {
  facts.photo = FactsOf(metadata);
  for (const PictureText& text : metadata.texts) {
    if (text.keyword == "Comment") facts.comments.push_back(Trim(text.text));
  }
  for (const std::string& comment : metadata.comments) facts.comments.push_back(Trim(comment));
  TakeExif(facts, metadata.exif);
}

/// HEIC and JPEG 2000: pictures are turned by the file itself.
void TakePicture(ExifFacts& facts, std::vector<uint8_t> bytes) {
  OpenOptions options;
  options.isolation = ReadingIsolation();
  const Picture picture = Picture::Open(std::move(bytes), options);
  facts.width = picture.Width();
  facts.height = picture.Height();
  TakeMetadata(facts, picture.GetMetadata());
}

void TakeOther(ExifFacts& facts, std::vector<uint8_t> bytes, PictureType type) {
  const Codec* const codec = FindCodec(type);
  if (codec != nullptr && codec->IsForPicturesOnly()) return TakePicture(facts, std::move(bytes));
  TMemoryStream stream(std::move(bytes));
  const PictureHeader header = ReadPictureHeader(stream, type);
  facts.width = header.width;
  facts.height = header.height;
  TakeMetadata(facts, header.metadata);
  if (header.orientation) facts.photo.orientation = header.orientation;
  facts.warnings.insert(facts.warnings.begin(), header.warnings.begin(), header.warnings.end());
}

}  // namespace

ExifFacts ReadExifFactsOf(const std::string& file) {
  ExifFacts facts;
  facts.file = file;
  try {
    std::vector<uint8_t> bytes = ReadAll(file);
    const bool isJpeg = bytes.size() >= 2 && bytes[0] == 0xFF && bytes[1] == 0xD8;
    const PictureType type = isJpeg ? PictureType::jpeg : SniffPictureType(bytes);
    RequireMetadata(type);
    if (isJpeg) {
      TakeJpeg(facts, bytes);
    } else {
      TakeOther(facts, std::move(bytes), type);
    }
  } catch (const Error& error) {
    facts.error = file + ": " + ReasonWithOption(error);
  } catch (const std::bad_alloc&) {
    facts.error = file + ": out of memory";
  }
  return facts;
}

}  // namespace rasterkit::tool
