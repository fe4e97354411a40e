#include <exception>
#include <memory>
#include <utility>

#include <rasterkit/dialogs/desktop/desktop_dialogs.h>
#include <rasterkit/qt/host/modal_call.h>
#include <rasterkit/qt/preview/preview_decoder.h>

namespace rasterkit {
namespace {

void Say(std::string& error, const char* text) noexcept try {
  error = text;
} catch (const std::exception&) {
  error.clear();
}

/// Converts the answer and the exceptions of `dialog`.
template <class Answer, class Dialog>
DesktopAnswer Ask(std::optional<Answer>& answer, std::string& error, const Dialog& dialog) noexcept
    try {
  std::optional<Answer> chosen = dialog();
  if (!chosen) return DesktopAnswer::canceled;
  answer = std::move(chosen);
  return DesktopAnswer::confirmed;
} catch (const std::exception& exception) {
  Say(error, exception.what());
  return DesktopAnswer::failed;
} catch (...) {
  Say(error, "the dialog failed");
  return DesktopAnswer::failed;
}

/// Holds the application between `start` and `end`.
std::unique_ptr<TModalCall>& Session() {
  static std::unique_ptr<TModalCall> session;
  return session;
}

DesktopAnswer Start(Isolation reading, std::string& error) noexcept {
  std::optional<bool> isStarted;
  return Ask(isStarted, error, [reading] {
    Session() = std::make_unique<TModalCall>();
    detail::SetPreviewIsolation(reading);
    return std::optional(true);
  });
}

void End() noexcept {
  Session().reset();
}

DesktopAnswer Crop(TBitmap& pixels, const Picture& picture, const ChooseCropOptions& options,
                   std::optional<RecipeCrop>& answer, std::string& error) noexcept {
  return Ask(answer, error, [&] { return ChooseCrop(pixels, picture, options); });
}

DesktopAnswer Values(const TBitmap& pixels, const AdjustColors& start,
                     std::optional<AdjustColors>& answer, std::string& error) noexcept {
  return Ask(answer, error, [&] { return ChooseValues(pixels, start); });
}

DesktopAnswer Threshold(const TBitmap& pixels, const MakeMono& start,
                        std::optional<MakeMono>& answer, std::string& error) noexcept {
  return Ask(answer, error, [&] { return ChooseThreshold(pixels, start); });
}

DesktopAnswer Size(const Picture& picture, const RecipeResize& start,
                   std::optional<RecipeResize>& answer, std::string& error) noexcept {
  return Ask(answer, error, [&] { return ChooseSize(picture, start); });
}

DesktopAnswer Saving(const Picture& picture, const SavingStart& start,
                     std::optional<SavingChoice>& answer, std::string& error) noexcept {
  return Ask(answer, error, [&] { return ChooseSaving(picture, start); });
}

DesktopAnswer File(const std::string& folder, bool usesDesktopDialog,
                   std::optional<std::string>& answer, std::string& error) noexcept {
  return Ask(answer, error, [&] {
    std::string file = ChooseFileToOpen(folder, usesDesktopDialog);
    return file.empty() ? std::nullopt : std::optional(std::move(file));
  });
}

DesktopAnswer Edit(const std::string& file, const EditPictureOptions& options,
                   std::optional<EditedPicture>& answer, std::string& error) noexcept {
  return Ask(answer, error, [&] { return EditPicture(file, options); });
}

constexpr DesktopDialogs kDialogs = {Start, End, Crop, Values, Threshold, Size, Saving, File, Edit};

}  // namespace

extern "C" const DesktopDialogs* rasterkit_desktop_dialogs(int32_t version) {
  return version == kDesktopVersion ? &kDialogs : nullptr;
}

}  // namespace rasterkit
