#pragma once

#include <string>

namespace rasterkit {

/// The source and the target file of the editor.
struct EditFileNames {
  /// The source, a PDF file or a graphic; empty if there is none.
  std::string fOrgFilename;
  bool fIsPDF = false;
  /// The target: folder (with its separator) and file name.
  std::string fBmpDir, fBmpName;
  /// The target existed when it was first set and there was no source yet.
  bool fBmpFileExisted = false;

  /// Sets the target. Without a source it becomes the source too, and whether it exists is stored.
  void SetBmpFilename(const std::string& name);
  std::string GetBmpFilename() const { return fBmpDir + fBmpName; }

  /// Whether the file `fileName` of the target's folder would be overwritten without a question: it
  /// exists and is not the file `askedAbout`, whose overwriting a save window asked about. A name
  /// without a folder is one in the target's folder.
  bool OverwritesAnother(const std::string& fileName, const std::string& askedAbout) const;

  /// Returns the title of the window: the name of the source and the caption. A graphic in another
  /// folder than the target (ignoring case) is shown with its full path.
  std::string Title(const std::string& caption) const;
};

}  // namespace rasterkit
