#include <gtest/gtest.h>

#include <rasterkit/runtime/worker/worker_program.h>

namespace rasterkit {
namespace {

/// The worker of the build, for all tests of this program.
class WorkerOfBuild : public testing::Environment {
 public:
  void SetUp() override { detail::SetWorkerProgram(RASTERKIT_WORKER); }
};

const testing::Environment* const worker = testing::AddGlobalTestEnvironment(new WorkerOfBuild);

}  // namespace
}  // namespace rasterkit
