#include "tool/reports/pdf_facts.h"

#include <filesystem>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/file_name.h>

#include "tool/command/exit_code.h"
#include "tool/pages/pdf_file.h"

namespace rasterkit::tool {

PdfFacts GatherPdfFacts(const std::string& file, std::vector<std::string>& warnings) {
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(ToPath(file), ignored)) return {};
  try {
    UsePdfLibrary();
  } catch (const Error& error) {
    warnings.push_back(std::string("the pages were not counted: ") + error.what());
    return {};
  }
  const auto document = OpenPdf(file, {});
  PdfFacts facts;
  facts.pages = document->PageCount();
  try {
    facts.firstPage = SizeOfPage(*document, file, 1);
  } catch (const Failure&) {
    warnings.emplace_back("page 1 is damaged");
  }
  return facts;
}

}  // namespace rasterkit::tool
