#include <future>
#include <memory>
#include <stop_token>
#include <thread>

#include <gtest/gtest.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/threads/call_or_leave.h>

namespace rasterkit::detail {
namespace {

TEST(CallOrLeave, Should_WaitForTheWork) {
  auto result = std::make_shared<int>(0);
  CallOrLeave([result] { *result = 7; });
  EXPECT_EQ(*result, 7);
  EXPECT_EQ(result.use_count(), 1);
}

TEST(CallOrLeave, Should_PassOnErrors) {
  EXPECT_THROW(CallOrLeave([] { throw FormatError("broken"); }), FormatError);
}

/// The work waits for the end of the call, so that the call cannot have waited for it.
template <class E>
void ExpectLeft(const Limits& limits, std::stop_token cancel, const std::function<void()>& end) {
  auto release = std::make_shared<std::promise<void>>();
  auto ended = std::make_shared<std::promise<void>>();
  std::future<void> isEnded = ended->get_future();
  const LimitsScope scope(limits, std::move(cancel));
  EXPECT_THROW(CallOrLeave([=, mayEnd = release->get_future().share()] {
                 end();
                 mayEnd.wait();
                 ended->set_value();
               }),
               E);
  EXPECT_EQ(isEnded.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
  release->set_value();
  isEnded.wait();
}

TEST(CallOrLeave, Should_Leave_When_Canceled) {
  std::stop_source source;
  ExpectLeft<CanceledError>({}, source.get_token(), [source]() mutable { source.request_stop(); });
}

TEST(CallOrLeave, Should_Leave_When_TimeIsOver) {
  Limits limits;
  limits.seconds = 0.1;
  ExpectLeft<TimeLimitError>(limits, {}, [] {});
}

TEST(CallOrLeave, Should_NotBegin_When_Canceled) {
  std::stop_source source;
  source.request_stop();
  const LimitsScope scope(Limits(), source.get_token());
  EXPECT_THROW(CallOrLeave([] { ADD_FAILURE() << "runs"; }), CanceledError);
}

}  // namespace
}  // namespace rasterkit::detail
