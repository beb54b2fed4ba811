// SPDX-License-Identifier: MIT
// The instrument's controller: receives the command bytes, stores sweep RAM and EEPROM, runs sweeps
// in hardware time, and replies.
//
// A byte that does not start a command is ignored. A command that waits more than 5 seconds for its
// arguments is discarded. While a sweep runs, only "O" is handled; everything else is handled after
// the sweep.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "sim/eeprom_image.h"
#include "sim/faults.h"
#include "sim/instrument.h"
#include "sim/receiver.h"
#include "sim/transmitter.h"

namespace qk::sim {

class CommandInterpreter {
 public:
  CommandInterpreter(const InstrumentOptions& options, Faults& faults, Receiver& receiver,
                     Transmitter& transmitter);

  void Receive(const std::uint8_t* bytes, std::size_t count, std::int64_t nowUs);
  // Runs the measurement hardware up to nowUs.
  void RunUntil(std::int64_t nowUs);
  std::int64_t NextUs() const;

  static constexpr std::size_t kSweepRamSize = 32768;
  static constexpr std::size_t kOffsetRecordAddress = 32738;
  // Number of records that fit between the number of points and the offset record.
  static constexpr int kMaxPoints = static_cast<int>((kOffsetRecordAddress - 2) / kRecordSize);

  // ---- instrument state, for display and tests -------------------------------------------------
  const Eeprom& EepromBytes() const { return eeprom_; }
  const std::array<std::uint8_t, kSweepRamSize>& SweepRam() const { return ram_; }
  int Points() const;
  Record RecordOf(int point) const;  // from 0
  int Averages() const { return averages_; }
  bool DwellOn() const { return dwell_; }
  char Path() const { return path_; }  // 'F', 'E', 'G', 'P'; 0 initially and after "C"
  bool Sweeping() const { return sweep_.Running; }

  // ---- actions on the instrument --------------------------------------------------------------
  void ChangeEeprom(std::size_t address, std::uint8_t byte) { eeprom_[address] = byte; }
  // Resets the controller's state; the EEPROM is kept, and the identity is read from it again.
  void SwitchOffAndOn();

 private:
  enum class Trigger { S11, S21, S11S21, All };
  struct Sweep {
    bool Running = false;
    Trigger What = Trigger::All;
    int Points = 0;
    int Next = 0;  // the next point to measure
  };

  // ---- commands ------------------------------------------------------------------------------
  void Interpret(std::int64_t nowUs);
  // Length in bytes of the command at the start of the input; 0 if it is incomplete.
  std::size_t WholeCommand() const;
  std::size_t WholeSecondLetter() const;
  void Execute(const std::uint8_t* command, std::int64_t nowUs);
  void ExecuteSecondLetter(const std::uint8_t* command, std::int64_t nowUs);
  void ReadEeprom(const std::uint8_t* command, std::int64_t nowUs);
  void WriteEeprom(const std::uint8_t* command, std::int64_t nowUs);
  void WriteSweepRam(const std::uint8_t* command);
  void LoadLevelCodes(const std::uint8_t* codes);
  void SetLevelCode(int point, std::uint8_t code);
  void Abort(std::int64_t nowUs);
  void ReadModel();
  bool CanAbort() const;

  // ---- measuring -----------------------------------------------------------------------------
  void StartSweep(Trigger what, std::int64_t nowUs);
  std::int64_t NextPointStartNs() const;
  void MeasurePoint(std::int64_t startNs);
  std::size_t BytesAPoint() const;
  std::int64_t PointUs(int sides) const;
  void MeasureOffsets(std::int64_t nowUs);
  void MeasureSelected(std::int64_t nowUs);
  void ReadChannel(Channel channel, bool quadrature, std::int64_t nowUs);
  void Samples(const SideVoltages& v, Complex SideVoltages::*test, std::uint8_t* out);
  void SixSamples(const SideVoltages& v, std::uint8_t* out);
  void SetMoment(std::int64_t us) { receiver_.SetMoment(static_cast<double>(us - bornUs_) * 1e-6); }
  bool Paced() const { return transmitter_.pace() == Pace::Baud115200; }

  // Queues a reply that is ready costUs after the hardware becomes free.
  void Answer(const std::uint8_t* bytes, std::size_t count, std::int64_t nowUs,
              std::int64_t costUs = 0, bool together = false);

  Faults& faults_;
  Receiver& receiver_;
  Transmitter& transmitter_;
  std::string model_, firmware_;
  double firmwareNumber_ = 0;
  Eeprom eeprom_;
  std::array<std::uint8_t, kSweepRamSize> ram_{};
  int averages_ = 1;
  bool dwell_ = false;
  char path_ = 0;
  int selectedPoint_ = 0;
  std::optional<Record> continuousWave_;
  Sweep sweep_;
  std::vector<std::uint8_t> input_;
  std::size_t inputAt_ = 0;
  std::int64_t lastByteUs_ = 0;
  bool born_ = false;
  std::int64_t bornUs_ = 0;
  std::int64_t hardwareFreeNs_ = 0;
};

}  // namespace qk::sim
