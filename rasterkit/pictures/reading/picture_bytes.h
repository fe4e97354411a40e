#pragma once

#include <memory>
#include <string>
#include <vector>

#include <rasterkit/codecs/picture_pages.h>
#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/runtime/files/shared_file.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// The bytes of a picture file: an open file, or bytes in memory. Copies share them.
class PictureBytes {
 public:
  explicit PictureBytes(std::vector<uint8_t> bytes, std::string name = {});
  /// Opens a file. A pipe or a device is read once, into memory. Throws FileError.
  explicit PictureBytes(const std::string& file);

  const std::string& Name() const { return name_; }
  uint64_t Size() const;
  /// A stream at the beginning, with a position of its own; valid as long as this object.
  std::unique_ptr<TStream> Stream() const;
  /// The same, as a file whose first picture is that page (see PageView).
  std::unique_ptr<TStream> PageStream(PictureType type, int page) const;
  /// See ReadPageHeader.
  PictureHeader Header(PictureType type, int page) const;
  /// The same for all copies, and for no other object that exists.
  const void* Identity() const { return pages_.get(); }
  /// Throws FileError if the open file changed.
  void RequireUnchanged() const;
  bool IsNamed(const std::string& file) const;
  /// For another process.
  SystemFile Handle() const;

 private:
  void SharePages();

  std::string name_;
  std::shared_ptr<const SharedFile> file_;
  std::shared_ptr<const std::vector<uint8_t>> memory_;
  std::shared_ptr<SharedPages> pages_;
};

}  // namespace rasterkit::detail
