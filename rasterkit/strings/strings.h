#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>

#include <rasterkit/strings/button_texts.h>
#include <rasterkit/strings/change_size_texts.h>
#include <rasterkit/strings/change_values_texts.h>
#include <rasterkit/strings/crop_texts.h>
#include <rasterkit/strings/crop_window_texts.h>
#include <rasterkit/strings/editor_texts.h>
#include <rasterkit/strings/editor_window_texts.h>
#include <rasterkit/strings/file_dialog_texts.h>
#include <rasterkit/strings/graphics_settings_texts.h>
#include <rasterkit/strings/library_texts.h>
#include <rasterkit/strings/picture_step_texts.h>
#include <rasterkit/strings/save_window_texts.h>
#include <rasterkit/strings/saving_texts.h>
#include <rasterkit/strings/size_window_texts.h>
#include <rasterkit/strings/value_window_texts.h>

/// The texts that users see. The constants `rsXxx` in the headers above are the table: a constant
/// is the English text and at the same time the key by which translators find it. The build makes
/// the list of keys from these headers.
///
/// This room is the lowest one and includes nothing of the others.
namespace rasterkit {

/// All keys in the order of the headers, for a tool that writes a translation.
[[gnu::visibility("default")]] std::span<const std::string_view> ResourceStringKeys();

/// Returns the text for a key (UTF-8): the translator's, or the key itself if the translator has
/// none. Without a translator the catalogue is used.
[[gnu::visibility("default")]] std::string ResourceString(std::string_view key);

/// Translates a key into the user's language. An empty answer means that there is no translation.
using TTranslator = std::function<std::string(std::string_view key)>;

/// Installs the translator of the host, or removes it if empty. Thread-safe. The translator is
/// called on the thread that needs a text, by several threads at once if necessary.
[[gnu::visibility("default")]] void SetTranslator(TTranslator translator);

/// Installs the catalogue, or removes it if empty. It is used while the host has no translator
/// installed; the dialogs install their catalogues here. As thread-safe as SetTranslator().
[[gnu::visibility("default")]] void SetCatalogue(TTranslator catalogue);

}  // namespace rasterkit
