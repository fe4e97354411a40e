#pragma once

#include <map>
#include <string>
#include <vector>

#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/pictures/picture.h>

/// Kinds of files that a picture can be saved as, and the endings of their names. Internal to the
/// dialogs.
namespace rasterkit::detail {

bool IsWritable(PictureType type);

/// The kinds that Picture writes; `first` leads if it is one of them.
std::vector<PictureType> WritableTypes(PictureType first);

/// The part of a name from its last dot on, ".jpeg"; empty for a name that starts with its only
/// dot. Spaces at the end do not count.
std::string EndingOf(const std::string& file);

/// The kind that the ending names; `unknown` if there is none.
PictureType TypeOfName(const std::string& file);

/// Endings by kind that people have typed: they come back with the kind.
using KnownEndings = std::map<PictureType, std::string>;

/// The name with an ending of this kind. One that fits stays as it is (".jpeg", ".TIF"), that of
/// another kind is replaced, and any other is a part of the name ("plan v1.2").
std::string NameForType(const std::string& file, PictureType type, const KnownEndings& endings);

/// "PNG".
std::string ShortTypeName(PictureType type);

/// "JPEG photograph (*.jpg *.jpeg)" in the user's language.
std::string LongTypeName(PictureType type);

/// "*.jpg *.jpeg".
std::string PatternsOf(PictureType type);

/// The patterns of every kind that can be opened.
std::string PatternsToOpen();

enum class SuggestionReason { asIs, lossless, depth, position };

struct SuggestedType {
  PictureType type = PictureType::png;
  SuggestionReason reason = SuggestionReason::asIs;
  /// The kind that cannot be written.
  PictureType refused = PictureType::unknown;
};

/// The kind for a name: the one that its ending names, else that of the source. In place of a kind
/// that cannot be written a lossless one is suggested: TIFF for more than 8 bits per color and for
/// pictures with a position, else PNG.
SuggestedType SuggestType(const Picture& picture, const std::string& file);

/// A name of which no file exists: `file` itself or "plan-2.png" to "plan-999.png"; empty if all of
/// them are taken.
std::string FreeName(const std::string& file);

}  // namespace rasterkit::detail
