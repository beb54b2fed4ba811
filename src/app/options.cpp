// SPDX-License-Identifier: MIT
#include "app/options.h"

#include <charconv>
#include <cstdlib>
#include <functional>

#include "app/version.h"

namespace qk {

namespace {

// The value is optional and follows "="; only "-" may be a separate word.
constexpr const char* kScpi = "--scpi";

struct Option {
  const char* Name;
  bool TakesValue;
  // Stores the value; returns the reason if it is invalid, otherwise empty.
  std::function<std::string(Options&, const std::string& value)> Take;
};

std::string TakeCom(Options& options, const std::string& value) {
  const std::size_t sign = value.find('=');
  int com = 0;
  if (sign != std::string::npos) {
    const auto [end, error] = std::from_chars(value.data(), value.data() + sign, com);
    if (error != std::errc() || end != value.data() + sign) com = 0;
  }
  if (com < 1 || com > 16 || sign + 1 == value.size())
    return "--com takes N=DEVICE with N from 1 to 16, not \"" + value + "\"";
  if (!options.Com.emplace(com, value.substr(sign + 1)).second)
    return "COM " + std::to_string(com) + " is given twice";
  return {};
}

std::string TakePace(Options& options, const std::string& value) {
  if (value != "fast" && value != "115200") return "--pace takes fast or 115200";
  options.DemoPace = value == "fast" ? sim::Pace::Unpaced : sim::Pace::Baud115200;
  return {};
}

std::string TakeText(std::string& into, const char* name, const std::string& value) {
  if (value.empty()) return std::string(name) + " takes a path";
  into = value;
  return {};
}

constexpr int kScpiPort = 5025;

std::string TakeScpi(Options& options, const std::string& value) {
  if (value == "-") {
    options.ScpiStandard = true;
    return {};
  }
  int port = kScpiPort;
  if (!value.empty()) {
    const char* const end = value.data() + value.size();
    const auto [last, error] = std::from_chars(value.data(), end, port);
    if (error != std::errc() || last != end || port < 0 || port > 65535)
      return "--scpi takes a port from 0 to 65535, or -, not \"" + value + "\"";
  }
  options.ScpiPort = port;
  return {};
}

const std::vector<Option>& Known() {
  static const std::vector<Option> known = {
      {"--console", false,
       [](Options& o, const std::string&) {
         o.Console = true;
         return std::string();
       }},
      {"--demo", false,
       [](Options& o, const std::string&) {
         o.Demo = true;
         return std::string();
       }},
      {"--help", false,
       [](Options& o, const std::string&) {
         o.Help = true;
         return std::string();
       }},
      {"--version", false,
       [](Options& o, const std::string&) {
         o.Version = true;
         return std::string();
       }},
      {"--script", true,
       [](Options& o, const std::string& value) { return TakeText(o.Script, "--script", value); }},
      {"--folder", true,
       [](Options& o, const std::string& value) { return TakeText(o.Folder, "--folder", value); }},
      {"--batch", true,
       [](Options& o, const std::string& value) { return TakeText(o.Batch, "--batch", value); }},
      {"--pace", true, TakePace},
      {"--com", true, TakeCom},
      {kScpi, false, TakeScpi}};
  return known;
}

const Option* FindOption(const std::string& name) {
  for (const Option& option : Known())
    if (name == option.Name) return &option;
  return nullptr;
}

// Names options that exclude each other; empty if there are none.
std::string Conflict(const Options& options, bool pace) {
  if (!options.Script.empty() && !options.Console) return "--script goes with --console";
  if (!options.Batch.empty() && options.Console) return "--batch and --console do not go together";
  if (pace && !options.Demo) return "--pace goes with --demo";
  if (options.ScpiStandard && (options.Console || options.ScpiPort))
    return "--scpi - goes without --console and without a port";
  if (!options.File.empty() && (options.Console || options.ScpiStandard))
    return "a file to open goes with the windows, not with --console or --scpi -";
  if (options.Demo && !options.Com.empty()) return "--demo and --com do not go together";
  return {};
}

}  // namespace

Options ParseOptions(const std::vector<std::string>& arguments) {
  Options options;
  bool pace = false;
  for (std::size_t i = 0; i < arguments.size() && options.Error.empty(); ++i) {
    if (!arguments[i].empty() && arguments[i].front() != '-') {
      if (options.File.empty())
        options.File = arguments[i];
      else
        options.Error = "one file at a time can be opened; \"" + arguments[i] + "\" is a second";
      continue;
    }
    const std::size_t sign = arguments[i].find('=');
    const std::string name = arguments[i].substr(0, sign);
    const Option* option = FindOption(name);
    if (option == nullptr) {
      options.Error = "unknown option \"" + arguments[i] + "\"";
    } else if (name == kScpi) {
      const bool apart =
          sign == std::string::npos && i + 1 < arguments.size() && arguments[i + 1] == "-";
      if (sign != std::string::npos && sign + 1 == arguments[i].size())
        options.Error = "--scpi= takes a port";
      else
        options.Error =
            option->Take(options, apart                       ? arguments[++i]
                                  : sign == std::string::npos ? std::string()
                                                              : arguments[i].substr(sign + 1));
    } else if (!option->TakesValue) {
      options.Error =
          sign == std::string::npos ? option->Take(options, {}) : name + " takes no value";
    } else if (sign != std::string::npos) {
      options.Error = option->Take(options, arguments[i].substr(sign + 1));
    } else if (i + 1 == arguments.size()) {
      options.Error = name + " takes a value";
    } else {
      options.Error = option->Take(options, arguments[++i]);
    }
    pace = pace || name == "--pace";
  }
  if (options.Error.empty()) options.Error = Conflict(options, pace);
  return options;
}

const char* UsageText() {
  return "qk47-vna: control program of the QK47-20-09 vector network analyser\n"
         "\n"
         "  qk47-vna [OPTION]... [FILE]\n"
         "\n"
         "  FILE            a session (.cal) or a Touchstone file (.s1p, .s2p) to open; if a "
         "program "
         "already\n"
         "                  uses the same folder, that program opens it\n"
         "  --com N=DEVICE  the serial device for COM N (1 to 16), once for each; without it the\n"
         "                  serial devices of the system, USB adaptors first\n"
         "  --folder DIR    where session, log and receiver files are kept (default: "
         "~/QK47-20-09)\n"
         "  --demo          a simulated instrument in this process, as COM 1\n"
         "  --pace fast     with --demo: its line takes no time (default: 115200)\n"
         "  --console       no window: commands from standard input, replies to standard output\n"
         "  --script FILE   with --console: commands from FILE\n"
         "  --scpi[=PORT]   remote control from the start: SCPI on 127.0.0.1 (5025; 0: any free "
         "port)\n"
         "  --scpi -        no window: SCPI on standard input and output\n"
         "  --batch FOLDER  no window: a batch (or its batch.txt), serials from standard input\n"
         "  --help          this text\n"
         "  --version       the version, its commit, and the version of Qt\n";
}

std::string VersionText() {
  return "qk47-vna " + VersionDetails() + "\n";
}

std::string DefaultFolder() {
  const char* home = std::getenv("HOME");
  return std::string(home != nullptr && *home != '\0' ? home : ".") + "/QK47-20-09";
}

}  // namespace qk
