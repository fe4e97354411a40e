#pragma once

#include <QImage>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include <rasterkit/dialogs/execbitmap/change_values_model.h>
#include <rasterkit/dialogs/values/borrowed_pixels.h>
#include <rasterkit/dialogs/values/reduce_picture.h>
#include <rasterkit/dialogs/values/values_viewport.h>
#include <rasterkit/qt/latest_task.h>

namespace rasterkit {

/// Makes the image of a preview. At the picture's own size and larger it shows the visible pixels
/// as the step makes them. Smaller, it shows a copy with as many pixels as the screen has, which is
/// made on another thread, first quickly and then as means; the change is applied to that copy.
class PreviewRenderer {
 public:
  /// The model must outlive the renderer. The picture of the model is read on another thread until
  /// this object is destroyed.
  explicit PreviewRenderer(const ChangeValuesModel& model);
  ~PreviewRenderer();
  PreviewRenderer(const PreviewRenderer&) = delete;
  PreviewRenderer& operator=(const PreviewRenderer&) = delete;

  /// Called when more of the picture can be shown: render again.
  std::function<void()> OnArrived;

  /// The values changed.
  void ForgetChange() { ++version_; }
  /// The preview, with the color `ground` beside the picture and behind its transparent parts.
  QImage Render(const ValuesViewport& viewport, const std::vector<PreviewArea>& areas,
                TColor ground);
  /// Pixels of the picture, which may lie outside, one for each of the screen.
  QImage RenderPart(const TRect& part, bool isChanged, TColor ground) const;
  /// Whether a copy that was requested is not there yet.
  bool IsWaiting() const { return isWaiting_; }

 private:
  /// A part of the picture, smaller, and what the change makes of it.
  struct Reduced {
    std::optional<Reduction> reduction;
    TBitmap pixels;
    TBitmap original, changed;
    TColor ground = 0;
    uint64_t version = 0;
    bool isDrawn = false;
  };
  struct Shown {
    TBitmap pixels;
    TRect part;
    TColor ground = 0;
    uint64_t version = 0;
  };

  void DrawArea(QImage& image, const PreviewArea& area, TColor ground);
  void DrawEnlarged(QImage& image, const PreviewArea& area, const TRect& visible, TColor ground);
  void DrawReduced(QImage& image, const PreviewArea& area, const TRect& visible, TColor ground);
  const TBitmap& PixelsOf(Reduced& reduced, bool isChanged, TColor ground) const;
  TBitmap Drawn(const TBitmap& picture, const TRect& part, bool isChanged, TColor ground) const;
  void Request(const Reduction& reduction, bool isWhole);
  void Start(const Reduction& reduction, bool isWhole);
  void Take(TBitmap pixels, const Reduction& reduction, bool isWhole);

  const ChangeValuesModel& model_;
  const std::shared_ptr<BorrowedPixels> picture_;
  uint64_t version_ = 1;
  /// The whole picture, and the visible part where that is less.
  Reduced whole_, part_;
  /// The visible part at the picture's own size, before and after the change.
  std::optional<Shown> shownOriginal_, shownChanged_;
  std::optional<Reduction> requested_;
  bool isWaiting_ = false;
  detail::LatestTask task_;
};

}  // namespace rasterkit
