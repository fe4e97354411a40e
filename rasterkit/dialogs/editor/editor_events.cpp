#include <exception>
#include <utility>

#include <rasterkit/dialogs/editor/editor_state.h>

namespace rasterkit {

void EditorModel::State::Guard(const Action& action) {
  const std::shared_ptr<State> alive = shared_from_this();
  const bool before = std::exchange(isHandling, true);
  try {
    action();
  } catch (const std::exception& error) {
    view.Tell(error.what());
  }
  isHandling = before;
  if (!isClosed) view.ShowState();
}

void EditorModel::State::Handle(const Action& action) {
  if (isHandling || isWorking || isClosed) return;
  Guard(action);
}

void EditorModel::State::Start(const std::string& title, Work work, Action done, Action failed,
                               bool isSave) {
  EditorJob job;
  job.title = title;
  job.isSave = isSave;
  job.work = [work = std::move(work)](std::stop_token cancel,
                                      const std::function<void(double)>& progress) {
    work({std::move(cancel), progress});
  };
  job.done = [weak = weak_from_this(), done = std::move(done), failed = std::move(failed)](
                 const std::string& error, bool wasCanceled) {
    const std::shared_ptr<State> state = weak.lock();
    if (!state || state->isClosed) return;
    state->isWorking = false;
    state->Guard([&] {
      if (error.empty() && !wasCanceled) return done();
      if (!error.empty() && !wasCanceled) state->view.Tell(error);
      if (failed) failed();
    });
  };
  isWorking = true;
  try {
    view.StartJob(std::move(job));
  } catch (...) {
    isWorking = false;
    throw;
  }
}

}  // namespace rasterkit
