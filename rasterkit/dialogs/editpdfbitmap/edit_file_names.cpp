#include <filesystem>
#include <system_error>

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

bool EditFileNames::OverwritesAnother(const std::string& fileName,
                                      const std::string& askedAbout) const {
  const std::string target = fBmpDir + fileName;
  if (!FileExists(target)) return false;
  const bool hasFolder = !ExtractFilePath(askedAbout).empty();
  const std::string asked = hasFolder ? askedAbout : fBmpDir + askedAbout;
  std::error_code error;
  return asked != target && !std::filesystem::equivalent(ToPath(asked), ToPath(target), error);
}

std::string EditFileNames::Title(const std::string& caption) const {
  const bool isElsewhere = CompareText(ExtractFilePath(fOrgFilename), fBmpDir) != 0;
  const bool inFull = !fIsPDF && isElsewhere;
  return (inFull ? fOrgFilename : ExtractFileName(fOrgFilename)) + " - " + caption;
}

}  // namespace rasterkit
