#include <algorithm>
#include <cmath>
#include <span>
#include <string>
#include <utility>

#include <fmt/format.h>
#include <tiff.h>

#include <rasterkit/codecs/tiff/pages/page_metadata.h>
#include <rasterkit/codecs/tiff/pages/tag_file_writer.h>
#include <rasterkit/codecs/tiff/pages/tag_kinds.h>
#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/exif_resolution.h>
#include <rasterkit/metadata/exif_tags_of_tiff.h>
#include <rasterkit/metadata/foreign_blocks.h>

namespace rasterkit::detail {

namespace {

/// Adds tags, each once; the first one counts.
class MainTags {
 public:
  explicit MainTags(std::vector<TagValue>& tags) : tags_(tags) {}

  bool Has(uint16_t tag) const {
    return std::any_of(tags_.begin(), tags_.end(),
                       [&](const TagValue& value) { return value.tag == tag; });
  }
  void Add(TagValue value) {
    if (!Has(value.tag)) tags_.push_back(std::move(value));
  }

 private:
  std::vector<TagValue>& tags_;
};

template <typename Bytes>
void AddBlock(MainTags& main, uint16_t tag, uint16_t type, const Bytes& bytes) {
  if (bytes.empty()) return;
  const auto* first = reinterpret_cast<const uint8_t*>(bytes.data());
  main.Add(BytesTag(tag, type, {first, bytes.size()}));
}

/// The first fraction of 32-bit numbers, by continued fractions, that is the number, or the last
/// one that fits: a fraction that was read is found again.
TagValue ResolutionTag(uint16_t tag, double dots) {
  constexpr double kMost = 4294967295.0;
  double above = std::floor(dots), below = 1, aboveBefore = 1, belowBefore = 0;
  double rest = dots - above;
  while (above / below != dots && rest > 0) {
    const double whole = std::floor(1 / rest);
    const double nextAbove = whole * above + aboveBefore, nextBelow = whole * below + belowBefore;
    if (nextAbove > kMost || nextBelow > kMost) break;
    rest = 1 / rest - whole;
    aboveBefore = std::exchange(above, nextAbove);
    belowBefore = std::exchange(below, nextBelow);
  }
  TagValue value{tag, TIFF_RATIONAL, 1, {}};
  for (const double part : {std::min(above, kMost), below}) {
    const auto number = static_cast<uint32_t>(part);
    for (int i = 0; i < 4; i++) value.bytes.push_back(static_cast<uint8_t>(number >> 8 * i));
  }
  return value;
}

double FractionOf(const TagValue& value) {
  const auto number = [&](size_t at) {
    uint32_t part = 0;
    for (size_t i = 4; i-- > 0;) part = part << 8 | value.bytes[at + i];
    return static_cast<double>(part);
  };
  if (value.type != TIFF_RATIONAL || value.bytes.size() != 8 || number(4) == 0) return 0;
  return number(0) / number(4);
}

/// True if tags of an EXIF block state this resolution, in whatever unit.
bool StatesResolution(const std::vector<TagValue>& tags, const Resolution& resolution) {
  constexpr double kCentimetersPerInch = 2.54;
  Resolution stated;
  double factor = 1;
  for (const TagValue& value : tags) {
    if (value.tag == TIFFTAG_XRESOLUTION) stated.x = FractionOf(value);
    if (value.tag == TIFFTAG_YRESOLUTION) stated.y = FractionOf(value);
    if (value.tag == TIFFTAG_RESOLUTIONUNIT && !value.bytes.empty()) {
      if (value.bytes[0] == RESUNIT_CENTIMETER) factor = kCentimetersPerInch;
      if (value.bytes[0] == RESUNIT_NONE) factor = 0;
    }
  }
  return resolution == Resolution{stated.x * factor, stated.y * factor};
}

void AddResolution(MainTags& main, const Resolution& resolution) {
  if (!resolution.IsKnown()) return;
  main.Add(WordTag(TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH));
  main.Add(ResolutionTag(TIFFTAG_XRESOLUTION, resolution.x));
  main.Add(ResolutionTag(TIFFTAG_YRESOLUTION, resolution.y));
}

TagValue TextTag(uint16_t tag, const std::string& text) {
  TagValue value = BytesTag(tag, TIFF_ASCII, {});
  value.bytes.assign(text.begin(), text.end());
  value.bytes.push_back(0);
  value.count = value.bytes.size();
  return value;
}

/// A file has room for one text that describes the picture.
void AddTexts(MainTags& main, const Metadata& metadata, Changes& changes) {
  const auto place = [&](const std::string& text) {
    if (main.Has(TIFFTAG_IMAGEDESCRIPTION) || text.find('\0') != std::string::npos) return false;
    main.Add(TextTag(TIFFTAG_IMAGEDESCRIPTION, text));
    return true;
  };
  constexpr const char* kWhy = "a TIFF file holds one description";
  for (const std::string& comment : metadata.comments) {
    if (!place(comment)) changes.Lose(LossKind::comment, "comment", kWhy);
  }
  for (const PictureText& text : metadata.texts) {
    struct Known {
      const char* keyword;
      uint16_t tag;
    };
    constexpr Known kKnown[] = {{"Title", TIFFTAG_DOCUMENTNAME},
                                {"Author", TIFFTAG_ARTIST},
                                {"Copyright", TIFFTAG_COPYRIGHT},
                                {"Software", TIFFTAG_SOFTWARE}};
    const auto* known = std::find_if(std::begin(kKnown), std::end(kKnown), [&](const Known& row) {
      return text.keyword == row.keyword && !main.Has(row.tag);
    });
    const bool isText = text.text.find('\0') == std::string::npos;
    if (known != std::end(kKnown) && isText) {
      main.Add(TextTag(known->tag, text.text));
      continue;
    }
    const bool describes = text.keyword == "Description" || text.keyword == "Comment";
    if (describes && place(text.text)) continue;
    changes.Lose(LossKind::text, fmt::format("text \"{}\"", text.keyword), kWhy);
  }
}

bool IsOfInks(uint16_t tag) {
  return tag == TIFFTAG_INKSET || tag == TIFFTAG_INKNAMES || tag == TIFFTAG_NUMBEROFINKS ||
         tag == TIFFTAG_DOTRANGE;
}

void AddOwnTags(MainTags& main, const Metadata& metadata, const SampleFacts& samples,
                Changes& changes) {
  for (const TagValue& value : metadata.tiffTags) {
    switch (KindOfTag(value.tag)) {
      case TagKind::free:
        main.Add(value);
        break;
      case TagKind::ofSamples:
        if (samples.areOfSource || (samples.areInks && IsOfInks(value.tag))) {
          main.Add(value);
        } else if (value.tag == kLayersTag) {
          changes.Lose(LossKind::hiddenPictures, "layers", "they would not match the pixels");
        } else {
          changes.Note(
              fmt::format("TIFF tag {} describes the old samples and is dropped", value.tag));
        }
        break;
      default:
        break;
    }
  }
}

/// Other programs would apply a profile of another kind of pixels, or refuse the file.
bool Fits(std::span<const uint8_t> profile, ColorModel model) {
  constexpr size_t kSpaceAt = 16, kMarkAt = 36, kHeaderBytes = 128;
  if (profile.size() < kHeaderBytes) return true;
  const auto word = [&](size_t at) {
    return std::string(profile.begin() + static_cast<ptrdiff_t>(at),
                       profile.begin() + static_cast<ptrdiff_t>(at) + 4);
  };
  if (word(kMarkAt) != "acsp") return true;
  switch (model) {
    case ColorModel::gray:
    case ColorModel::grayWhiteIsZero:
      return word(kSpaceAt) == "GRAY";
    case ColorModel::rgb:
    case ColorModel::palette:
      return word(kSpaceAt) == "RGB ";
    case ColorModel::cmyk:
      return word(kSpaceAt) == "CMYK";
    default:
      return true;
  }
}

void AddProfile(MainTags& main, const ColorProfile& profile, const SampleFacts& samples,
                Changes& changes) {
  if (!profile) return;
  if (!samples.areOfSource && !Fits(*profile, samples.model)) {
    changes.Lose(LossKind::profile, "ICC profile", "it describes another kind of pixels");
    return;
  }
  AddBlock(main, TIFFTAG_ICCPROFILE, TIFF_UNDEFINED, *profile);
}

void LoseForeignBlocks(const Metadata& metadata, Changes& changes) {
  constexpr const char* kWhy = "a TIFF file has no place for it";
  if (!metadata.extendedXmp.empty()) {
    changes.Lose(LossKind::xmp, "extended XMP", "the XMP packet refers to it by its JPEG segments");
  }
  if (!metadata.jpegSegments.empty()) {
    changes.Lose(LossKind::otherBlock,
                 fmt::format("{} JPEG segments", metadata.jpegSegments.size()), kWhy);
  }
  LosePngChunks(metadata, "a TIFF file", changes);
}

}  // namespace

PageTags TagsOfMetadata(const PictureWriting& writing, const SampleFacts& samples,
                        Changes& changes) {
  const Metadata& metadata = writing.metadata;
  PageTags tags;
  MainTags main(tags.main);
  TiffDirectories exif;
  int orientation = ORIENTATION_TOPLEFT;
  if (!metadata.exif.empty()) {
    exif = TagsOfExif(metadata.exif);
    // Pixels that are copied can still lie on their side.
    if (samples.areOfSource) {
      orientation = OrientationOf(ExifBlock(metadata.exif)).value_or(orientation);
    }
    if (ExifBlock(metadata.exif).HasThumbnail()) {
      changes.Note("TIFF: the thumbnail of the EXIF block is dropped: it is a copy of the picture");
    }
  }
  main.Add(WordTag(TIFFTAG_ORIENTATION, static_cast<uint16_t>(orientation)));
  // Without a known resolution the block may still state an aspect ratio.
  const bool keepsStated =
      !metadata.resolution.IsKnown() || StatesResolution(exif.main, metadata.resolution);
  if (!keepsStated) AddResolution(main, metadata.resolution);
  for (TagValue& value : exif.main) {
    const TagKind kind = KindOfTag(value.tag);
    const bool isStated = kind == TagKind::display && keepsStated;
    if (kind == TagKind::free || isStated) main.Add(std::move(value));
  }
  tags.exif = std::move(exif.exif);
  tags.gps = std::move(exif.gps);
  tags.interop = std::move(exif.interop);
  AddBlock(main, TIFFTAG_XMLPACKET, TIFF_BYTE, metadata.xmp);
  AddBlock(main, TIFFTAG_RICHTIFFIPTC, TIFF_UNDEFINED, metadata.iptc);
  AddBlock(main, TIFFTAG_PHOTOSHOP, TIFF_BYTE, metadata.photoshop);
  AddProfile(main, metadata.profile, samples, changes);
  for (const TagValue& value : writing.positionTags) {
    if (KindOfTag(value.tag) == TagKind::position) main.Add(value);
  }
  AddTexts(main, metadata, changes);
  AddOwnTags(main, metadata, samples, changes);
  LoseForeignBlocks(metadata, changes);
  return tags;
}

}  // namespace rasterkit::detail
