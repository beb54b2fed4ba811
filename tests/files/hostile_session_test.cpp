// SPDX-License-Identifier: MIT
// Damaged, cut, foreign and hostile session files: refused with line and cause, and the session is
// as it was, every bit.
#include <gtest/gtest.h>

#include "files/session_file.h"
#include "random_session.h"
#include "session_text.h"

namespace qk {
namespace {

using namespace test;

// A whole file of 51 points, and a session that differs from it in everything.
struct HostileSession : testing::Test {
  std::string whole;
  std::unique_ptr<Session> session = AnySession(2);
  std::unique_ptr<Session> before = AnySession(2);
  Rows rows{51, 51};

  HostileSession() {
    const auto written = AnySession(21);
    const PlanGrid grid{10e6, 60e6, 1e6, 51};
    static_cast<PlanGrid&>(written->Plan) = grid;
    written->Plan.SavedPlan = grid;
    whole = SessionBytes(*written);
  }

  // What the file is refused with; empty, and the session put back, when it is not.
  std::string WhyRefused(std::string_view text) {
    const Result<Done> read = ReadSession(text, *session);
    if (!read) return read.Why().Text();
    *session = *before;
    return "";
  }
  void ExpectUntouched() {
    ExpectSame(*session, *before);
    EXPECT_EQ(session->Cal.CalThruReady, before->Cal.CalThruReady);
  }
  // The whole file with line n replaced.
  std::string With(int n, const std::string& line) const {
    const std::size_t begin = BeginOf(whole, n);
    return whole.substr(0, begin) + line + whole.substr(whole.find('\r', begin));
  }
};

TEST_F(HostileSession, CutBehindAnyLineUpToTheLabelsIsRefusedAndLaterIsAnEarlierStep) {
  std::size_t end = 0;
  for (int line = 0; line < LinesOf(whole); ++line) {
    const bool inAnArray = line > rows.Sweep() + 50 && line < rows.Markers();
    const std::string_view cut(whole.data(), end);
    end = whole.find('\n', end) + 1;
    if (inAnArray && line % 7 != 0) continue;
    const std::string why = WhyRefused(cut);
    if (line == 0) {
      ASSERT_EQ(why, kInvalidHeader);
    } else if (line < rows.Interpolated() - 1) {
      ASSERT_EQ(why, "line " + std::to_string(line) + ": the file ends too soon");
    } else {
      ASSERT_EQ(why, "") << line;
    }
  }
  ExpectUntouched();
}

TEST_F(HostileSession, CutAtAByteOfALineIsNeverTakenForWhole) {
  const std::size_t labels = BeginOf(whole, rows.Interpolated());
  for (std::size_t size = 1; size < labels - 3; size += size < 2000 ? 1 : 97)
    ASSERT_NE(WhyRefused(whole.substr(0, size)), "") << size;
  ExpectUntouched();
}

TEST_F(HostileSession, CutAnywhereBehindTheLabelsIsAFileOfAnEarlierStep) {
  const std::size_t labels = BeginOf(whole, rows.Interpolated());
  const std::size_t thru = BeginOf(whole, rows.HasThru());
  for (std::size_t size = labels; size <= whole.size(); size += 1) {
    const bool inAnArray = size > labels + 200 && (size < thru - 20 || size > thru + 20);
    if (inAnArray && size % 199 != 0) continue;
    ASSERT_EQ(WhyRefused(std::string_view(whole.data(), size)), "") << size;
  }
  ExpectUntouched();
}

TEST_F(HostileSession, WithAnyItemSpoiltIsRefusedByItsLine) {
  int line = 1;
  int spoilt = 0;
  for (std::size_t at = 0; at < whole.size();) {
    const bool quoted = whole[at] == '"';
    std::size_t end = quoted ? at + 1 : whole.find_first_of(",\r", at);
    while (quoted) {  // a doubled quote is inside the text
      end = whole.find('"', end) + 1;
      if (whole[end] != '"') break;
      ++end;
    }
    // Arrays of thousands of items: some of them.
    if (spoilt++ < 400 || spoilt % 61 == 0) {
      const std::string text = whole.substr(0, at) + "~" + whole.substr(end);
      const std::string why = WhyRefused(text);
      if (line == 1) {
        ASSERT_EQ(why, kInvalidHeader);
      } else if (line < rows.Last()) {
        ASSERT_EQ(why.rfind("line " + std::to_string(line) + ": ", 0), 0u) << line << why;
      }
    }
    if (whole[end] == '\r') ++line, ++end;
    at = end + 1;
  }
  EXPECT_GT(spoilt, 7000);
  ExpectUntouched();
}

TEST_F(HostileSession, WithAnyLineLeftOutIsRefusedUpToTheArrays) {
  for (int line = 2; line < rows.Sweep(); ++line) {
    const std::size_t begin = BeginOf(whole, line);
    const std::size_t end = BeginOf(whole, line + 1);
    ASSERT_NE(WhyRefused(whole.substr(0, begin) + whole.substr(end)), "") << line;
  }
  ExpectUntouched();
}

TEST_F(HostileSession, CountsThatAreNoneAreRefused) {
  for (const char* count : {"1025", "0", "-1", "32767", "100000", "52", "50.5"})
    EXPECT_NE(WhyRefused(With(2, std::string(count) + ",1000000,1,10000000,60000000,1000000")), "")
        << count;
  const int saved = rows.SavedPlan();
  EXPECT_EQ(WhyRefused(With(saved, "10000000,60000000,1025,1000000")),
            "line " + std::to_string(saved) + ": NumPoints is not one of its choices");
  ExpectUntouched();
}

TEST_F(HostileSession, SweepsThatTheInstrumentHasNotAreRefused) {
  const std::string why =
      "line 2: start, stop, points and step do not form a sweep of the instrument";
  EXPECT_EQ(WhyRefused(With(2, "51,1000000,1,10000000,60000000,1000000")), "");
  EXPECT_EQ(WhyRefused(With(2, "51,1000000,1,0,50000000,1000000")), why);
  EXPECT_EQ(WhyRefused(With(2, "51,1000000,1,3000000000,3500000000,10000000")), why);
  EXPECT_EQ(WhyRefused(With(2, "51,1000000,1,10000000,60000000,2000000")), why);
  EXPECT_EQ(WhyRefused(With(2, "51,1000000,1,10000000,10000000,0")), why);
  EXPECT_EQ(WhyRefused(With(2, "51,1000000,1,-1e308,1e308,1e307")), why);
}

TEST_F(HostileSession, ASweepMayMissItsStopBy1HzAndEndAt3080Point1MHz) {
  const std::string why =
      "line 2: start, stop, points and step do not form a sweep of the instrument";
  const auto plan = [&](const char* start, const char* stop, const char* step) {
    return WhyRefused(With(2, std::string("51,1000000,1,") + start + "," + stop + "," + step));
  };
  EXPECT_EQ(plan("10000000", "60000001", "1000000"), "");
  EXPECT_EQ(plan("10000000", "59999999", "1000000"), "");
  EXPECT_EQ(plan("10000000", "60000001.1", "1000000"), why);
  EXPECT_EQ(plan("10000000", "59999998.9", "1000000"), why);
  EXPECT_EQ(plan("3030100000", "3080100000", "1000000"), "");
  EXPECT_EQ(plan("3030100001", "3080100001", "1000000"), why);
}

TEST_F(HostileSession, NumbersOutOfTheirRangeAreRefused) {
  struct Case {
    int Line;
    const char* Text;
    const char* Why;
  };
  const Case kCases[] = {
      {2, "51,77,1,10000000,60000000,1000000", "FreqUnit is not one of its choices"},
      {2, "51,1000000,256,10000000,60000000,1000000", "Averages is 256, not from 0 to 255"},
      {16, "1,13,0,1,4", "Port1Level is 1, not from -20 to 0"},
      {16, "0,13,-21,1,4", "CalLevel is -21, not from -20 to 0"},
      {16, "0,13,0,1,0", "PlotRefreshPoints is 0, not from 1 to 1024"},
      {24, "5,0", "ActiveChannel is 5, not from 1 to 4"},
      {24, "1,11", "SmoothingPercent is 11, not from 0 to 10"},
      {31, "11", "TdKaiserOrder is 11, not from 1 to 10"},
      {18, "1e39,0", "the number '1e39' is out of range"},
      {34, "0,0,nan,0,0,0", "the number 'nan' is out of range"},
      {35, "inf,0", "the number 'inf' is out of range"},
      {rows.Channel(1) + 1, "0,9,10", "RefPosition is 9, not from 0 to 8"},
      {rows.Markers() + 1, "1025", "the marker's point is 1025, not from 0 to 1024"},
      {rows.Kit1Load() + 2, "1e40,0,0", "a frequency is out of range"},
      {rows.SystemZo(), "9.99", "SystemZo is 9.989999771118164, not from 10 to 200"},
      {rows.Controls(), "2", "a switch is neither 0 nor 1"},
      {rows.Controls() + 10, "3", "a choice is out of range"},
      {rows.Controls() + 16, "65536", "the traces of the markers is 65536, not from 0 to 65535"},
      {rows.Colours(), "16777216,0,0,0,0,0,0", "a colour is out of range"}};
  for (const Case& c : kCases)
    EXPECT_EQ(WhyRefused(With(c.Line, c.Text)), "line " + std::to_string(c.Line) + ": " + c.Why);
  ExpectUntouched();
}

TEST_F(HostileSession, WordsAndFlagsThatAreNoneAreRefused) {
  EXPECT_EQ(WhyRefused(With(10, "\"S12\"")), "line 10: 'S12' is not one of the words allowed here");
  EXPECT_EQ(WhyRefused(With(14, "\"data\"")),
            "line 14: 'data' is not one of the words allowed here");
  EXPECT_EQ(
      WhyRefused(With(rows.Channel(2), "\"Hz\"")),
      "line " + std::to_string(rows.Channel(2)) + ": 'Hz' is not one of the words allowed here");
  EXPECT_EQ(WhyRefused(With(14, "\"Data\"\r\n#TRUE#\r\n0")),
            "line 15: a flag contradicts DisplayMode");
  EXPECT_EQ(WhyRefused(With(4, "#TRUE#\r\n#TRUE#\r\n#TRUE#")),
            "line 7: more than one kind of calibration is in force");
  ExpectUntouched();
}

TEST_F(HostileSession, AnUnclosedTextAndAMegabyteInALineAreRefused) {
  EXPECT_EQ(WhyRefused(With(32, "\"Kit")), "line 32: a text is not closed");
  const std::string mega(1 << 20, '7');
  EXPECT_EQ(WhyRefused(With(32, "\"" + mega + "\"")), "line 32: a text is too long");
  EXPECT_EQ(WhyRefused(With(18, mega + ",0")),
            "line 18: the number '" + mega.substr(0, 40) + "...' is out of range");
  EXPECT_EQ(WhyRefused(mega), kInvalidHeader);
  EXPECT_EQ(WhyRefused("\"" + mega), kInvalidHeader);
  ExpectUntouched();
}

TEST_F(HostileSession, LinesMayEndAsTheyLikeSinceItemsCount) {
  for (const char* end : {"\n", "\r", "\r\n\r\n"}) {
    std::string text;
    for (const char c : whole)
      if (c == '\n')
        text += end;
      else if (c != '\r')
        text += c;
    const Result<Done> read = ReadSession(text, *session);
    ASSERT_TRUE(read.Ok()) << read.Why().Text();
    EXPECT_EQ(SessionBytes(*session), whole);
  }
}

}  // namespace
}  // namespace qk
