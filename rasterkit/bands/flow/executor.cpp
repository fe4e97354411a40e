#include <rasterkit/bands/flow/executor.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {

Pixels RunStages(Pixels source, const Stages& stages, const StageRun& run, Changes& changes) {
  const auto count = static_cast<double>(stages.size());
  for (size_t i = 0; i < stages.size(); ++i) {
    RequireTime();
    StageRun part{run.threads, {}};
    if (run.progress) {
      part.progress = [&run, i, count](double done) {
        run.progress((static_cast<double>(i) + done) / count);
      };
    }
    source = stages[i]->Make(std::move(source), part, changes);
    if (part.progress) part.progress(1);
  }
  return source;
}

RowRange RowsNeeded(const Stages& stages, RowRange target) {
  for (size_t i = stages.size(); i > 0; --i) target = stages[i - 1]->Needs(target);
  return target;
}

}  // namespace rasterkit
