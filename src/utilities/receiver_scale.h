// SPDX-License-Identifier: MIT
// The receiver as a power meter: the factory's table in RXCal.dat, one entry a MHz from 3 MHz, and
// the receivers' loss with temperature.
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

// 32-bit as the table has always been held.
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

// Writes RXCal.dat into the install folder as the load at start-up reads the table. The file is
// empty from the start. The load goes on whatever can be written; Written says why not.
class ReceiverScaleFile : public ReceiverDataSink {
 public:
  explicit ReceiverScaleFile(const std::string& folder);
  ~ReceiverScaleFile() override { Flush(); }
  void Entry(double millivolts, double dbm) override;
  void LastByte(int byte) override;
  // After the load: the entries that came are in the file, or why they are not.
  Result<Done> Written() {
    Flush();
    return written_;
  }
  // The file's text as far as the load came, whether or not it could be written.
  const std::string& Text() const { return all_; }

 private:
  void Flush();

  std::string path_;
  Result<Descriptor> file_;
  Result<Done> written_ = Done{};
  std::string all_;
  std::size_t flushed_ = 0;  // so many bytes of all_ have been given to the file
};

// Strict: 6141 numbers, one a line, and nothing else.
Result<ReceiverScale> ParseReceiverScale(std::string_view text);
Result<ReceiverScale> ReadReceiverScale(const std::string& folder);

// The entry of a point's frequency, held within the table: the point nearest to 3072 MHz may lie
// above it.
std::size_t ScaleEntryOf(const SweepPlan& plan, int testPoint);

// From received magnitudes to dBm at port 2, for one test point at one temperature.
struct PowerMeter {
  ScaleEntry Entry;
  float TempCorrection = 0;  // dB
  bool Foreign = false;      // the table may be another instrument's

  // A magnitude or a table entry that is not positive meets the floor of the logarithm, 1e-11.
  double Dbm(double millivolts) const;
};
PowerMeter MeterFor(const ReceiverScale& scale, const SweepPlan& plan, int testPoint,
                    float temperature);

}  // namespace qk
