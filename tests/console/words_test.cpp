// SPDX-License-Identifier: MIT
#include "console/words.h"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <random>

namespace qk::console {
namespace {

TEST(ConsoleWords, EachIconHasItsWord) {
  EXPECT_EQ(IconWord(Icon::None), "none");
  EXPECT_EQ(IconWord(Icon::Information), "information");
  EXPECT_EQ(IconWord(Icon::Question), "question");
  EXPECT_EQ(IconWord(Icon::Exclamation), "exclamation");
  EXPECT_EQ(IconWord(Icon::Critical), "critical");
}

TEST(ConsoleWords, EachSetOfButtonsHasItsWords) {
  EXPECT_EQ(ButtonsWord(Buttons::Ok), "ok");
  EXPECT_EQ(ButtonsWord(Buttons::OkCancel), "ok/cancel");
  EXPECT_EQ(ButtonsWord(Buttons::YesNo), "yes/no");
  EXPECT_EQ(ButtonsWord(Buttons::RetryCancel), "retry/cancel");
}

TEST(ConsoleWords, EachDialogHasItsWord) {
  EXPECT_EQ(DialogWord(DialogKind::Open), "open");
  EXPECT_EQ(DialogWord(DialogKind::Save), "save");
  EXPECT_EQ(DialogWord(DialogKind::Colour), "colour");
  EXPECT_EQ(DialogWord(DialogKind::Print), "print");
}

TEST(ConsoleWords, EachKindOfControlHasItsWord) {
  EXPECT_EQ(KindWord(ControlKind::Label), "Label");
  EXPECT_EQ(KindWord(ControlKind::TextField), "TextField");
  EXPECT_EQ(KindWord(ControlKind::CheckBox), "CheckBox");
  EXPECT_EQ(KindWord(ControlKind::OptionButton), "OptionButton");
  EXPECT_EQ(KindWord(ControlKind::ListField), "ListField");
  EXPECT_EQ(KindWord(ControlKind::Button), "Button");
  EXPECT_EQ(KindWord(ControlKind::MenuItem), "MenuItem");
  EXPECT_EQ(KindWord(ControlKind::ProgressBar), "ProgressBar");
  EXPECT_EQ(KindWord(ControlKind::Picture), "Picture");
}

TEST(ConsoleWords, AnswersAreTakenByTheirExactWords) {
  EXPECT_EQ(AnswerOf("ok"), Answer::Ok);
  EXPECT_EQ(AnswerOf("cancel"), Answer::Cancel);
  EXPECT_EQ(AnswerOf("yes"), Answer::Yes);
  EXPECT_EQ(AnswerOf("no"), Answer::No);
  EXPECT_EQ(AnswerOf("retry"), Answer::Retry);
  EXPECT_EQ(AnswerOf("OK"), std::nullopt);
  EXPECT_EQ(AnswerOf(""), std::nullopt);
}

TEST(ConsoleWords, ABoxOffersItsOwnButtonsAndNoOthers) {
  EXPECT_TRUE(Offers(Buttons::RetryCancel, Answer::Retry));
  EXPECT_TRUE(Offers(Buttons::RetryCancel, Answer::Cancel));
  EXPECT_FALSE(Offers(Buttons::RetryCancel, Answer::Ok));
  EXPECT_FALSE(Offers(Buttons::Ok, Answer::Cancel));
  EXPECT_TRUE(Offers(Buttons::YesNo, Answer::No));
}

TEST(ConsoleWords, AnyLineBreakBecomesBackslashN) {
  EXPECT_EQ(OneLine("a\nb\r\nc\rd"), "a\\nb\\nc\\nd");
  EXPECT_EQ(OneLine("plain"), "plain");
  EXPECT_EQ(OneLine("end\n"), "end\\n");
}

TEST(ConsoleWords, NumbersHaveSeventeenSignificantDigits) {
  EXPECT_EQ(Digits17(0.1), "0.10000000000000001");
  EXPECT_EQ(Digits17(3e6), "3000000");
  EXPECT_EQ(Digits17(-0.5), "-0.5");
  EXPECT_EQ(Digits17(1e-5), "1.0000000000000001e-05");
}

TEST(ConsoleWords, EveryNumberReadsBackTheSame) {
  std::mt19937_64 random(5);
  for (int i = 0; i < 20000; ++i) {
    const auto value = std::bit_cast<double>(random());
    if (!std::isfinite(value)) continue;
    const std::string text = Digits17(value);
    double back = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), back);
    ASSERT_EQ(error, std::errc()) << text;
    ASSERT_EQ(end, text.data() + text.size()) << text;
    ASSERT_EQ(back, value) << text;
  }
}

TEST(ConsoleWords, WhatFollowsTheFirstWordStandsAsItIs) {
  std::string_view rest;
  EXPECT_EQ(FirstWord("set A.B  two blanks ", rest), "set");
  EXPECT_EQ(rest, "A.B  two blanks ");
  EXPECT_EQ(FirstWord("quit", rest), "quit");
  EXPECT_EQ(rest, "");
}

TEST(ConsoleWords, WordsArePartedByBlanksAndTabs) {
  EXPECT_EQ(Words("  a\tb  c "), (std::vector<std::string_view>{"a", "b", "c"}));
  EXPECT_TRUE(Words("").empty());
}

TEST(ConsoleWords, WholeNumbersHaveNothingElseInThem) {
  EXPECT_EQ(WholeNumber("12"), 12);
  EXPECT_EQ(WholeNumber("-3"), -3);
  EXPECT_EQ(WholeNumber("1.5"), std::nullopt);
  EXPECT_EQ(WholeNumber("12x"), std::nullopt);
  EXPECT_EQ(WholeNumber(""), std::nullopt);
  EXPECT_EQ(WholeNumber("99999999999999999999"), std::nullopt);
}

}  // namespace
}  // namespace qk::console
