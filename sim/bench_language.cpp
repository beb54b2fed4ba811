// SPDX-License-Identifier: MIT
#include "sim/bench_language.h"

#include <algorithm>
#include <array>
#include <string>

#include "sim/bench_arguments.h"
#include "sim/instrument_state.h"

namespace qk::sim {

namespace {

using State = Instrument::State;

// A device connected with a bench command becomes the device under test; what followed prompts had
// saved is discarded.
void ConnectByHand(State& state, Connection connection) {
  state.DeviceUnderTest.reset();
  state.Analog.Connect(std::move(connection));
}

struct Loaded {
  DevicePtr Device;
  std::string Error;
};

Loaded LoadDevice(Arguments& a) {
  const std::string path = a.Rest();
  if (path.empty()) return {nullptr, "a file name is expected"};
  TouchstoneResult file = ReadTouchstoneFile(path);
  if (!file.Error.empty()) return {nullptr, file.Error};
  return {MakeMeasured(std::move(file.Data), path.substr(path.find_last_of("/\\") + 1)), {}};
}

Termination AtPort(DevicePtr device, int port) {
  Termination t;
  t.What = Termination::Kind::DevicePort;
  t.Dut = std::move(device);
  t.DutPort = port;
  return t;
}

// "[male|female] [offset X[mm]] [line X[mm] [loss DB]]" of a standard; returns an error, or empty.
std::string TakeStandardWords(Termination& t, Arguments& a) {
  while (!a.Empty()) {
    if (a.Take("male")) {
      t.Male = true;
    } else if (a.Take("female")) {
      t.Male = false;
    } else if (a.Take("offset")) {
      const auto mm = InRange(a, "mm", -1000, 1000);
      if (!mm) return "offset: millimetres from -1000 to 1000 are expected";
      t.OffsetMm = *mm;
    } else if (a.Take("line")) {
      const auto mm = InRange(a, "mm", 0, 100000);
      if (!mm) return "line: 0 to 100000 mm are expected";
      t.LineMm = *mm;
    } else if (a.Take("loss")) {
      const auto db = InRange(a, "db", 0, 60);
      if (!db) return "loss: 0 to 60 dB at 1 GHz are expected";
      t.LineLossDbAt1GHz = *db;
    } else {
      return "\"" + a.Word() + "\" is too much";
    }
  }
  return {};
}

BenchReply RunPort(State& state, int port, Arguments& a) {
  Termination t;
  t.Male = port == 1;
  if (a.Take("device")) {
    Loaded loaded = LoadDevice(a);
    if (!loaded.Device) return Refused(loaded.Error);
    t = AtPort(loaded.Device, loaded.Device->HasTwoPorts() ? port : 1);
  } else if (a.Take("antenna")) {
    if (!a.Empty()) return TooMuch(a);
    t = AtPort(MakeAntenna(), 1);
  } else {
    if (a.Take("nothing"))
      t.What = Termination::Kind::Nothing;
    else if (a.Take("open"))
      t.What = Termination::Kind::Open;
    else if (a.Take("short"))
      t.What = Termination::Kind::Short;
    else if (a.Take("load"))
      t.What = Termination::Kind::Load;
    else if (a.Take("mismatch")) {
      const auto db = InRange(a, "db", 0, 60);
      if (!db) return Refused("mismatch: a return loss of 0 to 60 dB is expected");
      t.What = Termination::Kind::Mismatch;
      t.ReturnLossDb = *db;
    } else
      return Refused("port" + std::to_string(port) +
                     ": nothing, open, short, load, mismatch DB, antenna or device FILE is "
                     "expected");
    const std::string error = TakeStandardWords(t, a);
    if (!error.empty()) return Refused(error);
  }
  Connection c = state.Analog.Connected();
  if (c.Between) c = {};
  (port == 1 ? c.Port1 : c.Port2) = t;
  ConnectByHand(state, c);
  return {};
}

// A numeric parameter of an amplifier.
struct AmplifierWord {
  const char* Word;
  const char* Unit;
  double Low, High;
  const char* Expected;
  double AmplifierSettings::*Value;
};
constexpr std::array<AmplifierWord, 6> kAmplifierWords{
    {{"gain", "db", -20, 40, "-20 to 40 dB are expected", &AmplifierSettings::GainDb},
     {"p1db", "dbm", -40, 60, "-40 to 60 dBm are expected", &AmplifierSettings::OutputP1Dbm},
     {"ampm", "deg", -90, 90, "-90 to 90 degrees a dB are expected",
      &AmplifierSettings::AmToPmDegPerDb},
     {"knee", "", 0.5, 20, "0.5 to 20 is expected", &AmplifierSettings::Knee},
     {"before", "db", 0, 60, "an attenuator of 0 to 60 dB is expected",
      &AmplifierSettings::InputAttenuationDb},
     {"behind", "db", 0, 60, "an attenuator of 0 to 60 dB is expected",
      &AmplifierSettings::OutputAttenuationDb}}};

Loaded TakeAmplifier(Arguments& a) {
  AmplifierSettings s;
  while (!a.Empty()) {
    if (a.Take("matched")) {
      s.Matched = true;
      continue;
    }
    const auto word = std::ranges::find_if(kAmplifierWords,
                                           [&a](const AmplifierWord& w) { return a.Take(w.Word); });
    if (word == kAmplifierWords.end())
      return {nullptr,
              "amplifier: gain DB, p1db DBM, ampm DEG, knee N, before DB, behind DB or matched is "
              "expected"};
    const auto value = InRange(a, word->Unit, word->Low, word->High);
    if (!value) return {nullptr, std::string(word->Word) + ": " + word->Expected};
    s.*(word->Value) = *value;
  }
  return {MakeAmplifier(s), {}};
}

Loaded TakeThrough(Arguments&) {
  return {MakeThrough(), {}};
}

Loaded TakeFilter(Arguments& a) {
  if (!a.Take("off")) return {MakeFilter(), {}};
  const auto mhz = InRange(a, "mhz", -200, 200);
  if (!mhz) return {nullptr, "filter: off by -200 to 200 MHz is expected"};
  return {MakeFilter(*mhz), {}};
}

Loaded TakeAttenuator(Arguments& a) {
  const auto db = InRange(a, "db", 0, 120);
  if (!db) return {nullptr, "attenuator: 0 to 120 dB are expected"};
  return {MakeAttenuator(*db), {}};
}

Loaded TakeLine(Arguments& a) {
  const auto mm = InRange(a, "mm", 0, 100000);
  if (!mm) return {nullptr, "line: 0 to 100000 mm are expected"};
  return {MakeLine(*mm), {}};
}

// The devices by name.
struct DeviceWord {
  std::string_view Word;
  Loaded (*Take)(Arguments& a);
};
constexpr std::array<DeviceWord, 6> kDevices{{{"through", TakeThrough},
                                              {"attenuator", TakeAttenuator},
                                              {"line", TakeLine},
                                              {"filter", TakeFilter},
                                              {"amplifier", TakeAmplifier},
                                              {"device", LoadDevice}}};

// The device for a name, with its arguments.
Loaded TakeDevice(const DeviceWord& word, Arguments& a) {
  Loaded taken = word.Take(a);
  if (taken.Device && !a.Empty()) return {nullptr, TooMuch(a).Text};
  return taken;
}

// Connects a device between the ports, or at port 1 if it has only one port.
BenchReply Connect(Instrument& instrument, std::string_view word, Arguments& a) {
  const auto row =
      std::ranges::find_if(kDevices, [word](const DeviceWord& d) { return d.Word == word; });
  Loaded taken = TakeDevice(*row, a);
  if (!taken.Device) return Refused(taken.Error);
  State& state = instrument.state();
  if (taken.Device->HasTwoPorts())
    ConnectByHand(state, {taken.Device, {}, {}});
  else
    ConnectByHand(state, {nullptr, AtPort(taken.Device, 1), {}});
  return {};
}

BenchReply RunStandard(Instrument& instrument, Arguments& a) {
  const auto row =
      std::ranges::find_if(kDevices, [&a](const DeviceWord& d) { return a.Take(d.Word); });
  Loaded taken = row == kDevices.end() ? Loaded() : TakeDevice(*row, a);
  if (!taken.Error.empty()) return Refused(taken.Error);
  if (!taken.Device || !taken.Device->HasTwoPorts())
    return Refused("standard: a two-port (through, line MM, device FILE.s2p) is expected");
  instrument.state().ThroughStandard = taken.Device;
  instrument.state().ThroughNamed = true;
  return {};
}

// Only "on" or "off".
std::optional<bool> TakeSwitch(Arguments& a) {
  const bool on = a.Take("on");
  if ((!on && !a.Take("off")) || !a.Empty()) return std::nullopt;
  return on;
}

BenchReply RunNoise(Instrument& instrument, Arguments& a) {
  State& state = instrument.state();
  const auto on = TakeSwitch(a);
  if (!on) return Refused("noise: on or off is expected");
  state.Analog.SetNoise(*on);
  return {};
}

BenchReply RunSeed(Instrument& instrument, Arguments& a) {
  State& state = instrument.state();
  const auto seed = WholeNumber(a.Word());
  if (!seed || !a.Empty()) return Refused("seed: a whole number of 0 or more is expected");
  state.Analog.SetSeed(static_cast<std::uint64_t>(*seed));
  return {};
}

BenchReply RunTemperature(Instrument& instrument, Arguments& a) {
  State& state = instrument.state();
  if (a.Take("warmup")) {
    if (!a.Empty()) return TooMuch(a);
    state.Analog.SetTemperature(std::nullopt);
    return {};
  }
  const auto degC = InRange(a, "degc", -40, 54);
  if (!degC || !a.Empty()) return Refused("temperature: -40 to 54 degC or warmup is expected");
  state.Analog.SetTemperature(degC);
  return {};
}

BenchReply RunOffsets(Instrument& instrument, Arguments& a) {
  State& state = instrument.state();
  if (a.Take("drifting")) {
    if (!a.Empty()) return TooMuch(a);
    state.Analog.SetOffsets(std::nullopt);
    return {};
  }
  const auto reference = InRange(a, "mv", -500, 500);
  const auto test = InRange(a, "mv", -500, 500);
  if (!reference || !test || !a.Empty())
    return Refused("offsets: reference and test in mV (-500 to 500), or drifting, are expected");
  state.Analog.SetOffsets(DcOffsets{*reference / 1000, *test / 1000});
  return {};
}

// "NUMBER NUMBER", or the word that ends the drift.
BenchReply RunDrift(Instrument& instrument, Arguments& a) {
  State& state = instrument.state();
  if (a.Take("none")) {
    if (!a.Empty()) return TooMuch(a);
    state.Analog.SetDrift({});
    return {};
  }
  const auto hour = InRange(a, "", -20, 20);
  const auto degree = InRange(a, "", -5, 5);
  if (!hour || !degree || !a.Empty())
    return Refused(
        "drift: dB an hour (-20 to 20) and dB a degree (-5 to 5), or none, are expected");
  state.Analog.SetDrift({*hour, *degree});
  return {};
}

BenchReply RunConnector(Instrument& instrument, Arguments& a) {
  State& state = instrument.state();
  std::optional<double> db = 0;
  if (!a.Take("tight")) {
    if (a.Take("loose"))
      db = InRange(a, "db", 0, 20);
    else
      db.reset();
  }
  if (!db || !a.Empty()) return Refused("connector: tight, or loose and 0 to 20 dB, are expected");
  state.Analog.SetLooseness(*db);
  return {};
}

BenchReply RunStep(Instrument& instrument, Arguments& a) {
  State& state = instrument.state();
  if (a.Take("none")) {
    if (!a.Empty()) return TooMuch(a);
    state.Analog.SetStep({});
    return {};
  }
  const auto db = InRange(a, "db", -20, 20);
  const bool after = db && a.Take("after");
  const auto sweeps = after ? WholeNumber(a.Word()) : std::nullopt;
  if (!sweeps || !a.Empty())
    return Refused("step: -20 to 20 dB after N (sweeps), or none, are expected");
  state.Analog.SetStep({*db, *sweeps});
  return {};
}

BenchReply RunFollow(Instrument& instrument, Arguments& a) {
  State& state = instrument.state();
  const auto on = TakeSwitch(a);
  if (!on) return Refused("follow: on or off is expected");
  state.Follow = *on;
  return {};
}

BenchReply RunPace(Instrument& instrument, Arguments& a) {
  State& state = instrument.state();
  const bool fast = a.Take("fast");
  if ((!fast && !a.Take("115200")) || !a.Empty())
    return Refused("pace: 115200 or fast is expected");
  state.Sender.SetPace(fast ? Pace::Unpaced : Pace::Baud115200);
  return {};
}

BenchReply RunShow(Instrument& instrument, Arguments& a) {
  const State& state = instrument.state();
  if (!a.Empty()) return TooMuch(a);
  return {true, instrument.Describe() + "; noise " + (state.Analog.NoiseOn() ? "on" : "off") +
                    "; follow " + (state.Follow ? "on" : "off") + "; pace " +
                    (state.Sender.pace() == Pace::Unpaced ? "fast" : "115200") + "; " +
                    state.Analog.DescribeSettings() + "fault " + state.Fault.Describe()};
}

BenchReply RunBackToDevice(Instrument& instrument, Arguments& a) {
  if (!a.Empty()) return TooMuch(a);
  instrument.BackToDevice();
  return {};
}

void AddUsages(std::string& help, std::string_view before, std::span<const BenchVerb> verbs) {
  for (const BenchVerb& verb : verbs) {
    if (verb.Usage.empty()) continue;
    if (!help.empty()) help += '\n';
    help.append(before).append(verb.Usage);
  }
}

BenchReply RunHelp(Instrument&, Arguments& a) {
  if (!a.Empty()) return TooMuch(a);
  std::string help;
  AddUsages(help, "", BenchVerbs());
  AddUsages(help, "fault ", FaultVerbs());
  return {true, help};
}

// A verb that connects the device with its name.
constexpr BenchVerb Connects(std::string_view usage, std::string_view example,
                             BenchReply (*run)(Instrument&, Arguments&)) {
  return {usage.substr(0, usage.find(' ')), usage, example, run};
}

constexpr BenchVerb kVerbs[] = {
    {"port1",
     "port1|port2 nothing|open|short|load|mismatch DB [male|female] [offset X mm] [line MM [loss "
     "DB]]",
     "port1 short female offset 5 mm",
     [](Instrument& i, Arguments& a) { return RunPort(i.state(), 1, a); }},
    {"port2", "port1|port2 antenna|device FILE", "port2 antenna",
     [](Instrument& i, Arguments& a) { return RunPort(i.state(), 2, a); }},
    Connects("through", "through",
             [](Instrument& i, Arguments& a) { return Connect(i, "through", a); }),
    Connects("attenuator DB", "attenuator 10",
             [](Instrument& i, Arguments& a) { return Connect(i, "attenuator", a); }),
    Connects("line MM", "line 100",
             [](Instrument& i, Arguments& a) { return Connect(i, "line", a); }),
    Connects("filter [off MHZ]", "filter off -25",
             [](Instrument& i, Arguments& a) { return Connect(i, "filter", a); }),
    Connects("amplifier [gain DB] [p1db DBM] [ampm DEG] [knee N] [before DB] [behind DB] [matched]",
             "amplifier gain 15 matched",
             [](Instrument& i, Arguments& a) { return Connect(i, "amplifier", a); }),
    Connects("device FILE.s1p|FILE.s2p", "",
             [](Instrument& i, Arguments& a) { return Connect(i, "device", a); }),
    {"standard", "standard line MM|through|device FILE.s2p: what \"Through Standard\" stands for",
     "standard line 20", RunStandard},
    {"follow", "follow on|off: connect what prompts name", "follow off", RunFollow},
    {"dut", "dut: back to the device before the prompts", "dut", RunBackToDevice},
    {"noise", "noise on|off", "noise off", RunNoise},
    {"seed", "seed N", "seed 7", RunSeed},
    {"temperature", "temperature DEGC|warmup", "temperature 30", RunTemperature},
    {"offsets", "offsets REFERENCE_MV TEST_MV|drifting", "offsets 10 -5", RunOffsets},
    {"drift", "drift DB_AN_HOUR DB_A_DEGREE|none", "drift 0.1 0.01", RunDrift},
    {"connector", "connector loose DB|tight", "connector loose 0.5", RunConnector},
    {"step", "step DB after SWEEPS|none", "step 1 after 3", RunStep},
    {"fault", "", "fault silence", RunFault},
    {"eeprom", "eeprom ADDRESS [BYTE]", "eeprom 11", RunEeprom},
    {"power", "power cycle", "power cycle", RunPower},
    {"pace", "pace 115200|fast", "pace fast", RunPace},
    {"show", "show: what is set", "show", RunShow},
    {"truth", "truth HZ: the exact values of what is connected", "truth 1e9",
     [](Instrument& i, Arguments& a) { return RunTruth(i, a); }},
    {"driven", "driven HZ DBM: S21 and output at a drive", "driven 1e9 -6",
     [](Instrument& i, Arguments& a) { return RunDriven(i, a); }},
    {"help", "help", "help", RunHelp},
};

}  // namespace

std::span<const BenchVerb> BenchVerbs() {
  return kVerbs;
}

BenchReply RunBenchLine(Instrument& instrument, std::string_view line) {
  Arguments a(line);
  if (a.Empty()) return Refused("an empty line; try help");
  for (const BenchVerb& verb : kVerbs)
    if (a.Take(verb.Word)) return verb.Run(instrument, a);
  return Refused("\"" + a.Word() + "\" is not a bench command; try help");
}

}  // namespace qk::sim
