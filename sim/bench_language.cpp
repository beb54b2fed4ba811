#include "sim/bench_language.h"

#include <algorithm>
#include <array>
#include <string>

#include "sim/bench_arguments.h"
#include "sim/instrument_state.h"

namespace qk::sim {

namespace {

using State = Instrument::State;

// What the bench connects is the device from now on: what followed prompts had remembered is over.
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

// "[male|female] [offset X[mm]] [line X[mm] [loss DB]]" of a standard; empty when all is
// understood.
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
                     ": nothing, open, short, load, mismatch DB or device FILE is expected");
    const std::string error = TakeStandardWords(t, a);
    if (!error.empty()) return Refused(error);
  }
  Connection c = state.Analog.Connected();
  if (c.Between) c = {};
  (port == 1 ? c.Port1 : c.Port2) = t;
  ConnectByHand(state, c);
  return {};
}

// A number that may be told of an amplifier.
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

// A two-port by its words. Neither device nor error: the words name none.
Loaded TakeTwoPort(Arguments& a) {
  Loaded taken;
  if (a.Take("through")) {
    taken.Device = MakeThrough();
  } else if (a.Take("filter")) {
    taken.Device = MakeFilter();
  } else if (a.Take("attenuator")) {
    const auto db = InRange(a, "db", 0, 120);
    if (!db) return {nullptr, "attenuator: 0 to 120 dB are expected"};
    taken.Device = MakeAttenuator(*db);
  } else if (a.Take("line")) {
    const auto mm = InRange(a, "mm", 0, 100000);
    if (!mm) return {nullptr, "line: 0 to 100000 mm are expected"};
    taken.Device = MakeLine(*mm);
  } else if (a.Take("amplifier")) {
    return TakeAmplifier(a);
  } else if (a.Take("device")) {
    return LoadDevice(a);
  }
  if (taken.Device && !a.Empty()) return {nullptr, TooMuch(a).Text};
  return taken;
}

BenchReply RunStandard(State& state, Arguments& a) {
  Loaded taken = TakeTwoPort(a);
  if (!taken.Error.empty()) return Refused(taken.Error);
  if (!taken.Device || !taken.Device->HasTwoPorts())
    return Refused("standard: a two-port (through, line MM, device FILE.s2p) is expected");
  state.ThroughStandard = taken.Device;
  return {};
}

// "on" or "off" alone.
std::optional<bool> TakeSwitch(Arguments& a) {
  const bool on = a.Take("on");
  if ((!on && !a.Take("off")) || !a.Empty()) return std::nullopt;
  return on;
}

BenchReply RunNoise(State& state, Arguments& a) {
  const auto on = TakeSwitch(a);
  if (!on) return Refused("noise: on or off is expected");
  state.Analog.SetNoise(*on);
  return {};
}

BenchReply RunSeed(State& state, Arguments& a) {
  const auto seed = WholeNumber(a.Word());
  if (!seed || !a.Empty()) return Refused("seed: a whole number of 0 or more is expected");
  state.Analog.SetSeed(static_cast<std::uint64_t>(*seed));
  return {};
}

