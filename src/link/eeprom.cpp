// The load of the EEPROM at start-up: 75 blocks of 64 bytes for each level table, 77 blocks of 120
// bytes of receiver data, one byte of dc correction, each behind a link check.
#include "link/eeprom.h"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <string>

#include "core/text.h"
#include "link/command_set.h"

namespace qk {

namespace {
constexpr int kColumns = 149;
constexpr int kCodes = 32;
constexpr int kTableBlock = 64;
constexpr int kRxBlock = 120;
constexpr int kRxBlocks = 77;
// In the last block the entries end here; the next byte is a whole number by itself.
constexpr int kRxLastEntries = 30 * 3;
constexpr const char* kLinkError = "Link Error. Re-start Program.";
constexpr const char* kWindow = "EEPROMdata";

// What a failing read says: without an answer, and with a reply of another length.
struct Complaint {
  const char* NoResponseText;
  const char* NoResponseTitle;
  const char* LinkErrorTitle;
};
constexpr Complaint kTableComplaint{"No Response. Re-start Program.", "Set Synth Level",
                                    "Set Synth Level"};
constexpr Complaint kRxComplaint{"No Response", "Read RX Cal Data", "Read RX Cal Data"};
// Meant: the two titles of the last read differ.
constexpr Complaint kDcComplaint{"No Response", "Read RX dc Off Correction", "Read RX dc Off Corr"};

void ShowProgress(Rig& rig, double percent) {
  rig.host.windows.Progress(kWindow, "ProgressBar1", static_cast<int>(std::lround(percent)));
}

bool ReadBlock(Rig& rig, int count, int address, int timeoutMs, const Complaint& complaint,
               Bytes& block) {
  if (!rig.link.LinkCheck()) {
    rig.host.prompts.Tell(complaint.NoResponseTitle, complaint.NoResponseText, Icon::Exclamation);
    return false;
  }
  rig.link.SendCommand(command::ReadEeprom(count, address));
  const auto expected = static_cast<std::size_t>(count);
  block = rig.link.ReadReply(expected, timeoutMs);
  if (command::StateOfReply(block.size(), expected) == command::ReplyState::Whole) return true;
  rig.host.prompts.Tell(complaint.LinkErrorTitle, kLinkError, Icon::Exclamation);
  return false;
}

// Column (from 0) of a table from 32 stored bytes: codes 0 to 31, each the value plus 128.
void StoreColumn(LevelTables::Table& table, int column, const std::uint8_t* stored) {
  for (int code = 0; code < kCodes; ++code)
    table[static_cast<std::size_t>(code)][static_cast<std::size_t>(column)] =
        static_cast<std::int8_t>(stored[code] - 128);
}

// Two columns a block; the 150th does not exist. base is the progress at the start.
bool LoadLevelTable(Rig& rig, LevelTables::Table& table, int address, int base) {
  Bytes block;
  for (int f = 1; f <= kColumns; f += 2) {
    if (!ReadBlock(rig, kTableBlock, address, command::kEepromBlockTimeout, kTableComplaint, block))
      return false;
    StoreColumn(table, f - 1, block.data());
    if (f < kColumns) StoreColumn(table, f, block.data() + kCodes);
    if (f % 5 == 0) ShowProgress(rig, 25.0 * f / kColumns + base);
    address += kTableBlock;
  }
  return true;
}

// Numbers as a print statement gives them: a leading blank unless negative, CR LF.
void PrintLine(std::ostream& file, double value) {
  const std::string text = PlainNumber(value);
  file << (text.front() == '-' ? "" : " ") << text << "\r\n";
}

// The two values of an entry: the magnitude received of a known signal, and its level in dBm.
void PrintEntry(std::ostream& file, const std::uint8_t* entry) {
  PrintLine(file, (entry[0] * 256 + entry[1]) / 10.0);
  PrintLine(file, entry[2] * 4 / 255.0 - 18);
}

bool LoadReceiverData(Rig& rig, std::ostream& file) {
  Bytes block;
  int address = rig.session.Eeprom.RxCalDataAddr;
  for (int i = 1; i <= kRxBlocks; ++i) {
    if (!ReadBlock(rig, kRxBlock, address, command::kEepromBlockTimeout, kRxComplaint, block))
      return false;
    const int end = i < kRxBlocks ? kRxBlock : kRxLastEntries;
    for (int j = 0; j < end; j += 3) PrintEntry(file, block.data() + j);
    if (i == kRxBlocks) file << WholeNumberText(block[kRxLastEntries]) << "\r\n";
    if (i % 5 == 0) ShowProgress(rig, 50.0 * i / kRxBlocks + 50);
    address += kRxBlock;
  }
  return true;
}

// The number in the leading digits of the serial number's field; 0 when there are none.
std::int16_t SerialNumberOf(const Bytes& field) {
  std::size_t i = 0;
  while (i < field.size() && field[i] == ' ') ++i;
  int number = 0;
  for (; i < field.size() && field[i] >= '0' && field[i] <= '9'; ++i)
    number = number * 10 + (field[i] - '0');
  return static_cast<std::int16_t>(number);
}

constexpr int kSerialLength = 4;
constexpr int kSerialAddress = 10;
}  // namespace

void LoadEepromData(Rig& rig) {
  const auto path = std::filesystem::path(rig.session.InstallFolder) / "RXCal.dat";
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  rig.link.EnsurePortOpen();
  ShowProgress(rig, 0);
  const EepromAddresses& at = rig.session.Eeprom;
  LevelTables& levels = rig.session.Levels;
  if (!LoadLevelTable(rig, levels.Port1LevelTable, at.Port1LevelTableAddr, 0)) return;
  if (!LoadLevelTable(rig, levels.Port2LevelTable, at.Port2LevelTableAddr, 25)) return;
  if (!LoadReceiverData(rig, file)) return;
  file.close();
  Bytes byte;
  if (!ReadBlock(rig, 1, at.RxDcCorrectionAddr, command::kShortReadTimeout, kDcComplaint, byte))
    return;
  rig.session.Receiver.RxDcCorrection = static_cast<float>(byte[0] - 128) / 10;
}

void ReadIdentity(Rig& rig) {
  Identity& id = rig.session.Id;
  id.SerialNumber = 0;
  if (rig.link.LinkCheck()) {
    rig.link.SendCommand(command::ReadEeprom(kSerialLength, kSerialAddress));
    const Bytes field = rig.link.ReadReply(kSerialLength, command::kShortReadTimeout);
    // A field that is cut or doubled would be another instrument's number.
    if (field.size() == kSerialLength) id.SerialNumber = SerialNumberOf(field);
  }
  id.FirmwareVersion = "0.0";
  if (rig.link.LinkCheck()) {
    rig.link.SendCommand(command::kVersion);
    const Bytes text = rig.link.ReadReply(command::kVersionLength, command::kShortReadTimeout);
    // Three characters as a rule; one release calls itself "1.05" and sends four at once.
    if (text.size() >= command::kVersionLength) id.FirmwareVersion.assign(text.begin(), text.end());
  }
}

}  // namespace qk
