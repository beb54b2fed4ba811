// SPDX-License-Identifier: MIT
#include "quality/hints.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>
#include <tuple>

#include "core/instrument_limits.h"
#include "core/measured_sweep.h"
#include "core/text.h"
#include "numeric/median.h"
#include "quality/uncertainty.h"

namespace qk {

namespace {
constexpr double kAboveOne = 1.02 * 1.02;  // squared magnitude
constexpr double kAboveOneShare = 0.02;    // of the points
constexpr double kReciprocity = 0.03;      // of the larger transmission
constexpr double kReciprocityShare = 0.1;
constexpr double kLeastSeen = 1e-10;  // |S|^2 below which a transmission counts as none
constexpr double kLeakage = 1e-4;     // between the ports, different for the two directions
constexpr double kPhaseShare = 0.05;
constexpr double kTan30 = 0.57735026918962573;  // a step above 150 degrees: |Im| < -Re tan 30
constexpr double kReadable = 1e-4;              // |S|^2 below which a phase is meaningless
constexpr double kOverloadShare = 0.01;
constexpr double kUnsteady = 10;       // times the median of the changes
constexpr double kLeastChange = 5e-5;  // caused by the quantisation of the receiver alone
constexpr std::size_t kChanges = 50;   // number of changes in the median
constexpr std::size_t kLeastChanges = 5;
constexpr int kLeastDifferences = 3;  // before noise is known
constexpr double kNewest = 0.2;       // least weight of the newest difference
constexpr double kNoiseLike = 0.5;    // of the value for neighbouring points that are independent
constexpr int kLasting = 10;          // sweeps after which increased noise becomes the usual noise
constexpr std::int64_t kOldSeconds = 8 * 3600;
constexpr float kWarmer = 3;  // degrees Celsius
constexpr double kTail = 0.1, kTailPart = 0.02;
constexpr double kLeastTail = 5e-4;  // of a full reflection: for a load only noise remains

constexpr std::array<std::string_view, kHintKinds> kNames{
    "overload",   "gives-power",    "reflection-above-one", "nothing-connected",
    "unsteady",   "not-reciprocal", "phase-too-fast",       "folds-back",
    "near-noise", "stale",          "interpolated"};

constexpr std::array<std::string_view, kHintKinds> kTopics{"Overload",
                                                           "Passive device gives out power",
                                                           "S11 above 1",
                                                           "Nothing seems connected",
                                                           "Unsteady",
                                                           "S21 and S12 differ",
                                                           "Phase turns too fast",
                                                           "Echoes fold back",
                                                           "Near the noise",
                                                           "Old or warmed calibration",
                                                           "Interpolated calibration"};

constexpr std::array<Parameter, 4> kAll{Parameter::S11, Parameter::S21, Parameter::S12,
                                        Parameter::S22};

double Squared(Complex z) {
  return z.re * z.re + z.im * z.im;
}

std::string Megahertz(double hertz) {
  std::string number = FormatNumber(hertz / 1e6, "#0.000");
  number.erase(number.find_last_not_of('0') + 1);
  if (number.ends_with('.')) number.pop_back();
  return number + " MHz";
}

bool Has(std::span<const Parameter> delivered, Parameter parameter) {
  return std::ranges::find(delivered, parameter) != delivered.end();
}

std::string Age(std::int64_t seconds) {
  if (seconds >= 48 * 3600) return std::to_string(seconds / 86400) + " days";
  if (seconds >= 3600) return std::to_string(seconds / 3600) + " h";
  return std::to_string(std::max<std::int64_t>(0, seconds) / 60) + " min";
}

std::string DegreesText(float degC) {
  return FormatNumber(static_cast<double>(degC), "#0.0");
}

// The number of points at which a condition was true, and the worst of them.
struct Worst {
  int Count = 0, At = -1;
  double Size = 0;

