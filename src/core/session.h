// SPDX-License-Identifier: MIT
// The session: the complete run-time state of the program as plain records. There is one instance,
// created once and passed by reference; a routine takes only the record it needs. Per-point arrays
// have a fixed size of kMaxPoints; SweepPlan::NumPoints is the number in use, so nothing is
// allocated per point. Point indices start at 0 in S-parameters and error terms and at 1 in
// ChannelSettings.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "core/cal_record.h"
#include "core/cal_steps.h"
#include "core/complex_array.h"
#include "core/graphics_records.h"
#include "core/instrument_limits.h"
#include "core/limit_records.h"
#include "core/marker_records.h"
#include "core/network_records.h"
#include "core/panels.h"
#include "core/power_records.h"
#include "core/sweep_mode.h"
#include "core/vocabulary.h"
#include "numeric/complex.h"
#include "numeric/fourier.h"

namespace qk {

inline constexpr double kSpeedOfLight = 299792458.0;  // m/s, never scaled by a velocity factor

// Frequencies in hertz. Point i (from 0) is at StartFreq + i * StepFreq.
struct PlanGrid {
  double StartFreq = kLowestFreq;
  double StopFreq = 3e9;
  double StepFreq = 2.997e9 / 100;
  std::int16_t NumPoints = 101;  // one of kPointCounts

  double Frequency(int i) const { return StartFreq + i * StepFreq; }
};

struct SweepPlan : PlanGrid {
  std::int16_t Port1Level = 0;         // dBm, kLowestLevelDbm to kHighestLevelDbm
  std::int16_t Port2LevelTarget = 13;  // row in the second level table
  double FreqUnit = 1e6;               // entry unit of the calibration window: 1e6 or 1000
  std::int16_t CalLevel = 0;           // Port1Level at which the active calibration was made
  PlanGrid SavedPlan;                  // plan of the active calibration
};

inline constexpr double kLeastVelocityFactor = 0.01;
// The limits of the time axis and of the gate, in ns.
inline constexpr double kFirstGateNs = -5, kLastGateNs = 328.333;

// Channel settings that the first session file format did not have.
struct ChannelExtension {
  qk::Element Element = qk::Element::Reflection;  // the topology that the impedance types assume
  ChartGrid Grid = ChartGrid::Impedance;          // for a Smith chart
  bool Gated = false;                             // the gate is applied to this channel

  bool operator==(const ChannelExtension&) const = default;
};

// One display channel. Value and the other per-point arrays are indexed by point number, from 1.
struct ChannelSettings : ChannelExtension {
  using Extension = ChannelExtension;
  template <class T>
  using PerPoint = std::array<T, kMaxPoints + 1>;

