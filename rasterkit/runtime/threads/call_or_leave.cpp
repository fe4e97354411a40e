#include <chrono>
#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/threads/call_or_leave.h>

namespace rasterkit::detail {
namespace {

constexpr std::chrono::milliseconds kBetweenLooks{20};

struct Call {
  std::function<void()> work;
  std::mutex mutex;
  std::condition_variable ended;
  bool isDone = false;
  std::exception_ptr error;
};

void Run(const std::shared_ptr<Call>& call) {
  std::exception_ptr error;
  try {
    call->work();
  } catch (...) {
    error = std::current_exception();
  }
  // What the work owns is free when the caller goes on.
  call->work = nullptr;
  const std::lock_guard lock(call->mutex);
  call->isDone = true;
  call->error = std::move(error);
  call->ended.notify_one();
}

}  // namespace

void CallOrLeave(std::function<void()> work) {
  RequireTime();
  const auto call = std::make_shared<Call>();
  call->work = std::move(work);
  try {
    std::thread([call] { Run(call); }).detach();
  } catch (const std::system_error&) {
    call->work();
    return;
  }
  std::unique_lock lock(call->mutex);
  while (!call->ended.wait_for(lock, kBetweenLooks, [&] { return call->isDone; })) {
    lock.unlock();
    RequireTime();
    lock.lock();
  }
  if (call->error) std::rethrow_exception(call->error);
}

}  // namespace rasterkit::detail
