#pragma once

#include <QRegularExpression>
#include <QString>
#include <string>
#include <vector>

/// Patterns of file names. Internal to this folder.
namespace rasterkit::detail {

/// File name patterns as in filter lists, "*.tif;*.tiff": "*" matches any characters, "?" exactly
/// one; case is ignored. "*.*" and an empty mask match every file, also those without a dot.
class FileMask {
 public:
  explicit FileMask(const std::string& mask);

  bool Fits(const QString& name) const;

 private:
  bool fitsAll_ = false;
  /// Patterns that are only an extension, which is the usual case.
  std::vector<QString> endings_;
  std::vector<QRegularExpression> others_;
};

}  // namespace rasterkit::detail
