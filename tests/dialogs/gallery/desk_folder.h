#pragma once

#include <QString>
#include <QTemporaryDir>

namespace rasterkit::test {

/// A folder for the files that an exhibit shows: a temporary one, which is deleted at the end, or
/// the one that RASTERKIT_GALLERY_FOLDER names, so that photographs show the same path everywhere.
class DeskFolder {
 public:
  QString Path(const QString& name) const {
    return (given_.isEmpty() ? temporary_.path() : given_) + '/' + name;
  }

 private:
  const QString given_ = qEnvironmentVariable("RASTERKIT_GALLERY_FOLDER");
  const QTemporaryDir temporary_;
};

}  // namespace rasterkit::test
