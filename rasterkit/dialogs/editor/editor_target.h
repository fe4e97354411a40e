#pragma once

#include <optional>
#include <string>

#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/dialogs/editor/editor_source.h>
#include <rasterkit/dialogs/editor/editor_view.h>
#include <rasterkit/pictures/recipes/recipe.h>
#include <rasterkit/runtime/files/file_facts.h>

namespace rasterkit {

/// The file that OK writes.
struct EditorTarget {
  /// Full name.
  std::string file;
  /// The file of that name when it was last looked at.
  FileFacts facts;
  /// The user agreed that this state of the file is replaced.
  bool isAgreed = false;
  /// Why the suggested name is not that of the source; empty if it is.
  std::string note;

  /// Why no file of this name can be written; empty if one can.
  std::string Hindrance() const;
  /// What the user must be asked before it is written as it is at this moment; nothing if nothing.
  std::optional<EditorQuestion> QuestionFor(const FileFacts& current) const;
};

/// The source's own name; of a kind that cannot be written a name that is free, of the kind that
/// the window of saving suggests: "plan.pdf" gives "plan.png", or "plan-2.png" if that is taken;
/// more than 8 bits per color and a position give ".tif".
EditorTarget SuggestTarget(const EditorSource& source);

/// A file that the user chose. `isAgreed`: the user agreed that it is replaced.
EditorTarget ChosenTarget(const std::string& file, bool isAgreed);

/// How the source is saved if the user chose nothing: the type is stated where name and source do
/// not agree, as the window of the settings states it.
RecipeSave SuggestSaving(const EditorSource& source, const EditorTarget& target);

/// True if the file is the source, and of a kind that cannot be written.
bool WouldDestroySource(const EditorSource& source, const std::string& file);

}  // namespace rasterkit
