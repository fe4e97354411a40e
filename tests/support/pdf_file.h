#pragma once

#include <string>
#include <vector>

namespace rasterkit::test {

/// A page of a PDF file that a test writes. The boxes are the texts between the brackets; an empty
/// one is skipped.
struct PdfPageText {
  std::string mediaBox = "0 0 72 72";
  std::string content = {};
  std::string cropBox = {};
  /// More entries of the page's dictionary: "/Rotate 90".
  std::string entries = {};
};

/// The bytes of an unencrypted PDF file with a table of its objects. The font of text is "/F1",
/// Helvetica.
std::string PdfText(const std::vector<PdfPageText>& pages);

/// A page with forms that contain forms, `depth` times, each `times` times: `times` to the power of
/// `depth` rectangles.
std::string NestedFormsPdf(int depth, int times);

/// A filled rectangle in the color "R G B", each from 0 to 1, as a page's content.
std::string PdfRectangle(const std::string& color, double x, double y, double width, double height);

/// One page of an inch with a red rectangle of half an inch at its lower left, encrypted with a key
/// of 40 bits. The owner's password is "owner"; the reader's "secret", or none, so that the file
/// opens for everybody.
enum class PdfReader { withPassword, anybody };
std::string EncryptedPdf(PdfReader reader);

}  // namespace rasterkit::test
