#pragma once

#include <string_view>

/// The crop window for people. Texts that it shares with the crop tool are in crop_texts.h.
namespace rasterkit {

/// The window and its buttons.
inline constexpr std::string_view rsCropRectangleKeys =
    "Drag to draw a rectangle; with Shift it keeps its ratio, with Ctrl its center. Double click "
    "and Enter crop. Arrow keys move it, with Shift by 10 pixels, with Ctrl they resize it. The "
    "wheel, plus and minus zoom, the middle button and arrow keys with Alt pan.";
inline constexpr std::string_view rsCropRedoHint =
    "Makes the change of the rectangle again (Ctrl+Y)";

/// Units.
inline constexpr std::string_view rsCropUnitHint = "Unit of the numbers below";
inline constexpr std::string_view rsCropPixels = "Pixels";
inline constexpr std::string_view rsCropPercent = "Percent";
inline constexpr std::string_view rsCropMillimeters = "Millimeters on paper";
inline constexpr std::string_view rsCropMapUnits = "Map";
/// The unit of the map: "m".
inline constexpr std::string_view rsCropMapUnitsIn = "Map (%s)";
inline constexpr std::string_view rsCropNeedsResolution =
    "Needs a resolution: this picture states none";
inline constexpr std::string_view rsCropNeedsPosition =
    "Needs a position on a map: this picture states none";
inline constexpr std::string_view rsCropMapUnit = "Unit of the map";
inline constexpr std::string_view rsCropMapUnitHint =
    "The picture does not say in which unit its map coordinates are";
inline constexpr std::string_view rsCropUnknownUnit = "Unknown";
inline constexpr std::string_view rsCropMeters = "Meters";
inline constexpr std::string_view rsCropFeet = "Feet";
inline constexpr std::string_view rsCropSurveyFeet = "US survey feet";
inline constexpr std::string_view rsCropDegrees = "Degrees";
inline constexpr std::string_view rsCropLeftInUnit = "Left edge of the rectangle; x on the map";
inline constexpr std::string_view rsCropTopInUnit = "Top edge of the rectangle; y on the map";
inline constexpr std::string_view rsCropWidthInUnit = "Width along the side of the picture";
inline constexpr std::string_view rsCropHeightInUnit = "Height along the side of the picture";

/// Ratios.
inline constexpr std::string_view rsCropRatio = "Ratio";
inline constexpr std::string_view rsCropRatioHint = "Proportion that the rectangle keeps";
inline constexpr std::string_view rsCropAnyRatio = "Free";
inline constexpr std::string_view rsCropRatioAsPicture = "As the picture";
inline constexpr std::string_view rsCropSquare = "1:1";
inline constexpr std::string_view rsCropIsoPortrait = "ISO A portrait";
inline constexpr std::string_view rsCropIsoLandscape = "ISO A landscape";
inline constexpr std::string_view rsCropFourToThree = "4:3";
inline constexpr std::string_view rsCropThreeToTwo = "3:2";
inline constexpr std::string_view rsCropSixteenToNine = "16:9";
inline constexpr std::string_view rsCropTypedRatio = "Typed";
inline constexpr std::string_view rsCropPaperAtScale = "Paper at a scale";
inline constexpr std::string_view rsCropNeedsLength = "Needs a position on a map in meters or feet";
inline constexpr std::string_view rsCropSwap = "Swap";
inline constexpr std::string_view rsCropSwapHint = "Exchanges width and height";
inline constexpr std::string_view rsCropSides = "Sides";
inline constexpr std::string_view rsCropRatioWidth = "Width of the ratio";
inline constexpr std::string_view rsCropRatioHeight = "Height of the ratio";
inline constexpr std::string_view rsCropPaper = "Paper";
inline constexpr std::string_view rsCropPaperHint = "Sheet that shows the rectangle at the scale";
inline constexpr std::string_view rsCropPaperA0 = "A0";
inline constexpr std::string_view rsCropPaperA1 = "A1";
inline constexpr std::string_view rsCropPaperA2 = "A2";
inline constexpr std::string_view rsCropPaperA3 = "A3";
inline constexpr std::string_view rsCropPaperA4 = "A4";
inline constexpr std::string_view rsCropScale = "Scale 1:";
inline constexpr std::string_view rsCropScaleName = "Scale of the map on paper";
inline constexpr std::string_view rsCropScaleHint = "500 stands for 1:500";

/// Guides.
inline constexpr std::string_view rsCropGuides = "Guides";
inline constexpr std::string_view rsCropGuidesHint = "Lines inside the rectangle";
inline constexpr std::string_view rsCropNoGuides = "No guides";
inline constexpr std::string_view rsCropThirds = "Thirds";
inline constexpr std::string_view rsCropCenterLines = "Center";

/// What is said about the rectangle. Width, height, memory and its unit.
inline constexpr std::string_view rsCropSize = "%s x %s pixels, %s %s";
/// Width and height of the ratio.
inline constexpr std::string_view rsCropRatioOf = "Ratio %s:%s";
/// Resolution, width, height.
inline constexpr std::string_view rsCropOnPaper = "%s dpi: %s x %s mm on paper";
inline constexpr std::string_view rsCropNoResolution = "No resolution is stated";
/// x and y of both corners, width, and height with the unit.
inline constexpr std::string_view rsCropOnMap =
    "On the map: from %s, %s to %s, %s; the sides are %s x %s";
inline constexpr std::string_view rsCropNoPosition = "No position on a map is stated";
/// Column and row; the same in the unit.
inline constexpr std::string_view rsCropMouse = "Mouse: %s, %s px";
inline constexpr std::string_view rsCropMouseInUnit = "Mouse: %s, %s px; %s, %s";
inline constexpr std::string_view rsCropMouseOutside = "Mouse: not on the picture";
/// The typed number, the one of the nearest pixel, the unit.
inline constexpr std::string_view rsCropRounded = "%s became %s %s, the nearest pixel corner";
/// Pixels across and down.
inline constexpr std::string_view rsCropSheetTooLarge =
    "The sheet needs %s x %s pixels, more than the picture has";

}  // namespace rasterkit
