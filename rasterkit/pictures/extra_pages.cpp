#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include <rasterkit/bands/stages.h>
#include <rasterkit/pictures/extra_pages.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

enum class Role { copy, mask, other };

/// A bit of tag 254.
constexpr uint32_t kMask = 4;

Role RoleOf(const TiffExtraPageHeader& page, const PictureHeader& header) {
  if ((page.subfileType & kMask) != 0) return Role::mask;
  const bool fits = page.width <= header.width && page.height <= header.height;
  const bool isSame = page.width == header.width && page.height == header.height;
  // A preview can stand first, with the picture itself in a directory below it.
  return fits && !isSame ? Role::copy : Role::other;
}

struct Count {
  int copies = 0, masks = 0;
};

/// Counts those that can be made anew; the rest is only counted in the header.
Count Followers(const PictureSource& source) {
  Count count;
  for (const TiffExtraPageHeader& page : source.ExtraPages()) {
    const Role role = RoleOf(page, source.Header());
    if (role == Role::copy) ++count.copies;
    if (role == Role::mask) ++count.masks;
  }
  return count;
}

bool HasSides(const Pixels& pixels, int width, int height) {
  return WidthOf(pixels) == width && HeightOf(pixels) == height;
}

Pixels CloneOf(const Pixels& pixels) {
  return std::visit([](const auto& rows) -> Pixels { return rows.Clone(); }, pixels);
}

bool HasIndexes(const PixelLayout& layout) {
  return layout.model == ColorModel::palette || (layout.bits == 1 && layout.bands == 1);
}

/// One side of a copy beside a page that has another size.
int ScaledSide(int newPage, int oldCopy, int oldPage) {
  const double side = static_cast<double>(newPage) * oldCopy / oldPage;
  return std::max(1, static_cast<int>(std::lround(side)));
}

class ExtraPageMaker {
 public:
  ExtraPageMaker(const Pixels& page, const PictureSource& source, const PictureState& state,
                 int threads, Changes& changes)
      : page_(page), source_(source), state_(state), run_{threads, {}}, changes_(changes) {}

  std::vector<TiffExtraPage> Make() {
    std::vector<TiffExtraPage> made;
    const auto& pages = source_.ExtraPages();
    for (size_t i = 0; i < pages.size(); ++i) {
      const Role role = RoleOf(pages[i], source_.Header());
      if (role == Role::other) continue;
      if (role == Role::copy && state_.pixelsChanged) {
        made.push_back(CopyLike(pages[i]));
      } else if (auto pixels = OldPixels(i, role)) {
        made.push_back({std::move(*pixels), pages[i].form, pages[i].subfileType});
      }
    }
    return made;
  }

 private:
  Sides TargetSides(const TiffExtraPageHeader& old) const {
    const PictureHeader& header = source_.Header();
    const int width = WidthOf(page_), height = HeightOf(page_);
    if (state_.exchangesAxes) {
      return {ScaledSide(width, old.height, header.height),
              ScaledSide(height, old.width, header.width)};
    }
    return {ScaledSide(width, old.width, header.width),
            ScaledSide(height, old.height, header.height)};
  }

  Pixels Resized(Pixels pixels, Sides target, Filter filter, std::optional<double> noData) const {
    const Sides sides{WidthOf(pixels), HeightOf(pixels)};
    Changes unused;
    return ResizeStage(sides, target, filter, noData)->Make(std::move(pixels), run_, unused);
  }

  TiffExtraPage CopyLike(const TiffExtraPageHeader& old) const {
    // Indexes are not averaged, unless the old copy shows that their colors may be.
    Filter filter = Filter::automatic;
    if (HasIndexes(LayoutOf(page_))) {
      filter = HasIndexes(old.layout) ? Filter::nearest : Filter::area;
    }
    TiffExtraPage copy{Resized(CloneOf(page_), TargetSides(old), filter, NoDataOf(source_)),
                       old.form, old.subfileType};
    constexpr int kAnyPhotometric = -1;
    if (!IsSameKind(LayoutOf(copy.pixels), old.layout)) copy.form.photometric = kAnyPhotometric;
    return copy;
  }

  /// The pixels of a mask that follows the page, or of any extra page whose page did not change.
  std::optional<Pixels> OldPixels(size_t index, Role role) {
    try {
      if (!state_.pixelsChanged) return Read(index);
      return Mask(index);
    } catch (const FormatError& error) {
      Miss(role, error.Reason());
    } catch (const UnsupportedError& error) {
      Miss(role, error.Reason());
    }
    return std::nullopt;
  }

