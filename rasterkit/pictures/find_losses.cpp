#include <algorithm>

#include <fmt/format.h>

#include <rasterkit/pictures/extra_pages.h>
#include <rasterkit/pictures/find_losses.h>

namespace rasterkit::detail {
namespace {

/// The codec says what a copy of compressed pixels lacks.
void LoseDirectories(const PictureHeader& header, const LossTarget& target, Changes& changes) {
  if (target.isCopied && target.type == PictureType::tiff) return;
  for (const uint16_t tag : header.directoryTags) {
    changes.Lose(LossKind::otherBlock, fmt::format("TIFF tag {}", tag),
                 "the directory that it leads to is of another program");
  }
}

void LosePictures(const PictureSource& source, const LossTarget& target, Changes& changes) {
  const PictureHeader& header = source.Header();
  // A TIFF file keeps the other pages unless only one is requested.
  if (header.pages > 1 && target.type != PictureType::tiff) {
    changes.Lose(LossKind::pages, fmt::format("{} of {} pages", header.pages - 1, header.pages),
                 source.Page() == 1 ? "only the first page is written"
                                    : fmt::format("only page {} is written", source.Page()));
  }
  // Of a TIFF file, this is said of the file, not of each page.
  if (!header.lostPages.empty() && target.type != PictureType::tiff) {
    changes.Lose(LossKind::pages, "pages", header.lostPages);
  }
  if (header.frames > 1) {
    changes.Lose(LossKind::frames, fmt::format("{} of {} frames", header.frames - 1, header.frames),
                 "only the first frame is written");
  }
}

/// Copies of the picture that show the old pixels are no loss; other pictures are.
void LoseHidden(const PictureSource& source, const LossTarget& target, Changes& changes) {
  // From TIFF to TIFF the codec knows whether the layers stay.
  if (source.Type() == PictureType::tiff && target.type == PictureType::tiff) return;
  const PictureHeader& header = source.Header();
  if (!target.isCopied || target.type != PictureType::jpeg) {
    for (const std::string& name : header.hiddenCopies) {
      changes.Note(name + " is not written: it is a copy of the picture");
    }
    for (const std::string& name : header.hiddenOthers) {
      changes.Lose(LossKind::hiddenPictures, name, "only the picture itself is written");
    }
  }
}

void LosePosition(const Placement& placement, const LossTarget& target, Changes& changes) {
  if (target.type == PictureType::tiff) return;
  const std::string why = "the format of the file has no tags for it";
  if (!placement.controlPoints.empty()) {
    changes.Lose(LossKind::controlPoints,
                 fmt::format("{} control points", placement.controlPoints.size()), why);
  }
  if (!placement.rationalModel.empty()) {
    changes.Lose(LossKind::position, "rational model", why);
  }
  if (!placement.noData.empty()) {
    changes.Lose(LossKind::noData, fmt::format("the mark of missing values, {}", placement.noData),
                 why);
  }
  // Else the files beside the target decide.
  if (target.hasSideFiles) return;
  if (placement.affine) changes.Lose(LossKind::position, "map position", why);
  if (placement.system.IsKnown()) {
    changes.Lose(LossKind::coordinateSystem, placement.system.Description(), why);
  }
}

/// Another statement of the position stands for one that is not read.
void LoseUnreadPosition(const PictureHeader& header, const Placement& placement, Changes& changes) {
  if (header.unreadPosition.empty() || placement.affine) return;
  changes.Lose(LossKind::position, header.unreadPosition, "it is not read");
}

void LoseTiles(const Form& form, const LossTarget& target, Changes& changes) {
  const auto* tiff = std::get_if<TiffForm>(&form);
  if (tiff == nullptr || tiff->tileWidth == 0 || target.type == PictureType::tiff) return;
  changes.Lose(LossKind::tiling,
               fmt::format("tiles of {} x {} pixels", tiff->tileWidth, tiff->tileHeight),
               "the format of the file has no tiles");
}

/// Kinds of which a picture has only one: two reports of it are the same loss.
bool IsSingle(LossKind kind) {
  switch (kind) {
    case LossKind::bits:
    case LossKind::chroma:
    case LossKind::alpha:
    case LossKind::transparentColor:
    case LossKind::noData:
    case LossKind::pages:
    case LossKind::frames:
    case LossKind::controlPoints:
    case LossKind::coordinateSystem:
    case LossKind::profile:
    case LossKind::resolution:
    case LossKind::thumbnail:
    case LossKind::tiling:
      return true;
    default:
      return false;
  }
}

}  // namespace

Changes LossesOf(const PictureSource& source, const PictureState& state, const LossTarget& target) {
  Changes changes = source.Lost();
  Join(changes, state.changes);
  Join(changes, state.followed);
  LosePictures(source, target, changes);
  LoseHidden(source, target, changes);
  LoseDirectories(source.Header(), target, changes);
  LoseExtraPages(source, state, target, changes);
  LosePosition(state.placement, target, changes);
  LoseUnreadPosition(source.Header(), state.placement, changes);
  LoseTiles(source.Header().form, target, changes);
  return changes;
}

void Join(Changes& all, const Changes& more) {
  for (const Loss& loss : more.losses) {
    const bool isKnown = std::any_of(all.losses.begin(), all.losses.end(), [&](const Loss& other) {
      return other.kind == loss.kind && (IsSingle(loss.kind) || other.what == loss.what);
    });
    if (!isKnown) all.losses.push_back(loss);
  }
  for (const std::string& note : more.notes) {
    if (std::find(all.notes.begin(), all.notes.end(), note) == all.notes.end()) {
      all.notes.push_back(note);
    }
  }
}

}  // namespace rasterkit::detail
