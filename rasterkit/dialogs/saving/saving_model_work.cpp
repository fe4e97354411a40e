#include <algorithm>
#include <cmath>
#include <exception>
#include <filesystem>
#include <system_error>
#include <utility>

#include <rasterkit/dialogs/saving/result_words.h>
#include <rasterkit/dialogs/saving/saving_model.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

using detail::PartOfPicture;
using detail::ShownPart;

/// A size that would need more memory than this is not computed beside the window.
constexpr uint64_t kMostMemory = uint64_t{1} << 30;

std::string Filled(std::string_view key, std::initializer_list<std::string> values) {
  return FormatText(ResourceString(key), {values.begin(), values.size()});
}

/// Somewhat more than the view, so that a short drag needs no new pixels.
PartOfPicture Around(const PartOfPicture& viewed, int width, int height) {
  const int left = std::max(0, viewed.left - viewed.width / 2);
  const int top = std::max(0, viewed.top - viewed.height / 2);
  const int right = std::min(width, viewed.left + viewed.width + viewed.width / 2);
  const int bottom = std::min(height, viewed.top + viewed.height + viewed.height / 2);
  return {left, top, right - left, bottom - top};
}

bool Shows(const ShownPart& part, const PartOfPicture& viewed) {
  return part.pixels != nullptr && part.place.Contains(viewed);
}

}  // namespace

struct SavingModel::Progress {
  std::atomic<int> percent = 0;
};

void SavingModel::StartSize() {
  bytes_.reset();
  progress_.reset();
  if (!planned_.report || planned_.report->memory > kMostMemory) {
    view_.Stop(SavingWork::size);
    return;
  }
  progress_ = std::make_shared<Progress>();
  view_.Start(SavingWork::size, [this, picture = picture_, save = Filtered(), type = type_,
                                 key = key_, progress = progress_](std::stop_token stop) {
    std::optional<uint64_t> bytes;
    try {
      bytes = detail::CountBytesOfSave(picture, save, type, std::move(stop), [&](double done) {
        progress->percent = static_cast<int>(std::floor(done * 100));
      });
    } catch (const std::exception&) {
      // The plan's bound stays.
    }
    return SavingView::Answer([this, key, bytes] { TakeSize(key, bytes); });
  });
}

void SavingModel::TakeSize(uint64_t key, std::optional<uint64_t> bytes) {
  if (key != key_) return;
  bytes_ = bytes;
  progress_.reset();
  view_.ShowState();
}

std::optional<int> SavingModel::Percent() const {
  return progress_ ? std::optional(progress_->percent.load()) : std::nullopt;
}

void SavingModel::Tick() {
  if (progress_) view_.ShowState();
}

std::string SavingModel::SizeText() const {
  if (!planned_.report) return ResourceString(rsSavingSizeUnknown);
  if (!bytes_) {
    const std::string most = detail::SizeWords(planned_.report->bytes);
    const std::optional<int> percent = Percent();
    return percent ? Filled(rsSavingSizeWorking, {most, std::to_string(*percent)})
                   : Filled(rsSavingSizeAtMost, {most});
  }
  const std::string size = detail::SizeWords(*bytes_);
  std::error_code error;
  const std::string& source = picture_.SourceFile();
  const auto before = source.empty() ? 0 : std::filesystem::file_size(ToPath(source), error);
  if (source.empty() || error) return Filled(rsSavingSizeTrue, {size});
  return Filled(rsSavingSizeWas, {size, detail::SizeWords(before)});
}

void SavingModel::ResizeView(int width, int height) {
  const int wide = std::clamp(width, 0, picture_.Width());
  const int high = std::clamp(height, 0, picture_.Height());
  if (wide == viewed_.width && high == viewed_.height) return;
  const bool isFirst = viewed_.width == 0 && viewed_.height == 0;
  const int middleX = isFirst ? picture_.Width() / 2 : viewed_.left + viewed_.width / 2;
  const int middleY = isFirst ? picture_.Height() / 2 : viewed_.top + viewed_.height / 2;
  viewed_ = {std::clamp(middleX - wide / 2, 0, picture_.Width() - wide),
             std::clamp(middleY - high / 2, 0, picture_.Height() - high), wide, high};
  StartPart();
  view_.ShowParts();
}

void SavingModel::PanView(int dx, int dy) {
  const int left = std::clamp(viewed_.left + dx, 0, picture_.Width() - viewed_.width);
  const int top = std::clamp(viewed_.top + dy, 0, picture_.Height() - viewed_.height);
  if (left == viewed_.left && top == viewed_.top) return;
  viewed_.left = left;
  viewed_.top = top;
  StartPart();
  view_.ShowParts();
}

void SavingModel::StartPart() {
  const bool isHidden = viewed_.width <= 0 || viewed_.height <= 0;
  const bool isThere =
      Shows(before_, viewed_) && afterKey_ == key_ && (hasPartFailed_ || Shows(after_, viewed_));
  if (!isBegun_ || isHidden || isThere || !planned_.report) {
    isPartRunning_ = false;
    return view_.Stop(SavingWork::part);
  }
  isPartRunning_ = true;
  hasPartFailed_ = false;
  const bool hasBefore = Shows(before_, viewed_);
  const PartOfPicture place =
      hasBefore ? before_.place : Around(viewed_, picture_.Width(), picture_.Height());
  view_.Start(SavingWork::part, [this, picture = picture_, save = Filtered(), type = type_,
                                 key = key_, place, known = hasBefore ? before_ : ShownPart{},
                                 isSame = IsLossless()](const std::stop_token& stop) {
    ShownPart before = known, after{place, nullptr};
    try {
      if (!before.pixels) before = detail::PartBefore(picture, place, stop);
      after = isSame ? before : detail::PartAfter(picture, save, type, place, stop);
    } catch (const std::exception&) {
      // The view says that it cannot be shown.
    }
    return SavingView::Answer([this, key, before, after] { TakeParts(key, before, after); });
  });
}

void SavingModel::TakeParts(uint64_t key, ShownPart before, ShownPart after) {
  if (key != key_) return;
  isPartRunning_ = false;
  before_ = std::move(before);
  after_ = std::move(after);
  afterKey_ = key;
  hasPartFailed_ = after_.pixels == nullptr;
  view_.ShowParts();
}

std::string SavingModel::AfterText() const {
  if (!planned_.report || (hasPartFailed_ && !isPartRunning_)) {
    return ResourceString(rsSavingViewFailed);
  }
  if (isPartRunning_) return ResourceString(rsSavingViewWorking);
  return ResourceString(IsLossless() ? rsSavingViewSame : rsSavingViewAfter);
}

std::string SavingModel::PartText() const {
  return Filled(rsSavingViewPart, {std::to_string(viewed_.left), std::to_string(viewed_.top),
                                   std::to_string(viewed_.width), std::to_string(viewed_.height)});
}

}  // namespace rasterkit
