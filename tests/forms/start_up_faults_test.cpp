// SPDX-License-Identifier: MIT
// Start-up of the whole program on a line that fails at one byte: what is shown, how long it takes,
// and that the window lives.
#include <gtest/gtest.h>

#include "support/program_fixture.h"

namespace qk::test {
namespace {

// The bytes that come in during a start-up, by the exchange they belong to.
enum class Stage {
  Scan,
  Model,
  Tables,
  RxData,
  DcByte,
  Offsets,
  Temperature,
  Serial,
  Firmware,
  Set
};

struct Place {
  Stage At;
  bool Status;  // the answer to a link check
  std::size_t Offset;
};

struct Stretch {
  Stage At;
  std::size_t Count, Statuses, Data;  // exchanges, link checks in front of each, bytes of each
};
constexpr Stretch kStretches[] = {{Stage::Scan, 1, 1, 0},        {Stage::Model, 1, 0, 12},
                                  {Stage::Tables, 150, 1, 64},   {Stage::RxData, 77, 1, 120},
                                  {Stage::DcByte, 1, 1, 1},      {Stage::Offsets, 1, 2, 6},
                                  {Stage::Temperature, 1, 1, 2}, {Stage::Serial, 1, 1, 4},
                                  {Stage::Firmware, 1, 1, 3},    {Stage::Set, 1, 1, 0}};

std::size_t Length() {
  std::size_t sum = 0;
  for (const Stretch& s : kStretches) sum += s.Count * (s.Statuses + s.Data);
  return sum;
}

Place PlaceOf(std::size_t at) {
  for (const Stretch& s : kStretches) {
    const std::size_t one = s.Statuses + s.Data;
    if (at < s.Count * one) return {s.At, at % one < s.Statuses, at % one};
    at -= s.Count * one;
  }
  throw std::out_of_range("no such byte");
}

// All but the many bytes of the EEPROM, of which there are some.
std::vector<std::size_t> Positions() {
  std::vector<std::size_t> positions;
  for (std::size_t at = 0; at < Length(); ++at) {
    const Stage stage = PlaceOf(at).At;
    const bool many = stage == Stage::Tables || stage == Stage::RxData;
    if (!many || at % 499 == 13) positions.push_back(at);
  }
  return positions;
}

const std::string kAskForInstrument =
    "VNA Control|No instrument detected. Check instrument connection and power. If using a USB "
    "adaptor ensure a valid COM port has been assigned (1 to 16)|none|retry/cancel";
const std::string kWrongModel = "Instrument ID|Wrong model instrument|critical|ok";
const std::string kOffsets = "RX Offset|No Response|exclamation|ok";
const std::string kTemperature = "RX Temp Check|No Response|exclamation|ok";
const std::string kFailed = "VNA Initialisation|Instrument Failed to Respond|critical|ok";
const std::string kAverages = "Set Averages|No Response|exclamation|ok";

std::string LoadMessage(const Place& place) {
  const std::string end = "|exclamation|ok";
  const std::string error = "Link Error. Re-start Program." + end;
  if (place.At == Stage::Tables)
    return "Set Synth Level|" + (place.Status ? "No Response. Re-start Program." + end : error);
  if (place.At == Stage::RxData)
    return "Read RX Cal Data|" + (place.Status ? "No Response" + end : error);
  return place.Status ? "Read RX dc Off Correction|No Response" + end
                      : "Read RX dc Off Corr|" + error;
}

// What is shown when a byte does not come; and, unplugged, when nothing comes any more.
Texts Messages(const Place& place, bool unplugged) {
  switch (place.At) {
    case Stage::Scan:
      return {kAskForInstrument};
    case Stage::Model:
      // Ten characters are the model; a line that is cut after them has given it.
      if (!unplugged && place.Offset >= 10) return {};
      return {kWrongModel, kAskForInstrument};
    case Stage::Tables:
    case Stage::RxData:
    case Stage::DcByte:
      if (!unplugged) return {LoadMessage(place)};
      return {LoadMessage(place), kOffsets, kTemperature, kFailed};
    case Stage::Offsets:
      return unplugged ? Texts{kOffsets, kTemperature, kFailed} : Texts{kOffsets};
    case Stage::Temperature:
      return unplugged ? Texts{kTemperature, kFailed} : Texts{kTemperature};
    case Stage::Serial:
      return {kFailed};
    case Stage::Firmware:
      return unplugged ? Texts{kAverages} : Texts{};
    case Stage::Set:
      break;
  }
  return {kAverages};
}

int TimeOut(const Place& place) {
  switch (place.At) {
    case Stage::Scan:
    case Stage::Model:
      return 100;
    case Stage::Tables:
    case Stage::RxData:
      return place.Status ? 2000 : 200;
    case Stage::DcByte:
    case Stage::Serial:
    case Stage::Firmware:
      return place.Status ? 2000 : 100;
    default:
      return 2000;
  }
}

// Beside the time-outs: the quiet behind the firmware version, and what the scan listens to a line
// that it does not understand.
constexpr int kVersionQuiet = 20;
int Listens(const Place& place) {
  return place.At == Stage::Scan || place.At == Stage::Model ? 1000 : 0;
}

struct FaultyStart : ScriptedProgram {
  explicit FaultyStart(const Fault& fault) {
    port.Close();
    port.Fault = fault;
    const std::int64_t start = clock.NowMs();
    program.StartUp();
    Elapsed = clock.NowMs() - start;
  }
  void ExpectLive() {
    EXPECT_TRUE(fake.IsShown("Form1"));
    EXPECT_FALSE(fake.IsShown("EEPROMdata"));
    EXPECT_EQ(fake.Panels[2], session.Id.PortNumber == 0 ? "No Instrument!" : " 1, 115.2 Kb/s");
    EXPECT_TRUE(program.controller().Idle());
    EXPECT_FALSE(program.controller().StartingUp());
  }
  std::int64_t Elapsed = 0;
};

TEST(StartUpFaults, AGoodLineBringsExactlyTheseBytesAndNoMessage) {
  FaultyStart b({FaultKind::Cut, 1'000'000});
  EXPECT_EQ(b.port.FedBytes, Length());
  EXPECT_EQ(b.TakeMessages(), Texts{});
  EXPECT_EQ(b.fake.Panels[1], "SN. 147");
  EXPECT_EQ(b.Elapsed, kVersionQuiet);
}

TEST(StartUpFaults, AByteThatIsMissingCostsItsTimeOutAndOneMessage) {
  for (const std::size_t at : Positions()) {
    SCOPED_TRACE(at);
    const Place place = PlaceOf(at);
    FaultyStart b({FaultKind::Cut, at});
    ASSERT_EQ(b.TakeMessages(), Messages(place, false));
    ASSERT_GE(b.Elapsed, TimeOut(place) + 1);
    ASSERT_LE(b.Elapsed, TimeOut(place) + 1 + kVersionQuiet + Listens(place));
    b.ExpectLive();
  }
}

TEST(StartUpFaults, AnAdaptorPulledOutAtAnyByteIsReportedWithoutAWaitAndReStartFindsItAgain) {
  for (const std::size_t at : Positions()) {
    SCOPED_TRACE(at);
    FaultyStart b({FaultKind::Unplug, at});
    ASSERT_EQ(b.TakeMessages(), Messages(PlaceOf(at), true));
    ASSERT_LE(b.Elapsed, kVersionQuiet);
    b.ExpectLive();

    b.port.Fault.reset();
    b.port.PlugIn(1);
    b.fake.Answers = {Answer::Yes, Answer::Ok};
    b.Click("Form1.ReStart");
    ASSERT_EQ(b.TakeMessages().size(), 2u);  // its two questions
    ASSERT_EQ(b.fake.Panels[1], "SN. 147");
    b.ExpectLive();
  }
}

TEST(StartUpFaults, AByteThatIsDoubledOrGarbledNeverCostsAWaitOrTheWindow) {
  for (const std::size_t at : Positions())
    for (const FaultKind kind : {FaultKind::Double, FaultKind::Garble}) {
      SCOPED_TRACE(at);
      FaultyStart b({kind, at});
      const Place place = PlaceOf(at);
      const bool ends = place.Status == (kind == FaultKind::Garble);
      const bool checked = place.At != Stage::Model && place.At != Stage::Firmware &&
                           !(place.At == Stage::Serial && kind == FaultKind::Garble);
      if (checked) {
        ASSERT_EQ(b.TakeMessages(), ends ? Messages(place, false) : Texts{});
      }
      ASSERT_LE(b.Elapsed, kVersionQuiet + Listens(place));
      b.ExpectLive();
    }
}

}  // namespace
}  // namespace qk::test
