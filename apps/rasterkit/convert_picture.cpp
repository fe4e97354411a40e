#include "apps/rasterkit/convert_picture.h"

#include <algorithm>

#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/host/graphics/canvas.h>
#include <rasterkit/host/graphics/png_image.h>
#include <rasterkit/host/runtime/errors.h>

#include "apps/rasterkit/exit_code.h"
#include "apps/rasterkit/interruption.h"
#include "apps/rasterkit/turn.h"
#include "apps/rasterkit/world_file.h"

namespace rasterkit::tool {
namespace {

/// The library's own table does not tell 15 from 16 bits.
TPixelFormat FormatOfBits(int bits) {
  return bits == 15 ? pf15bit : GetPixelFormat(bits);
}

/// Draws a partly transparent picture onto the background colour, for types that know no
/// transparency: what lies under transparent pixels was never meant to be seen.
void DropTransparency(std::unique_ptr<TBitmap>& bitmap, TColor background) {
  TPngImage picture;
  picture.Assign(bitmap.get());
  auto target = std::make_unique<TBitmap>();
  target->ResetPixels(pf24bit, picture.Width(), picture.Height());
  target->SetDpi(bitmap->Dpi());
  target->SetProfile(bitmap->Profile());
  bitmap.reset();
  target->Canvas().Brush.Color = background;
  target->Canvas().FillRect({0, 0, target->Width(), target->Height()});
  target->Canvas().Draw(0, 0, picture);
  bitmap = std::move(target);
}

TColor SolidBackground(const PictureOptions& options) {
  const TColor color = BackgroundColor(options.background);
  return color < 0 ? clWhite : color;
}

/// What becomes of transparency that the output cannot hold. Pixels of an alpha channel, and all
/// that JPEG would blur, are painted onto the background; a bitmap file keeps the pixels of a
/// transparent colour and forgets that they were.
enum class Transparency { none, forgotten, painted };

Transparency LostTransparency(const TBitmap& bitmap, PictureType type, int bits) {
  if (bitmap.AlphaFormat() == afDefined) {
    const bool keepsAlpha = type != PictureType::jpeg && (bits == 0 || bits == 32);
    return keepsAlpha ? Transparency::none : Transparency::painted;
  }
  if (!bitmap.Transparent() || type == PictureType::png) return Transparency::none;
  return type == PictureType::jpeg ? Transparency::painted : Transparency::forgotten;
}

void Remove(std::vector<std::string>& names, const std::string& name) {
  names.erase(std::remove(names.begin(), names.end(), name), names.end());
}

JobResult Change(const Job& job, const PictureOptions& options, LoadedPicture& picture,
                 const PictureWriter& write) {
  const PictureType type = WritableType(job.output);
  JobResult result;
  result.warnings = picture.warnings;
  result.notCarriedOver = picture.metadata;
  if (picture.photo.gps) result.notCarriedOver.emplace_back("gps");
  if (FindWorldFile(job.input)) result.notCarriedOver.emplace_back("worldfile");

  TurnUpright(picture.bitmap, picture.photo.orientation.value_or(1));
  StopIfInterrupted();
  Turn(picture.bitmap, options);
  const Transparency lost = LostTransparency(*picture.bitmap, type, options.bits);
  if (lost != Transparency::none) result.notCarriedOver.emplace_back("transparency");
  if (lost == Transparency::painted) DropTransparency(picture.bitmap, SolidBackground(options));
  if (options.bits != 0) picture.bitmap->SetPixelFormat(FormatOfBits(options.bits));
  if (picture.bitmap->Profile()) Remove(result.notCarriedOver, "profile");

  StopIfInterrupted();
  if (write) {
    write(picture, job);
  } else {
    SavePicture(*picture.bitmap, job.output, options.quality);
  }
  result.type = PictureTypeName(type);
  result.width = picture.bitmap->Width();
  result.height = picture.bitmap->Height();
  result.bits = picture.bitmap->StoredBits();
  return result;
}

}  // namespace

JobResult ConvertPicture(const Job& job, const PictureOptions& options,
                         const PictureWriter& write) {
  LoadedPicture picture = LoadPicture(job.input);
  StopIfInterrupted();
  try {
    return Change(job, options, picture, write);
  } catch (const Error& error) {
    throw Failure(exitOutputNotWritten, job.output + ": " + error.Reason());
  } catch (const std::bad_alloc&) {
    throw Failure(exitOutputNotWritten, job.output + ": not enough memory");
  }
}

}  // namespace rasterkit::tool
