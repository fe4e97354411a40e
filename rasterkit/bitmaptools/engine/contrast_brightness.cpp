#include <memory>
#include <utility>

#include <rasterkit/bitmaptools/engine/color_rows.h>
#include <rasterkit/bitmaptools/engine/contrast_brightness.h>
#include <rasterkit/bitmaptools/engine/pixel_driver.h>
#include <rasterkit/bitmaptools/engine/pixel_thread.h>
#include <rasterkit/bitmaptools/pixels/palette_tools.h>
#include <rasterkit/graphics/bitmap.h>

namespace rasterkit {
namespace {

/// Applies `change` to every palette entry except black and white.
template <class Change>
void ChangePalette(TBitmap& bitmap, Change change) {
  std::unique_ptr<TColorTable> entries;
  const int32_t count = GetPaletteColors(bitmap.Palette(), entries);
  if (!entries) return;
  for (size_t i = 0; i < static_cast<size_t>(count); ++i) {
    tagPALETTEENTRY& entry = (*entries)[i];
    if (detail::IsNotBlackOrWhite(entry.peRed, entry.peGreen, entry.peBlue)) change(entry);
  }
  ChangePalColors(bitmap, *entries, count);
}

void RunPixelTask(TPixelTask task, TBitmap& bitmap, int32_t value, int32_t threadsCount,
                  TProgressEvent progress) {
  bitmap.SetPixelFormat(pf24bit);
  if (bitmap.Height() <= detail::kMostRowsWithoutProgress) progress = nullptr;
  TManageThreads manager(threadsCount, bitmap.Height(), std::move(progress));
  // Also if the progress callback ends the operation halfway.
  bitmap.SetModified(true);
  detail::RunPixelWorkers(manager, [&](int32_t i) {
    auto worker = MakeThread<TPixelThread>(manager, i, task);
    worker->InitBitmap(bitmap, value);
    return worker;
  });
}

}  // namespace

void Kontrast(TBitmap* Bitmap, int32_t Value, int32_t ThreadsCount, TProgressEvent AProgress) {
  if (Bitmap == nullptr || Bitmap->Empty()) return;
  if (IsIndexed(Bitmap->PixelFormat())) {
    const auto table = detail::ContrastTable(Value);
    return ChangePalette(*Bitmap, [&table](tagPALETTEENTRY& entry) {
      entry.peRed = table[entry.peRed];
      entry.peGreen = table[entry.peGreen];
      entry.peBlue = table[entry.peBlue];
    });
  }
  if (ThreadsCount != 1) {
    return RunPixelTask(ptContrast, *Bitmap, Value, ThreadsCount, std::move(AProgress));
  }
  Bitmap->SetPixelFormat(pf24bit);
  Bitmap->SetModified(true);
  detail::ContrastRows(*Bitmap, 0, Bitmap->Height() - 1, Value, detail::Spared::blackAndWhite);
}

void Helligkeit(TBitmap* Bitmap, int32_t Value, int32_t ThreadsCount, TProgressEvent AProgress) {
  if (Value == 0 || Value < -100 || Value > 100) return;
  if (Bitmap == nullptr || Bitmap->Empty()) return;
  if (IsIndexed(Bitmap->PixelFormat())) {
    return ChangePalette(*Bitmap, [Value](tagPALETTEENTRY& entry) {
      detail::BrightenColor(Value, entry.peRed, entry.peGreen, entry.peBlue);
    });
  }
  if (ThreadsCount != 1) {
    return RunPixelTask(ptBrighten, *Bitmap, Value, ThreadsCount, std::move(AProgress));
  }
  Bitmap->SetPixelFormat(pf24bit);
  Bitmap->SetModified(true);
  detail::BrightenRows(*Bitmap, 0, Bitmap->Height() - 1, Value, detail::Spared::blackAndWhite);
}

}  // namespace rasterkit
