#pragma once

namespace rasterkit {

/// How the crop tool behaves, as plain data: every difference between the tool of the exported
/// entries and that of the windows for people is one of these fields. Lengths are in paint-box
/// pixels.
struct CropRules {
  /// A drag changes the cut at each step, in whole pixels of the bitmap, and reports it. Otherwise
  /// an outline moves, and the cut follows at the end.
  bool isLive = false;
  /// Shift keeps the ratio of the cut and Ctrl keeps its center during a drag. Otherwise a press
  /// with one of these keys starts no drag.
  bool shapesByKeys = false;
  /// Edges of the cut jump to the edges and the middle of the bitmap within this distance.
  double snapDistance = 0;
  /// Side of the area in which a press takes a handle; 0: as the handles are drawn.
  int grabSize = 0;
  /// A press that moves no farther than this is a click.
  double clickSize = 10;
  /// Frame and handles have a dark and a light line, and the outside is dark during a drag, too.
  /// Otherwise both have the frame color.
  bool hasTwoTones = false;
  /// What was undone can be redone.
  bool keepsUndone = false;
  /// The zoom stays if the box changes its size, unless the whole bitmap is fitted into it.
  bool keepsZoom = false;

  friend bool operator==(const CropRules&, const CropRules&) = default;
};

/// The rules of the exported entries (CropBitmap, ChooseCropRect, the editor for PDF pages).
inline constexpr CropRules kEntryCropRules{};

/// The rules of the windows for people.
inline constexpr CropRules kEditorCropRules{.isLive = true,
                                            .shapesByKeys = true,
                                            .snapDistance = 6,
                                            .grabSize = 28,
                                            .clickSize = 3,
                                            .hasTwoTones = true,
                                            .keepsUndone = true,
                                            .keepsZoom = true};

}  // namespace rasterkit
