#include <QPainter>
#include <algorithm>
#include <utility>

#include <rasterkit/dialogs/values/preview_renderer.h>
#include <rasterkit/qt/bitmap_image.h>
#include <rasterkit/qt/qt_color.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

/// Pictures of fewer pixels are made smaller at once.
constexpr int64_t kPixelsAtOnce = 1'500'000;

bool SameRect(const TRect& a, const TRect& b) {
  return a.Left == b.Left && a.Top == b.Top && a.Right == b.Right && a.Bottom == b.Bottom;
}

/// Whether both show the same pixels, quickly made or not.
bool ShowSame(const std::optional<Reduction>& a, const Reduction& b) {
  return a && a->width == b.width && a->height == b.height && SameRect(a->place, b.place);
}

TRect Common(const TRect& a, const TRect& b) {
  return {std::max(a.Left, b.Left), std::max(a.Top, b.Top), std::min(a.Right, b.Right),
          std::min(a.Bottom, b.Bottom)};
}

bool IsEmpty(const TRect& rect) {
  return rect.Left >= rect.Right || rect.Top >= rect.Bottom;
}

QRect ToRect(const TRect& rect) {
  return {rect.Left, rect.Top, rect.Right - rect.Left, rect.Bottom - rect.Top};
}

}  // namespace

PreviewRenderer::PreviewRenderer(const ChangeValuesModel& model)
    : model_(model), picture_(std::make_shared<BorrowedPixels>(model.Original())) {}

PreviewRenderer::~PreviewRenderer() {
  picture_->TakeAway();
}

QImage PreviewRenderer::Render(const ValuesViewport& viewport,
                               const std::vector<PreviewArea>& areas, TColor ground) {
  const TPoint box = viewport.Box();
  QImage image(box.X, box.Y, QImage::Format_RGB32);
  image.fill(QtColor(ground));
  for (const PreviewArea& area : areas) DrawArea(image, area, ground);
  return image;
}

void PreviewRenderer::DrawArea(QImage& image, const PreviewArea& area, TColor ground) {
  const TRect visible = Common(area.pane, area.place);
  if (IsEmpty(visible) || IsEmpty(Common(visible, area.box))) return;
  const bool isReduced = area.place.Right - area.place.Left < model_.Original().Width() ||
                         area.place.Bottom - area.place.Top < model_.Original().Height();
  if (isReduced) {
    DrawReduced(image, area, visible, ground);
  } else {
    DrawEnlarged(image, area, visible, ground);
  }
}

TBitmap PreviewRenderer::Drawn(const TBitmap& picture, const TRect& part, bool isChanged,
                               TColor ground) const {
  // Nothing is changed by a step of zeros.
  const ValueChange change = isChanged ? model_.CurrentChange() : ValueChange{};
  return model_.Rules().drawPart(picture, part, change, ground);
}

void PreviewRenderer::DrawEnlarged(QImage& image, const PreviewArea& area, const TRect& visible,
                                   TColor ground) {
  const TBitmap& picture = model_.Original();
  const TRect& place = area.place;
  const int across = std::max((place.Right - place.Left) / picture.Width(), 1);
  const int down = std::max((place.Bottom - place.Top) / picture.Height(), 1);
  const TRect part{(visible.Left - place.Left) / across, (visible.Top - place.Top) / down,
                   std::min((visible.Right - place.Left - 1) / across + 1, picture.Width()),
                   std::min((visible.Bottom - place.Top - 1) / down + 1, picture.Height())};
  std::optional<Shown>& shown = area.isChanged ? shownChanged_ : shownOriginal_;
  const bool isKept = shown && SameRect(shown->part, part) && shown->ground == ground &&
                      (!area.isChanged || shown->version == version_);
  if (!isKept) {
    shown.reset();
    shown = Shown{Drawn(picture, part, area.isChanged, ground), part, ground, version_};
  }
  QPainter painter(&image);
  painter.setClipRect(ToRect(area.box));
  const QRect target(place.Left + part.Left * across, place.Top + part.Top * down,
                     (part.Right - part.Left) * across, (part.Bottom - part.Top) * down);
  painter.drawImage(target, ImageOfBitmap(shown->pixels));
}

