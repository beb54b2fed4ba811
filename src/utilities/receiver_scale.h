// SPDX-License-Identifier: MIT
// The receiver as a power meter: the factory table in RXCal.dat, one entry per MHz from 3 MHz, and
// the temperature dependence of the receivers.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/descriptor.h"
#include "core/instrument_limits.h"
#include "core/result.h"
#include "link/eeprom.h"
#include "utilities/power_sweep.h"

namespace qk {

// 32-bit, the table's original precision.
struct ScaleEntry {
  float Millivolts = 0;  // received magnitude of a known signal
  float Dbm = 0;         // its level at port 2

  bool operator==(const ScaleEntry&) const = default;
};

struct ReceiverScale {
  static constexpr std::size_t kEntries = kReceiverEntries;
  std::vector<ScaleEntry> CalTable;  // kEntries
  float CalTemperature = 0;          // degrees Celsius

  bool operator==(const ReceiverScale&) const = default;
};

// Writes RXCal.dat to the install folder while start-up loads the table. The file is empty at
// first. The load continues even if writing fails; Written returns the reason.
class ReceiverScaleFile : public ReceiverDataSink {
 public:
  explicit ReceiverScaleFile(const std::string& folder);
  ~ReceiverScaleFile() override { Flush(); }
  void Entry(double millivolts, double dbm) override;
  void LastByte(int byte) override;
  // After the load: success if all received entries are in the file, otherwise the reason.
  Result<Done> Written() {
    Flush();
    return written_;
  }
  // The file's text as far as it was loaded, even if it could not be written.
  const std::string& Text() const { return all_; }

 private:
  void Flush();

  std::string path_;
  Result<Descriptor> file_;
  Result<Done> written_ = Done{};
  std::string all_;
  std::size_t flushed_ = 0;  // bytes of all_ already passed to the file
};

// Strict: 6141 numbers, one per line, and nothing else.
Result<ReceiverScale> ParseReceiverScale(std::string_view text);
Result<ReceiverScale> ReadReceiverScale(const std::string& folder);

// The entry for a point's frequency, limited to the table: the point nearest to 3072 MHz may be
// above its end.
std::size_t ScaleEntryOf(const SweepPlan& plan, int testPoint);

// Converts received magnitudes to dBm at port 2, for one test point at one temperature.
struct PowerMeter {
  ScaleEntry Entry;
  float TempCorrection = 0;  // dB
  bool Foreign = false;      // the table may belong to another instrument

  // A magnitude or a table entry that is not positive uses the floor of the logarithm, 1e-11.
  double Dbm(double millivolts) const;
};
PowerMeter MeterFor(const ReceiverScale& scale, const SweepPlan& plan, int testPoint,
                    float temperature);

}  // namespace qk