  Unit Units = Unit::Db;
  double Reference = 0;
  std::int16_t RefPosition = 4;  // divisions below the top edge, 0 to 8
  double Scale = 10;             // units per division
  qk::Parameter Parameter = qk::Parameter::S11;
  qk::GraphType GraphType = qk::GraphType::LogMag;
  PerPoint<double> Value{}, Value2{};
  PerPoint<double> MemoryRe{}, MemoryIm{};
  PerPoint<float> UpperLimit{}, LowerLimit{};
  PerPoint<float> SmoothValue{}, SmoothValue2{}, SmoothWork{};
  bool Active = false;
  bool MemoryValid = false;
  std::optional<qk::Parameter> MemoryParameter;
  bool LimitsOn = false;
};

// The topology that a channel's impedance types use. A reflection parameter always uses Reflection.
// A transmission parameter never does: Reflection is replaced by Series.
inline Element ElementOf(const ChannelSettings& channel) {
  if (RowOf(channel.Parameter).Reflection) return Element::Reflection;
  return channel.Element == Element::Shunt ? Element::Shunt : Element::Series;
}

// Raw: ratio of test to reference channel as measured. S: corrected, after reference plane shift,
// de-embedding and impedance conversion.
struct SParamData {
  ComplexArray RawS11, RawS21, RawS12, RawS22;
  ComplexArray S11, S21, S12, S22;
};

// The array of a parameter in any struct with the four arrays by name: SParamData, Network.
template <class Arrays>
auto& ArrayOf(Arrays& arrays, Parameter parameter) {
  switch (parameter) {
    case Parameter::S21:
      return arrays.S21;
    case Parameter::S12:
      return arrays.S12;
    case Parameter::S22:
      return arrays.S22;
    case Parameter::S11:
      break;
  }
  return arrays.S11;
}

// True if point pointIndex (from 1) of the channel has no limits.
inline bool NoLimits(const ChannelSettings& channel, int pointIndex) {
  const auto i = static_cast<std::size_t>(pointIndex);
  return channel.UpperLimit[i] >= kNoUpperLimit && channel.LowerLimit[i] <= kNoLowerLimit;
}

// Trace memories per channel: the first is in ChannelSettings, the other three are in MemoryBank.
inline constexpr int kMemories = 4;

// A stored trace of one channel, indexed by point number, from 1.
struct StoredTrace {
  ChannelSettings::PerPoint<double> Re{}, Im{};
  bool Valid = false;
  std::optional<Parameter> Of;
};

// Memory 2, 3 or 4 of all channels, and the four parameters of its traces at SystemZo.
struct MemoryBank {
  std::array<StoredTrace, kChannels> OfChannels;
  Network ZoSet;
};

// The raw ratio array of a parameter.
template <class Data>
auto& RawArrayOf(Data& data, Parameter parameter) {
  switch (parameter) {
    case Parameter::S21:
      return data.RawS21;
    case Parameter::S12:
      return data.RawS12;
    case Parameter::S22:
      return data.RawS22;
    case Parameter::S11:
      break;
  }
  return data.RawS11;
}

// The six error terms of one drive direction.
struct PortTerms {
  ComplexArray ED;   // directivity
  ComplexArray ERT;  // reflection tracking
  ComplexArray ES;   // source match
  ComplexArray EX;   // isolation
  ComplexArray ETT;  // transmission tracking
  ComplexArray EL;   // load match
};

// Forward terms, reverse terms, and the isolation expanded in the reflections of the device (EX =
// IsoFwd0 + IsoFwd1 * g1 + IsoFwd2 * g2): the eighteen arrays of a calibration.
struct ErrorTerms {
  PortTerms Forward, Reverse;
  ComplexArray IsoFwd0, IsoFwd1, IsoFwd2;
  ComplexArray IsoRev0, IsoRev1, IsoRev2;
};

// Raw ratios of the calibration standards.
struct StandardsMeasured {
  ComplexArray CalLoad1, CalShort1, CalOpen1;
  ComplexArray CalLoad2, CalShort2, CalOpen2;
  ComplexArray CalThruRefl1, CalThruRefl2;
  ComplexArray CalDutRefl1, CalDutRefl2;
};

// One calibration kit. Offsets in metres, one-way delay in seconds, frequencies in hertz. The
// tables are 32-bit on purpose, because kit files store them so.
struct CalKit {
  std::string KitName = "Default";
  bool KitMale = true;
  float KitOffset = 0;
  float KitDelay = 0;
  double KitC0 = 2.5e-15, KitC1 = 2.9e-25, KitC2 = -1e-35, KitC3 = 2.4e-46;
  bool KitHasLoad = false;
  bool KitLoadInUse = false;
  std::array<std::array<float, kKitRows>, 3> KitLoadData{};  // frequency, re, im
  bool KitHasThru = false;                                   // port 1 kit only
  // columns: frequency, then re and im of T11, T21, T12, T22
  std::array<std::array<float, kKitRows>, 9> KitThruData{};
};

// How a two-kit calibration measures the isolation: from the load sweep, or in one or two extra
// sweeps with the device connected. Session files store the number.
enum class IsoMethod : std::int16_t { Basic = 0, OneSweep = 1, TwoSweeps = 2 };

// Which calibration is active. At most one of the four kinds is set.
struct CalState {
  bool CalDataReady = false;
  bool CalS11 = false;
  bool CalS21 = false;
  bool CalS11S21 = false;
  bool Cal12Term = false;
  bool CalInterpolated = false;
  bool CalThruReady = false;  // a through was measured or loaded
  bool IsoSweepDone = false;
  SweepMode CalKind = SweepMode::All;  // the kind applied last
  qk::IsoMethod IsoMethod = qk::IsoMethod::Basic;

