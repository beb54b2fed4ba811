// The "fault" lines of the bench language.
#include <array>

#include "sim/bench_arguments.h"
#include "sim/instrument_state.h"

namespace qk::sim {

namespace {

constexpr std::uint64_t kStallAfter = 100;
constexpr const char* kUsage =
    "fault: none, silence, cut after N, late MS, [sweep] drop|add|double|garble at N [count N], "
    "stall [after N], short [N], model [NAME], serial TEXT, unplugged, replugged or nolock is "
    "expected";

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
      state.Analog.SetLockFails(false);
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
  if (a.Take("nolock"))
    return alone([&] {
      faults.NoLock = true;
      state.Analog.SetLockFails(true);
    });
  return Refused(kUsage);
}

}  // namespace qk::sim
