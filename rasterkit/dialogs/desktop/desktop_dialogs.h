#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <rasterkit/dialogs/crop/choose_crop.h>
#include <rasterkit/dialogs/editor/edit_picture.h>
#include <rasterkit/dialogs/saving/choose_saving.h>
#include <rasterkit/dialogs/size/choose_size.h>
#include <rasterkit/dialogs/values/choose_values.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/isolation.h>

namespace rasterkit {

/// How a dialog ended.
enum class DesktopAnswer : int32_t { confirmed, canceled, failed };

/// The dialogs for people, for a program without Qt. The program opens librasterkit-dialogs when it
/// needs one (DynamicLibrary), gets this table from its one C entry, and calls `start` before and
/// `end` after its dialogs, all on one thread. No function throws. One that the user confirmed sets
/// `answer`; one that fails sets `error` and changes nothing else.
struct DesktopDialogs {
  /// Creates the application object for all following dialogs. Fails if no window can be opened; do
  /// not call `end` then. `reading`: where previews of files are read; PDF files are always read in
  /// a worker process.
  DesktopAnswer (*start)(Isolation reading, std::string& error) noexcept;
  void (*end)() noexcept;

  /// ChooseCrop.
  DesktopAnswer (*chooseCrop)(TBitmap& pixels, const Picture& picture,
                              const ChooseCropOptions& options, std::optional<RecipeCrop>& answer,
                              std::string& error) noexcept;
  /// ChooseValues.
  DesktopAnswer (*chooseValues)(const TBitmap& pixels, const AdjustColors& start,
                                std::optional<AdjustColors>& answer, std::string& error) noexcept;
  /// ChooseThreshold.
  DesktopAnswer (*chooseThreshold)(const TBitmap& pixels, const MakeMono& start,
                                   std::optional<MakeMono>& answer, std::string& error) noexcept;
  /// ChooseSize.
  DesktopAnswer (*chooseSize)(const Picture& picture, const RecipeResize& start,
                              std::optional<RecipeResize>& answer, std::string& error) noexcept;
  /// ChooseSaving.
  DesktopAnswer (*chooseSaving)(const Picture& picture, const SavingStart& start,
                                std::optional<SavingChoice>& answer, std::string& error) noexcept;
  /// ChooseFileToOpen.
  DesktopAnswer (*chooseFile)(const std::string& folder, bool usesDesktopDialog,
                              std::optional<std::string>& answer, std::string& error) noexcept;
  /// EditPicture; canceled if nothing was written.
  DesktopAnswer (*editPicture)(const std::string& file, const EditPictureOptions& options,
                               std::optional<EditedPicture>& answer, std::string& error) noexcept;
};

/// Incremented with every change of the table or of a type that its functions use.
inline constexpr int32_t kDesktopVersion = 6;

inline constexpr const char* kDesktopEntry = "rasterkit_desktop_dialogs";

/// Returns the table of version `version`; null if this library has another version. Valid until
/// the process ends.
using DesktopEntry = const DesktopDialogs*(int32_t version);
extern "C" RASTERKIT_EXPORT DesktopEntry rasterkit_desktop_dialogs;

}  // namespace rasterkit