  bool AnyKind() const { return ModeInForce(*this).has_value(); }
};

// The receiver and tables of the instrument.
struct ReceiverState {
  double DcOffsetI = 0, DcOffsetQ = 0;  // volts
  bool DcOffsetValid = false;
  std::array<std::array<double, 2>, 5> DcHistory{};  // counts, I and Q; index 0 is the oldest
  std::int16_t OffsetTicks = 0;
  float RxDcCorrection = 0;          // 32-bit, as stored in the EEPROM byte
  std::optional<float> Temperature;  // degrees Celsius, last reading
};

// Level code tables: level code rows by frequency columns.
struct LevelTables {
  using Table = std::array<std::array<std::int8_t, kLevelColumns>, kLevelCodes>;
  Table Port1LevelTable{}, Port2LevelTable{};
  double LevelTableStart = kLevelTableStart;
  double LevelTableStep = kLevelTableStep;
};

struct EepromAddresses {
  int Port1LevelTableAddr = 1024;
  int Port2LevelTableAddr = 5888;
  int RxCalDataAddr = 11008;
  int RxDcCorrectionAddr = 20219;
};

struct Identity {
  std::int16_t SerialNumber = 0;
  std::string FirmwareVersion = "0.0";
  std::int16_t PortNumber = 0;  // 1 to 16, 0 means no instrument
};

struct AveragingState {
  std::int16_t Averages = 1;     // active in the instrument
  std::int16_t AveragesSet = 1;  // entered by the user; restored when averaging is switched on
  bool AverOn = false;           // averaging is switched on
  std::int16_t SmoothingPercent = 0;
  bool SmoothOn = false;  // smoothing is switched on
};

// Flags that coordinate the sweep loop, timers and handlers.
struct SweepFlags {
  bool SweepRunning = false;
  bool SweepIdle = true;
  bool SigGenActive = false;
  bool SigGenWave = false;  // the source currently outputs the signal generator's signal
  bool SweepLoaded = false;
  bool OffsetUpdateDue = false;
  bool AveragesChangeDue = false;
  bool AveragesOffDue = false;
  bool DwellChangeDue = false;
  bool DwellOn = false;
  bool LevelChangeDue = false;
  bool ExitPending = false;
  bool ReplyTimedOut = false;

  bool Idle() const { return SweepIdle && !SweepRunning; }
};

struct DisplayState {
  qk::DisplayMode DisplayMode = qk::DisplayMode::Data;
  qk::DisplaySet DisplaySet = qk::DisplaySet::One;
  std::int16_t ActiveChannel = 1;
  std::int16_t PlotRefreshPoints = 4;
  float PrevPhaseReflection = 0;  // shared by all channels on purpose
  float PrevPhaseTransmission = 0;
  bool MemoryInUse = false;
  qk::MemoryFunction MemoryFunction = qk::MemoryFunction::None;
  qk::MemoryHold MemoryHold = qk::MemoryHold::Off;
  std::int16_t MemoryNumber = 1;  // the memory to store, hold and combine, 1 to 4
  std::array<bool, kMemories> MemoryShown{true, true, true, true};  // shown by "Data and Memory"
  bool ShowLimits = false;
  bool LimitAlarmOn = false;
  bool MarkersOn = false;
  int PointCounter = 0;       // points of the running sweep processed so far
  bool SweepCounted = false;  // PointCounter belongs to a triggered sweep
  // When the last point arrived; seconds since 1970-01-01T00:00:00Z, empty before the first sweep.
  std::optional<std::int64_t> SweptUtc;
  bool SweepDisturbed = false;  // bytes were surplus or missing in the last sweep
};

// Colours of the picture area, 0xRRGGBB.
struct Colours {
  std::uint32_t BackColour = 0xFFFFFF;
  std::uint32_t GridColour = 0x808080;
  std::uint32_t DataColour = 0x000080;
  std::uint32_t MemoryColour = 0x808000;
  std::uint32_t TextColour = 0x000000;
  std::uint32_t OutlineColour = 0x000000;
  std::uint32_t LimitColour = 0x800000;
};

// Reference planes in metres, delays in seconds; 32-bit, as entered.
struct PlaneState {
  float ActivePlane = 0, ActiveDelay = 0;
  float PlaneS11 = 0, DelayS11 = 0;
  float PlaneS21 = 0, DelayS21 = 0;
  float PlaneS12 = 0, DelayS12 = 0;
  float PlaneS22 = 0, DelayS22 = 0;
  PlaneUnit RefPlaneUnits = PlaneUnit::Mm;
};

struct ImpedanceState {
  float SystemZo = static_cast<float>(kInstrumentOhms);
  bool ZoConvertOn = false;
  bool ExternalZoMatch = false;
  bool DeEmbedOn = false;
};

// Time domain settings; times in ns.
struct TimeDomainState {
  double TdT1 = -5, TdT2 = 161.667, TdStep = 166.667 / (kTimeDomainPoints - 1);
  qk::TdWindow TdWindow = qk::TdWindow::Rect;
  std::int16_t TdKaiserOrder = 5;  // 1 to 10
  qk::TdDcTerm TdDcTerm = qk::TdDcTerm::Auto;
  float TdResistance = 50;  // ohms, for TdDcTerm::Res; 32-bit, as entered
  TimeAxis Axis = TimeAxis::Time;
  qk::Cable Cable = qk::Cable::Air;
  double VelocityFactor = 1;  // greater than 0, at most 1
  GateKind Gate = GateKind::Off;
  double GateStart = 0, GateStop = 5;  // ns on the time axis
};

// Working arrays for the only time-domain channel. Spectrum entries start at point 1; index 0 is
// the dc term. Entries of TdSplineY2 beyond the last computed knot always stay 0.
struct TimeDomainArrays {
  std::array<double, kTimeDomainPoints + 1> TdInRe{}, TdInIm{};  // the sweep, rotated
  std::array<double, kTimeDomainPoints + 1> TdSpecRe{},
      TdSpecIm{};  // with dc term, windowed and normalised
  std::array<double, kTimeDomainPoints + 1> TdWeight{}, TdKaiserArg{};
  std::array<double, 2 * kTimeDomainPoints> TdImpulse{}, TdStepResponse{}, TdSplineY2{};
};

// Working arrays for gating, indexed by point, from 1.
struct GateArrays {
  using Points = std::array<Complex, kMaxPoints + 1>;
  static constexpr std::size_t kSamples = 8192;

