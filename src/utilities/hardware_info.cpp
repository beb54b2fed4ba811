// SPDX-License-Identifier: MIT
#include "utilities/hardware_info.h"

#include <array>

#include "link/command_set.h"

namespace qk {

namespace {
constexpr int kFields = 12;
constexpr int kFieldLength = 10;

// Field k is at index k; index 0 is unused.
using Fields = std::array<std::string, kFields + 1>;

std::string TextOf(const Bytes& bytes) {
  std::string text;
  for (const std::uint8_t byte : bytes) {
    if (byte < 0x80) {
      text += static_cast<char>(byte);
    } else {  // a Latin-1 character in UTF-8
      text += static_cast<char>(0xC0 | (byte >> 6));
      text += static_cast<char>(0x80 | (byte & 0x3F));
    }
  }
  return text;
}

std::string Block(const Fields& f) {
  const std::array<std::string, 10> lines = {" Model: \t\t" + f[1],
                                             " S/N: \t\t" + f[2],
                                             " DWG: \t\t" + f[3] + "\t\tIss: " + f[4],
                                             " RX S/N: \t\t" + f[5],
                                             " Synth1 S/N: \t" + f[6],
                                             " Synth2 S/N: \t" + f[7],
                                             " Controller DWG: \t" + f[8] + "\tIss:" + f[9],
                                             " Embedded S/W:\tV" + f[10],
                                             " PSU S/N:\t" + f[11],
                                             " Build Date: \t" + f[12]};
  std::string text;
  for (const std::string& line : lines) text += line + "\r\n";
  return text;
}
}  // namespace

std::optional<std::string> ReadHardwareInfo(Rig& rig, const Complaint& complaint) {
  if (!InstrumentAnswers(rig, complaint)) return std::nullopt;
  const auto refuse = [&] {
    rig.host.prompts.ShowMessage(complaint.BadReplyTitle, complaint.BadReply, complaint.Mark);
    return std::nullopt;
  };
  Fields fields;
  for (int k = 1; k <= kFields; ++k) {
    const auto field = SendAndRead(rig, command::ReadEeprom(kFieldLength, kFieldLength * (k - 1)),
                                   kFieldLength, command::kHardwareInfoTimeout);
    if (!field) return refuse();
    fields[static_cast<std::size_t>(k)] = TextOf(*field);
    if (!InstrumentAnswers(rig, complaint)) return std::nullopt;
  }
  // The EEPROM field is not used: the controller's reply is more reliable.
  rig.link.SendCommand(command::kVersion);
  Bytes version = rig.link.ReadReply(command::kVersionLength, command::kHardwareInfoTimeout);
  if (version.size() < command::kVersionLength) return refuse();
  // One release sends "1.05", the fourth character after a pause.
  rig.link.WaitForQuiet(command::kVersionQuiet, command::kShortReadTimeout, &version);
  fields[10] = TextOf(version);
  return Block(fields);
}

}  // namespace qk
