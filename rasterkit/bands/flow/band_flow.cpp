#include <algorithm>
#include <utility>

#include <rasterkit/bands/flow/band_flow.h>
#include <rasterkit/bands/flow/flow_builder.h>
#include <rasterkit/bands/flow/foretold_rows.h>

namespace rasterkit {

class BandFlow::Parts {
 public:
  Stages stages;
  std::unique_ptr<detail::FlowBuilder> builder;
};

BandFlow::BandFlow(std::unique_ptr<RowReader> reader, Stages stages, FlowSettings settings)
    : parts_(std::make_unique<Parts>()) {
  parts_->stages = std::move(stages);
  parts_->builder = std::make_unique<detail::FlowBuilder>(std::move(reader), std::move(settings));
}

BandFlow::~BandFlow() = default;

void BandFlow::Begin(const StageRun& run) {
  const auto count = static_cast<double>(parts_->stages.size());
  for (size_t i = 0; i < parts_->stages.size(); ++i) {
    StageRun part{run.threads, {}};
    if (run.progress) {
      part.progress = [&run, i, count](double done) {
        run.progress((static_cast<double>(i) + done) / count);
      };
    }
    parts_->builder->Add(*parts_->stages[i], part);
  }
  if (run.progress) run.progress(1);
}

const Pixels& BandFlow::Like() const {
  return parts_->builder->Chain().Like();
}

Sides BandFlow::Size() const {
  return parts_->builder->Chain().Size();
}

void BandFlow::Run(const StageRun& run, const std::function<void(Pixels& rows, int top)>& take) {
  parts_->builder->Run(run, take);
}

Pixels BandFlow::Whole(const StageRun& run) {
  return parts_->builder->Whole(run);
}

void BandFlow::Finish(CodecReport& report, Changes& changes) {
  parts_->builder->Finish(report, changes);
}

FlowNeeds ForetellFlow(const RowReader& reader, const Stages& stages,
                       const FlowSettings& settings) {
  const detail::ForetoldRows facts(reader.Like(), {reader.Width(), reader.Height()},
                                   reader.Access(), reader.BlockRows());
  detail::FlowBuilder builder(std::make_shared<detail::ForetoldRows>(facts), settings);
  for (const auto& stage : stages) builder.Add(*stage, {});
  builder.Run({}, {});
  return builder.Needs();
}

}  // namespace rasterkit
