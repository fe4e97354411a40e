#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include <rasterkit/bitmaptools/engine/manage_threads.h>
#include <rasterkit/bitmaptools/rotation/rotate_thread.h>
#include <rasterkit/bitmaptools/rotation/rotation_background.h>
#include <rasterkit/bitmaptools/rotation/rotation_driver.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {
namespace {

constexpr int32_t kMostThreads = 100;

// Bytes of a pixel that the canvas fills with `color` (the nearest palette entry, alpha 255).
uint32_t FilledPixel(const TBitmap& like, TColor color) {
  TBitmap sample;
  sample.ResetPixels(like.PixelFormat(), 1, 1);
  if (IsIndexed(like.PixelFormat())) sample.SetPalette(like.Palette());
  TCanvas& canvas = sample.Canvas();
  canvas.Brush.Color = color;
  canvas.FillRect({0, 0, 1, 1});
  const uint8_t* row = sample.ScanLine(0);
  switch (sample.StoredBits()) {
    case 1:
      return row[0] >> 7;
    case 4:
      return row[0] >> 4;
    default:
      break;
  }
  uint32_t pixel = 0;
  for (int i = 0; i < sample.StoredBits() / 8; ++i) pixel |= uint32_t{row[i]} << (8 * i);
  return pixel;
}

TOwnScanLines FetchRows(const TBitmap& bitmap) {
  std::vector<const uint8_t*> rows(static_cast<size_t>(bitmap.Height()));
  for (size_t y = 0; y < rows.size(); ++y) rows[y] = bitmap.ScanLine(static_cast<int>(y));
  return std::make_shared<const std::vector<const uint8_t*>>(std::move(rows));
}

}  // namespace

int32_t RotationThreads(int32_t threadsCount) {
  return std::clamp(threadsCount, 1, kMostThreads);
}

void RunRotation(const RotationTask& task) {
  const TColor background = task.background == -1 ? ChooseBackground(task) : task.background;
  const uint32_t pixel = FilledPixel(task.target, background);
  const TOwnScanLines rows = FetchRows(task.source);
  const int32_t threadsCount = RotationThreads(task.threadsCount);
  TManageThreads manager(threadsCount, task.target.Height(), nullptr);

  const auto makeWorker = [&](size_t i) {
    return MakeThread<TRotateThread>(manager, task.source, task.target, task.angle, rows,
                                     task.bytesPerPixel, manager.iBis[i], manager.iBis[i + 1] - 1,
                                     pixel);
  };
  if (threadsCount == 1) return makeWorker(0)->RotateBand();

  std::vector<ThreadPtr<TRotateThread>> workers;
  std::vector<ThreadHandle> handles;
  for (size_t i = 0; i + 1 < manager.iBis.size(); ++i) {
    workers.push_back(makeWorker(i));
    handles.push_back(workers.back()->Handle());
  }
  for (const auto& worker : workers) worker->Start();
  WaitForThreads(handles);
  // A worker keeps its errors to itself.
  RequireTime();
}

}  // namespace rasterkit::detail
