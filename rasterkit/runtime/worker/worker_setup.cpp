#include <algorithm>

#include <rasterkit/runtime/worker/fields.h>
#include <rasterkit/runtime/worker/worker_setup.h>

namespace rasterkit::detail {
namespace {

constexpr uint64_t kProgramBytes = uint64_t{256} << 20;
constexpr uint32_t kMostLandlockVersion = 1000;

uint64_t Sum(uint64_t a, uint64_t b) {
  return a > kNoLimit - b ? kNoLimit : a + b;
}

}  // namespace

WorkerMessage SetupMessage(const WorkerSetup& setup) {
  FieldWriter writer;
  writer.Enum(setup.reader);
  writer.U64(setup.limits.pictureBytes);
  writer.U64(setup.limits.processBytes);
  writer.U64(setup.limits.pixels);
  writer.U64(setup.limits.side);
  writer.F64(setup.limits.seconds);
  writer.Bool(setup.limits.refuseImplausible);
  return {kWorkerSetup, writer.Take()};
}

WorkerSetup ReadSetup(const WorkerMessage& message) {
  if (message.kind != kWorkerSetup) ThrowBadMessage("the setup is missing");
  FieldReader reader(message.body);
  WorkerSetup setup;
  setup.reader = reader.Enum(WorkerReader::pdf);
  setup.limits.pictureBytes = reader.U64();
  setup.limits.processBytes = reader.U64();
  setup.limits.pixels = reader.U64();
  setup.limits.side = reader.U64();
  setup.limits.seconds = reader.F64();
  setup.limits.refuseImplausible = reader.Bool();
  reader.RequireEnd();
  return setup;
}

WorkerMessage ReadyMessage(const WorkerProtection& protection) {
  FieldWriter writer;
  writer.U32(static_cast<uint32_t>(protection.landlockVersion));
  writer.Bool(protection.filtersCalls);
  return {kWorkerReady, writer.Take()};
}

WorkerProtection ReadReady(const WorkerMessage& message) {
  if (message.kind != kWorkerReady || !message.files.empty()) {
    ThrowBadMessage("the first answer is another one");
  }
  FieldReader reader(message.body);
  WorkerProtection protection;
  protection.landlockVersion = static_cast<int>(reader.U32In(0, kMostLandlockVersion));
  protection.filtersCalls = reader.Bool();
  reader.RequireEnd();
  return protection;
}

uint64_t WorkerMemoryBytes(const Limits& limits, uint64_t more) {
  const uint64_t content = std::min(limits.pictureBytes, limits.processBytes);
  return Sum(Sum(content, kProgramBytes), more);
}

}  // namespace rasterkit::detail
