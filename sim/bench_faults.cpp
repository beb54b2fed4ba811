// The "fault" lines of the bench language.
#include <array>
#include <cmath>

#include "sim/bench_arguments.h"
#include "sim/instrument_state.h"

namespace qk::sim {

namespace {

constexpr std::uint64_t kStallAfter = 100;
constexpr const char* kUsage =
    "fault: none, silence, cut after N, late MS, [sweep] drop|add|double|garble at N [count N], "
    "stall [after N], short [N], model [NAME], serial TEXT, unplugged, replugged, nolock [at HZ], "
    "level CODE DB, or reference|test|crosstalk DB [at HZ] is expected";

// "after N" with N a whole number; the default stands when nothing follows. None when malformed.
std::optional<std::uint64_t> After(Arguments& a, std::optional<std::uint64_t> standard) {
  if (a.Empty()) return standard;
  if (!a.Take("after")) return std::nullopt;
  const auto n = WholeNumber(a.Word());
  if (!n || !a.Empty()) return std::nullopt;
  return static_cast<std::uint64_t>(*n);
}

std::optional<ByteFault::Kind> ByteFaultKind(Arguments& a) {
  static constexpr std::array<std::pair<std::string_view, ByteFault::Kind>, 4> kKinds = {
      {{"drop", ByteFault::Kind::Drop},
       {"add", ByteFault::Kind::Add},
       {"double", ByteFault::Kind::Double},
       {"garble", ByteFault::Kind::Garble}}};
  for (const auto& [word, kind] : kKinds)
    if (a.Take(word)) return kind;
  return std::nullopt;
}

BenchReply RunByteFault(Faults& faults, ByteFault::Kind kind, bool inSweep, Arguments& a) {
  ByteFault fault;
  fault.What = kind;
  fault.InSweep = inSweep;
  fault.Armed = !inSweep;
  const auto at = a.Take("at") ? WholeNumber(a.Word()) : std::nullopt;
  if (!at) return Refused("fault: \"at N\" with a whole number of bytes is expected");
  fault.At = static_cast<std::uint64_t>(*at);
  if (a.Take("count")) {
    const auto count = WholeNumber(a.Word());
    if (!count || *count == 0) return Refused("fault: \"count N\" needs a number of 1 or more");
    fault.Count = static_cast<std::uint64_t>(*count);
  }
  if (!a.Empty()) return Refused("fault: \"" + a.Word() + "\" is too much");
  faults.Bytes.push_back(fault);
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

// Faults of the analog side; nothing when the words name none.
std::optional<BenchReply> RunAnalogFault(AnalogFaults& faults, Arguments& a) {
  if (a.Take("nolock")) return RunNoLock(faults, a);
  if (a.Take("level")) return RunLevel(faults, a);
  if (a.Take("reference")) return RunGain(faults.Reference, a);
  if (a.Take("test")) return RunGain(faults.Test, a);
  if (a.Take("crosstalk")) return RunGain(faults.Crosstalk, a);
  return std::nullopt;
}

}  // namespace

BenchReply RunFault(Instrument& instrument, Arguments& a) {
  Instrument::State& state = instrument.state();
  Faults& faults = state.Fault;
  const auto alone = [&a](auto&& set) {
    if (!a.Empty()) return Refused("fault: \"" + a.Word() + "\" is too much");
    set();
    return BenchReply{};
  };
  const bool inSweep = a.Take("sweep");
  if (const auto kind = ByteFaultKind(a)) return RunByteFault(faults, *kind, inSweep, a);
  if (inSweep) return Refused("fault sweep: drop, add, double or garble is expected");
  if (a.Take("none"))
    return alone([&] {
      faults = {};
      state.Analog.SetFaults(faults.Analog);
    });
  if (a.Take("silence")) return RunCut(faults, After(a, 0));
  if (a.Take("cut")) return RunCut(faults, After(a, std::nullopt));
  if (a.Take("late")) return RunLate(faults, a);
  if (a.Take("stall")) {
    const auto after = After(a, kStallAfter);
    if (!after) return Refused("fault stall: \"after N\" with a whole number is expected");
    faults.StallAfter = after;
    return {};
  }
  if (a.Take("short")) return RunShort(faults, a);
  if (a.Take("model")) {
    faults.Model = a.Empty() ? "QK47-20-08" : a.Rest();
    return {};
  }
  if (a.Take("serial")) {
    if (a.Empty()) return Refused("fault serial: a text is expected");
    faults.SerialNumber = a.Rest();
    return {};
  }
  if (a.Take("unplugged"))
    return alone([&] {
      if (!faults.Unplugged) ++state.Unpluggings;
      faults.Unplugged = true;
    });
  if (a.Take("replugged")) return alone([&] { faults.Unplugged = false; });
  if (const auto reply = RunAnalogFault(faults.Analog, a)) {
    state.Analog.SetFaults(faults.Analog);
    return *reply;
  }
  return Refused(kUsage);
}

}  // namespace qk::sim
