// SPDX-License-Identifier: MIT
// Loads the EEPROM at start-up: 75 blocks of 64 bytes for each level table, 77 blocks of 120 bytes
// of receiver data, one byte of dc correction, each after a link check.
#include "link/eeprom.h"

#include <cmath>
#include <optional>
#include <string>
#include <string_view>

#include "core/instrument_limits.h"
#include "link/command_set.h"
#include "link/exchange.h"

namespace qk {

namespace {
constexpr int kTableBlock = 64;
constexpr int kRxBlock = 120;
constexpr int kRxBlocks = 77;
// In the last block the entries end here; the next byte is a separate value.
constexpr int kRxLastEntries = 30 * 3;
static_assert(kTableBlock == 2 * kLevelCodes, "two columns a block");
static_assert((kRxBlocks - 1) * kRxBlock + kRxLastEntries == 3 * kReceiverEntries);

// Messages of a failed read: no reply, and a reply of the wrong length.
constexpr std::string_view kLinkError = "Link Error. Re-start Program.";
constexpr Complaint kTableComplaint{"Set Synth Level", "No Response. Re-start Program.",
                                    kLinkError};
constexpr Complaint kRxComplaint{"Read RX Cal Data", "No Response", kLinkError};
// Intentional: the two titles of the last read differ.
constexpr Complaint kDcComplaint = [] {
  Complaint complaint{"Read RX dc Off Correction", "No Response", kLinkError};
  complaint.BadReplyTitle = "Read RX dc Off Corr";
  return complaint;
}();

// The whole load: its link, and where its progress is shown.
struct Load {
  Rig& Link;
  const Progress& Watcher;

  std::optional<Bytes> Read(int count, int address, int timeoutMs, const Complaint& complaint) {
    return Exchange(Link, complaint, command::ReadEeprom(count, address),
                    static_cast<std::size_t>(count), timeoutMs);
  }
  void Report(double percent) { ReportProgress(Watcher, static_cast<int>(std::lround(percent))); }
};

// Stores column (from 0) of a table from 32 stored bytes: codes 0 to 31, each the value plus 128.
void StoreColumn(LevelTables::Table& table, int column, const std::uint8_t* stored) {
  for (int code = 0; code < kLevelCodes; ++code)
    table[static_cast<std::size_t>(code)][static_cast<std::size_t>(column)] =
        static_cast<std::int8_t>(stored[code] - 128);
}

// Two columns per block; the 150th does not exist. base is the initial progress.
bool LoadLevelTable(Load& load, LevelTables::Table& table, int address, int base) {
  for (int f = 1; f <= kLevelColumns; f += 2) {
    const auto block =
        load.Read(kTableBlock, address, command::kEepromBlockTimeout, kTableComplaint);
    if (!block) return false;
    StoreColumn(table, f - 1, block->data());
    if (f < kLevelColumns) StoreColumn(table, f, block->data() + kLevelCodes);
    if (f % 5 == 0) load.Report(25.0 * f / kLevelColumns + base);
    address += kTableBlock;
  }
  return true;
}

bool LoadReceiverData(Load& load, int address, ReceiverDataSink& sink) {
  for (int i = 1; i <= kRxBlocks; ++i) {
    const auto block = load.Read(kRxBlock, address, command::kEepromBlockTimeout, kRxComplaint);
    if (!block) return false;
    const int end = i < kRxBlocks ? kRxBlock : kRxLastEntries;
    for (int j = 0; j < end; j += 3) {
      const std::uint8_t* entry = block->data() + j;
      sink.Entry((entry[0] * 256 + entry[1]) / 10.0, entry[2] * 4 / 255.0 - 18);
    }
    if (i == kRxBlocks) sink.LastByte((*block)[kRxLastEntries]);
    if (i % 5 == 0) load.Report(50.0 * i / kRxBlocks + 50);
    address += kRxBlock;
  }
  return true;
}

// The number at the start of the serial number field; 0 if there are no digits.
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

void LoadEepromData(Rig& rig, ReceiverDataSink& receiverData, const Progress& progress) {
  Load load{rig, progress};
  load.Report(0);
  const EepromAddresses& at = rig.session.Eeprom;
  LevelTables& levels = rig.session.Levels;
  if (!LoadLevelTable(load, levels.Port1LevelTable, at.Port1LevelTableAddr, 0)) return;
  if (!LoadLevelTable(load, levels.Port2LevelTable, at.Port2LevelTableAddr, 25)) return;
  if (!LoadReceiverData(load, at.RxCalDataAddr, receiverData)) return;
  const auto byte = load.Read(1, at.RxDcCorrectionAddr, command::kShortReadTimeout, kDcComplaint);
  if (byte) rig.session.Receiver.RxDcCorrection = static_cast<float>((*byte)[0] - 128) / 10;
}

void ReadIdentity(Rig& rig) {
  Identity& id = rig.session.Id;
  id.SerialNumber = 0;
  if (rig.link.LinkCheck()) {
    // With a lost or doubled byte, the field would be the number of another instrument.
    const auto field = SendAndRead(rig, command::ReadEeprom(kSerialLength, kSerialAddress),
                                   kSerialLength, command::kShortReadTimeout);
    if (field) id.SerialNumber = SerialNumberOf(*field);
  }
  id.FirmwareVersion = "0.0";
  if (!rig.link.LinkCheck()) return;
  rig.link.SendCommand(command::kVersion);
  Bytes text = rig.link.ReadReply(command::kVersionLength, command::kShortReadTimeout);
  if (text.size() < command::kVersionLength) return;
  // Usually three characters; one release sends "1.05", the fourth after a pause.
  rig.link.WaitForQuiet(command::kVersionQuiet, command::kShortReadTimeout, &text);
  id.FirmwareVersion.assign(text.begin(), text.end());
}

}  // namespace qk
