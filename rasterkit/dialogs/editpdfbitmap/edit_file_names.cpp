#include <rasterkit/dialogs/editpdfbitmap/edit_file_names.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit {

void EditFileNames::SetBmpFilename(const std::string& name) {
  if (fOrgFilename.empty()) {
    fOrgFilename = name;
    fBmpFileExisted = FileExists(name);
  }
  fBmpDir = ExtractFilePath(name);
  fBmpName = ExtractFileName(name);
}

std::string EditFileNames::Title(const std::string& caption) const {
  const bool isElsewhere = CompareText(ExtractFilePath(fOrgFilename), fBmpDir) != 0;
  const bool inFull = !fIsPDF && isElsewhere;
  return (inFull ? fOrgFilename : ExtractFileName(fOrgFilename)) + " - " + caption;
}

}  // namespace rasterkit
