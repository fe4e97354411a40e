#include <algorithm>
#include <chrono>
#include <memory>
#include <thread>

#include <rasterkit/runtime/worker/worker_slots.h>

namespace rasterkit::detail {
namespace {

constexpr std::chrono::milliseconds kBetweenQuestions{10};

constexpr uint64_t kLeastWorkerBytes = uint64_t{64} << 20;

/// Workers that this thread uses now.
thread_local int usedByThread = 0;

bool Contains(const std::list<WorkerHolder*>& holders, const WorkerHolder& holder) {
  return std::find(holders.begin(), holders.end(), &holder) != holders.end();
}

}  // namespace

WorkerSlots& WorkerSlots::Instance() {
  // Never destroyed: holders may be static objects.
  static WorkerSlots& slots =
      *std::make_unique<WorkerSlots>(std::max(std::thread::hardware_concurrency(), 1u)).release();
  return slots;
}

bool WorkerSlots::TakeFromIdle() {
  if (idle_.empty()) return false;
  // Under the lock: the holder must not start to use its worker meanwhile.
  idle_.front()->GiveUpWorker();
  idle_.pop_front();
  return true;
}

bool WorkerSlots::HasPlace(WorkerHolder& holder) const {
  return Contains(idle_, holder) || used_.size() + idle_.size() < places_ || usedByThread > 0;
}

bool WorkerSlots::TryUse(WorkerHolder& holder) {
  std::unique_lock lock(mutex_);
  if (!HasPlace(holder) && !TakeFromIdle()) {
    changed_.wait_for(lock, kBetweenQuestions);
    if (!HasPlace(holder) && !TakeFromIdle()) return false;
  }
  idle_.remove(&holder);
  used_.push_back(&holder);
  ++usedByThread;
  return true;
}

size_t WorkerSlots::Places() const {
  const std::lock_guard lock(mutex_);
  return places_;
}

void WorkerSlots::SetPlaces(size_t places) {
  const std::lock_guard lock(mutex_);
  places_ = places;
}

void WorkerSlots::Rest(WorkerHolder& holder) {
  const std::lock_guard lock(mutex_);
  used_.remove(&holder);
  idle_.push_back(&holder);
  --usedByThread;
  changed_.notify_one();
}

void WorkerSlots::Leave(WorkerHolder& holder) {
  const std::lock_guard lock(mutex_);
  if (Contains(used_, holder)) --usedByThread;
  used_.remove(&holder);
  idle_.remove(&holder);
  changed_.notify_one();
}

void SetMostWorkers(size_t most) {
  WorkerSlots::Instance().SetPlaces(std::max<size_t>(most, 1));
}

Limits LimitsOfWorker(Limits limits, size_t most) {
  const uint64_t all = limits.processBytes;
  if (all != kNoLimit) limits.processBytes = std::min(all, std::max(all / most, kLeastWorkerBytes));
  return limits;
}

}  // namespace rasterkit::detail
