#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <exception>
#include <limits>
#include <mutex>
#include <tuple>

#include <rasterkit/bands/flow/band_pipeline.h>
#include <rasterkit/codecs/rows/worker_threads.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {
namespace {

/// The calling thread looks at the time of the call while others work.
constexpr std::chrono::milliseconds kCheckInterval{20};
constexpr int kNever = -1;

/// A step of the work in the order of the rows.
struct Place {
  int band = 0;
  size_t level = 0;
  int piece = 0;

  friend bool operator<(const Place& a, const Place& b) {
    return std::tie(a.band, a.level, a.piece) < std::tie(b.band, b.level, b.piece);
  }
};

/// A band on its way.
struct MovingBand {
  BandStep step;
  /// The window of each level that holds its rows.
  std::vector<size_t> windows;
};

struct LevelState {
  enum class Doing { nothing, placing, making };
  Doing doing = Doing::nothing;
  /// Bands that are complete; the next one is begun or under way.
  int done = 0;
  int pieces = 0, started = 0, ended = 0;
  /// The window with the rows of the last band, and the window that the next band gets.
  size_t current = 0, next = 0;
  /// The last band that uses each window.
  std::vector<int> lastBands;
};

struct Task {
  enum class Kind { none, place, make, hand };
  Kind kind = Kind::none;
  Place place;
};

bool EndsAtOnce(const std::exception_ptr& error) {
  try {
    std::rethrow_exception(error);
  } catch (const CanceledError&) {
    return true;
  } catch (const TimeLimitError&) {
    return true;
  } catch (...) {
    return false;
  }
}

/// Threads take the next step that can be done. All members are under the lock but what `Do` does.
class PipelineRun {
 public:
  PipelineRun(BandPipeline& pipeline, const StageRun& run, const TakeRows& take)
      : pipeline_(pipeline),
        run_(run),
        take_(take),
        count_(pipeline.Plan().Count()),
        low_(pipeline.Chain().firstLevel),
        end_(pipeline.Chain().LastLevel() + 1),
        levels_(end_ + 1) {
    for (size_t level = low_; level < end_; ++level) {
      levels_[level].lastBands.assign(pipeline.Windows(level), kNever);
    }
    if (low_ == 0 && pipeline.IsWhole(0) && pipeline.Pieces(0, {{0, 1}, {0, 1}}, 1) == 0) {
      levels_[0].done = std::numeric_limits<int>::max();
      low_ = 1;
    }
  }

  void Run() {
    RunOnThreads(
        std::max(1, run_.threads), [this] { Work(true); }, [this] { Work(false); });
    if (error_) std::rethrow_exception(error_);
    if (levels_[end_].done != count_) throw Error("the bands of a picture wait for each other");
  }

 private:
  void Work(bool isOwn);
  bool Step(std::unique_lock<std::mutex>& lock, bool isOwn, Task& task);
  Task Pick();
  bool Start(Task& task, size_t level);
  bool CanPlace(size_t level);
  void Do(const Task& task);
  void End(const Task& task, const std::exception_ptr& error);
  void EndLevel(size_t level);
  void Fail(const Place& place, const std::exception_ptr& error);
  bool MayStart(const Place& place) const { return !error_ || place < failedAt_; }
  MovingBand& BandAt(int band);
  void Report(std::unique_lock<std::mutex>& lock);

