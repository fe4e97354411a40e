#include <algorithm>

#include <rasterkit/bitmaptools/engine/contrast_brightness.h>
#include <rasterkit/bitmaptools/engine/sharpen.h>
#include <rasterkit/bitmaptools/engine/shift_colors.h>
#include <rasterkit/bitmaptools/pixels/gray_mono.h>
#include <rasterkit/dialogs/execbitmap/value_change.h>

namespace rasterkit {

void AddTask(TaskSlots& taskSlots, int32_t code) {
  for (int32_t& slot : taskSlots) {
    if (slot == code) return;
    if (slot == kTaskNone) {
      slot = code;
      return;
    }
  }
}

void ValueChange::Run(int32_t task, TBitmap& bitmap) const {
  // With one thread black and white pixels do not change.
  constexpr int32_t kThreads = 1;
  if (task == kTaskBrightness) Helligkeit(&bitmap, lightness, kThreads, nullptr);
  if (task == kTaskContrast) Kontrast(&bitmap, contrast, kThreads, nullptr);
  if (task == kTaskSharpen) Sharpen(&bitmap, sharpen);
  if (task == kTaskColors) {
    ShiftColors(&bitmap, static_cast<float>(red), static_cast<float>(green),
                static_cast<float>(blue));
  }
}

void ValueChange::ApplyTo(TBitmap& bitmap) const {
  if (operation == kOperationBlackAndWhite) return ColorBmpToSW(&bitmap, grayValue);
  if (operation != kOperationValues) return;
  for (const int32_t task : taskSlots) Run(task, bitmap);
}

int ValueChange::Margin() const {
  if (operation != kOperationValues || sharpen == 0) return 0;
  return static_cast<int>(std::count(taskSlots.begin(), taskSlots.end(), kTaskSharpen));
}

}  // namespace rasterkit