const TBitmap& PreviewRenderer::PixelsOf(Reduced& reduced, bool isChanged, TColor ground) const {
  const TRect all{0, 0, reduced.pixels.Width(), reduced.pixels.Height()};
  if (!reduced.isDrawn || reduced.ground != ground) {
    reduced.original = Drawn(reduced.pixels, all, false, ground);
    reduced.ground = ground;
    reduced.version = 0;
    reduced.isDrawn = true;
  }
  if (!isChanged) return reduced.original;
  if (reduced.version != version_) {
    reduced.changed = Drawn(reduced.pixels, all, true, ground);
    reduced.version = version_;
  }
  return reduced.changed;
}

void PreviewRenderer::DrawReduced(QImage& image, const PreviewArea& area, const TRect& visible,
                                  TColor ground) {
  const TRect& place = area.place;
  const Reduction reduction{visible.Right - visible.Left,
                            visible.Bottom - visible.Top,
                            {place.Left - visible.Left, place.Top - visible.Top,
                             place.Right - visible.Left, place.Bottom - visible.Top}};
  const bool isWhole = SameRect(visible, place);
  Request(reduction, isWhole);
  Reduced& exact = isWhole ? whole_ : part_;
  const bool isThere = ShowSame(exact.reduction, reduction);
  Reduced& used = isThere ? exact : whole_;
  if (!used.reduction) return;
  QPainter painter(&image);
  painter.setClipRect(ToRect(Common(area.box, visible)));
  const QImage pixels = ImageOfBitmap(PixelsOf(used, area.isChanged, ground));
  if (isThere) return painter.drawImage(visible.Left, visible.Top, pixels);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.drawImage(ToRect(place), pixels);
}

/// Requests what is not there yet. The quick copy is wanted where there is nothing to show; else
/// the copy that is there stands in until the means are made.
void PreviewRenderer::Request(const Reduction& reduction, bool isWhole) {
  const Reduced& kept = isWhole ? whole_ : part_;
  if (ShowSame(kept.reduction, reduction) && !kept.reduction->isQuick) return;
  if (ShowSame(requested_, reduction)) return;
  const TBitmap& picture = model_.Original();
  requested_ = reduction;
  if (int64_t{picture.Width()} * picture.Height() <= kPixelsAtOnce) {
    return Take(ReducePicture(picture, reduction), reduction, isWhole);
  }
  Reduction first = reduction;
  first.isQuick = true;
  Start(first, isWhole);
}

void PreviewRenderer::Start(const Reduction& reduction, bool isWhole) {
  isWaiting_ = true;
  auto made = std::make_shared<TBitmap>();
  task_.Run(
      [this, picture = picture_, reduction, isWhole,
       made](const std::atomic<bool>& isCanceled) -> detail::LatestTask::Answer {
        try {
          *made = ReducePicture(*picture, reduction, isCanceled);
        } catch (const std::exception&) {
          // The preview stays as it is; the step itself tells what is missing.
          *made = TBitmap();
        }
        return [this, reduction, isWhole, made] {
          isWaiting_ = false;
          if (made->Empty()) return;
          Take(std::move(*made), reduction, isWhole);
          if (OnArrived) OnArrived();
        };
      },
      [this] { isWaiting_ = false; });
}

void PreviewRenderer::Take(TBitmap pixels, const Reduction& reduction, bool isWhole) {
  Reduced& kept = isWhole ? whole_ : part_;
  kept = Reduced();
  kept.reduction = reduction;
  kept.pixels = std::move(pixels);
  if (!reduction.isQuick) {
    if (ShowSame(requested_, reduction)) requested_.reset();
    return;
  }
  Reduction fine = reduction;
  fine.isQuick = false;
  Start(fine, isWhole);
}

QImage PreviewRenderer::RenderPart(const TRect& part, bool isChanged, TColor ground) const {
  QImage image(part.Right - part.Left, part.Bottom - part.Top, QImage::Format_RGB32);
  image.fill(QtColor(ground));
  const TBitmap& picture = model_.Original();
  const TRect inside = Common(part, {0, 0, picture.Width(), picture.Height()});
  if (IsEmpty(inside)) return image;
  const TBitmap pixels = Drawn(picture, inside, isChanged, ground);
  QPainter painter(&image);
  painter.drawImage(inside.Left - part.Left, inside.Top - part.Top, ImageOfBitmap(pixels));
  return image;
}

}  // namespace rasterkit