  BandPipeline& pipeline_;
  const StageRun& run_;
  const TakeRows& take_;
  const int count_;
  /// The first level that is made, and the level that stands for handing out.
  size_t low_;
  const size_t end_;

  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<LevelState> levels_;
  std::deque<MovingBand> bands_;
  int firstBand_ = 0;
  int running_ = 0;
  int reported_ = 0;
  std::exception_ptr error_;
  Place failedAt_;
};

MovingBand& PipelineRun::BandAt(int band) {
  while (firstBand_ + static_cast<int>(bands_.size()) <= band) {
    bands_.push_back({*pipeline_.Plan().Next(), std::vector<size_t>(end_)});
  }
  return bands_[static_cast<size_t>(band - firstBand_)];
}

/// True if the rows below are there, and a window is free or holds its rows for good.
bool PipelineRun::CanPlace(size_t level) {
  LevelState& state = levels_[level];
  const int band = state.done;
  if (band >= count_ || (level > low_ && levels_[level - 1].done <= band)) return false;
  if (level == end_) return true;
  const LevelRows& rows = BandAt(band).step.levels[level];
  state.next =
      rows.wanted.count == 0 ? state.current : (state.current + 1) % state.lastBands.size();
  return rows.wanted.count == 0 || pipeline_.IsWhole(level) ||
         levels_[level + 1].done > state.lastBands[state.next];
}

/// Begins a step of a level if there is one.
bool PipelineRun::Start(Task& task, size_t level) {
  LevelState& state = levels_[level];
  using Doing = LevelState::Doing;
  task.place = {state.done, level, state.doing == Doing::making ? state.started : 0};
  if (!MayStart(task.place)) return false;
  if (state.doing == Doing::making && state.started < state.pieces) {
    task.kind = Task::Kind::make;
    ++state.started;
    return true;
  }
  if (state.doing != Doing::nothing || !CanPlace(level)) return false;
  state.doing = Doing::placing;
  task.kind = level == end_ ? Task::Kind::hand : Task::Kind::place;
  return true;
}

/// Reading and handing out are done by one thread each: with several threads they come first. One
/// thread finishes a band before it begins the next.
Task PipelineRun::Pick() {
  Task task;
  if (run_.threads > 1 && low_ == 0 && Start(task, 0)) return task;
  for (size_t level = end_ + 1; level > low_; --level) {
    if (Start(task, level - 1)) return task;
  }
  return {};
}

void PipelineRun::Do(const Task& task) {
  const auto [band, level, piece] = task.place;
  std::unique_lock lock(mutex_);
  MovingBand& moving = BandAt(band);
  const LevelState state = levels_[level];
  lock.unlock();
  if (task.kind == Task::Kind::hand) {
    return pipeline_.Hand(moving.step.band, moving.windows.back(), take_);
  }
  const LevelRows& rows = moving.step.levels[level];
  if (task.kind == Task::Kind::place) {
    return pipeline_.Place(level, rows, state.next, state.current);
  }
  pipeline_.MakePiece(level, rows, state.current, level == 0 ? 0 : moving.windows[level - 1], piece,
                      state.pieces);
}

void PipelineRun::EndLevel(size_t level) {
  LevelState& state = levels_[level];
  state.doing = LevelState::Doing::nothing;
  ++state.done;
  if (level < end_) return;
  bands_.pop_front();
  ++firstBand_;
}

void PipelineRun::Fail(const Place& place, const std::exception_ptr& error) {
  const Place at = EndsAtOnce(error) ? Place{kNever, 0, 0} : place;
  if (error_ && !(at < failedAt_)) return;
  error_ = error;
  failedAt_ = at;
}

void PipelineRun::End(const Task& task, const std::exception_ptr& error) {
  if (error) return Fail(task.place, error);
  const size_t level = task.place.level;
  LevelState& state = levels_[level];
  if (task.kind == Task::Kind::hand) return EndLevel(level);
  if (task.kind == Task::Kind::make) {
    if (++state.ended == state.pieces) EndLevel(level);
    return;
  }
  MovingBand& band = BandAt(task.place.band);
  const LevelRows& rows = band.step.levels[level];
  state.current = state.next;
  band.windows[level] = state.current;
  // Even if no row is wanted: the place of the window is known to what is made.
  state.lastBands[state.current] = task.place.band;
  state.pieces = pipeline_.Pieces(level, rows, run_.threads);
  state.started = state.ended = 0;
  state.doing = LevelState::Doing::making;
  if (state.pieces == 0) EndLevel(level);
}

/// Others go on during a report: it ends when nothing is left to say.
void PipelineRun::Report(std::unique_lock<std::mutex>& lock) {
  while (run_.progress && levels_[end_].done != reported_ && !error_) {
    reported_ = levels_[end_].done;
    const double part = static_cast<double>(reported_) / count_;
    lock.unlock();
    std::exception_ptr error;
    try {
      run_.progress(part);
    } catch (...) {
      error = std::current_exception();
    }
    lock.lock();
    if (!error) continue;
    error_ = error;
    failedAt_ = {kNever, 0, 0};
  }
}

/// One step under the lock, or a wait for one. False if nothing is left to do.
bool PipelineRun::Step(std::unique_lock<std::mutex>& lock, bool isOwn, Task& task) {
  if (isOwn) Report(lock);
  task = Pick();
  if (task.kind == Task::Kind::none) {
    if (running_ == 0) return false;
    if (!isOwn) {
      changed_.wait(lock);
      return true;
    }
    changed_.wait_for(lock, kCheckInterval);
    RequireTime();
    return true;
  }
  ++running_;
  lock.unlock();
  std::exception_ptr error;
  try {
    RequireTime();
    Do(task);
  } catch (...) {
    error = std::current_exception();
  }
  lock.lock();
  --running_;
  End(task, error);
  return true;
}

/// Whatever fails ends the run: the other threads wait for the lock, and for no step that never
/// comes.
void PipelineRun::Work(bool isOwn) {
  std::unique_lock lock(mutex_);
  for (bool goesOn = true; goesOn;) {
    Task task;
    try {
      goesOn = Step(lock, isOwn, task);
    } catch (...) {
      const bool isStep = task.kind != Task::Kind::none;
      Fail(isStep ? task.place : Place{kNever, 0, 0}, std::current_exception());
    }
    changed_.notify_all();
  }
}

}  // namespace

void RunPipeline(BandPipeline& pipeline, const StageRun& run, const TakeRows& take) {
  PipelineRun(pipeline, run, take).Run();
}

}  // namespace rasterkit::detail
