#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include <rasterkit/bands/flow/flow_builder.h>
#include <rasterkit/bands/flow/flow_division.h>
#include <rasterkit/bands/flow/foretold_rows.h>
#include <rasterkit/bands/flow/memory_rows.h>
#include <rasterkit/bands/flow/scratch_rows.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_share.h>

namespace rasterkit::detail {
namespace {

/// All levels together.
constexpr uint64_t kBytesOfBands = uint64_t{4} << 20;
/// The same where bands are made of parts of the source: high bands need fewer and larger parts.
constexpr uint64_t kBytesOfPartBands = uint64_t{32} << 20;
/// What bands and decoders take beside pictures that are kept in memory.
constexpr uint64_t kBytesBeside = uint64_t{24} << 20;
/// Rows that a work needs at once up to this size flow by.
constexpr uint64_t kSmallWindow = uint64_t{8} << 20;

/// The rows of a band that a pass needs, as a band of their own.
void LookAt(BandWork& work, RowRange looks, Pixels& rows, int top, const StageRun& run) {
  const int first = std::max(looks.first, top);
  const int end = std::min(looks.first + looks.count, top + HeightOf(rows));
  if (first >= end) return;
  Band band{std::move(rows), 0, top};
  if (end - first == HeightOf(band.pixels)) {
    work.Look(band, run);
  } else {
    work.Look(CutBand(band, {0, first, WidthOf(band.pixels), end - first}), run);
  }
  rows = std::move(band.pixels);
}

bool IsMemory(const RowChain& chain) {
  const auto* foretold = dynamic_cast<const ForetoldRows*>(chain.source.get());
  return foretold != nullptr ? foretold->IsInMemory()
                             : dynamic_cast<const MemoryRows*>(chain.source.get()) != nullptr;
}

/// What was noticed each time is said once.
void AddWhatIsNew(const std::vector<std::string>& from, std::vector<std::string>& to) {
  std::vector<std::string> known = to;
  for (const std::string& text : from) {
    const auto found = std::find(known.begin(), known.end(), text);
    if (found == known.end()) {
      to.push_back(text);
    } else {
      known.erase(found);
    }
  }
}

/// A row without content stands for all.
void LookAtBlank(BandWork& work, const RowChain& chain) {
  Band row{NewPixels(chain.Like(), chain.Size().width, 1), 0, work.Looks().first};
  const int planes =
      std::holds_alternative<Samples>(row.pixels) ? std::get<Samples>(row.pixels).Planes() : 1;
  uint8_t* const bytes = std::visit([](auto& rows) { return rows.Row(0); }, row.pixels);
  const size_t stride = std::visit([](const auto& rows) { return rows.Stride(); }, row.pixels);
  std::memset(bytes, 0, stride * static_cast<size_t>(planes));
  work.Look(row, {});
}

}  // namespace

FlowBuilder::FlowBuilder(std::shared_ptr<RowReader> reader, FlowSettings settings)
    : settings_(std::move(settings)), reader_(std::move(reader)) {
  chain_.source = reader_;
}

void FlowBuilder::Add(const Stage& stage, const StageRun& run) {
  RequireTime();
  ends_.emplace_back();
  std::shared_ptr<BandWork> work = stage.Start(chain_.Like(), {settings_.threads, {}});
  if (!work) return AddWhole(stage, run);
  while (work->Looks().count > 0) {
    LookAtRows(*work, run);
    work->Decide();
  }
  ends_.back().work = work;
  AddWork(std::move(work), run);
  if (run.progress) run.progress(1);
}

uint64_t FlowBuilder::BytesAtEnd() const {
  return BytesOfPixels(chain_.Like(), chain_.Size().width, chain_.Size().height);
}

/// All rows of the chain so far.
Pixels FlowBuilder::Whole(const StageRun& run, const TakeRows& take) {
  auto* memory = dynamic_cast<MemoryRows*>(chain_.source.get());
  if (!take && chain_.works.empty() && memory != nullptr && memory->MayChange()) {
    return std::move(memory->Whole());
  }
  Pixels whole = NewPixels(chain_.Like(), chain_.Size().width, chain_.Size().height);
  BandPipeline pipeline = NewPipeline(AllRows());
  pipeline.KeepIn(whole);
  RunPipeline(pipeline, run, take);
  return whole;
}

/// Makes the rows once and keeps them in memory, or in a scratch file if that is too much and they
/// are read as rows or parts.
void FlowBuilder::KeepRows(const StageRun& run, const TakeRows& take, bool mayUseScratch) {
  const bool isInMemory = !mayUseScratch || FitsMemory(BytesAtEnd());
  if (IsForetold()) return KeepForetold(isInMemory);
  if (isInMemory) {
    chain_.source = std::make_shared<MemoryRows>(std::make_shared<Pixels>(Whole(run, take)), true);
  } else {
    const auto scratch =
        std::make_shared<ScratchRows>(chain_.Like(), chain_.Size(), settings_.scratchFolder);
    BandPipeline pipeline = NewPipeline(AllRows());
    RunPipeline(pipeline, run, [&](Pixels& rows, int top) {
      scratch->Keep(rows, top);
      if (take) take(rows, top);
    });
    chain_.source = scratch;
  }
  chain_.works.clear();
  chain_.firstLevel = 0;
}

/// Beside the bands.
bool FlowBuilder::FitsMemory(uint64_t bytes) const {
  const Limits limits = CurrentLimits();
  if (bytes > settings_.heldBytes || bytes > limits.pictureBytes) return false;
  if (limits.processBytes == kNoLimit) return true;
  const uint64_t others = ProcessPictureBytes() + kBytesBeside;
  return others < limits.processBytes && bytes <= limits.processBytes - others;
}

RowRange FlowBuilder::AllRows() const {
  return {0, chain_.Size().height};
}

/// Less if the process may not take more.
uint64_t FlowBuilder::BandBytes() const {
  // Several threads fill a band while another one is handed out.
  const uint64_t ofParts = kBytesOfPartBands / (settings_.threads > 1 ? 2 : 1);
  const uint64_t usual = chain_.firstLevel > 0 ? ofParts : kBytesOfBands;
  const uint64_t limit = CurrentLimits().processBytes;
  if (limit == kNoLimit) return usual;
  const uint64_t held = ProcessPictureBytes();
  return std::min(usual, held < limit ? (limit - held) / 4 : 0);
}

BandDivision FlowBuilder::Division(RowRange rows) const {
  return DivisionOf(chain_, rows, settings_.rows, BandBytes());
}

BandPipeline FlowBuilder::NewPipeline(RowRange rows) {
  // Another band height may need rows in another order than that which the ways were chosen for.
  if (chain_.source->Access() == RowAccess::rising && chain_.firstLevel == 0 &&
      !BandPlan(chain_, Division(rows)).IsRising()) {
    KeepSource();
  }
  return {chain_, Division(rows), settings_.threads > 1 && !HasLargeBlocks(chain_)};
}

bool FlowBuilder::IsForetold() const {
  return dynamic_cast<const ForetoldRows*>(chain_.source.get()) != nullptr;
}

void FlowBuilder::CountPipeline(const BandPipeline& pipeline, uint64_t beside) {
  const auto& source = dynamic_cast<const ForetoldRows&>(*chain_.source);
  needs_.memory = std::max(
      needs_.memory, pipeline.BytesOfWindows(settings_.threads) + source.BytesHeld() + beside);
}

void FlowBuilder::KeepForetold(bool isInMemory) {
  CountPipeline(NewPipeline(AllRows()), isInMemory ? BytesAtEnd() : 0);
  // Rows that were kept before stay until these are complete.
  const uint64_t scratch = isInMemory ? 0 : ScratchRows::BytesFor(chain_.Like(), chain_.Size());
  needs_.scratch = std::max(needs_.scratch, keptScratch_ + scratch);
  keptScratch_ = scratch;
  chain_ = {ForetoldRows::Kept(chain_.Like(), chain_.Size(), isInMemory), {}, 0};
}

void FlowBuilder::KeepSource() {
  RowChain whole = std::exchange(chain_, RowChain{chain_.source, {}, 0});
  KeepRows({settings_.threads, {}}, {}, true);
  whole.source = chain_.source;
  chain_ = std::move(whole);
}

void FlowBuilder::AddWhole(const Stage& stage, const StageRun& run) {
  if (IsForetold()) return KeepForetold(true);
  const double half = 0.5;
  StageRun first{settings_.threads, {}}, second = first;
  if (run.progress) {
    first.progress = [&](double done) { run.progress(done * half); };
    second.progress = [&](double done) { run.progress(half + done * half); };
  }
  Pixels made = stage.Make(Whole(first, {}), second, ends_.back().changes);
  chain_.source = std::make_shared<MemoryRows>(std::make_shared<Pixels>(std::move(made)), true);
  chain_.works.clear();
  chain_.firstLevel = 0;
}

void FlowBuilder::LookAtRows(BandWork& work, const StageRun& run) {
  if (IsForetold()) LookAtBlank(work, chain_);
  const RowRange looks = work.Looks();
  const StageRun part{settings_.threads, run.progress};
  const TakeRows look = [&](Pixels& rows, int top) {
    LookAt(work, looks, rows, top, {std::max(1, settings_.threads - 1), {}});
  };
  const bool isAll = looks.count == chain_.Size().height;
  const bool isCheap = chain_.works.empty() && IsMemory(chain_);
  if (chain_.source->Access() == RowAccess::rising ||
      (isAll && !isCheap && BytesAtEnd() <= settings_.heldBytes / 4)) {
    return KeepRows(part, look, true);
  }
  BandPipeline pipeline = NewPipeline(looks);
  if (IsForetold()) return CountPipeline(pipeline, 0);
  RunPipeline(pipeline, part, look);
  if (chain_.source != reader_) return;
  CodecReport noticed;
  reader_->Finish(noticed);
  AddWhatIsNew(noticed.warnings, earlier_.warnings);
  AddWhatIsNew(noticed.damage, earlier_.damage);
}

BandPlan FlowBuilder::UsualPlan() const {
  BandDivision division = DivisionOf(chain_, AllRows(), 0, std::min(kBytesOfBands, BandBytes()));
  if (settings_.rows > 0) division.height = std::min(division.height, settings_.rows);
  return {chain_, division};
}

/// The most bytes that the last work needs at once.
uint64_t FlowBuilder::BytesBelowLast() const {
  const size_t below = chain_.LastLevel() - 1;
  return static_cast<uint64_t>(UsualPlan().MostRows(below)) * chain_.RowBytes(below);
}

/// How the rows below the last work come to it.
FlowBuilder::Way FlowBuilder::WayOfLast() const {
  const BandPlan plan = UsualPlan();
  const RowAccess access = chain_.source->Access();
  if (access == RowAccess::rising && !plan.IsRising()) return Way::keep;
  if (chain_.LastLevel() == 1 && IsMemory(chain_)) return Way::flow;
  const uint64_t bytes = BytesBelowLast();
  if (bytes <= std::min(kSmallWindow, settings_.heldBytes / 4)) return Way::flow;
  const bool makesParts = std::all_of(chain_.works.begin(), chain_.works.end(),
                                      [](const auto& work) { return work->MakesParts(); });
  if (makesParts && access == RowAccess::anyParts) return Way::parts;
  return plan.IsRising() && bytes <= settings_.heldBytes / 2 ? Way::flow : Way::keep;
}

void FlowBuilder::AddWork(std::shared_ptr<BandWork> work, const StageRun& run) {
  chain_.works.push_back(std::move(work));
  const Sides size = chain_.Size();
  RequirePictureSize(
      static_cast<uint64_t>(size.width), static_cast<uint64_t>(size.height),
      "picture of " + std::to_string(size.width) + " x " + std::to_string(size.height) + " pixels");
  Way way = WayOfLast();
  if (way == Way::keep) {
    const bool mayUseScratch =
        chain_.works.back()->MakesParts() || BytesBelowLast() <= kSmallWindow;
    std::shared_ptr<BandWork> last = std::move(chain_.works.back());
    chain_.works.pop_back();
    KeepRows({settings_.threads, run.progress}, {}, mayUseScratch);
    chain_.works.push_back(std::move(last));
    way = WayOfLast();
  }
  if (way == Way::parts) chain_.firstLevel = chain_.LastLevel();
}

void FlowBuilder::Run(const StageRun& run, const TakeRows& take) {
  BandPipeline pipeline = NewPipeline(AllRows());
  if (IsForetold()) return CountPipeline(pipeline, 0);
  RunPipeline(pipeline, {settings_.threads, run.progress}, take);
}

void FlowBuilder::Finish(CodecReport& report, Changes& changes) {
  CodecReport last;
  reader_->Finish(last);
  AddWhatIsNew(earlier_.warnings, last.warnings);
  AddWhatIsNew(earlier_.damage, last.damage);
  report.Append(last);
  for (StageEnd& end : ends_) {
    if (end.work) end.work->Finish(end.changes);
    for (Loss& loss : end.changes.losses) changes.losses.push_back(std::move(loss));
    for (std::string& note : end.changes.notes) changes.notes.push_back(std::move(note));
  }
}

}  // namespace rasterkit::detail
