#include <limits>
#include <stop_token>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/threads/thread.h>

namespace rasterkit::test {
namespace {

class LimitsTest : public testing::Test {
 protected:
  void TearDown() override { SetDefaultLimits({}); }
};

/// A long time: no test waits for its end.
constexpr double kHour = 3600;

TEST_F(LimitsTest, Defaults_AreFourGiBPerPictureAndNothingElse) {
  const Limits limits = DefaultLimits();
  EXPECT_EQ(limits.pictureBytes, uint64_t{4294967296});
  EXPECT_EQ(limits.processBytes, kNoLimit);
  EXPECT_EQ(limits.pixels, kNoLimit);
  EXPECT_EQ(limits.side, kNoLimit);
  EXPECT_EQ(limits.seconds, kNoTimeLimit);
  EXPECT_TRUE(limits.refuseImplausible);
  EXPECT_EQ(CurrentLimits(), limits);
}

TEST_F(LimitsTest, Default_HoldsForAllThreads) {
  SetDefaultLimits({.pixels = 5});
  std::thread([] { EXPECT_EQ(CurrentLimits().pixels, 5u); }).join();
}

TEST_F(LimitsTest, Stricter_TakesTheLeastOfEachField) {
  const Limits a{1, 20, 3, 40, 5, false}, b{10, 2, 30, 4, 50, true};
  const Limits least{1, 2, 3, 4, 5, true};
  EXPECT_EQ(Stricter(a, b), least);
  EXPECT_EQ(Stricter(b, a), least);
  EXPECT_EQ(Stricter(a, a), a);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(Stricter({.seconds = nan}, {.seconds = 5}).seconds, 5);
  EXPECT_EQ(Stricter({.seconds = 5}, {.seconds = nan}).seconds, 5);
}

TEST_F(LimitsTest, Scope_ReplacesTheDefaultOnItsThreadOnly) {
  SetDefaultLimits({.pictureBytes = 100, .side = 7});
  {
    const LimitsScope scope({.pictureBytes = 1000});
    EXPECT_EQ(CurrentLimits().pictureBytes, 1000u);
    EXPECT_EQ(CurrentLimits().side, kNoLimit);
    std::thread([] { EXPECT_EQ(CurrentLimits().pictureBytes, 100u); }).join();
  }
  EXPECT_EQ(CurrentLimits().pictureBytes, 100u);
}

TEST_F(LimitsTest, InnerScope_OnlyNarrows) {
  const LimitsScope outer({.pictureBytes = 1000, .pixels = 10});
  {
    const LimitsScope inner({.pictureBytes = 2000, .pixels = 5});
    EXPECT_EQ(CurrentLimits().pictureBytes, 1000u);
    EXPECT_EQ(CurrentLimits().pixels, 5u);
  }
  EXPECT_EQ(CurrentLimits().pixels, 10u);
}

class Probe : public TThread {
 public:
  Limits limits;
  double left = 0;

