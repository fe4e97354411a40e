#include <cstring>

#include <rasterkit/codecs/tiff/tiff_numbers.h>
#include <rasterkit/codecs/tiff/tiff_row_writer.h>

namespace rasterkit::detail {

namespace {

/// Samples of whole bytes or words, which may lie in planes.
class WholeSamples : public TiffRowWriter {
 public:
  explicit WholeSamples(const TiffLayout& layout)
      : planes_(layout.planes.size()),
        bytes_(static_cast<size_t>(layout.Bytes())),
        pixelBytes_(bytes_ * static_cast<size_t>(layout.pitch)) {}

  void Write(const uint8_t* const* planes, size_t width, uint8_t* target) override {
    if (planes_ > 1) return JoinSamples(planes, planes_, bytes_, width, target);
    if (target != planes[0]) std::memcpy(target, planes[0], width * pixelBytes_);
  }

 private:
  const size_t planes_, bytes_, pixelBytes_;
};

/// Samples of other sizes, each widened to a number of 8, 16 or 32 bits.
class WidenedSamples : public TiffRowWriter {
 public:
  explicit WidenedSamples(TiffLayout layout) : layout_(std::move(layout)) {}

  void Write(const uint8_t* const* planes, size_t width, uint8_t* target) override {
    const auto pitch = static_cast<size_t>(layout_.pitch);
    numbers_.resize(width * pitch);
    const bool isPlanar = layout_.planes.size() > 1;
    for (size_t i = 0; isPlanar && i < pitch; i++) {
      UnpackNumbers(planes[i], layout_.bits, layout_.number, {0, 1, width}, numbers_.data() + i,
                    pitch);
    }
    if (!isPlanar) {
      UnpackNumbers(planes[0], layout_.bits, layout_.number, {0, 1, width * pitch}, numbers_.data(),
                    1);
    }
    Store(target);
  }

 private:
  void Store(uint8_t* target) const {
    if (layout_.number == TiffNumber::floating) return StoreAs<float>(target);
    const bool isSigned = layout_.number == TiffNumber::signedInteger;
    switch (layout_.SampleBytes()) {
      case 1:
        return isSigned ? StoreAs<int8_t>(target) : StoreAs<uint8_t>(target);
      case 2:
        return isSigned ? StoreAs<int16_t>(target) : StoreAs<uint16_t>(target);
      default:
        return isSigned ? StoreAs<int32_t>(target) : StoreAs<uint32_t>(target);
    }
  }

  template <typename T>
  void StoreAs(uint8_t* target) const {
    for (const double number : numbers_) {
      const auto value = static_cast<T>(number);
      std::memcpy(target, &value, sizeof value);
      target += sizeof value;
    }
  }

  const TiffLayout layout_;
  std::vector<double> numbers_;
};

}  // namespace

std::unique_ptr<TiffRowWriter> MakeSampleWriter(const TiffLayout& layout) {
  if (layout.HasWholeSamples()) return std::make_unique<WholeSamples>(layout);
  return std::make_unique<WidenedSamples>(layout);
}

}  // namespace rasterkit::detail
