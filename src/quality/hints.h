// SPDX-License-Identifier: MIT
// Hints: likely mistakes at the bench, detected from a sweep. Each is one line of text with a
// remedy. Hints never change a number or stop a measurement.
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
#include "quality/noise_pool.h"

namespace qk {

// In order of severity, the worst first.
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

// The name of a kind in console and remote commands: "overload", "gives-power" ...
std::string_view HintName(HintKind kind);

// The heading of its section in the manual.
std::string_view HintTopic(HintKind kind);

struct Hint {
  HintKind Kind;
  std::string Text;
};

// A complete sweep that has just ended.
struct SweepSeen {
  const qk::Session& Session;
  std::span<const Parameter> Delivered;   // parameters measured by this kind of sweep
  std::array<int, 2> OverloadedPoints{};  // at port 1 and port 2
  LocalTime Now;
  std::int64_t UnixSeconds = 0;
  bool OpenAtPort1 = false;  // S11 is that of the kit's open: the user is measuring it
};

// Watches the sweeps of a session. A hint appears when its condition is true in two consecutive
// sweeps, and disappears when it is false in two.
class HintWatch {
 public:
  HintWatch();
  ~HintWatch();

  // Clears history and hints for another session, plan or calibration. Silenced kinds stay
  // silenced.
  void Forget();
  // One pass over the points; no allocation per point.
  void SweepEnded(const SweepSeen& sweep);

  // The active hints, the worst first, without the silenced ones; empty while switched off.
  std::vector<Hint> Active() const;
  // Changes whenever the active hints may have changed.
  unsigned Revision() const { return revision_; }

  // A silenced kind stays silent until the program ends or Listen is called.
  void Silence(HintKind kind);
  void Listen();
  void SwitchOn(bool on);
  bool On() const { return on_; }

  // Standard deviation of the complex value of one sweep at point k (from 0), from the differences
  // of the last sweeps. 0 while NoiseKnown is false: before the fourth sweep of a device. A jump in
  // the data counts as a new device, and so does a change of averages or level.
  bool NoiseKnown(Parameter parameter) const;
  double Noise(Parameter parameter, int k) const;
  // The same for an uncertainty, pooled over neighbouring points where they have the same noise.
  NoiseEstimate NoiseAt(Parameter parameter, int k) const;

  // Number of sweeps seen since Forget, counted up to kCounted.
  static constexpr int kCounted = 2;
  int Seen() const { return seen_; }
  // Number of hints that would be shown if they were not silenced.
  int Silenced() const;

 private:
  struct State {
    int InARow = 0;  // consecutive sweeps with the condition true (positive) or false (negative)
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
  int seen_ = 0;
  unsigned revision_ = 0;
  bool on_ = true;
};

}  // namespace qk
