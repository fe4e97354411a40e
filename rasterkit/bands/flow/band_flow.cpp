#include <optional>
#include <utility>

#include <rasterkit/bands/flow/band_flow.h>
#include <rasterkit/bands/flow/executor.h>

namespace rasterkit {

class BandFlow::Parts {
 public:
  std::unique_ptr<RowReader> reader;
  Stages stages;
  FlowSettings settings;
  Changes changes;
  std::optional<Pixels> made;
};

BandFlow::BandFlow(std::unique_ptr<RowReader> reader, Stages stages, FlowSettings settings)
    : parts_(std::make_unique<Parts>()) {
  parts_->reader = std::move(reader);
  parts_->stages = std::move(stages);
  parts_->settings = std::move(settings);
}

BandFlow::~BandFlow() = default;

void BandFlow::Begin(const StageRun& run) {
  RowReader& reader = *parts_->reader;
  Pixels source;
  if (!reader.TakeAll(source)) {
    source = NewPixels(reader.Like(), reader.Width(), reader.Height());
    reader.Read(0, 0, source);
  }
  parts_->made = RunStages(std::move(source), parts_->stages, run, parts_->changes);
}

const Pixels& BandFlow::Like() const {
  return *parts_->made;
}

Sides BandFlow::Size() const {
  return {WidthOf(*parts_->made), HeightOf(*parts_->made)};
}

void BandFlow::Run(const StageRun&, const std::function<void(Pixels& rows, int top)>& take) {
  take(*parts_->made, 0);
}

void BandFlow::Finish(CodecReport& report, Changes& changes) {
  parts_->reader->Finish(report);
  for (Loss& loss : parts_->changes.losses) changes.losses.push_back(std::move(loss));
  for (std::string& note : parts_->changes.notes) changes.notes.push_back(std::move(note));
}

}  // namespace rasterkit