  void Miss(Role role, const std::string& reason) {
    const std::string why = "it cannot be read: " + reason;
    if (role == Role::mask) {
      changes_.Lose(LossKind::alpha, "the mask of the page", why);
    } else {
      changes_.Note("a smaller copy of the page is not written: " + why);
    }
  }

  Pixels Read(size_t index) const {
    CodecReport report;
    Pixels pixels = source_.ReadExtraPage(index, run_.threads, report);
    for (const std::string& warning : report.damage) {
      changes_.Lose(LossKind::damage, warning, "a smaller copy or mask of the page is damaged");
    }
    return pixels;
  }

  /// A mask as large as the page goes through its steps; a smaller one is that of a copy, and is
  /// made anew of the page's mask.
  Pixels Mask(size_t index) {
    const TiffExtraPageHeader& old = source_.ExtraPages()[index];
    const PictureHeader& header = source_.Header();
    const bool isWhole = old.width == header.width && old.height == header.height;
    if (isWhole) return Moved(Read(index));
    if (!moved_) {
      const size_t whole = WholeMask().value_or(index);
      moved_ =
          Moved(Resized(Read(whole), {header.width, header.height}, Filter::nearest, std::nullopt));
    }
    return Resized(CloneOf(*moved_), TargetSides(old), Filter::nearest, std::nullopt);
  }

  std::optional<size_t> WholeMask() const {
    const auto& pages = source_.ExtraPages();
    for (size_t i = 0; i < pages.size(); ++i) {
      if (RoleOf(pages[i], source_.Header()) == Role::mask &&
          pages[i].width == source_.Header().width && pages[i].height == source_.Header().height) {
        return i;
      }
    }
    return std::nullopt;
  }

  Pixels Moved(Pixels mask) const {
    Changes unused;
    Pixels moved = RunStages(std::move(mask), state_.maskStages, run_, unused);
    if (!HasSides(moved, WidthOf(page_), HeightOf(page_))) {
      throw FormatError("the mask does not have the size of the page");
    }
    return moved;
  }

  const Pixels& page_;
  const PictureSource& source_;
  const PictureState& state_;
  const StageRun run_;
  Changes& changes_;
  /// The mask of the page after its steps, for those of the copies.
  std::optional<Pixels> moved_;
};

void LoseOthers(const PictureSource& source, Changes& changes) {
  for (const TiffExtraPageHeader& page : source.ExtraPages()) {
    if (RoleOf(page, source.Header()) != Role::other) continue;
    changes.Lose(LossKind::hiddenPictures,
                 fmt::format("further picture of {} x {} pixels", page.width, page.height),
                 "only the page and its smaller copies are written");
  }
}

}  // namespace

void LoseExtraPages(const PictureSource& source, const PictureState& state,
                    const LossTarget& target, Changes& changes) {
  const PictureHeader& header = source.Header();
  const bool staysTiff = target.type == PictureType::tiff && source.Type() == PictureType::tiff;
  if (staysTiff && target.isCopied) return;
  const Count all = Followers(source);
  const Count kept = staysTiff ? all : Count{};
  LoseOthers(source, changes);
  if (kept.copies > 0 && state.pixelsChanged) {
    changes.Note(fmt::format("smaller copies of the page were made anew: {}", kept.copies));
  }
  const auto others = static_cast<int>(source.ExtraPages().size()) - all.copies - all.masks;
  const int copies = header.smallerCopies - others - kept.copies;
  if (copies > 0) {
    changes.Note(fmt::format("smaller copies of the page are not written: {}", copies));
  }
  if (header.masks > kept.masks) {
    changes.Lose(LossKind::alpha, "the mask of the page",
                 staysTiff ? "it cannot be read" : "the format of the file has no masks");
  }
}

std::vector<TiffExtraPage> MakeExtraPages(const Pixels& page, const PictureSource& source,
                                          const PictureState& state, int threads,
                                          Changes& changes) {
  return ExtraPageMaker(page, source, state, threads, changes).Make();
}

uint64_t ExtraPageBytes(const PictureSource& source, const PictureState& state) {
  const PictureHeader& header = source.Header();
  const auto page =
      static_cast<double>(std::max(BytesOfRows(state.layout, state.width, state.height),
                                   BytesOfRows(header.layout, header.width, header.height)));
  double bytes = 0;
  for (const TiffExtraPageHeader& extra : source.ExtraPages()) {
    if (RoleOf(extra, header) == Role::other) continue;
    bytes += page * extra.width * extra.height / header.width / header.height;
  }
  // One page more is held while they are made.
  return bytes > 0 ? static_cast<uint64_t>(bytes + page) : 0;
}

}  // namespace rasterkit::detail
