// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "console/data_lines.h"
#include "console/words.h"

namespace qk {
namespace {

using Texts = std::vector<std::string>;

struct Data {
  Data() {
    session->Plan.NumPoints = 51;
    session->Plan.StartFreq = 3e6;
    session->Plan.StepFreq = 1e5;
  }
  // The lines, or none and the reason.
  Texts Lines(const std::string& words) {
    const Result<Texts> lines = DataLines(*session, console::Words(words));
    given = lines.Ok();
    reason = given ? "" : lines.Why().Text();
    return given ? *lines : Texts();
  }
  Texts Lines(const std::string& what, const std::string& name) { return Lines(what + " " + name); }
  std::unique_ptr<Session> session = MakeSession();
  std::string reason;
  bool given = false;
};

TEST(ConsoleData, RawAndCorrectedCountFromZeroWithTheFrequencyInHertz) {
  Data data;
  data.session->Data.RawS21.Set(2, {0.1, -2});
  data.session->Data.S21.Set(2, {3, 0.25});
  EXPECT_EQ(data.Lines("raw", "S21").size(), 51u);
  EXPECT_EQ(data.Lines("raw", "S21")[2], "2 3200000 0.10000000000000001 -2");
  EXPECT_EQ(data.Lines("corrected", "S21")[2], "2 3200000 3 0.25");
  EXPECT_EQ(data.Lines("corrected", "S21")[0], "0 3000000 0 0");
}

TEST(ConsoleData, EachParameterIsItsOwnArray) {
  Data data;
  SParamData& d = data.session->Data;
  ComplexArray* raw[] = {&d.RawS11, &d.RawS21, &d.RawS12, &d.RawS22};
  ComplexArray* corrected[] = {&d.S11, &d.S21, &d.S12, &d.S22};
  const char* names[] = {"S11", "S21", "S12", "S22"};
  for (int i = 0; i < 4; ++i) {
    raw[i]->Set(0, {1.0 + i, 0});
    corrected[i]->Set(0, {5.0 + i, 0});
  }
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(data.Lines("raw", names[i])[0], "0 3000000 " + std::to_string(1 + i) + " 0");
    EXPECT_EQ(data.Lines("corrected", names[i])[0], "0 3000000 " + std::to_string(5 + i) + " 0");
  }
}

TEST(ConsoleData, ATraceCountsFromOneInHertz) {
  Data data;
  data.session->Channel(2).Value[1] = -12.5;
  data.session->Channel(2).Value2[1] = 0.5;
  EXPECT_EQ(data.Lines("trace", "2").size(), 51u);
  EXPECT_EQ(data.Lines("trace", "2")[0], "1 3000000 -12.5 0.5");
  EXPECT_EQ(data.Lines("trace", "2")[50].substr(0, 11), "51 8000000 ");
}

TEST(ConsoleData, WhatTheCalibrationDoesNotMeasureHasNoValue) {
  Data data;
  Session& s = *data.session;
  s.Display.DisplaySet = DisplaySet::OneTwo;
  s.Channel(1).Parameter = Parameter::S11;
  s.Channel(2).Parameter = Parameter::S12;
  s.Cal.CalS11 = true;
  EXPECT_EQ(data.Lines("trace", "1").size(), 51u);
  EXPECT_EQ(data.Lines("trace", "2"), Texts{});
  EXPECT_EQ(data.reason, "S12 is not measured by the calibration in force (S11 Cal)");
  for (int n = 0; n < 2; ++n)
    s.Markers.Of(n, 0) = {
        .Number = 1, .State = MarkerState::Shown, .Point = 3, .Value = -12.5, .Value2 = 1};
  s.Markers.Of(1, 1) = {.Number = 2, .State = MarkerState::Fixed, .Point = 1, .Value = 7};
  s.Markers.Of(1, 2) = {.Number = 3,
                        .State = MarkerState::Shown,
                        .Trace = MarkerTrace::Memory,
                        .Point = 1,
                        .Value = 8};
  EXPECT_EQ(data.Lines("markers"),
            (Texts{"1 1 shown data 3 3200000 -12.5 1", "2 1 shown data 3 3200000 --- ---",
                   "2 2 fixed data 1 3000000 7 0", "2 3 shown memory 1 3000000 8 0"}));
}

TEST(ConsoleData, ATraceOfTheTimeDomainIsInSeconds) {
  Data data;
  data.session->Channel(3).GraphType = GraphType::Td;
  data.session->TimeDomain.TdT1 = -5;
  data.session->TimeDomain.TdStep = 0.5f;
  EXPECT_EQ(data.Lines("trace", "3")[0], "1 -5.0000000000000001e-09 0 0");
  EXPECT_EQ(data.Lines("trace", "3")[10].substr(0, 5), "11 0 ");
}

TEST(ConsoleData, AMemoryTraceCountsFromOneAndMustExist) {
  Data data;
  EXPECT_TRUE(data.Lines("memory", "1").empty());
  EXPECT_FALSE(data.given);
  EXPECT_EQ(data.reason, "channel 1 holds no memory trace");
  data.session->Channel(1).MemoryValid = true;
  data.session->Channel(1).MemoryRe[1] = 0.5;
  data.session->Channel(1).MemoryIm[1] = -1;
  EXPECT_EQ(data.Lines("memory", "1")[0], "1 0.5 -1");
}

TEST(ConsoleData, LimitsCountFromOne) {
  Data data;
  data.session->Channel(4).UpperLimit[51] = 2.5f;
  EXPECT_EQ(data.Lines("limits", "4")[50], "51 2.5 -1000");
}

TEST(ConsoleData, TermsGoByTheirNamesAndReverseTwinsBearAPrime) {
  Data data;
  ErrorTerms& t = data.session->Terms;
  const struct {
    const char* Name;
    ComplexArray& Array;
  } terms[] = {{"ED", t.Forward.ED},   {"ERT", t.Forward.ERT},  {"ES", t.Forward.ES},
               {"EX", t.Forward.EX},   {"ETT", t.Forward.ETT},  {"EL", t.Forward.EL},
               {"ED'", t.Reverse.ED},  {"ERT'", t.Reverse.ERT}, {"ES'", t.Reverse.ES},
               {"EX'", t.Reverse.EX},  {"ETT'", t.Reverse.ETT}, {"EL'", t.Reverse.EL},
               {"IsoFwd0", t.IsoFwd0}, {"IsoFwd1", t.IsoFwd1},  {"IsoFwd2", t.IsoFwd2},
               {"IsoRev0", t.IsoRev0}, {"IsoRev1", t.IsoRev1},  {"IsoRev2", t.IsoRev2}};
  double value = 1;
  for (const auto& term : terms) term.Array.Set(3, {value++, 0.5});
  value = 1;
  for (const auto& term : terms) {
    EXPECT_EQ(data.Lines("term", term.Name)[3],
              "3 " + std::to_string(static_cast<int>(value++)) + " 0.5")
        << term.Name;
    EXPECT_EQ(data.Lines("term", term.Name).size(), 51u);
  }
}

TEST(ConsoleData, TheMeasuredStandardsAreTermsToo) {
  Data data;
  data.session->Standards.CalOpen1.Set(0, {0.25, 0});
  EXPECT_EQ(data.Lines("term", "CalOpen1")[0], "0 0.25 0");
}

TEST(ConsoleData, ANetworkIsGoneThroughByPortAndParameter) {
  Data data;
  data.session->Networks.Port1Net.S12.Set(1, {0.5, -1});
  data.session->Networks.Port2Net.S21.Set(50, {2, 3});
  EXPECT_EQ(data.Lines("network 1 S12")[1], "1 0.5 -1");
  EXPECT_EQ(data.Lines("network 2 S21")[50], "50 2 3");
  EXPECT_EQ(data.Lines("network 2 S21").size(), 51u);
}

TEST(ConsoleData, TheMarkersOfTheDisplayedChannelsAreReportedWithStateTraceAndValues) {
  Data data;
  Session& s = *data.session;
  s.Display.DisplaySet = DisplaySet::OneTwo;
  EXPECT_EQ(data.Lines("markers"), Texts{});
  s.Markers.Of(0, 1) = {.Number = 2, .State = MarkerState::Active, .Point = 3, .Value = -12.5};
  s.Markers.Of(1, 0) = {.State = MarkerState::Fixed,
                        .Trace = MarkerTrace::Memory,
                        .Point = 1,
                        .Value = 1,
                        .Value2 = 0.25};
  s.Markers.Of(2, 0) = {.State = MarkerState::Shown, .Point = 1};
  EXPECT_EQ(data.Lines("markers"),
            (Texts{"1 2 active data 3 3200000 -12.5 0", "2 1 fixed memory 1 3000000 1 0.25"}));
}

TEST(ConsoleData, APowerRunIsALineALevelFromTheLowest) {
  Data data;
  EXPECT_EQ(data.Lines("power"), Texts());
  EXPECT_EQ(data.reason, "no gain compression or AM to PM run yet");
  PowerRun& run = data.session->PowerRun;
  run.Measured = true;
  run.Pin[20] = -20.5;
  run.Value[20] = 10;
  run.Value2[20] = -10.5;
  run.Pin[0] = -0.25;
  const Texts lines = data.Lines("power");
  ASSERT_EQ(lines.size(), 21u);
  EXPECT_EQ(lines.front(), "-20 -20.5 10 -10.5");
  EXPECT_EQ(lines.back(), "0 -0.25 0 0");
  run.Doubtful[20] = true;
  EXPECT_EQ(data.Lines("power").front(), "-20 -20.5 10 -10.5 ?");
  EXPECT_EQ(data.Lines("power").back(), "0 -0.25 0 0");
  EXPECT_EQ(data.Lines("power now"), Texts());
}

TEST(ConsoleData, WhatThereIsNotIsReportedByName) {
  Data data;
  const struct {
    const char *What, *Name, *Reason;
  } cases[] = {{"raw", "S33", "no parameter S33: S11, S21, S12 or S22"},
               {"term", "EY", "no term EY"},
               {"trace", "5", "no channel 5: 1 to 4"},
               {"limits", "0", "no channel 0: 1 to 4"},
               {"memory", "x", "no channel x: 1 to 4"},
               {"network", "3 S11", "no port 3: 1 or 2"},
               {"network", "1 S31", "no parameter S31: S11, S21, S12 or S22"},
               {"network", "1", "data network PORT PARAMETER"},
               {"markers", "1", "data markers"},
               {"cooked", "S11",
                "no data cooked: raw|corrected|trace|memory|term|limits|markers|network|power"}};
  for (const auto& c : cases) {
    EXPECT_TRUE(data.Lines(c.What, c.Name).empty());
    EXPECT_FALSE(data.given);
    EXPECT_EQ(data.reason, c.Reason);
  }
}

}  // namespace
}  // namespace qk
