#pragma once

#include <QRegularExpression>
#include <QString>
#include <string>
#include <vector>

/// Patterns of file names. Internal to the room.
namespace rasterkit::detail {

/// Patterns as in filter lists, "*.tif;*.tiff": "*" is any characters, "?" is one, upper and lower
/// case are the same. "*.*" is every file, those without a dot as well, and so is an empty mask.
class FileMask {
 public:
  explicit FileMask(const std::string& mask);

  bool Fits(const QString& name) const;

 private:
  bool fitsAll_ = false;
  /// Of the patterns that are an extension and no more, nearly all.
  std::vector<QString> endings_;
  std::vector<QRegularExpression> others_;
};

}  // namespace rasterkit::detail
