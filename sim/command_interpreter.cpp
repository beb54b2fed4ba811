// SPDX-License-Identifier: MIT
#include "sim/command_interpreter.h"

#include <algorithm>
#include <string_view>

#include "sim/words.h"

namespace qk::sim {

namespace {

constexpr std::string_view kIdentify = "*IDN?";
constexpr std::size_t kIdentityReply = 12;
constexpr std::int64_t kForgetUs = 5'000'000;
constexpr std::int64_t kEepromByteWriteUs = 5'000;
constexpr std::int64_t kAnswerUs = 50;

std::size_t Address(const std::uint8_t* hiLo) {
  return static_cast<std::size_t>(hiLo[0]) * 256 + hiLo[1];
}

}  // namespace

CommandInterpreter::CommandInterpreter(const InstrumentOptions& options, Faults& faults,
                                       Receiver& receiver, Transmitter& transmitter)
    : faults_(faults),
      receiver_(receiver),
      transmitter_(transmitter),
      firmware_(options.Firmware),
      firmwareNumber_(Number(options.Firmware).value_or(0)),
      eeprom_(FactoryEeprom(options.Model, options.SerialNumber, options.Firmware)) {
  ReadModel();
}

// The controller reads its identity once, at power-on.
void CommandInterpreter::ReadModel() {
  model_.assign(eeprom_.begin(), eeprom_.begin() + kIdentityFieldSize);
}

void CommandInterpreter::SwitchOffAndOn() {
  ram_.fill(0);
  averages_ = 1;
  dwell_ = false;
  path_ = 0;
  selectedPoint_ = 0;
  continuousWave_.reset();
  sweep_ = {};
  input_.clear();
  inputAt_ = 0;
  ReadModel();
}

void CommandInterpreter::Receive(const std::uint8_t* bytes, std::size_t count, std::int64_t nowUs) {
  RunUntil(nowUs);
  if (nowUs - lastByteUs_ > kForgetUs && !sweep_.Running) {
    input_.clear();
    inputAt_ = 0;
  }
  lastByteUs_ = nowUs;
  for (std::size_t i = 0; i < count; ++i) {
    if (sweep_.Running && bytes[i] == 'O') {
      if (CanAbort()) Abort(nowUs);  // older firmware finishes the sweep
      continue;
    }
    input_.push_back(bytes[i]);
    if (!sweep_.Running) Interpret(nowUs);
  }
}

void CommandInterpreter::RunUntil(std::int64_t nowUs) {
  if (!born_) {
    born_ = true;
    bornUs_ = lastByteUs_ = nowUs;
  }
  while (sweep_.Running) {
    const std::int64_t start = NextPointStartNs();
    if (Paced() && start > nowUs * 1000) return;
    MeasurePoint(start);
    if (!sweep_.Running) Interpret((hardwareFreeNs_ + 999) / 1000);
  }
}

std::int64_t CommandInterpreter::NextUs() const {
  return sweep_.Running ? (NextPointStartNs() + 999) / 1000 : Instrument::kNever;
}

void CommandInterpreter::Interpret(std::int64_t nowUs) {
  while (!sweep_.Running && inputAt_ < input_.size()) {
    const std::size_t length = WholeCommand();
    if (length == 0) break;
    const std::size_t at = inputAt_;
    inputAt_ += length;
    const bool nearMiss = length == 1 && (input_[at] == '*' || input_[at] == 'E');
    if (!nearMiss) Execute(input_.data() + at, nowUs);
    // An unpaced sweep ends as soon as it is triggered.
    if (sweep_.Running && !Paced()) {
      while (sweep_.Running) MeasurePoint(NextPointStartNs());
    }
  }
  if (inputAt_ == input_.size()) {
    input_.clear();
    inputAt_ = 0;
  }
}

std::size_t CommandInterpreter::WholeCommand() const {
  const std::size_t have = input_.size() - inputAt_;
  const std::uint8_t* c = input_.data() + inputAt_;
  const auto whole = [have](std::size_t length) { return have >= length ? length : 0; };
  switch (c[0]) {
    case '*': {
      const std::size_t compare = std::min(have, kIdentify.size());
      if (!std::equal(c, c + compare, kIdentify.begin())) return 1;
      return whole(kIdentify.size());
    }
    case 'P':
      return whole(4);
    case 'E':
      if (have < 2) return 0;
      if (c[1] != 'E') return 1;
      return have < 5 ? 0 : whole(5 + std::size_t{c[2]});
    case 'W':
      return have < 4 ? 0 : whole(4 + std::size_t{c[1]});
    case 'N':
      return whole(1 + static_cast<std::size_t>(Points()));
    case 'D':
    case 'Z':
      return whole(2);
    case 'Y':
      return have < 2 ? 0 : WholeSecondLetter();
    default:
      return 1;
  }
}

std::size_t CommandInterpreter::WholeSecondLetter() const {
  const std::size_t have = input_.size() - inputAt_;
  std::size_t length = 2;
  switch (input_[inputAt_ + 1]) {
    case '8':
      length = 3;
      break;
    case 'I':
      length = 4;
      break;
    case 'K':
      length = 5;
      break;
    default:
      break;
  }
  return have >= length ? length : 0;
}

void CommandInterpreter::Execute(const std::uint8_t* command, std::int64_t nowUs) {
  switch (command[0]) {
    case 'Q': {
      // "S" while a continuous wave is output, otherwise "R"; either means that the controller is
      // alive.
      const std::uint8_t status = continuousWave_ ? 'S' : 'R';
      return Answer(&status, 1, nowUs);
    }
    case '*': {
      std::string identity = faults_.Model.value_or(model_);
      identity.resize(kIdentityReply - 2, ' ');
      identity += "\r\n";
      return Answer(reinterpret_cast<const std::uint8_t*>(identity.data()), identity.size(), nowUs);
    }
    case 'V':
      // Three characters; a text of four is sent in one piece, so that no reader misses the last.
      return Answer(reinterpret_cast<const std::uint8_t*>(firmware_.data()), firmware_.size(),
                    nowUs, 0, firmware_.size() > 3);
    case 'P':
      return ReadEeprom(command, nowUs);
    case 'E':
      return WriteEeprom(command, nowUs);
    case 'W':
      return WriteSweepRam(command);
    case 'N':
      return LoadLevelCodes(command + 1);
    case 'D':
      dwell_ = command[1] != 0;
      return;
    case 'Y':
      return ExecuteSecondLetter(command, nowUs);
    case 'M':
      return StartSweep(Trigger::S11, nowUs);
    case 'S':
      return StartSweep(Trigger::S21, nowUs);
    case 'A':
      return StartSweep(Trigger::All, nowUs);
    case 'O':
      // The sweep may have ended while the byte was in transit: the end mark is sent anyway.
      if (CanAbort()) Abort(nowUs);
      return;
    case 'C':
      return MeasureOffsets(nowUs);
    case 'T': {
      SetMoment(nowUs);
      const int sum = receiver_.TemperatureCount();
      const std::uint8_t reply[] = {static_cast<std::uint8_t>(sum >> 8),
                                    static_cast<std::uint8_t>(sum)};
      return Answer(reply, sizeof reply, nowUs);
    }
    case 'Z':
      if (command[1] < Points()) continuousWave_ = RecordOf(command[1]);
      return;
    default:
      return;
  }
}

void CommandInterpreter::ExecuteSecondLetter(const std::uint8_t* command, std::int64_t nowUs) {
  switch (command[1]) {
    case 'F':
    case 'E':
    case 'G':
    case 'P':
      path_ = static_cast<char>(command[1]);
      return;
    case '8':
      averages_ = std::max<int>(command[2], 1);
      return;
    case 'O':
      return StartSweep(Trigger::S11S21, nowUs);
    case '9': {
      const Record record = continuousWave_ ? *continuousWave_ : RecordOf(0);
      const std::uint8_t locked = receiver_.Locks(record) ? 1 : 0;
      return Answer(&locked, 1, nowUs);
    }
    case '0':
    case '1':
      return ReadChannel(Channel::Reference, command[1] == '1', nowUs);
    case '2':
    case '3':
      return ReadChannel(Channel::Test, command[1] == '3', nowUs);
    case 'K':
      // Points count from 1 in this command.
      return SetLevelCode(static_cast<int>(Address(command + 2)) - 1, command[4]);
    case 'I':
      selectedPoint_ = static_cast<int>(Address(command + 2)) - 1;
      continuousWave_.reset();
      return;
    case 'J':
      return MeasureSelected(nowUs);
    default:
      return;
  }
}

void CommandInterpreter::ReadEeprom(const std::uint8_t* command, std::int64_t nowUs) {
  std::array<std::uint8_t, 255> reply;
  const std::size_t count = command[1], first = Address(command + 2);
  Eeprom shown = eeprom_;
  if (faults_.SerialNumber) {
    SetIdentityField(shown, 2, *faults_.SerialNumber);
    shown[kChecksumAddress] = Checksum(shown);
  }
  for (std::size_t i = 0; i < count; ++i) reply[i] = shown[(first + i) % kEepromSize];
  Answer(reply.data(), count - std::min(count, static_cast<std::size_t>(faults_.ShortBy)), nowUs);
}

void CommandInterpreter::WriteEeprom(const std::uint8_t* command, std::int64_t nowUs) {
  const std::size_t count = command[2], first = Address(command + 3);
  for (std::size_t i = 0; i < count; ++i) eeprom_[(first + i) % kEepromSize] = command[5 + i];
  if (Paced())
    hardwareFreeNs_ = std::max(hardwareFreeNs_, nowUs * 1000) +
                      static_cast<std::int64_t>(count) * kEepromByteWriteUs * 1000;
}

void CommandInterpreter::WriteSweepRam(const std::uint8_t* command) {
  const std::size_t count = command[1], first = Address(command + 2);
  for (std::size_t i = 0; i < count; ++i) ram_[(first + i) % kSweepRamSize] = command[4 + i];
}

int CommandInterpreter::Points() const {
  return std::min(ram_[0] * 256 + ram_[1], kMaxPoints);
}

Record CommandInterpreter::RecordOf(int point) const {
  Record record;
  const auto at = ram_.begin() + 2 + point * static_cast<std::ptrdiff_t>(kRecordSize);
  std::copy_n(at, kRecordSize, record.begin());
  return record;
}

void CommandInterpreter::LoadLevelCodes(const std::uint8_t* codes) {
  for (int i = 0; i < Points(); ++i) SetLevelCode(i, codes[i]);
}

void CommandInterpreter::SetLevelCode(int point, std::uint8_t code) {
  if (point < 0 || point >= Points()) return;
  std::uint8_t& control = ram_[2 + static_cast<std::size_t>(point) * kRecordSize + 14];
  control = static_cast<std::uint8_t>((control & 0xE0) | (code & 0x1F));
}

bool CommandInterpreter::CanAbort() const {
  return firmwareNumber_ > 1.0;
}

void CommandInterpreter::Abort(std::int64_t nowUs) {
  sweep_.Running = false;
  if (Paced()) hardwareFreeNs_ = std::max(hardwareFreeNs_, nowUs * 1000);
  static constexpr std::uint8_t kEndMark[] = {'X', 'X'};
  transmitter_.Send(kEndMark, sizeof kEndMark, nowUs, Sending::SweepRest);
  Interpret(nowUs);
}

void CommandInterpreter::Answer(const std::uint8_t* bytes, std::size_t count, std::int64_t nowUs,
                                std::int64_t costUs, bool together) {
  if (Paced()) {
    hardwareFreeNs_ = std::max(hardwareFreeNs_, nowUs * 1000) + (costUs + kAnswerUs) * 1000;
    nowUs = (hardwareFreeNs_ + 999) / 1000;
  }
  transmitter_.Send(bytes, count, nowUs, Sending::Reply, together);
}

}  // namespace qk::sim