  void Take(int k, double size) {
    ++Count;
    if (At >= 0 && !(size > Size)) return;
    At = k;
    Size = size;
  }
  bool AtMoreThan(double share, int points) const { return Count > share * points; }
};

// Weights of the differences in a running mean. Two successive differences share a sweep, so that
// their squares have a correlation of 1/4.
struct Weights {
  double Newest = 0, Squares = 0, Neighbours = 0;

  void Take(double weight) {
    const double kept = 1 - weight;
    Neighbours = kept * kept * Neighbours + kept * Newest * weight;
    Squares = kept * kept * Squares + weight * weight;
    Newest = weight;
  }
  // Degrees of freedom of the mean of squared complex differences.
  double Freedom() const { return 2 / (Squares + Neighbours / 2); }
};
// True if S11 has the phase of a bare connector: an open with the capacitance of at most 3 mm of
// line. A short, and an open or a short behind a line, are devices being measured.
bool IsBareConnector(const Session& session) {
  constexpr double kLongest = 3e-3, kSlack = std::numbers::pi / 180;
  for (int k = 0; k < session.Plan.NumPoints; ++k) {
    const Complex s11 = session.Data.S11[k];
    const double phase = std::atan2(s11.im, s11.re);
    const double most = 4 * std::numbers::pi * session.Plan.Frequency(k) * kLongest / kSpeedOfLight;
    if (phase > kSlack || phase < -most - kSlack) return false;
  }
  return true;
}

// What differs between the sweep of the calibration and this one: the points, the span, or both.
std::string InterpolationText(const PlanGrid& from, const PlanGrid& to) {
  const double slack = 0.001 * (to.StopFreq - to.StartFreq);
  const bool samePoints = from.NumPoints == to.NumPoints;
  const bool sameSpan = std::fabs(from.StartFreq - to.StartFreq) <= slack &&
                        std::fabs(from.StopFreq - to.StopFreq) <= slack;
  if (sameSpan && !samePoints)
    return "Calibration interpolated from " + std::to_string(from.NumPoints) + " to " +
           std::to_string(to.NumPoints) + " points";
  const auto megahertz = [](double hertz) { return FormatNumber(hertz / 1e6, "###0.0###"); };
  const auto text = [&](const PlanGrid& grid) {
    const std::string points = samePoints ? "" : ", " + std::to_string(grid.NumPoints) + " points";
    return megahertz(grid.StartFreq) + "-" + megahertz(grid.StopFreq) + " MHz" + points;
  };
  return "Calibration interpolated from " + text(from) + " to " + text(to);
}

}  // namespace

// The previous sweep, and statistics of the differences between sweeps.
struct HintWatch::History {
  PlanGrid Grid;
  bool Valid = false;
  std::array<bool, 4> Known{};  // Last contains the parameter
  std::array<ComplexArray, 4> Last;
  std::array<std::array<float, kMaxPoints>, 4> Variance{};  // of the complex value of a sweep
  std::array<std::array<float, kMaxPoints>, 4> Common{};    // covariance with the next point
  std::array<int, 4> Differences{};
  std::array<Weights, 4> Weight{};         // of the differences in Variance
  std::array<double, kChanges> Changes{};  // RMS over the points, the latest ones in a ring buffer
  std::size_t ChangeCount = 0;
  int NoisyInARow = 0;  // consecutive sweeps that jumped like noise
  std::int16_t Averages = 0, Level = 0;
  std::string UnsteadySince;
};

// The change from the previous sweep, over all points of all parameters that both contain.
struct HintWatch::Change {
  int Count = 0;     // number of compared values
  double Rms = 0;    // of the differences
  double Rough = 0;  // mean square step from a point's difference to the next one's, divided by 2
                     // Rms^2: 1 if the points are independent, 0 if all change together
};

std::string_view HintName(HintKind kind) {
  return kNames[static_cast<std::size_t>(kind)];
}

std::string_view HintTopic(HintKind kind) {
  return kTopics[static_cast<std::size_t>(kind)];
}

HintWatch::HintWatch() : history_(std::make_unique<History>()) {}
HintWatch::~HintWatch() = default;

void HintWatch::Forget() {
  history_->Valid = false;
  history_->Known.fill(false);
  history_->Differences.fill(0);
  history_->ChangeCount = 0;
  history_->NoisyInARow = 0;
  seen_ = 0;
  for (State& state : states_) {
    state.InARow = 0;
    state.Holds = false;
  }
  ++revision_;
}

void HintWatch::SweepEnded(const SweepSeen& sweep) {
  if (history_->Valid && !SameGrid(history_->Grid, sweep.Session.Plan)) Forget();
  history_->Grid = sweep.Session.Plan;
  history_->Valid = true;
  if (seen_ < kCounted) {
    ++seen_;
    ++revision_;
  }
  LookAtChange(sweep);
  LookAtCalibration(sweep);
  LookAtOverload(sweep);
  LookAtPower(sweep);
  LookAtReciprocity(sweep);
  LookAtPhase(sweep);
  LookAtNoise(sweep);
  LookAtTimeRange(sweep);
}

std::vector<Hint> HintWatch::Active() const {
  std::vector<Hint> hints;
  if (!on_) return hints;
  for (std::size_t i = 0; i < kHintKinds; ++i)
    if (states_[i].Holds && !states_[i].Silenced)
      hints.push_back({static_cast<HintKind>(i), states_[i].Text});
  return hints;
}

void HintWatch::Silence(HintKind kind) {
  states_[static_cast<std::size_t>(kind)].Silenced = true;
  ++revision_;
}

void HintWatch::Listen() {
  for (State& state : states_) state.Silenced = false;
  ++revision_;
}

void HintWatch::SwitchOn(bool on) {
  on_ = on;
  ++revision_;
}

bool HintWatch::NoiseKnown(Parameter parameter) const {
  return history_->Differences[static_cast<std::size_t>(parameter)] >= kLeastDifferences;
}

double HintWatch::Noise(Parameter parameter, int k) const {
  const auto p = static_cast<std::size_t>(parameter);
  if (!NoiseKnown(parameter)) return 0;
  return std::sqrt(static_cast<double>(history_->Variance[p][static_cast<std::size_t>(k)]));
}

NoiseEstimate HintWatch::NoiseAt(Parameter parameter, int k) const {
  const auto p = static_cast<std::size_t>(parameter);
  if (!NoiseKnown(parameter)) return {};
  const auto of = [](const std::array<float, kMaxPoints>& values) {
    return [&values](int i) { return static_cast<double>(values[static_cast<std::size_t>(i)]); };
  };
  return PooledNoise(WindowAbout(k, history_->Grid.NumPoints, history_->Weight[p].Freedom(),
                                 of(history_->Variance[p]), of(history_->Common[p])));
}

int HintWatch::Silenced() const {
  return static_cast<int>(
      std::ranges::count_if(states_, [](const State& s) { return s.Holds && s.Silenced; }));
}

// Processes a hint's condition in the sweep that has ended: its text, or empty if it is false.
void HintWatch::Take(HintKind kind, std::optional<std::string> text) {
  constexpr int kSweeps = 2;
  State& state = states_[static_cast<std::size_t>(kind)];
  const bool before = state.Holds;
  state.InARow = text ? std::max(0, state.InARow) + 1 : std::min(0, state.InARow) - 1;
  if (state.InARow >= kSweeps) state.Holds = true;
  if (state.InARow <= -kSweeps) state.Holds = false;
  if (text && *text != state.Text) {
    state.Text = std::move(*text);
    ++revision_;
  }
  if (state.Holds != before) ++revision_;
}

// The median of the latest changes; 0 before there is one.
double HintWatch::UsualChange() const {
  const std::size_t known = std::min(history_->ChangeCount, kChanges);
  if (known == 0) return 0;
  std::array<double, kChanges> sorted = history_->Changes;
  return UpperMedian(std::span(sorted).first(known));
}

// Adds one more difference of two sweeps of the same device: the mean of the first five, then a
// running mean.
void HintWatch::LearnNoise(const SweepSeen& sweep, Parameter parameter) {
  History& history = *history_;
  const auto p = static_cast<std::size_t>(parameter);
  const ComplexArray& now = ArrayOf(sweep.Session.Data, parameter);
  const ComplexArray& last = history.Last[p];
  if (history.Differences[p] == 0) history.Weight[p] = {};
  const double weight = std::max(kNewest, 1.0 / (history.Differences[p] + 1));
  history.Weight[p].Take(weight);
  const auto take = [first = history.Differences[p] == 0, newest = static_cast<float>(weight)](
                        float& mean, double value) {
    const auto fresh = static_cast<float>(value);
    mean = first ? fresh : mean + newest * (fresh - mean);
  };
  double reOfLast = 0, imOfLast = 0;
  for (std::size_t k = 0; k < static_cast<std::size_t>(sweep.Session.Plan.NumPoints); ++k) {
    const double re = now.re[k] - last.re[k], im = now.im[k] - last.im[k];
    // The difference has the variance of two sweeps.
    take(history.Variance[p][k], (re * re + im * im) / 2);
    if (k > 0) take(history.Common[p][k - 1], (re * reOfLast + im * imOfLast) / 2);
    reOfLast = re;
    imOfLast = im;
  }
  ++history.Differences[p];
}

HintWatch::Change HintWatch::ChangeOf(const SweepSeen& sweep) const {
  const History& history = *history_;
  const auto points = static_cast<std::size_t>(sweep.Session.Plan.NumPoints);
  Change change;
  double sum = 0, steps = 0;
  for (const Parameter parameter : kAll) {
    const auto p = static_cast<std::size_t>(parameter);
    if (!history.Known[p] || !Has(sweep.Delivered, parameter)) continue;
    const ComplexArray& now = ArrayOf(sweep.Session.Data, parameter);
    const ComplexArray& last = history.Last[p];
    double re = 0, im = 0;
    for (std::size_t k = 0; k < points; ++k) {
      const double reBefore = re, imBefore = im;
      re = now.re[k] - last.re[k];
      im = now.im[k] - last.im[k];
      sum += re * re + im * im;
      const double dr = re - reBefore, di = im - imBefore;
      if (k > 0) steps += dr * dr + di * di;
    }
    change.Count += sweep.Session.Plan.NumPoints;
  }
  if (change.Count == 0) return change;
  change.Rms = std::sqrt(sum / change.Count);
  if (sum > 0) change.Rough = steps / (2 * sum);
  return change;
}

// A permanent increase of the noise, for example because of a smaller signal, becomes the usual
// noise from the tenth sweep on. A loose connector changes all points of a sweep together, and
// stays unsteady.
bool HintWatch::IsNewNoise(const Change& change, bool jump) {
  History& history = *history_;
  history.NoisyInARow = jump && change.Rough > kNoiseLike ? history.NoisyInARow + 1 : 0;
  if (history.NoisyInARow < kLasting) return false;
  history.NoisyInARow = 0;
  return true;
}

// Computes the differences to the previous sweep: the noise of each point, and whether the device
// is being changed. A jump is not noise: it is excluded from the noise and from the usual changes,
// and the noise after it is estimated again.
void HintWatch::LookAtChange(const SweepSeen& sweep) {
  History& history = *history_;
  const Session& session = sweep.Session;
  if (history.Averages != session.Averaging.Averages || history.Level != session.Plan.Port1Level) {
    history.Averages = session.Averaging.Averages;
    history.Level = session.Plan.Port1Level;
    history.Known.fill(false);
    history.Differences.fill(0);
    history.ChangeCount = 0;
  }
  const Change change = ChangeOf(sweep);
  const bool compared = change.Count > 0;
  const double usual = UsualChange();
  bool jump =
      compared && history.ChangeCount > 0 && change.Rms > kUnsteady * std::max(usual, kLeastChange);
  // The previous sweeps were not stable: a device was connected after the first sweep, or tuned.
  const bool rest = compared && usual > kUnsteady * std::max(change.Rms, kLeastChange);
  if (jump || rest) history.Differences.fill(0);
  const bool newNoise = IsNewNoise(change, jump);
  if (newNoise) jump = false;
  if (rest || newNoise) history.ChangeCount = 0;
  const bool unsteady = jump && history.ChangeCount >= kLeastChanges;
  for (const Parameter parameter : kAll) {
    const auto p = static_cast<std::size_t>(parameter);
    const bool both = history.Known[p] && Has(sweep.Delivered, parameter);
    if (both && !jump) LearnNoise(sweep, parameter);
    history.Known[p] = Has(sweep.Delivered, parameter);
    if (history.Known[p]) history.Last[p] = ArrayOf(session.Data, parameter);
  }
  if (!compared) return;

  if (!jump) history.Changes[history.ChangeCount++ % kChanges] = change.Rms;
  const State& state = states_[static_cast<std::size_t>(HintKind::Unsteady)];
  if (unsteady && !state.Holds && state.InARow <= 0)
    history.UnsteadySince = TimeText(sweep.Now).substr(0, 5);
  if (unsteady)
    Take(HintKind::Unsteady, "Unsteady since " + history.UnsteadySince + ": connector or cable");
  else
    Take(HintKind::Unsteady, std::nullopt);
}

void HintWatch::LookAtCalibration(const SweepSeen& sweep) {
  const Session& session = sweep.Session;
  std::optional<std::string> text;
  if (session.Cal.CalInterpolated) text = InterpolationText(session.Plan.SavedPlan, session.Plan);
  Take(HintKind::Interpolated, std::move(text));
  LookAtAge(sweep);
}

void HintWatch::LookAtAge(const SweepSeen& sweep) {
  const Session& session = sweep.Session;
  std::optional<std::string> text;
  const CalRecord& made = session.CalMade;
  const std::optional<float>& now = session.Receiver.Temperature;
  if (made.MadeUtc) {
    const std::int64_t age = sweep.UnixSeconds - *made.MadeUtc;
    const bool warmer = made.DegC && now && std::abs(*now - *made.DegC) > kWarmer;
    if (age > kOldSeconds || warmer) {
      text = "Calibrated " + Age(age) + " ago";
      if (made.DegC && now)
        *text += " at " + DegreesText(*made.DegC) + " degC, now " + DegreesText(*now);
      *text += ": check it";
    }
  }
  Take(HintKind::Stale, std::move(text));
}

void HintWatch::LookAtOverload(const SweepSeen& sweep) {
  const double limit = kOverloadShare * sweep.Session.Plan.NumPoints;
  std::optional<std::string> text;
  for (const std::size_t port : {0u, 1u})  // if both are overloaded, port 2 is named
    if (sweep.OverloadedPoints[port] > limit)
      text =
          "Port " + std::to_string(port + 1) + " overloaded: lower the level or add an attenuator";
  Take(HintKind::Overload, std::move(text));
}

// Detects gain in a passive device. Points at which the device amplifies are ignored.
void HintWatch::LookAtPower(const SweepSeen& sweep) {
  const SParamData& data = sweep.Session.Data;
  const int points = sweep.Session.Plan.NumPoints;
  const bool s11 = Has(sweep.Delivered, Parameter::S11), s21 = Has(sweep.Delivered, Parameter::S21);
  const bool four = Has(sweep.Delivered, Parameter::S22);
  Worst reflection, power;
  bool connected = !s11 || !s21;
  for (int k = 0; k < points; ++k) {
    const double a = s11 ? Squared(data.S11[k]) : 0;
    const double b = s21 ? Squared(data.S21[k]) : 0;
    const double c = four ? Squared(data.S12[k]) : 0;
    // A standard at port 1 with something at port 2 is a valid measurement.
    const bool open = a > 0.81 && b < 1e-5 && (!four || Squared(data.S22[k]) > 0.81);
    if (!open) connected = true;
    if (b >= 1 || c >= 1) continue;
    if (a > kAboveOne) reflection.Take(k, a);
    if (!four) continue;
    // The squares of the singular values are (F +- sqrt(F^2 - 4 |det|^2)) / 2, F the sum of
    // squares.
    const double sum = a + b + c + Squared(data.S22[k]);
    const double rest = 2 * kAboveOne - sum;
    const Complex det =
        ComplexMultiply(data.S11[k], data.S22[k]) - ComplexMultiply(data.S12[k], data.S21[k]);
    if (rest < 0 || sum * sum - 4 * Squared(det) > rest * rest) power.Take(k, sum);
  }
  const auto at = [&](const Worst& worst) {
    return Megahertz(sweep.Session.Plan.Frequency(worst.At));
  };
  std::optional<std::string> above, gives, nothing;
  if (reflection.AtMoreThan(kAboveOneShare, points))
    above = "S11 above 1 at " + at(reflection) + ": connection or calibration";
  Take(HintKind::ReflectionAboveOne, std::move(above));
  if (power.AtMoreThan(kAboveOneShare, points))
    gives = "Passive device gives out power at " + at(power) + ": calibration or cable";
  Take(HintKind::GivesPower, std::move(gives));
  if (!connected && !sweep.OpenAtPort1 && IsBareConnector(sweep.Session))
    nothing = "Nothing seems connected";
  Take(HintKind::NothingConnected, std::move(nothing));
}

// The limit is 3 % + 6 s, with s that of the difference, from the noise of both, and Student's
// factor where the noise is known from few sweeps; and the leakage of the test set, which is not
// reciprocal: what the calibration has found, or what it may not have looked for. If the weaker of
// the two is only noise, only a bound for their ratio is known.
void HintWatch::LookAtReciprocity(const SweepSeen& sweep) {
  constexpr double kDeviations = 6;
  const SParamData& data = sweep.Session.Data;
  const ErrorTerms& terms = sweep.Session.Terms;
  const int points = sweep.Session.Plan.NumPoints;
  Worst worst;
  bool bound = false;
  if (Has(sweep.Delivered, Parameter::S12)) {
    for (int k = 0; k < points; ++k) {
      const double forward = Squared(data.S21[k]), reverse = Squared(data.S12[k]);
      const double larger = std::max(forward, reverse);
      const double difference = Squared(data.S21[k] - data.S12[k]);
      // Most points end here, without a square root.
      const double leak = std::max(
          {kLeakage * kLeakage, Squared(terms.Forward.EX[k]), Squared(terms.Reverse.EX[k])});
      if (larger >= 1 || difference <= std::max(kReciprocity * kReciprocity * larger, leak))
        continue;
      const NoiseEstimate one = NoiseAt(Parameter::S21, k), other = NoiseAt(Parameter::S12, k);
      const double noise = kDeviations / kCoverage *
                           StudentFactor(std::min(one.Freedom, other.Freedom)) *
                           std::hypot(one.Deviation, other.Deviation);
      const double limit = kReciprocity * std::sqrt(larger) + noise + std::sqrt(leak);
      const double smaller = std::min(forward, reverse),
                   least = std::max(noise * noise, kLeastSeen);
      if (!(difference > limit * limit)) continue;
      worst.Take(k, larger / std::max(smaller, least));
      if (worst.At == k) bound = smaller < least;
    }
  }
  std::optional<std::string> text;
  const bool noiseKnown = Noise(Parameter::S21, 0) > 0;
  if (noiseKnown && worst.AtMoreThan(kReciprocityShare, points))
    text = std::string(bound ? "S21 and S12 differ by more than " : "S21 and S12 differ by ") +
           FormatNumber(10 * std::log10(worst.Size), "#0.0") + " dB at " +
           Megahertz(sweep.Session.Plan.Frequency(worst.At));
  Take(HintKind::NotReciprocal, std::move(text));
}

// Only where the signal is well above the noise, because the phase of noise jumps anyway.
void HintWatch::LookAtPhase(const SweepSeen& sweep) {
  const int points = sweep.Session.Plan.NumPoints;
  bool fast = false;
  for (const Parameter parameter : {Parameter::S11, Parameter::S21}) {
    if (!Has(sweep.Delivered, parameter)) continue;
    const ComplexArray& data = ArrayOf(sweep.Session.Data, parameter);
    int steps = 0;
    for (int k = 0; k + 1 < points; ++k) {
      const Complex a = data[k], b = data[k + 1];
      const double re = a.re * b.re + a.im * b.im;
      if (re >= 0) continue;
      const double im = a.re * b.im - a.im * b.re;
      if (std::abs(im) < -re * kTan30 && Squared(a) > kReadable && Squared(b) > kReadable) ++steps;
    }
    fast = fast || steps > kPhaseShare * points;
  }
  std::optional<std::string> text;
  if (fast) text = "Phase turns too fast: more points or less span";
  Take(HintKind::PhaseTooFast, std::move(text));
}

// Only where a value is read: at the markers of a transmission trace, and within lower limits. The
// stop band of a filter is legitimately near the noise.
void HintWatch::LookAtNoise(const SweepSeen& sweep) {
  const Session& session = sweep.Session;
  const int points = session.Plan.NumPoints;
  Worst worst;
  for (int n = 1; n <= kChannels; ++n) {
    const ChannelSettings& channel = session.Channel(n);
    const DisplaySetRow& shown = RowOf(session.Display.DisplaySet);
    if (n < shown.First || n > shown.Last || RowOf(channel.Parameter).Reflection ||
        !Has(sweep.Delivered, channel.Parameter))
      continue;
    const ComplexArray& data = ArrayOf(session.Data, channel.Parameter);
    const auto look = [&](int k) {
      const double noise = Noise(channel.Parameter, k);
      const double size = std::sqrt(Squared(data[k]));
      if (size < 2 * noise) worst.Take(k, noise / std::max(size, 1e-11));
    };
    if (session.Display.MarkersOn)
      for (const Marker& marker : session.Markers.OfGraphs[static_cast<std::size_t>(n - 1)])
        if ((marker.State == MarkerState::Shown || marker.State == MarkerState::Active) &&
            marker.Trace == MarkerTrace::Data && marker.Point >= 1 && marker.Point <= points)
          look(marker.Point - 1);
    if (session.Limits.Enabled && channel.LimitsOn)
      for (int k = 0; k < points; ++k)
        if (channel.LowerLimit[static_cast<std::size_t>(k + 1)] > kNoLowerLimit) look(k);
  }
  std::optional<std::string> text;
  if (worst.At >= 0)
    text = "Near the noise at " + Megahertz(session.Plan.Frequency(worst.At)) + ": more averages";
  Take(HintKind::NearNoise, std::move(text));
}

// The impulse response repeats after 1 / step; a response at its end comes from beyond that time.
void HintWatch::LookAtTimeRange(const SweepSeen& sweep) {
  const Session& session = sweep.Session;
  const DisplaySetRow& shown = RowOf(session.Display.DisplaySet);
  bool displayed = false;
  for (int n = shown.First; n <= shown.Last; ++n)
    displayed = displayed || (RowOf(session.Channel(n).GraphType).Form == PointForm::Spectrum &&
                              Has(sweep.Delivered, session.Channel(n).Parameter));
  std::optional<std::string> text;
  if (displayed) {
    const auto& impulse = session.TdArrays.TdImpulse;
    const auto tail =
        impulse.size() - static_cast<std::size_t>(kTail * static_cast<double>(impulse.size()));
    double peak = 0, end = 0;
    for (std::size_t n = 0; n < impulse.size(); ++n) {
      const double size = std::abs(impulse[n]);
      peak = std::max(peak, size);
      if (n >= tail) end = std::max(end, size);
    }
    const double range = session.Plan.StepFreq > 0 ? 1e9 / session.Plan.StepFreq : 0;
    if (end > kTailPart * peak && end > kLeastTail)
      text = "Echoes from beyond " + FormatNumber(range, "#0") + " ns fold back";
  }
  Take(HintKind::FoldsBack, std::move(text));
}

}  // namespace qk
