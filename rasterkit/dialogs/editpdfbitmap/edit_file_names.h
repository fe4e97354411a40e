#pragma once

#include <string>

namespace rasterkit {

/// The editor's files: where its picture comes from and where it goes.
struct EditFileNames {
  /// The source, a PDF or a graphic; empty while there is none.
  std::string fOrgFilename;
  bool fIsPDF = false;
  /// The target: folder (with its separator) and name in it.
  std::string fBmpDir, fBmpName;
  /// The target was there when it was first named, and no source was known by then.
  bool fBmpFileExisted = false;

  /// Names the target. Without a source it is the source too, and it is noted whether it exists.
  void SetBmpFilename(const std::string& name);
  std::string GetBmpFilename() const { return fBmpDir + fBmpName; }

  /// The window's title: the source's name and the caption. A graphic that lies in another folder
  /// than the target (case does not count) is named in full.
  std::string Title(const std::string& caption) const;
};

}  // namespace rasterkit