  std::array<Points, 4> In{};  // the sweep of each gated channel, after memory math
  Points Work{};               // a gated copy of one of them
  Spectrum<kSamples> Response;
};

// FreqTable stores 22-byte synthesiser records: byte j of record i is at 22 * i + 3 + j. The table
// builder leaves positions 1 and 2 unused.
using FreqTable = std::array<std::uint8_t, 23001>;

struct Session {
  SweepPlan Plan;
  std::array<ChannelSettings, kChannels> Channels;
  SParamData Data;
  ErrorTerms Terms;
  ErrorTerms SavedTerms;  // the base of every later interpolation
  StandardsMeasured Standards;
  CalState Cal;
  CalRecord CalMade;  // record of the active calibration
  CalSteps Steps;
  CalKit Kit1, Kit2;
  ReceiverState Receiver;
  LevelTables Levels;
  EepromAddresses Eeprom;
  Identity Id;
  AveragingState Averaging;
  SweepFlags Flags;
  DisplayState Display;
  Colours Colour;
  MarkerRecords Markers;
  LimitRecords Limits;
  LabelState Label;
  PrintState Print;
  PlaneState Planes;
  ImpedanceState Impedance;
  Network MemoryZoSet;  // the four parameters of the stored traces at SystemZo
  std::array<MemoryBank, kMemories - 1> MoreMemories;  // memories 2 to 4
  NetworkState Networks;
  qk::PowerRun PowerRun;
  TimeDomainState TimeDomain;
  TimeDomainArrays TdArrays;
  GateArrays Gates;
  qk::FreqTable FreqTable{};
  std::string SweepStatusText = "Sweep Off";
  std::array<std::string, kPanels + 1> Panels;  // texts of the status panels, indexed by Panel
  std::string InstallFolder;                    // folder of the session, log and receiver files

  const std::string& TextOf(Panel panel) const { return Panels[static_cast<std::size_t>(panel)]; }
  ChannelSettings& Channel(int n) { return Channels[static_cast<std::size_t>(n - 1)]; }
  const ChannelSettings& Channel(int n) const { return Channels[static_cast<std::size_t>(n - 1)]; }
};

// Allocates the session on the heap, because it is large.
std::unique_ptr<Session> MakeSession();

// Sets all defaults: plan, channels, data, terms, flags, calibration state, kits, colours, and no
// instrument. Keeps only the install folder. Clears the panel texts without notifying the windows.
void InitSession(Session& session);

// The status text of the calibration: "UNCAL", "S21 Cal", "S11 Cal", "12 Term Cal" or "S11+S21 Cal"
// (the last that applies), without the question mark.
std::string CalStatusText(const CalState& cal);

// True if the calibration no longer matches the current sweep: it is interpolated, or was made at
// another level. The status text then ends with " ?".
bool CalDoubtful(const Session& session);

}  // namespace qk