BenchReply RunTemperature(State& state, Arguments& a) {
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

BenchReply RunOffsets(State& state, Arguments& a) {
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

// "NUMBER NUMBER" or the word that ends it.
BenchReply RunDrift(State& state, Arguments& a) {
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

BenchReply RunConnector(State& state, Arguments& a) {
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

BenchReply RunStep(State& state, Arguments& a) {
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

BenchReply RunFollow(State& state, Arguments& a) {
  const auto on = TakeSwitch(a);
  if (!on) return Refused("follow: on or off is expected");
  state.Follow = *on;
  return {};
}

BenchReply RunPace(State& state, Arguments& a) {
  const bool fast = a.Take("fast");
  if ((!fast && !a.Take("115200")) || !a.Empty())
    return Refused("pace: 115200 or fast is expected");
  state.Sender.SetPace(fast ? Pace::Unpaced : Pace::Baud115200);
  return {};
}

BenchReply RunShow(const Instrument& instrument, State& state, Arguments& a) {
  if (!a.Empty()) return TooMuch(a);
  return {true, instrument.Describe() + "; noise " + (state.Analog.NoiseOn() ? "on" : "off") +
                    "; follow " + (state.Follow ? "on" : "off") + "; pace " +
                    (state.Sender.pace() == Pace::Unpaced ? "fast" : "115200") + "; fault " +
                    state.Fault.Describe()};
}

constexpr const char* kHelp =
    "port1|port2 nothing|open|short|load|mismatch DB [male|female] [offset X mm]\n"
    "            [line MM [loss DB]]: behind an air line; port1|port2 device FILE\n"
    "through, attenuator DB, line MM, filter, device FILE.s1p|FILE.s2p\n"
    "amplifier [gain DB] [p1db DBM] [ampm DEG] [knee N] [before DB] [behind DB] [matched]\n"
    "standard line MM|through|device FILE.s2p: what \"Through Standard\" stands for\n"
    "follow on|off: connect what prompts name; dut: back to the device before the prompts\n"
    "noise on|off, seed N, temperature DEGC|warmup, offsets REFERENCE_MV TEST_MV|drifting\n"
    "drift DB_AN_HOUR DB_A_DEGREE|none, connector loose DB|tight, step DB after SWEEPS|none\n"
    "fault none|silence|cut after N|late MS|stall [after N]|short [N]|model [NAME]|serial TEXT\n"
    "fault [sweep] drop|add|double|garble at N [count N], fault unplugged|replugged\n"
    "fault nolock [at HZ], fault level CODE DB, fault reference|test|crosstalk DB [at HZ]\n"
    "eeprom ADDRESS [BYTE], power cycle, pace 115200|fast\n"
    "show, truth HZ, driven HZ DBM, help";

}  // namespace

BenchReply RunBenchLine(Instrument& instrument, std::string_view line) {
  State& state = instrument.state();
  Arguments a(line);
  if (a.Empty()) return Refused("an empty line; try help");
  if (a.Take("port1")) return RunPort(state, 1, a);
  if (a.Take("port2")) return RunPort(state, 2, a);
  if (a.Take("standard")) return RunStandard(state, a);
  if (a.Take("noise")) return RunNoise(state, a);
  if (a.Take("seed")) return RunSeed(state, a);
  if (a.Take("temperature")) return RunTemperature(state, a);
  if (a.Take("offsets")) return RunOffsets(state, a);
  if (a.Take("fault")) return RunFault(instrument, a);
  if (a.Take("drift")) return RunDrift(state, a);
  if (a.Take("connector")) return RunConnector(state, a);
  if (a.Take("step")) return RunStep(state, a);
  if (a.Take("follow")) return RunFollow(state, a);
  if (a.Take("pace")) return RunPace(state, a);
  if (a.Take("truth")) return RunTruth(instrument, a);
  if (a.Take("driven")) return RunDriven(instrument, a);
  if (a.Take("eeprom")) return RunEeprom(instrument, a);
  if (a.Take("power")) return RunPower(instrument, a);
  if (a.Take("show")) return RunShow(instrument, state, a);
  if (a.Take("help")) return a.Empty() ? BenchReply{true, kHelp} : TooMuch(a);
  if (a.Take("dut")) {
    if (!a.Empty()) return TooMuch(a);
    instrument.BackToDevice();
    return {};
  }
  Loaded taken = TakeTwoPort(a);
  if (!taken.Error.empty()) return Refused(taken.Error);
  if (!taken.Device) return Refused("\"" + a.Word() + "\" is no bench command; try help");
  if (taken.Device->HasTwoPorts())
    ConnectByHand(state, {taken.Device, {}, {}});
  else
    ConnectByHand(state, {nullptr, AtPort(taken.Device, 1), {}});
  return {};
}

}  // namespace qk::sim
