// SPDX-License-Identifier: MIT
// The "fault" commands of the bench language.
#include <array>
#include <cmath>

#include "sim/bench_arguments.h"
#include "sim/bench_language.h"
#include "sim/instrument_state.h"

namespace qk::sim {

namespace {

constexpr std::uint64_t kStallAfter = 100;

// "after N" with a whole number N; the default if nothing follows. Empty if malformed.
std::optional<std::uint64_t> After(Arguments& a, std::optional<std::uint64_t> standard) {
  if (a.Empty()) return standard;
  if (!a.Take("after")) return std::nullopt;
  const auto n = WholeNumber(a.Word());
  if (!n || !a.Empty()) return std::nullopt;
  return static_cast<std::uint64_t>(*n);
}

// "at N [count N]" after the word of a byte fault.
template <ByteFault::Kind kKind>
BenchReply RunByteFault(Instrument& instrument, Arguments& a) {
  ByteFault fault;
  fault.What = kKind;
  const auto at = a.Take("at") ? WholeNumber(a.Word()) : std::nullopt;
  if (!at) return Refused("fault: \"at N\" with a whole number of bytes is expected");
  fault.At = static_cast<std::uint64_t>(*at);
  if (a.Take("count")) {
    const auto count = WholeNumber(a.Word());
    if (!count || *count == 0) return Refused("fault: \"count N\" needs a number of 1 or more");
    fault.Count = static_cast<std::uint64_t>(*count);
  }
  if (!a.Empty()) return Refused("fault: \"" + a.Word() + "\" is too much");
  instrument.state().Fault.Bytes.push_back(fault);
  return {};
}

BenchReply RunCut(Faults& faults, std::optional<std::uint64_t> after) {
  if (!after) return Refused("fault: \"after N\" with a whole number of bytes is expected");
  faults.CutAfter = after;
  faults.CutSeen = 0;
  return {};
}

BenchReply RunLate(Faults& faults, Arguments& a) {
  const auto ms = a.NumberOf("ms");
  if (!ms || *ms < 0 || *ms > 3.6e6 || !a.Empty())
    return Refused("fault late: milliseconds from 0 to 3600000 are expected");
  faults.LateUs = static_cast<std::int64_t>(*ms * 1000);
  return {};
}

BenchReply RunShort(Faults& faults, Arguments& a) {
  const auto n = a.Empty() ? std::optional<long long>(1) : WholeNumber(a.Word());
  if (!n || *n < 1 || *n > 255 || !a.Empty())
    return Refused("fault short: a number of bytes from 1 to 255 is expected");
  faults.ShortBy = static_cast<int>(*n);
  return {};
}

// "[at HZ]" at the end of a line. False when malformed.
bool TakeAt(Arguments& a, std::optional<double>& hz) {
  if (a.Empty()) return true;
  if (!a.Take("at")) return false;
  hz = a.NumberOf("hz");
  return hz && *hz > 0 && a.Empty();
}

BenchReply RunNoLock(AnalogFaults& faults, Arguments& a) {
  AnalogFaults::NoLock fault;
  if (!TakeAt(a, fault.Hz)) return Refused("fault nolock: \"at HZ\" or nothing is expected");
  faults.Lock = fault;
  return {};
}

BenchReply RunLevel(AnalogFaults& faults, Arguments& a) {
  const auto code = WholeNumber(a.Word());
  const auto db = a.NumberOf("db");
  if (!code || *code > 31 || !db || std::abs(*db) > 40 || !a.Empty())
    return Refused("fault level: a code from 0 to 31 and -40 to 40 dB are expected");
  faults.LevelStep = AnalogFaults::Level{static_cast<int>(*code), *db};
  return {};
}

BenchReply RunGain(std::optional<AnalogFaults::Gain>& fault, Arguments& a) {
  AnalogFaults::Gain gain;
  const auto db = a.NumberOf("db");
  if (!db || std::abs(*db) > 120 || !TakeAt(a, gain.Hz))
    return Refused("fault: -120 to 120 dB and \"at HZ\" or nothing are expected");
  gain.Db = *db;
  fault = gain;
  return {};
}

// A fault that consists of a single word.
template <class Set>
BenchReply Alone(Arguments& a, Set&& set) {
  if (!a.Empty()) return Refused("fault: \"" + a.Word() + "\" is too much");
  set();
  return {};
}

BenchReply RunNone(Instrument& instrument, Arguments& a) {
  return Alone(a, [&state = instrument.state()] {
    state.Fault = {};
    state.Analog.SetFaults(state.Fault.Analog);
  });
}

BenchReply RunStall(Instrument& instrument, Arguments& a) {
  const auto after = After(a, kStallAfter);
  if (!after) return Refused("fault stall: \"after N\" with a whole number is expected");
  instrument.state().Fault.StallAfter = after;
  return {};
}

BenchReply RunModel(Instrument& instrument, Arguments& a) {
  instrument.state().Fault.Model = a.Empty() ? "QK47-20-08" : a.Rest();
  return {};
}

BenchReply RunSerial(Instrument& instrument, Arguments& a) {
  if (a.Empty()) return Refused("fault serial: a text is expected");
  instrument.state().Fault.SerialNumber = a.Rest();
  return {};
}

BenchReply RunUnplugged(Instrument& instrument, Arguments& a) {
  return Alone(a, [&state = instrument.state()] {
    if (!state.Fault.Unplugged) ++state.Unpluggings;
    state.Fault.Unplugged = true;
  });
}

BenchReply RunReplugged(Instrument& instrument, Arguments& a) {
  return Alone(a, [&state = instrument.state()] { state.Fault.Unplugged = false; });
}

// A fault of the analog side, activated if its arguments are valid.
template <class Run>
BenchReply Analog(Instrument& instrument, Run&& run) {
  Instrument::State& state = instrument.state();
  BenchReply reply = run(state.Fault.Analog);
  state.Analog.SetFaults(state.Fault.Analog);
  return reply;
}

constexpr BenchVerb kFaults[] = {
    {"none", "none", "fault none", RunNone},
    {"silence", "silence", "fault silence",
     [](Instrument& i, Arguments& a) { return RunCut(i.state().Fault, After(a, 0)); }},
    {"cut", "cut after N", "fault cut after 5",
     [](Instrument& i, Arguments& a) { return RunCut(i.state().Fault, After(a, std::nullopt)); }},
    {"late", "late MS", "fault late 50",
     [](Instrument& i, Arguments& a) { return RunLate(i.state().Fault, a); }},
    {"drop", "[sweep] drop|add|double|garble at N [count N]", "fault sweep drop at 3 count 2",
     RunByteFault<ByteFault::Kind::Drop>, true},
    {"add", "", "fault add at 3", RunByteFault<ByteFault::Kind::Add>, true},
    {"double", "", "fault double at 3", RunByteFault<ByteFault::Kind::Double>, true},
    {"garble", "", "fault sweep garble at 3", RunByteFault<ByteFault::Kind::Garble>, true},
    {"stall", "stall [after N]", "fault stall after 7", RunStall},
    {"short", "short [N]", "fault short 2",
     [](Instrument& i, Arguments& a) { return RunShort(i.state().Fault, a); }},
    {"model", "model [NAME]", "fault model", RunModel},
    {"serial", "serial TEXT", "fault serial 99", RunSerial},
    {"unplugged", "unplugged", "fault unplugged", RunUnplugged},
    {"replugged", "replugged", "fault replugged", RunReplugged},
    {"nolock", "nolock [at HZ]", "fault nolock at 1e9",
     [](Instrument& i, Arguments& a) {
       return Analog(i, [&a](AnalogFaults& faults) { return RunNoLock(faults, a); });
     }},
    {"level", "level CODE DB", "fault level 16 3",
     [](Instrument& i, Arguments& a) {
       return Analog(i, [&a](AnalogFaults& faults) { return RunLevel(faults, a); });
     }},
    {"reference", "reference|test|crosstalk DB [at HZ]", "fault reference -14 at 1e9",
     [](Instrument& i, Arguments& a) {
       return Analog(i, [&a](AnalogFaults& faults) { return RunGain(faults.Reference, a); });
     }},
    {"test", "", "fault test 5",
     [](Instrument& i, Arguments& a) {
       return Analog(i, [&a](AnalogFaults& faults) { return RunGain(faults.Test, a); });
     }},
    {"crosstalk", "", "fault crosstalk -60",
     [](Instrument& i, Arguments& a) {
       return Analog(i, [&a](AnalogFaults& faults) { return RunGain(faults.Crosstalk, a); });
     }},
};

std::string Usages() {
  std::string all;
  for (const BenchVerb& verb : kFaults)
    if (!verb.Usage.empty()) all.append(all.empty() ? "" : ", ").append(verb.Usage);
  return all;
}

}  // namespace

std::span<const BenchVerb> FaultVerbs() {
  return kFaults;
}

BenchReply RunFault(Instrument& instrument, Arguments& a) {
  const bool inSweep = a.Take("sweep");
  for (const BenchVerb& verb : kFaults) {
    if ((inSweep && !verb.AlsoInSweep) || !a.Take(verb.Word)) continue;
    BenchReply reply = verb.Run(instrument, a);
    if (reply.Ok && verb.AlsoInSweep) {
      ByteFault& fault = instrument.state().Fault.Bytes.back();
      fault.InSweep = inSweep;
      fault.Armed = !inSweep;
    }
    return reply;
  }
  if (inSweep) return Refused("fault sweep: drop, add, double or garble is expected");
  return Refused("fault: " + Usages() + " is expected");
}

}  // namespace qk::sim
