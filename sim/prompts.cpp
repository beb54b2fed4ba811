// SPDX-License-Identifier: MIT
#include "sim/prompts.h"

#include <array>
#include <string>
#include <vector>

#include "sim/words.h"

namespace qk::sim {

namespace {

bool Has(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

// The numbers in parentheses: "(5.00mm)", "(0.00 / 3.20mm)", "(0.00)".
std::array<double, 2> Offsets(std::string_view text) {
  std::array<double, 2> offsets{0, 0};
  const std::size_t open = text.find('('), close = text.find(')');
  if (open == std::string_view::npos || close == std::string_view::npos || close < open)
    return offsets;
  std::string inside(text.substr(open + 1, close - open - 1));
  const std::size_t unit = inside.find("mm");
  if (unit != std::string::npos) inside.erase(unit);
  const std::size_t slash = inside.find('/');
  const auto value = [](const std::string& part) {
    const auto words = Words(part);
    return words.size() == 1 ? Number(words[0]).value_or(0) : 0;
  };
  offsets[0] = offsets[1] = value(inside.substr(0, slash));
  if (slash != std::string::npos) offsets[1] = value(inside.substr(slash + 1));
  return offsets;
}

// The millimetres in "behind the air line of 300 mm"; 0 without one.
double AirLine(std::string_view text) {
  constexpr std::string_view kWords = "behind the air line of ";
  const std::size_t at = text.find(kWords);
  if (at == std::string_view::npos) return 0;
  const auto words = Words(text.substr(at + kWords.size()));
  return words.empty() ? 0 : Number(words[0]).value_or(0);
}

struct Ports {
  bool First = false, Second = false;
};

Ports NamedPorts(std::string_view text) {
  if (Has(text, "ports 1 & 2") || Has(text, "ports 1 and 2")) return {true, true};
  return {Has(text, "port 1"), Has(text, "port 2")};
}

Termination Standard(int port, Termination::Kind kind, double offsetMm) {
  Termination t;
  t.What = kind;
  t.Male = port == 1;
  t.OffsetMm = offsetMm;
  return t;
}

// The device's reflection at its own port, without transmission.
Termination DeviceAt(const Connection& device, int port) {
  if (!device.Between) return port == 1 ? device.Port1 : device.Port2;
  Termination t;
  t.What = Termination::Kind::DevicePort;
  t.Dut = device.Between;
  t.DutPort = port;
  return t;
}

std::optional<Connection> IsolationOfPrompt(std::string_view text, const Connection& device) {
  if (!Has(text, "dut on port")) return std::nullopt;
  Connection c;
  c.Port1 =
      Has(text, "dut on port 1") ? DeviceAt(device, 1) : Standard(1, Termination::Kind::Load, 0);
  c.Port2 =
      Has(text, "dut on port 2") ? DeviceAt(device, 2) : Standard(2, Termination::Kind::Load, 0);
  return c;
}

std::optional<Termination::Kind> NamedStandard(std::string_view text) {
  if (Has(text, "matched load on") || Has(text, "terminate ports")) return Termination::Kind::Load;
  if (Has(text, "short circuit on")) return Termination::Kind::Short;
  if (Has(text, "open circuit on")) return Termination::Kind::Open;
  if (Has(text, "mismatch on")) return Termination::Kind::Mismatch;
  return std::nullopt;
}

}  // namespace

bool NamesDevice(std::string_view text) {
  return Has(Lower(text), "connect dut");
}

std::optional<Connection> ConnectionOfPrompt(std::string_view text, const Connection& now,
                                             const Connection& device,
                                             const DevicePtr& throughStandard) {
  const std::string lower = Lower(text);
  if (auto isolation = IsolationOfPrompt(lower, device)) return isolation;
  if (Has(lower, "through standard")) return Connection{throughStandard, {}, {}};
  if (Has(lower, "connect through") || Has(lower, "connect port1 to port2"))
    return Connection{MakeThrough(), {}, {}};
  if (Has(lower, "remove connection from port1 to port2")) return Connection{};
  const auto kind = NamedStandard(lower);
  const Ports ports = NamedPorts(lower);
  if (!kind || (!ports.First && !ports.Second)) return std::nullopt;
  const auto offsets = Offsets(lower);
  Connection c;
  if (!now.Between) c = now;
  if (ports.First) {
    c.Port1 = Standard(1, *kind, offsets[0]);
    c.Port1.LineMm = AirLine(lower);
  }
  if (ports.Second) c.Port2 = Standard(2, *kind, offsets[1]);
  return c;
}

}  // namespace qk::sim
