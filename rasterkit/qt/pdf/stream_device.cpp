#include <atomic>
#include <exception>
#include <limits>
#include <utility>

#include <rasterkit/qt/pdf/stream_device.h>

namespace rasterkit {
namespace {

std::atomic<int64_t> reads = 0;

}  // namespace

StreamDevice::StreamDevice(std::shared_ptr<TStream> stream) : stream_(std::move(stream)) {
  open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

qint64 StreamDevice::size() const {
  return wasRead_ ? std::numeric_limits<qint64>::max() : static_cast<qint64>(stream_->Size());
}

int64_t StreamDevice::Reads() {
  return reads;
}

qint64 StreamDevice::readData(char* data, qint64 most) {
  wasRead_ = true;
  ++reads;
  try {
    stream_->SetPosition(static_cast<uint64_t>(pos()));
    const auto read = stream_->Read({reinterpret_cast<uint8_t*>(data), static_cast<size_t>(most)});
    return static_cast<qint64>(read);
  } catch (const std::exception&) {
    return -1;
  }
}

}  // namespace rasterkit
