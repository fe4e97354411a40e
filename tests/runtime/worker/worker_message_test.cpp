#include <gmock/gmock.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/worker/worker_errors.h>
#include <rasterkit/runtime/worker/worker_message.h>
#include <rasterkit/runtime/worker/worker_setup.h>

namespace rasterkit::detail {
namespace {

WorkerMessage ParseAgain(const WorkerMessage& message) {
  return ParseWorkerMessage(PackWorkerMessage(message), {});
}

TEST(WorkerMessageTest, Parse_Should_ReturnTheMessage_When_ItWasPacked) {
  const WorkerMessage message = ParseAgain({77, {1, 2, 3}});
  EXPECT_EQ(message.kind, 77);
  EXPECT_THAT(message.body, testing::ElementsAre(1, 2, 3));
  EXPECT_TRUE(message.files.empty());
}

TEST(WorkerMessageTest, Parse_Should_Throw_When_AnyHeaderByteDiffers) {
  const std::vector<uint8_t> packet = PackWorkerMessage({77, {1, 2, 3}});
  for (size_t place = 0; place < kWorkerHeaderBytes; ++place) {
    // Every kind is left to whoever expects one.
    if (place == 6 || place == 7) continue;
    std::vector<uint8_t> changed = packet;
    ++changed[place];
    EXPECT_THROW(ParseWorkerMessage(changed, {}), FormatError) << place;
  }
  for (size_t length = 0; length < packet.size(); ++length) {
    EXPECT_THROW(ParseWorkerMessage(std::span(packet).first(length), {}), FormatError) << length;
  }
}

TEST(WorkerMessageTest, Pack_Should_Throw_When_TheBodyIsTooLong) {
  EXPECT_NO_THROW(PackWorkerMessage({1, std::vector<uint8_t>(kMostWorkerBodyBytes)}));
  EXPECT_THROW(PackWorkerMessage({1, std::vector<uint8_t>(kMostWorkerBodyBytes + 1)}), LimitError);
}

TEST(WorkerMessageTest, ReadSetup_Should_ReturnIt_When_ItWasWritten) {
  WorkerSetup setup{WorkerReader::pdf, {}};
  setup.limits.pictureBytes = 1;
  setup.limits.processBytes = 2;
  setup.limits.pixels = 3;
  setup.limits.side = 4;
  setup.limits.seconds = 0.5;
  setup.limits.refuseImplausible = false;
  EXPECT_EQ(ReadSetup(ParseAgain(SetupMessage(setup))), setup);
}

TEST(WorkerMessageTest, ReadFailed_Should_ReturnTheError_When_ItWasThrown) {
  const auto written = [](const auto& error) {
    return ReadFailed(ParseAgain(FailedMessage(std::make_exception_ptr(error))));
  };
  EXPECT_THROW(ThrowWorkerError(written(FileError("a"))), FileError);
  EXPECT_THROW(ThrowWorkerError(written(FormatError("a"))), FormatError);
  EXPECT_THROW(ThrowWorkerError(written(UnsupportedError("a"))), UnsupportedError);
  EXPECT_THROW(ThrowWorkerError(written(RangeError("a"))), RangeError);
  EXPECT_THROW(ThrowWorkerError(written(ConversionError("a"))), ConversionError);
  EXPECT_THROW(ThrowWorkerError(written(DivisionByZeroError("a"))), DivisionByZeroError);
  EXPECT_THROW(ThrowWorkerError(written(TimeLimitError("a"))), TimeLimitError);
  EXPECT_THROW(ThrowWorkerError(written(std::bad_alloc())), std::bad_alloc);
  try {
    ThrowWorkerError(written(LimitError(LimitKind::side, "too wide")));
  } catch (const LimitError& error) {
    EXPECT_EQ(error.Kind(), LimitKind::side);
    EXPECT_EQ(error.Reason(), "too wide");
  }
  EXPECT_EQ(written(std::runtime_error("other")).reason, "other");
}

TEST(WorkerMessageTest, FailedMessage_Should_CutTheReason_When_ItIsEndless) {
  const auto message =
      FailedMessage(std::make_exception_ptr(FormatError(std::string(1000000, '\x80'))));
  const std::string reason = ReadFailed(ParseAgain(message)).reason;
  EXPECT_LT(reason.size(), 7000u);
  EXPECT_TRUE(reason.starts_with("\uFFFD\uFFFD"));
}

TEST(WorkerMessageTest, WorkerMemoryBytes_Should_NotOverflow_When_ThereIsNoLimit) {
  Limits limits;
  limits.pictureBytes = kNoLimit;
  EXPECT_EQ(WorkerMemoryBytes(limits, 1000), kNoLimit);
  limits.pictureBytes = 1 << 20;
  EXPECT_LT(WorkerMemoryBytes(limits), uint64_t{300} << 20);
}

}  // namespace
}  // namespace rasterkit::detail
