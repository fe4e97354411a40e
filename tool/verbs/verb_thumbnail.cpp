#include <charconv>
#include <cmath>
#include <memory>

#include <fmt/core.h>

#include <rasterkit/pictures/reading/picture_size.h>
#include <rasterkit/runtime/text.h>

#include "tool/arguments/size_argument.h"
#include "tool/command/isolation_option.h"
#include "tool/command/shared_options.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

struct ThumbnailOptions {
  /// The box; a side of 0 is no limit.
  PictureSize size;
  bool fromEmbedded = false;
  bool isExact = false;
};

/// "400" is a square, "400x300" a box, "400x" and "x300" limit one side.
std::optional<PictureSize> ParseBox(const std::string& text) {
  return ParseSize(text.find('x') == std::string::npos ? text + 'x' + text : text);
}

std::string CheckBox(const std::string& text) {
  if (ParseBox(text)) return {};
  return "a size is a number of pixels from 1 to 1000000, such as 400, or two, such as 400x300, "
         "not '" +
         text + "'";
}

/// True if the proportions of both are the same within 2 %: many cameras add black bars.
bool IsSameShape(const Picture& a, const Picture& b) {
  constexpr double kMostDeviation = 0.02;
  const double shapeA = static_cast<double>(a.Width()) / a.Height();
  const double shapeB = static_cast<double>(b.Width()) / b.Height();
  return std::abs(shapeA / shapeB - 1) <= kMostDeviation;
}

/// Takes the thumbnail of the metadata in place of the picture if it will do for these sides.
void TakeEmbedded(PictureWork& work, const PictureSize& target) {
  OpenOptions options;
  options.isolation = ReadingIsolation();
  std::optional<Picture> embedded = work.picture.EmbeddedThumbnail(options, RunOf(work.options));
  const bool isLarge =
      embedded && embedded->Width() >= target.width && embedded->Height() >= target.height;
  if (!isLarge || !IsSameShape(*embedded, work.picture)) return;
  const Resolution dpi = work.picture.GetMetadata().resolution;
  MetadataEdit edit;
  edit.resolution = Resolution{dpi.x * embedded->Width() / work.picture.Width(),
                               dpi.y * embedded->Height() / work.picture.Height()};
  work.picture = *std::move(embedded);
  work.picture.Edit(edit);
  work.details.emplace_back("made from the embedded thumbnail");
}

/// Numbers become the colors that show them: viewers would show most of them black.
void ShowNumbers(PictureWork& work) {
  constexpr int kByte = 8, kColor = 24, kColorWithAlpha = 32;
  const PixelLayout& layout = work.picture.Layout();
  if (layout.type == NumberType::uint8 && layout.bits <= kByte) return;
  const bool isGray =
      layout.model == ColorModel::gray || layout.model == ColorModel::grayWhiteIsZero;
  if (layout.alpha != AlphaKind::none) {
    work.picture.Change(SetBits{kColorWithAlpha});
  } else {
    work.picture.Change(SetBits{isGray ? kByte : kColor});
  }
}

void Shrink(const ThumbnailOptions& options, PictureWork& work) {
  const PictureSize target = options.size.Around(work.picture.Width(), work.picture.Height());
  if (options.fromEmbedded) TakeEmbedded(work, target);
  MetadataEdit edit;
  edit.stripAll = true;
  work.picture.Edit(edit);
  work.picture.Resize(target.width, target.height, {Filter::area});
  ShowNumbers(work);
  work.LeavesOut({LossKind::bits, LossKind::pages, LossKind::frames, LossKind::hiddenPictures,
                  LossKind::position, LossKind::controlPoints, LossKind::coordinateSystem,
                  LossKind::sideFile, LossKind::noData, LossKind::tiling, LossKind::records,
                  LossKind::chroma});
}

}  // namespace

VerbRunner AddThumbnailVerb(CommandLine& line) {
  PictureVerb verb(
      line,
      {"thumbnail",
       "make small pictures for lists and web pages",
       {"Each picture is turned upright and shrunk by averages until it fits into the box of "
        "--size. The proportions stay; a picture that is small enough keeps its size.",
        "A JPEG file is decoded at 1/2, 1/4 or 1/8 of its size, but at least at twice the size of "
        "the thumbnail in both directions, before it is averaged; a TIFF file of 8-bit colors or "
        "grays gives such a smaller copy if it has one that is whole. The colors differ a little "
        "from exact averages: --exact makes those.",
        "A thumbnail keeps the color profile and the resolution that belongs to its size. It has "
        "no other metadata, no GPS position and no position on a map; 'rasterkit resize' keeps "
        "them.",
        "Pictures of more than 8 bits and grids of numbers become 8-bit pictures to look at, as "
        "--stretch says. A thumbnail has one page.",
        "--from-embedded is fast for photographs: the thumbnail that the camera stored is used if "
        "it is large enough and shows the whole picture (proportions equal within 2 percent)."},
       {"rasterkit thumbnail --size 400 --out-dir small --jobs 2 *.jpg",
        "rasterkit thumbnail plan.tif plan.png --size 800x600",
        "rasterkit thumbnail --size 160 --from-embedded --format jpg --out-dir list *.JPG"}});
  const auto options = std::make_shared<ThumbnailOptions>();
  const auto take = [options](const std::string& text) { options->size = ParseBox(text).value(); };
  verb.Parsed("--size", "N|WxH", take, CheckBox,
              "the box in pixels: a square (400), width and height (400x300), or one of them "
              "(400x, x300)")
      .Required();
  verb.Flag("--from-embedded", options->fromEmbedded,
            "use the thumbnail inside of the metadata if it is large enough");
  verb.Flag("--exact", options->isExact,
            "average all pixels of the picture as 'rasterkit resize' does");
  verb.MakesPreviews();
  return verb.ChangingAfter([options, shared = verb.Options()]() -> PictureChange {
    shared->shrinksOnLoad = !options->isExact;
    shared->skipsHidden = true;
    return [options](PictureWork& work) { Shrink(*options, work); };
  });
}

}  // namespace rasterkit::tool
