#include <algorithm>
#include <limits>
#include <string>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_job.h>
#include <rasterkit/runtime/memory/memory_share.h>
#include <rasterkit/runtime/memory/process_memory.h>

namespace rasterkit {
namespace detail {
namespace {

uint64_t Sum(uint64_t a, uint64_t b) {
  constexpr uint64_t kMost = std::numeric_limits<uint64_t>::max();
  return b > kMost - a ? kMost : a + b;
}

[[noreturn]] void ThrowTooMuch(uint64_t bytes, uint64_t held, uint64_t limit) {
  throw LimitError(LimitKind::processBytes, "a picture needs " + std::to_string(bytes) +
                                                " bytes beside the " + std::to_string(held) +
                                                " bytes in use, the limit of the process is " +
                                                std::to_string(limit) + " bytes");
}

}  // namespace

ProcessMemory& ProcessMemory::Instance() {
  static ProcessMemory& instance = *std::make_unique<ProcessMemory>().release();
  return instance;
}

bool ProcessMemory::IsAlone(const MemoryJob* job) const {
  return std::all_of(jobs_.begin(), jobs_.end(),
                     [&](const auto& other) { return other.get() == job; });
}

bool ProcessMemory::AreOthersStuck(uint64_t limit, const MemoryJob* job) const {
  return std::all_of(jobs_.begin(), jobs_.end(), [&](const auto& other) {
    return other.get() == job || (other->waiting > 0 && !Fits(other->wanted, limit, other.get()));
  });
}

bool ProcessMemory::Fits(uint64_t bytes, uint64_t limit, const MemoryJob* job) const {
  uint64_t claimed = Sum(Held(), bytes);
  if (claimed > limit) return false;
  if (job == nullptr || job->held + bytes <= job->reserved) return true;
  for (const auto& other : jobs_) {
    if (other.get() != job) claimed = Sum(claimed, other->Claimed() - other->held);
  }
  return claimed <= limit;
}

void ProcessMemory::Take(uint64_t bytes, uint64_t limit, MemoryJob* job) {
  Lock lock(mutex_);
  while (!Fits(bytes, limit, job)) {
    if (job == nullptr || IsAlone(job)) ThrowTooMuch(bytes, Held(), limit);
    if (AreOthersStuck(limit, job)) {
      job->wasRefused = true;
      ThrowTooMuch(bytes, Held(), limit);
    }
    ++job->waiting;
    job->wanted = bytes;
    ++sleepers_;
    if (!Fits(bytes, limit, job)) changed_.wait(lock);
    --sleepers_;
    --job->waiting;
  }
  held_ += bytes;
  if (job != nullptr) job->held += bytes;
}

void ProcessMemory::Return(uint64_t bytes, MemoryJob* job) {
  if (job == nullptr) {
    held_ -= bytes;
    if (sleepers_ == 0) return;
  }
  const std::lock_guard lock(mutex_);
  if (job != nullptr) {
    held_ -= bytes;
    job->held -= bytes;
  }
  changed_.notify_all();
}

bool ProcessMemory::MayEnter(const MemoryJob& job, uint64_t limit) const {
  if (entering_.front() != &job) return false;
  if (jobs_.empty()) return true;
  uint64_t claimed = Held();
  for (const auto& other : jobs_) claimed = Sum(claimed, other->Claimed() - other->held);
  return Sum(claimed, job.reserved) <= limit;
}

void ProcessMemory::Enter(const std::shared_ptr<MemoryJob>& job, uint64_t limit) {
  Lock lock(mutex_);
  jobs_.reserve(jobs_.size() + 1);
  entering_.push_back(job.get());
  ++sleepers_;
  changed_.wait(lock, [&] { return MayEnter(*job, limit); });
  --sleepers_;
  entering_.pop_front();
  jobs_.push_back(job);
  changed_.notify_all();
}

void ProcessMemory::Leave(const std::shared_ptr<MemoryJob>& job) {
  const std::lock_guard lock(mutex_);
  jobs_.erase(std::find(jobs_.begin(), jobs_.end(), job));
  changed_.notify_all();
}

bool ProcessMemory::WasRefused(const MemoryJob& job) {
  const std::lock_guard lock(mutex_);
  return job.wasRefused;
}

}  // namespace detail

using detail::MemoryJob;
using detail::ProcessMemory;

namespace {

std::shared_ptr<MemoryJob> EnteredJob(uint64_t need) {
  auto job = std::make_shared<MemoryJob>();
  job->reserved = need;
  ProcessMemory::Instance().Enter(job, CurrentLimits().processBytes);
  return job;
}

CallLimits WithJob(std::shared_ptr<MemoryJob> job) {
  CallLimits call = CurrentCall();
  call.job = std::move(job);
  return call;
}

}  // namespace

MemoryShare::MemoryShare(uint64_t bytes) {
  if (bytes == 0) return;
  auto job = CurrentCall().job;
  const uint64_t limit = CurrentLimits().processBytes;
  if (job == nullptr && limit == kNoLimit) {
    ProcessMemory::Instance().Add(bytes);
  } else {
    ProcessMemory::Instance().Take(bytes, limit, job.get());
  }
  bytes_ = bytes;
  job_ = std::move(job);
}

MemoryShare::~MemoryShare() {
  if (bytes_ > 0) ProcessMemory::Instance().Return(bytes_, job_.get());
}

MemoryShare::MemoryShare(MemoryShare&& other) noexcept
    : bytes_(std::exchange(other.bytes_, 0)), job_(std::move(other.job_)) {}

MemoryShare& MemoryShare::operator=(MemoryShare&& other) noexcept {
  MemoryShare taken(std::move(other));
  std::swap(bytes_, taken.bytes_);
  std::swap(job_, taken.job_);
  return *this;
}

uint64_t ProcessPictureBytes() {
  return ProcessMemory::Instance().Held();
}

MemoryJobScope::MemoryJobScope(uint64_t need) : job_(EnteredJob(need)), scope_(WithJob(job_)) {}

MemoryJobScope::~MemoryJobScope() {
  ProcessMemory::Instance().Leave(job_);
}

bool MemoryJobScope::WasRefused() const {
  return ProcessMemory::Instance().WasRefused(*job_);
}

void RequireMemoryOfJob() {
  const auto job = CurrentCall().job;
  if (job == nullptr || !ProcessMemory::Instance().WasRefused(*job)) return;
  throw LimitError(LimitKind::processBytes, "the limit of the process, " +
                                                std::to_string(CurrentLimits().processBytes) +
                                                " bytes, left no memory for a part of the picture");
}

}  // namespace rasterkit
