#include <utility>
#include <vector>

#include <rasterkit/codecs/rows/worker_threads.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/threads/thread.h>

namespace rasterkit::detail {

namespace {

class WorkerThread : public TThread {
 public:
  explicit WorkerThread(std::function<void()> work) : work_(std::move(work)) {}

 protected:
  void Execute() override { work_(); }

 private:
  const std::function<void()> work_;
};

}  // namespace

void RunOnThreads(int threads, const std::function<void()>& own,
                  const std::function<void()>& other) {
  std::vector<ThreadPtr<WorkerThread>> others;
  try {
    for (int i = 1; i < threads; i++) {
      others.push_back(MakeThread<WorkerThread>(other));
      others.back()->Start();
    }
  } catch (const LimitError&) {
    // The system has no more threads.
  }
  own();
  for (const auto& thread : others) thread->WaitFor();
  for (const auto& thread : others) {
    if (thread->FatalException()) std::rethrow_exception(thread->FatalException());
  }
}

}  // namespace rasterkit::detail
