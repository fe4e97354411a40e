#include <algorithm>
#include <utility>

#include <rasterkit/pictures/flow_needs.h>
#include <rasterkit/pictures/sources/sample_rows.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

constexpr uint64_t kMebibyte = uint64_t{1} << 20;
/// All bands of a flow with what decoders and encoders hold beside them.
constexpr uint64_t kBands = 32 * kMebibyte;
/// Rows that a stage needs at once flow by up to this size.
constexpr uint64_t kSmallWindow = 8 * kMebibyte;

/// How the rows of a picture come to its first stage.
struct Access {
  /// None for pixels that are decoded only as a whole.
  std::optional<RowAccess> rows;
  uint64_t blockBytes = 0;
};

Access AccessOf(const PictureSource& source, const PictureState& state) {
  try {
    const std::unique_ptr<RowReader> reader =
        state.smaller ? source.OpenSmaller(state.smaller->form, 1) : source.OpenRows(1);
    if (!reader) return {};
    return {reader->Access(), BytesOfRows(source.Header().layout, reader->Width(),
                                          std::min(reader->BlockRows(), reader->Height()))};
  } catch (const Error&) {
    // The save says what is wrong.
    return {};
  }
}

/// How a stage gets its rows.
enum class Way { flow, keep, whole };

/// Follows the rows through the stages.
class NeedsFinder {
 public:
  NeedsFinder(const PictureSource& source, const PictureState& state)
      : state_(state), source_(source), access_(AccessOf(source, state)) {
    const PictureHeader& header = source.Header();
    Sides sides{header.width, header.height};
    if (state.smaller) sides = {state.smaller->form.width, state.smaller->form.height};
    before_ = {{sides, source.Kind().layout}, source.Kind().isRaster, std::nullopt};
    if (access_.rows) return;
    // The file is decoded from memory.
    needs_.memory = source.ByteCount() + 2 * BytesOf(before_);
    kept_ = BytesOf(before_);
  }

  FlowNeeds Find(bool isWhole) {
    for (size_t i = 0; i < state_.stages.size() && i < state_.madeByStages.size(); ++i) {
      if (state_.smaller && i < state_.smaller->stages.size()) {
        MadeRows made = state_.madeByStages[i];
        made.sides = state_.smaller->made[i];
        AddStage(*state_.smaller->stages[i], made);
      } else {
        AddStage(*state_.stages[i], state_.madeByStages[i]);
      }
    }
    if (isWhole) Hold(BytesOf(before_));
    // Decoders keep a few blocks of rows.
    constexpr uint64_t kBlocks = 4;
    needs_.memory = std::max(needs_.memory, kept_) + windows_ + kBlocks * access_.blockBytes;
    needs_.memory += kBands;
    return needs_;
  }

 private:
  static uint64_t BytesOf(const KindOfRows& rows) {
    return BytesOfRows(rows.layout, rows.sides.width, rows.sides.height);
  }

  static uint64_t LookedAt(const KindOfRows& rows) {
    return uint64_t{4} * static_cast<uint64_t>(rows.sides.width) *
           static_cast<uint64_t>(rows.sides.height);
  }

  void Hold(uint64_t bytes) { needs_.memory = std::max(needs_.memory, kept_ + bytes); }

  void AddStage(const Stage& stage, const MadeRows& after) {
    // What is laid over is to look at: at most four bytes per pixel, beside its source.
    if (after.over) needs_.memory += 3 * std::max(BytesOf(*after.over), LookedAt(*after.over));
    const Way way = WayOf(stage, after);
    if (way == Way::whole) {
      Hold(BytesOf(before_) + BytesOf(after));
      kept_ = BytesOf(after);
    } else if (way == Way::keep) {
      Keep();
    }
    before_ = after;
  }

  /// In memory, or in a scratch file.
  void Keep() {
    const uint64_t bytes = BytesOf(before_);
    const bool isHeld = bytes <= FlowSettings().heldBytes;
    if (isHeld) Hold(bytes);
    if (!isHeld) needs_.scratch += bytes;
    kept_ = isHeld ? bytes : 0;
  }

  Way WayOf(const Stage& stage, const MadeRows& after) {
    // To begin, such a stage would read the other picture.
    if (after.over || !WorksInParts(stage)) return Way::whole;
    const RowRange top = NeedsAt(stage, after, 0);
    const RowRange middle = NeedsAt(stage, after, after.sides.height / 2);
    const RowRange bottom = NeedsAt(stage, after, after.sides.height);
    const int rows = std::max({top.count, middle.count, bottom.count});
    const bool rises = top.first <= middle.first && middle.first <= bottom.first;
    const uint64_t window = BytesOfRows(before_.layout, before_.sides.width, rows);
    // Rows in memory are used where they are.
    if (kept_ > 0 && kept_ == BytesOf(before_)) return Way::flow;
    const bool readsAnywhere = access_.rows && *access_.rows != RowAccess::rising;
    if (window <= kSmallWindow && (rises || readsAnywhere) && !LooksAtAll(stage)) {
      windows_ += window;
      return Way::flow;
    }
    const Stages& first = state_.smaller ? state_.smaller->stages : state_.stages;
    const bool isFirst = &stage == first.front().get();
    if (isFirst && access_.rows == RowAccess::anyParts) {
      windows_ += std::min(window, 2 * kSmallWindow);
      return Way::flow;
    }
    return Way::keep;
  }

  RowRange NeedsAt(const Stage& stage, const MadeRows& after, int row) const {
    constexpr int kBand = 64;
    const int count = std::min(kBand, after.sides.height);
    return stage.Needs({std::clamp(row - count / 2, 0, after.sides.height - count), count});
  }

  std::unique_ptr<BandWork> Started(const Stage& stage) const {
    try {
      return stage.Start(SampleRows(before_.layout, before_.isRaster, 1, 1), {});
    } catch (const Error&) {
      return nullptr;
    }
  }
  bool WorksInParts(const Stage& stage) const { return Started(stage) != nullptr; }
  bool LooksAtAll(const Stage& stage) const {
    const std::unique_ptr<BandWork> work = Started(stage);
    return work && work->Looks().count > 1;
  }

  const PictureState& state_;
  const PictureSource& source_;
  const Access access_;
  MadeRows before_;
  FlowNeeds needs_;
  /// Bytes of the picture that is held between stages, and of rows that flow by.
  uint64_t kept_ = 0, windows_ = 0;
};

}  // namespace

FlowNeeds NeedsOf(const PictureSource& source, const PictureState& state, bool isWhole) {
  return NeedsFinder(source, state).Find(isWhole);
}

}  // namespace rasterkit::detail
