#include "samples/draw_plan.h"

#include <array>

#include <rasterkit/graphics/canvas.h>

namespace rasterkit::samples {
namespace {

/// Corners in parts of 100 of the plan's sides.
struct Room {
  int left, top, right, bottom;
  TColor color;
};

constexpr std::array<Room, 4> kRooms = {{{8, 10, 42, 55, RGB(246, 226, 190)},
                                         {42, 10, 92, 40, RGB(200, 226, 240)},
                                         {42, 40, 70, 88, RGB(214, 238, 206)},
                                         {8, 55, 42, 88, RGB(240, 206, 206)}}};

TRect Place(const Room& room, const TBitmap& plan, int inset) {
  return {room.left * plan.Width() / 100 + inset, room.top * plan.Height() / 100 + inset,
          room.right * plan.Width() / 100 - inset, room.bottom * plan.Height() / 100 - inset};
}

void Fill(TBitmap& plan, const TRect& rect, TColor color) {
  plan.Canvas().Brush.Color = color;
  plan.Canvas().FillRect(rect);
}

void DrawWalls(TBitmap& plan) {
  const int wall = plan.Width() / 100;
  for (const Room& room : kRooms) Fill(plan, Place(room, plan, -wall), clBlack);
  for (const Room& room : kRooms) Fill(plan, Place(room, plan, wall / 2), room.color);
}

/// A door is a gap in the wall and the leaf that stands open in it.
void DrawDoor(TBitmap& plan, int x, int y, TColor floor) {
  const int wall = plan.Width() / 100, leaf = plan.Width() / 14;
  const int left = x * plan.Width() / 100, top = y * plan.Height() / 100;
  Fill(plan, {left, top - wall, left + leaf, top + wall}, floor);
  Fill(plan, {left, top - leaf, left + wall / 2 + 1, top}, clBlack);
}

/// The north arrow: the plan has an upright side too.
void DrawNorthArrow(TBitmap& plan) {
  const int x = plan.Width() * 84 / 100, y = plan.Height() * 55 / 100, size = plan.Height() / 5;
  for (int row = 0; row < size / 2; ++row)
    Fill(plan, {x - row / 3, y + row, x + row / 3 + 1, y + row + 1}, clBlack);
  Fill(plan, {x - 1, y + size / 2, x + 2, y + size}, clBlack);
}

void Draw(TBitmap& plan) {
  Fill(plan, {0, 0, plan.Width(), plan.Height()}, clWhite);
  DrawWalls(plan);
  DrawDoor(plan, 18, 55, kRooms[0].color);
  DrawDoor(plan, 50, 40, kRooms[1].color);
  DrawNorthArrow(plan);
  plan.SetDpi({300, 300});
}

tagPALETTEENTRY EntryOf(TColor color) {
  return {static_cast<uint8_t>(color), static_cast<uint8_t>(color >> 8),
          static_cast<uint8_t>(color >> 16), 0};
}

}  // namespace

TBitmap DrawPlan(int width, int height) {
  TBitmap plan;
  plan.ResetPixels(pf1bit, width, height);
  Draw(plan);
  return plan;
}

TBitmap DrawColoredPlan(int width, int height) {
  TBitmap plan;
  plan.ResetPixels(pf8bit, width, height);
  std::array<tagPALETTEENTRY, 6> entries = {EntryOf(clBlack), EntryOf(clWhite)};
  for (size_t i = 0; i < kRooms.size(); ++i) entries[i + 2] = EntryOf(kRooms[i].color);
  plan.SetPalette(HPALETTE(entries));
  Draw(plan);
  return plan;
}

}  // namespace rasterkit::samples
