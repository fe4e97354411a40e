#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <rasterkit/metadata/facts_of_metadata.h>
#include <rasterkit/metadata/metadata.h>
#include <rasterkit/metadata/resolution.h>

namespace rasterkit {

/// A tag and its value as text, for example "Artist" and "A. Person".
///
/// Names are those of the EXIF standard or the usual other ones ("DateTimeOriginal", "CreateDate",
/// "ISO"), those of IPTC ("By-line", "Keywords") and of XMP ("dc:creator", "xmp:Rating"), in any
/// case of letters. "EXIF:", "GPS:", "IPTC:" and "XMP:" in front of a name say where it is meant;
/// without one, EXIF comes first, then IPTC, then XMP. Several settings of one list make its items.
struct TagSetting {
  std::string tag, value;
};

/// What is taken over from another file; everything of that kind in the picture itself goes.
struct MetadataCopy {
  std::shared_ptr<const Metadata> from;
  bool takesExif = true, takesXmp = true;
  /// IPTC records and Photoshop's image resources.
  bool takesIptc = true;
  /// Comments, and texts of a PNG file.
  bool takesComments = true;
  /// Only if the picture has none: a profile belongs to its pixels.
  bool takesProfile = true;
  /// The orientation stays that of the picture.
  bool keepsOrientation = false;
};

/// Changes of what a file states besides its pixels. What is removed is not reported as lost. The
/// parts of one edit are made in the order in which they stand here.
struct MetadataEdit {
  /// Nothing but profile, resolution, position on the map, and the orientation of pixels that are
  /// not turned stays.
  bool stripAll = false;
  /// The profile goes too.
  bool stripProfile = false;
  /// Where the photograph was taken goes: EXIF's GPS directory, the properties of XMP and the
  /// records of IPTC that state coordinates or names of places, in all copies that the file has.
  /// The bytes are overwritten. The position on the map stays.
  bool stripGps = false;
  bool stripThumbnail = false;
  /// Also what the note keeps outside of itself.
  bool stripMakerNote = false;
  /// Another resolution; the pixels stay.
  std::optional<Resolution> resolution = {};
  std::optional<MetadataCopy> copy = {};
  /// Names of tags, or "EXIF", "GPS", "XMP", "IPTC", "Comment", "MakerNote", "Thumbnail", "all".
  std::vector<std::string> remove = {};
  std::vector<TagSetting> set = {};
  /// Where the photograph was taken: in EXIF, and in XMP if it states a position.
  std::optional<GpsPosition> gps = {};
  /// When the photograph was taken, digitized and changed: "2019-07-04T13:05:09"; see ReadMoment.
  /// In EXIF, and in XMP and IPTC where these state a date.
  std::optional<std::string> date = {};

  /// True if nothing would change.
  bool IsEmpty() const {
    return !stripAll && !stripProfile && !stripGps && !stripThumbnail && !stripMakerNote &&
           !resolution && !copy && remove.empty() && set.empty() && !gps && !date;
  }
};

}  // namespace rasterkit
