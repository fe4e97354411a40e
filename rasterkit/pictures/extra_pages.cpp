#include <algorithm>
#include <cmath>
#include <utility>

#include <rasterkit/bands/executor.h>
#include <rasterkit/bands/stages.h>
#include <rasterkit/pictures/extra_pages.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

constexpr uint32_t kMask = 4;

int Scaled(int side, int part, int whole) {
  return std::max(1, static_cast<int>(std::lround(static_cast<double>(side) * part / whole)));
}

Pixels CopyOf(const Pixels& pixels) {
  return std::visit([](const auto& rows) -> Pixels { return rows.Clone(); }, pixels);
}

class ExtraPageMaker {
 public:
  ExtraPageMaker(const PictureSource& source, const PictureState& state, const Pixels& page,
                 const StageRun& run)
      : source_(source), state_(state), page_(page), run_{run.threads, {}} {}

  TiffExtraPage Make(const TiffExtraPageHeader& header, size_t index) const {
    constexpr int kAnyPhotometric = -1;
    const bool isMask = (header.subfileType & kMask) != 0;
    TiffExtraPage made{isMask ? Mask(header, index) : SmallerCopy(header), header.form,
                       header.subfileType};
    if (!isMask) made.form.photometric = kAnyPhotometric;
    return made;
  }

 private:
  Pixels SmallerCopy(const TiffExtraPageHeader& header) const {
    Sides part{header.width, header.height};
    Sides whole{source_.Header().width, source_.Header().height};
    if (state_.exchangesAxes) {
      std::swap(part.width, part.height);
      std::swap(whole.width, whole.height);
    }
    const Sides sides{WidthOf(page_), HeightOf(page_)};
    const Sides target{Scaled(sides.width, part.width, whole.width),
                       Scaled(sides.height, part.height, whole.height)};
    Changes unused;
    return ResizeStage(sides, target)->Make(CopyOf(page_), run_, unused);
  }

  Pixels Mask(const TiffExtraPageHeader& header, size_t index) const {
    const PictureHeader& page = source_.Header();
    if (header.width != page.width || header.height != page.height) {
      throw UnsupportedError("it has other sides than the page");
    }
    Changes unused;
    return RunStages(DecodeTiffExtraPage(*source_.Bytes(), index, {run_.threads}),
                     state_.maskStages, run_, unused);
  }

  const PictureSource& source_;
  const PictureState& state_;
  const Pixels& page_;
  const StageRun run_;
};

}  // namespace

bool CarriesExtraPages(const PictureSource& source, PictureType target) {
  return source.Type() == PictureType::tiff && target == PictureType::tiff &&
         source.Header().smallerCopies + source.Header().masks > 0 && source.Bytes() != nullptr;
}

std::vector<TiffExtraPage> MakeExtraPages(const PictureSource& source, const PictureState& state,
                                          const Pixels& page, const StageRun& run,
                                          Changes& changes) {
  const ExtraPageMaker maker(source, state, page, run);
  const std::vector<TiffExtraPageHeader> headers = ReadTiffExtraPages(*source.Bytes());
  std::vector<TiffExtraPage> pages;
  for (size_t i = 0; i < headers.size(); ++i) {
    try {
      pages.push_back(maker.Make(headers[i], i));
    } catch (const LimitError&) {
      throw;
    } catch (const CanceledError&) {
      throw;
    } catch (const Error& error) {
      const bool isMask = (headers[i].subfileType & kMask) != 0;
      changes.Lose(LossKind::hiddenPictures,
                   isMask ? "a mask of the page" : "a smaller copy of the page", error.Reason());
    }
  }
  return pages;
}

}  // namespace rasterkit::detail
