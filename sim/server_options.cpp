// SPDX-License-Identifier: MIT
#include "sim/server_options.h"

#include <algorithm>
#include <array>

#include "sim/words.h"

namespace qk::sim {

namespace {

constexpr std::array<const char*, 5> kFirmware = {"0.9", "1.0", "1.05", "1.1", "1.2"};

bool Known(const std::string& name) {
  static constexpr std::array<const char*, 7> kNames = {
      "--link", "--control", "--pace", "--firmware", "--seed", "--serial", "--device"};
  return std::find(kNames.begin(), kNames.end(), name) != kNames.end();
}

// The error in an option's value; empty if there is none.
std::string TakeOption(ServerOptions& o, const std::string& name, const std::string& value) {
  if (name == "--link") {
    o.Link = value;
  } else if (name == "--control") {
    o.Control = value;
  } else if (name == "--pace") {
    if (value != "115200" && value != "fast") return "--pace: 115200 or fast is expected";
    o.LinePace = value == "fast" ? Pace::Unpaced : Pace::Baud115200;
  } else if (name == "--firmware") {
    if (std::find(kFirmware.begin(), kFirmware.end(), value) == kFirmware.end())
      return "--firmware: 0.9, 1.0, 1.05, 1.1 or 1.2 is expected";
    o.Box.Firmware = value;
  } else if (name == "--seed") {
    const auto seed = WholeNumber(value);
    if (!seed) return "--seed: a whole number of 0 or more is expected";
    o.Box.Seed = static_cast<std::uint64_t>(*seed);
  } else if (name == "--serial") {
    if (value.empty() || value.size() > 10) return "--serial: 1 to 10 characters are expected";
    o.Box.SerialNumber = value;
  } else if (name == "--device") {
    o.BenchLines.push_back(value);
  } else {
    return name + ": unknown option";
  }
  return {};
}

}  // namespace

ServerOptions ParseServerOptions(const std::vector<std::string>& arguments) {
  ServerOptions o;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    std::string name = arguments[i];
    if (name == "--help" || name == "-h") {
      o.Help = true;
      return o;
    }
    std::string value;
    const std::size_t equals = name.find('=');
    if (name.rfind("--", 0) == 0 && equals != std::string::npos) {
      value = name.substr(equals + 1);
      name.erase(equals);
    } else if (i + 1 < arguments.size()) {
      value = arguments[++i];
    } else {
      o.Error = name + (Known(name) ? ": a value is expected" : ": unknown option");
      return o;
    }
    o.Error = TakeOption(o, name, value);
    if (!o.Error.empty()) return o;
  }
  if (o.Link.empty()) o.Error = "--link PATH is needed";
  return o;
}

const char* ServerUsage() {
  return "usage: qk47-sim --link PATH [OPTION]...\n"
         "A simulated QK47-20-09 behind a pseudo-terminal. Serves until SIGINT or SIGTERM.\n"
         "\n"
         "  --link PATH       symbolic link to the port, made at the start, removed at the end\n"
         "  --pace PACE       115200 (as the real line, the default) or fast (no waiting)\n"
         "  --firmware V      0.9, 1.0, 1.05, 1.1 or 1.2 (the default)\n"
         "  --control PATH    named pipe that bench lines are read from, made when missing;\n"
         "                    the replies go to the standard output\n"
         "  --seed N          seed of the noise (default 1)\n"
         "  --serial N        serial number (default 0147)\n"
         "  --device LINE     bench line run at the start, for example \"device filter.s2p\";\n"
         "                    may be given several times\n"
         "  --help            this text\n"
         "\n"
         "Prints \"ready PATH\" when the port can be opened. The bench line \"help\" tells the\n"
         "words of the bench.\n";
}

}  // namespace qk::sim