 protected:
  void Execute() override {
    limits = CurrentLimits();
    left = SecondsLeft();
  }
};

TEST_F(LimitsTest, ThreadsOfACall_HaveItsLimitsAndItsEnd) {
  const auto outside = MakeThread<Probe>();
  const LimitsScope scope({.pictureBytes = 10,
                           .processBytes = 20,
                           .pixels = 30,
                           .side = 40,
                           .seconds = kHour,
                           .refuseImplausible = false});
  const auto inside = MakeThread<Probe>();
  inside->Start();
  inside->WaitFor();
  EXPECT_EQ(inside->limits, CurrentLimits());
  EXPECT_GT(inside->left, 0);
  EXPECT_LE(inside->left, kHour);
  // What counts is the start, not the making.
  outside->Start();
  outside->WaitFor();
  EXPECT_EQ(outside->limits, CurrentLimits());
}

TEST_F(LimitsTest, CallOnAnotherThread_CanBeJoined) {
  const LimitsScope scope({.pixels = 30, .seconds = kHour});
  const double left = SecondsLeft();
  std::thread([call = CurrentCall(), left] {
    EXPECT_EQ(CurrentLimits().pixels, kNoLimit);
    const LimitsScope joined(call);
    EXPECT_EQ(CurrentLimits().pixels, 30u);
    EXPECT_LE(SecondsLeft(), left) << "the time does not start again";
    EXPECT_GT(SecondsLeft(), 0);
  }).join();
}

TEST_F(LimitsTest, Time_IsOver_When_TheScopeHasNone) {
  EXPECT_NO_THROW(RequireTime());
  for (const double seconds : {0.0, -1.0, -std::numeric_limits<double>::infinity()}) {
    const LimitsScope scope({.seconds = seconds});
    EXPECT_EQ(SecondsLeft(), 0);
    EXPECT_THROW(RequireTime(), TimeLimitError);
  }
  EXPECT_NO_THROW(RequireTime());
}

TEST_F(LimitsTest, Time_HasNoEnd_When_ItIsNotFiniteOrBeyondTheClock) {
  for (const double seconds : {kNoTimeLimit, std::numeric_limits<double>::quiet_NaN(), 1e300}) {
    const LimitsScope scope({.seconds = seconds});
    EXPECT_EQ(SecondsLeft(), kNoTimeLimit);
    EXPECT_NO_THROW(RequireTime());
  }
}

TEST_F(LimitsTest, TimeError_NamesTheLimit) {
  const LimitsScope scope({.seconds = 0});
  try {
    RequireTime();
    FAIL();
  } catch (const TimeLimitError& error) {
    EXPECT_EQ(error.Reason(), "the time limit of 0 seconds is over");
    EXPECT_EQ(error.Kind(), LimitKind::seconds);
  }
}

TEST_F(LimitsTest, InnerScope_DoesNotStartTheTimeAgain) {
  const LimitsScope outer({.seconds = kHour});
  const double left = SecondsLeft();
  {
    const LimitsScope same;
    EXPECT_LE(SecondsLeft(), left);
    const LimitsScope longer({.seconds = 2 * kHour});
    EXPECT_LE(SecondsLeft(), left);
    const LimitsScope shorter({.seconds = kHour / 2});
    EXPECT_LE(SecondsLeft(), kHour / 2);
  }
  EXPECT_GT(SecondsLeft(), kHour / 2);
}

TEST_F(LimitsTest, PlainScope_StartsTheTimeOfTheDefault) {
  SetDefaultLimits({.seconds = 0});
  EXPECT_NO_THROW(RequireTime()) << "no call runs";
  const LimitsScope call;
  EXPECT_THROW(RequireTime(), TimeLimitError);
}

LimitKind KindOfRefusal(uint64_t width, uint64_t height) {
  try {
    RequirePictureSize(width, height, "a picture");
    return LimitKind::fixed;
  } catch (const LimitError& error) {
    return error.Kind();
  }
}

TEST_F(LimitsTest, Sides_MayEqualTheLimit) {
  const LimitsScope scope({.side = 100});
  EXPECT_EQ(KindOfRefusal(100, 100), LimitKind::fixed);
  EXPECT_EQ(KindOfRefusal(101, 1), LimitKind::side);
  EXPECT_EQ(KindOfRefusal(1, 101), LimitKind::side);
}

TEST_F(LimitsTest, Pixels_MayEqualTheLimit) {
  const LimitsScope scope({.pixels = 600});
  EXPECT_EQ(KindOfRefusal(20, 30), LimitKind::fixed);
  EXPECT_EQ(KindOfRefusal(601, 1), LimitKind::pixels);
  EXPECT_EQ(KindOfRefusal(0, 601), LimitKind::fixed);
  EXPECT_EQ(KindOfRefusal(uint64_t{1} << 33, uint64_t{1} << 33), LimitKind::pixels)
      << "the product has more than 64 bits";
}

TEST_F(LimitsTest, SizeError_NamesLimitAndNeed) {
  const LimitsScope scope({.pixels = 600, .side = 100});
  const auto reason = [](uint64_t width, uint64_t height) -> std::string {
    try {
      RequirePictureSize(width, height, "PNG picture");
      return "";
    } catch (const LimitError& error) {
      return error.Reason();
    }
  };
  EXPECT_EQ(reason(30, 30), "PNG picture has 900 pixels, the limit is 600");
  EXPECT_EQ(reason(30, 300), "PNG picture has 300 pixels per side, the limit is 100");
}

TEST_F(LimitsTest, Cancel_EndsTheCallOnEveryOfItsThreads) {
  std::stop_source outer, inner;
  const LimitsScope scope(Limits(), outer.get_token());
  const LimitsScope within(Limits(), inner.get_token());
  EXPECT_NO_THROW(RequireTime());
  EXPECT_EQ(SecondsLeft(), kNoTimeLimit);
  outer.request_stop();
  EXPECT_THROW(RequireTime(), CanceledError);
  EXPECT_EQ(SecondsLeft(), 0);
  std::thread([call = CurrentCall()] {
    EXPECT_NO_THROW(RequireTime());
    const LimitsScope joined(call);
    EXPECT_THROW(RequireTime(), CanceledError);
  }).join();
}

TEST_F(LimitsTest, Cancel_OfAnInnerCallEndsThatOneAlone) {
  std::stop_source inner;
  const LimitsScope scope(Limits{}, std::stop_token{});
  {
    const LimitsScope within(Limits{}, inner.get_token());
    inner.request_stop();
    EXPECT_THROW(RequireTime(), CanceledError);
  }
  EXPECT_NO_THROW(RequireTime());
}

TEST_F(LimitsTest, Checks_AreSeenOnTheThreadOfTheScopeAlone) {
  int checks = 0;
  const LimitsScope scope(Limits(), {}, [&] { ++checks; });
  RequireTime();
  {
    const LimitsScope within;
    RequireTime();
  }
  EXPECT_EQ(checks, 2);
  std::thread([call = CurrentCall()] {
    const LimitsScope joined(call);
    RequireTime();
  }).join();
  EXPECT_EQ(checks, 2);
}

}  // namespace
}  // namespace rasterkit::test
