#pragma once

#include <QIODevice>
#include <memory>

#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// A TStream as a QIODevice for the PDF engine: supports file names of any bytes, pipes, and disk
/// errors without exceptions.
class StreamDevice : public QIODevice {
 public:
  explicit StreamDevice(std::shared_ptr<TStream> stream);

  /// Returns the stream's size until the first byte is read, and an unlimited size afterwards. The
  /// engine reads the size of its file at the beginning. Later it asks again whether bytes have
  /// arrived yet, and would wait forever for those missing from a truncated file.
  qint64 size() const override;

  /// Returns how often all devices together were read from.
  static int64_t Reads();

 protected:
  qint64 readData(char* data, qint64 most) override;
  qint64 writeData(const char*, qint64) override { return -1; }

 private:
  std::shared_ptr<TStream> stream_;
  bool wasRead_ = false;
};

}  // namespace rasterkit
