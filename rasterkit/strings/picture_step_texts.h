#pragma once

#include <string_view>

/// Steps and messages of the picture editor, without its controls.
namespace rasterkit {

/// Names of steps in the list.
inline constexpr std::string_view rsStepTurnLeft = "Turn left";
inline constexpr std::string_view rsStepTurnRight = "Turn right";
inline constexpr std::string_view rsStepTurnOver = "Turn by 180 degrees";
inline constexpr std::string_view rsStepMirror = "Mirror left and right";
inline constexpr std::string_view rsStepFlip = "Mirror top and bottom";
/// Degrees, counter-clockwise.
inline constexpr std::string_view rsStepRotate = "Rotate by %s degrees";
inline constexpr std::string_view rsStepNorthUp = "Turn north up";
/// Width and height in pixels.
inline constexpr std::string_view rsStepCrop = "Crop to %d x %d";
inline constexpr std::string_view rsStepSize = "Resize to %d x %d";
inline constexpr std::string_view rsStepGray = "Make gray";
inline constexpr std::string_view rsStepMono = "Make black and white";
inline constexpr std::string_view rsStepColors = "Reduce to %d colors";
inline constexpr std::string_view rsStepBits = "Change to %d bits";
inline constexpr std::string_view rsStepColorChange = "Change colors";
inline constexpr std::string_view rsStepCombine = "Combine with another picture";
inline constexpr std::string_view rsStepPalette = "Take the palette of another picture";
inline constexpr std::string_view rsStepPlace = "Set the position";
inline constexpr std::string_view rsStepEdit = "Change metadata";
inline constexpr std::string_view rsStepStretch = "Stretch the numbers";
inline constexpr std::string_view rsStepOther = "Other step";

/// What a job does. A step has its own name.
inline constexpr std::string_view rsJobReading = "Reading the picture";
inline constexpr std::string_view rsJobDrawing = "Drawing the page";
inline constexpr std::string_view rsJobUndo = "Undoing a step";
inline constexpr std::string_view rsJobSaving = "Saving the picture";
inline constexpr std::string_view rsJobPlanning = "Checking how it is saved";
/// A job and the memory of its result.
inline constexpr std::string_view rsJobMemory = "%s (%s MiB)";

/// File, width, height, bits per pixel, memory.
inline constexpr std::string_view rsFacts = "%s: %d x %d pixels, %d bits, %s MiB";
/// The same with the resolution before the memory.
inline constexpr std::string_view rsFactsDpi = "%s: %d x %d pixels, %d bits, %s dpi, %s MiB";
/// File, page, number of pages.
inline constexpr std::string_view rsTitlePage = "%s, page %d of %d";

/// File name and reason.
inline constexpr std::string_view rsCannotSave =
    "%s cannot be written: %s.\nChoose another folder or name before you save.";
/// Type and file name.
inline constexpr std::string_view rsTypeIsNotWritten =
    "Files of the type %s cannot be written. The picture is saved as %s.";
inline constexpr std::string_view rsNeverOver =
    "%s is the file that is edited, and its type cannot be written. Choose another name.";

inline constexpr std::string_view rsAskReplace = "%s exists. Do you want to replace it?";
inline constexpr std::string_view rsAskChanged =
    "%s was changed by another program. Do you want to replace it nevertheless?";
inline constexpr std::string_view rsAskLoseWork =
    "%s has changes that are not saved. Do you want to save them?";
/// File name and number of steps.
inline constexpr std::string_view rsAskJournal =
    "The editor ended before the changes of %s were saved. Do you want to take them up? Steps: %d";
inline constexpr std::string_view rsAskJournalChanged =
    "The editor ended before the changes of %s were saved, and the file was changed since. The "
    "changes may be in the file already. Do you want to take them up nevertheless? Steps: %d";
/// Number of steps that were left out, and the reason.
inline constexpr std::string_view rsJournalCut =
    "Steps that do not fit the picture and are skipped: %d (%s)";

}  // namespace rasterkit
