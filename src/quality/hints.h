// SPDX-License-Identifier: MIT
// Hints: what a sweep shows of mistakes at the bench. Each is one line of text with a remedy; none
// changes a number or stops a measurement.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/local_time.h"
#include "core/session.h"

namespace qk {

// In order of weight, the worst first.
enum class HintKind : std::uint8_t {
  Overload,
  GivesPower,
  ReflectionAboveOne,
  NothingConnected,
  Unsteady,
  NotReciprocal,
  PhaseTooFast,
  FoldsBack,
  NearNoise,
  Stale,
  Interpolated
};
inline constexpr std::size_t kHintKinds = 11;

// The name of a kind, as console and remote commands give it: "overload", "gives-power" ...
std::string_view HintName(HintKind kind);

// The heading of its paragraph in the manual.
std::string_view HintTopic(HintKind kind);

struct Hint {
  HintKind Kind;
  std::string Text;
};

// A whole sweep, as it has just ended.
struct SweepSeen {
  const qk::Session& Session;
  std::span<const Parameter> Delivered;   // what the kind of sweep measured
  std::array<int, 2> OverloadedPoints{};  // at port 1 and port 2
  LocalTime Now;
  std::int64_t UnixSeconds = 0;
  bool StandardAtPort1 = false;  // S11 is that of the kit's open or short: somebody measures it
};

// Watches the sweeps of a session. A hint comes when its condition holds in two sweeps in a row,
// and goes when it fails in two.
class HintWatch {
 public:
  HintWatch();
  ~HintWatch();

  // No history and no hint: another session, another plan or another calibration. What was silenced
  // stays silenced.
  void Forget();
  // One pass over the points; allocates nothing per point.
  void SweepEnded(const SweepSeen& sweep);

  // The hints that hold, the worst first, without the silenced ones; empty while switched off.
  std::vector<Hint> Standing() const;
  // Changes whenever Standing may have changed.
  unsigned Revision() const { return revision_; }

  // A silenced kind stays so until the program ends, or Listen.
  void Silence(HintKind kind);
  void Listen();
  void SwitchOn(bool on);
  bool On() const { return on_; }

  // Standard deviation of the complex value of one sweep at point k (from 0), from the differences
  // of the last sweeps; 0 while NoiseKnown says no: before the fourth sweep of a device. After a
  // jump, a device counts as another; so does one at other averages or another level.
  bool NoiseKnown(Parameter parameter) const;
  double Noise(Parameter parameter, int k) const;

 private:
  struct State {
    int InARow = 0;  // sweeps in which the condition held (positive) or failed (negative)
    bool Holds = false;
    bool Silenced = false;
    std::string Text;
  };
  struct History;

  void Take(HintKind kind, std::optional<std::string> text);
  double UsualChange() const;
  void LearnNoise(const SweepSeen& sweep, Parameter parameter);
  struct Change;
  Change ChangeOf(const SweepSeen& sweep) const;
  bool IsNewNoise(const Change& change, bool jump);
  void LookAtChange(const SweepSeen& sweep);
  void LookAtCalibration(const SweepSeen& sweep);
  void LookAtAge(const SweepSeen& sweep);
  void LookAtOverload(const SweepSeen& sweep);
  void LookAtPower(const SweepSeen& sweep);
  void LookAtReciprocity(const SweepSeen& sweep);
  void LookAtPhase(const SweepSeen& sweep);
  void LookAtNoise(const SweepSeen& sweep);
  void LookAtTimeRange(const SweepSeen& sweep);

  std::array<State, kHintKinds> states_;
  std::unique_ptr<History> history_;
  unsigned revision_ = 0;
  bool on_ = true;
};

}  // namespace qk
