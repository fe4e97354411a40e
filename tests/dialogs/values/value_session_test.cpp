#include <map>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/values/value_session.h>
#include <rasterkit/runtime/ports.h>

#include "tests/support/paper_pictures.h"

namespace rasterkit {
namespace {

using enum ValueControl;

constexpr unsigned kSeed = 2201;

TBitmap Photo() {
  std::mt19937 random(kSeed);
  return test::PaperBitmap(pf24bit, 30, 20, random, 1);
}

/// Settings in memory, for the time of a test.
class Settings {
 public:
  Settings() : before_(HostPorts()) {
    HostPorts().readSetting = [this](const std::string& section,
                                     const std::string& key) -> std::optional<std::string> {
      const auto found = texts.find(section + '/' + key);
      if (found == texts.end()) return std::nullopt;
      return found->second;
    };
    HostPorts().writeSetting = [this](const std::string& section, const std::string& key,
                                      const std::string& value) {
      texts[section + '/' + key] = value;
    };
  }
  ~Settings() { HostPorts() = before_; }

  std::map<std::string, std::string> texts;

 private:
  const Ports before_;
};

void ExpectSame(const AdjustColors& a, const AdjustColors& b) {
  EXPECT_EQ(a.brightness, b.brightness);
  EXPECT_EQ(a.contrast, b.contrast);
  EXPECT_EQ(a.sharpen, b.sharpen);
  EXPECT_EQ(a.red, b.red);
  EXPECT_EQ(a.green, b.green);
  EXPECT_EQ(a.blue, b.blue);
}

class ValueSessionTest : public testing::Test {
 protected:
  Settings settings;
  TBitmap photo = Photo();
  ValueSession values{photo, AdjustColors{}};
  ValueSession threshold{photo, MakeMono{}};
};

TEST_F(ValueSessionTest, TheAnswer_Should_BeTheNumbers) {
  values.Change(lightness, 1);
  values.Change(contrast, -2);
  values.Change(sharpen, 3);
  values.Change(red, -4);
  values.Change(green, 5);
  values.Change(blue, 600);
  ExpectSame(values.Adjustment(), {1, -2, 3, -4, 5, 100});
}

TEST_F(ValueSessionTest, TheStart_Should_BeShown_AndBeConfirmable) {
  const AdjustColors start{10, -20, 30, -40, 50, -60};
  const ValueSession session(photo, start);
  ExpectSame(session.Adjustment(), start);
  EXPECT_TRUE(session.CanConfirm());
  EXPECT_FALSE(session.CanUndo());
}

TEST_F(ValueSessionTest, OK_Should_BePale_When_NothingIsChanged) {
  EXPECT_FALSE(values.CanConfirm());
  values.Change(sharpen, 1);
  EXPECT_TRUE(values.CanConfirm());
  values.Change(sharpen, 0);
  EXPECT_FALSE(values.CanConfirm());
}

TEST_F(ValueSessionTest, OK_Should_BePale_When_ThePictureIsBlackAndWhiteAlready) {
  EXPECT_TRUE(threshold.CanConfirm());
  TBitmap mono;
  mono.SetPixelFormat(pf1bit);
  mono.SetSize(8, 8);
  ValueSession session(mono, MakeMono{});
  EXPECT_FALSE(session.CanConfirm());
  session.Change(grayValue, 0);
  EXPECT_TRUE(session.CanConfirm()) << "all white";
  EXPECT_TRUE(ValueSession(mono, MakeMono{125, 0x123456, clWhite}).CanConfirm());
  const std::vector<tagPALETTEENTRY> swapped = {{255, 255, 255, 0}, {0, 0, 0, 0}};
  mono.SetPalette(HPALETTE(swapped));
  EXPECT_TRUE(ValueSession(mono, MakeMono{}).CanConfirm());
}

TEST_F(ValueSessionTest, ChangesOfOneControl_Should_BeOneStepOfUndo_UntilTheyEnd) {
  values.Change(red, 10);
  values.Change(red, 20);
  values.Change(red, 30);
  values.EndChange();
  values.Change(red, 40);
  values.Change(green, 5);
  values.Undo();
  EXPECT_EQ(values.Number(green), 0);
  EXPECT_EQ(values.Number(red), 40);
  values.Undo();
  EXPECT_EQ(values.Number(red), 30);
  values.Undo();
  EXPECT_EQ(values.Number(red), 0);
  EXPECT_FALSE(values.CanUndo());
  values.Undo();
  EXPECT_EQ(values.Number(red), 0);
  for (int i = 0; i < 3; ++i) {
    EXPECT_TRUE(values.CanRedo());
    values.Redo();
  }
  EXPECT_FALSE(values.CanRedo());
  EXPECT_EQ(values.Number(red), 40);
  EXPECT_EQ(values.Number(green), 5);
}

TEST_F(ValueSessionTest, AChangeBackToItsStart_Should_LeaveNothingToUndo) {
  values.Change(green, 5);
  values.EndChange();
  values.Change(red, 10);
  values.Change(red, 0);
  EXPECT_FALSE(values.CanRedo());
  // It goes on from there.
  values.Change(red, 20);
  values.Change(red, 30);
  values.Undo();
  EXPECT_EQ(values.Number(red), 0);
  EXPECT_EQ(values.Number(green), 5);
  values.Undo();
  EXPECT_EQ(values.Number(green), 0);
  EXPECT_FALSE(values.CanUndo());
}

TEST_F(ValueSessionTest, AChange_Should_EndRedo_AndNotJoinWhatWasUndone) {
  values.Change(red, 10);
  values.Change(green, 20);
  values.Undo();
  values.Change(red, 30);
  EXPECT_FALSE(values.CanRedo());
  values.Undo();
  EXPECT_EQ(values.Number(red), 10);
  EXPECT_EQ(values.Number(green), 0);
}

TEST_F(ValueSessionTest, AReset_Should_BeOfOneControl_OrOfAll_AndUndoable) {
  values.Change(red, 10);
  values.Change(contrast, 20);
  EXPECT_TRUE(values.CanReset(red));
  EXPECT_FALSE(values.CanReset(blue));
  values.Reset(red);
  EXPECT_EQ(values.Number(red), 0);
  EXPECT_EQ(values.Number(contrast), 20);
  values.Undo();
  EXPECT_EQ(values.Number(red), 10);
  values.ResetAll();
  ExpectSame(values.Adjustment(), {});
  EXPECT_FALSE(values.CanResetAll());
  values.Undo();
  ExpectSame(values.Adjustment(), {0, 20, 0, 10, 0, 0});
  threshold.Change(grayValue, 200);
  threshold.Reset(grayValue);
  EXPECT_EQ(threshold.Number(grayValue), 125);
}

TEST_F(ValueSessionTest, AResetOfNothing_Should_NotBeAStep) {
  values.ResetAll();
  values.Reset(red);
  EXPECT_FALSE(values.CanUndo());
  threshold.ResetAll();
  EXPECT_FALSE(threshold.CanUndo());
}

TEST_F(ValueSessionTest, AutomaticThreshold_Should_AnswerWithNone_AndShowWhatWasFound) {
  EXPECT_EQ(threshold.Mono().threshold, 125);
  threshold.SetAutomatic(true);
  EXPECT_EQ(threshold.Mono().threshold, std::nullopt);
  threshold.SetFoundThreshold(90);
  EXPECT_EQ(threshold.Number(grayValue), 90);
  EXPECT_EQ(threshold.FoundThreshold(), 90);
  EXPECT_TRUE(threshold.IsAutomatic());
  threshold.Change(grayValue, 90);
  EXPECT_TRUE(threshold.IsAutomatic()) << "a control that follows does not choose";
  threshold.Change(grayValue, 91);
  EXPECT_FALSE(threshold.IsAutomatic());
  EXPECT_EQ(threshold.Mono().threshold, 91);
  threshold.Undo();
  EXPECT_TRUE(threshold.IsAutomatic());
  EXPECT_EQ(threshold.Number(grayValue), 90);
}

TEST_F(ValueSessionTest, WhatWasFound_Should_NotMoveAThresholdThatTheUserChose) {
  threshold.Change(grayValue, 200);
  threshold.SetFoundThreshold(90);
  EXPECT_EQ(threshold.Number(grayValue), 200);
  threshold.SetAutomatic(true);
  EXPECT_EQ(threshold.Number(grayValue), 90);
  threshold.SetAutomatic(false);
  EXPECT_EQ(threshold.Number(grayValue), 90) << "the user goes on from there";
}

TEST_F(ValueSessionTest, TheColorsOfBlackAndWhite_Should_BeThoseOfTheStart) {
  const ValueSession session(photo, MakeMono{std::nullopt, 0x112233, 0xFFEEDD});
  EXPECT_TRUE(session.IsAutomatic());
  EXPECT_EQ(session.Mono().dark, 0x112233);
  EXPECT_EQ(session.Mono().light, 0xFFEEDD);
  EXPECT_EQ(session.Values().CurrentChange().dark, 0x112233);
}

TEST_F(ValueSessionTest, LastValues_Should_ComeBack_InAnotherWindow) {
  EXPECT_FALSE(values.CanUseLast());
  values.Change(red, 33);
  values.Change(sharpen, -7);
  values.Remember();
  threshold.SetAutomatic(true);
  threshold.Remember();
  ValueSession next(photo, AdjustColors{});
  EXPECT_TRUE(next.CanUseLast());
  EXPECT_EQ(next.Number(red), 0) << "only on demand";
  next.UseLast();
  ExpectSame(next.Adjustment(), {0, 0, -7, 33, 0, 0});
  EXPECT_FALSE(next.CanUseLast());
  EXPECT_TRUE(next.CanUndo());
  ValueSession other(photo, MakeMono{});
  other.UseLast();
  EXPECT_TRUE(other.IsAutomatic());
}

TEST_F(ValueSessionTest, BrokenSettings_Should_BeIgnored_AndNumbersClamped) {
  settings.texts["Values/LastValues"] = "1 2 x";
  EXPECT_FALSE(ValueSession(photo, AdjustColors{}).CanUseLast());
  settings.texts["Values/LastValues"] = "999 0 0 0 0 0 0 0";
  ValueSession session(photo, AdjustColors{});
  session.UseLast();
  EXPECT_EQ(session.Number(lightness), 100);
}

TEST(TextOfValues, Should_BeReadBack_AndNothingElse) {
  const ChosenValues chosen{{1, -2, 3, -4, 5, -6, 256}, true};
  EXPECT_EQ(TextOfValues(chosen), "1 -2 3 -4 5 -6 256 1");
  EXPECT_EQ(ValuesOfText(TextOfValues(chosen)), chosen);
  for (const char* text : {"", "1", "1 2 3 4 5 6 7", "1 2 3 4 5 6 7 2", "1 2 3 4 5 6 7 1 ",
                           "1  2 3 4 5 6 7 1", "99999999999 2 3 4 5 6 7 1", "a 2 3 4 5 6 7 1"})
    EXPECT_EQ(ValuesOfText(text), std::nullopt) << text;
}

TEST_F(ValueSessionTest, OnChange_Should_BeCalledOnceForEachChange) {
  int calls = 0;
  values.OnChange = [&] { ++calls; };
  values.Change(red, 5);
  EXPECT_EQ(calls, 1);
  values.Change(red, 5);
  EXPECT_EQ(calls, 1) << "the same number";
  values.ResetAll();
  EXPECT_EQ(calls, 2);
}

}  // namespace
}  // namespace rasterkit
