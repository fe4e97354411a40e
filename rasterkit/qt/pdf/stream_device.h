#pragma once

#include <QIODevice>
#include <memory>

#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// A stream as the PDF engine reads it: names of any bytes, pipes, and a fault of the disk that is
/// no exception.
class StreamDevice : public QIODevice {
 public:
  explicit StreamDevice(std::shared_ptr<TStream> stream);

  /// The stream's size until the first byte was read, and no end from then on. The engine takes the
  /// size of its file at the beginning; later it asks again whether bytes are "there yet", and
  /// waits for ever for those that a shortened file only promises.
  qint64 size() const override;

  /// How often any such device was read from.
  static int64_t Reads();

 protected:
  qint64 readData(char* data, qint64 most) override;
  qint64 writeData(const char*, qint64) override { return -1; }

 private:
  std::shared_ptr<TStream> stream_;
  bool wasRead_ = false;
};

}  // namespace rasterkit
