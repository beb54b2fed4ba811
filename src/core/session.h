// SPDX-License-Identifier: MIT
// The session: everything the program knows while it runs, as plain records. One instance, built
// once, passed by reference; a routine takes the record it needs. Per-point arrays are fixed at
// kMaxPoints entries and SweepPlan::NumPoints says how many are in use, so nothing is allocated per
// point. Points count from 0 in S-parameters and error terms, from 1 in ChannelSettings.
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

inline constexpr double kSpeedOfLight = 299792458.0;  // m/s, no velocity factor anywhere

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
  std::int16_t Port2LevelTarget = 13;  // looked up in the second level table
  double FreqUnit = 1e6;               // entry unit of the calibration window: 1e6 or 1000
  std::int16_t CalLevel = 0;           // Port1Level at which the calibration in force was made
  PlanGrid SavedPlan;                  // plan of the calibration in force
};

inline constexpr double kLeastVelocityFactor = 0.01;
// The ends of the time axis and of the gate, in ns.
inline constexpr double kFirstGateNs = -5, kLastGateNs = 328.333;

// What a channel has beside the settings of the first session files.
struct ChannelExtension {
  qk::Element Element = qk::Element::Reflection;  // what the impedance types take S for
  ChartGrid Grid = ChartGrid::Impedance;          // of a Smith chart
  bool Gated = false;                             // the gate acts on this channel

  bool operator==(const ChannelExtension&) const = default;
};

// One display channel. Value and the arrays beside it are indexed by point number, from 1.
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

// How a channel's impedance types take its parameter. A reflection is one whatever was chosen, and
// a transmission is never one: series then.
inline Element ElementOf(const ChannelSettings& channel) {
  if (RowOf(channel.Parameter).Reflection) return Element::Reflection;
  return channel.Element == Element::Shunt ? Element::Shunt : Element::Series;
}

// Raw: ratio of test to reference channel as measured. S: corrected, after reference plane,
// de-embedding and impedance conversion.
struct SParamData {
  ComplexArray RawS11, RawS21, RawS12, RawS22;
  ComplexArray S11, S21, S12, S22;
};

// The array of a parameter, of whatever holds the four by name: SParamData, Network.
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

// Point pointIndex (from 1) of the channel has no limits.
inline bool NoLimits(const ChannelSettings& channel, int pointIndex) {
  const auto i = static_cast<std::size_t>(pointIndex);
  return channel.UpperLimit[i] >= kNoUpperLimit && channel.LowerLimit[i] <= kNoLowerLimit;
}

// The memories of a channel: the first stands in ChannelSettings, three more beside it.
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

// The raw ratios of a parameter.
inline ComplexArray& RawArrayOf(SParamData& data, Parameter parameter) {
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

// The six terms of one drive direction.
struct PortTerms {
  ComplexArray ED;   // directivity
  ComplexArray ERT;  // reflection tracking
  ComplexArray ES;   // source match
  ComplexArray EX;   // isolation
  ComplexArray ETT;  // transmission tracking
  ComplexArray EL;   // load match
};

// Forward terms, their reverse twins, and the expansion of the isolation in the device's own
// reflections (EX = IsoFwd0 + IsoFwd1 * g1 + IsoFwd2 * g2): the eighteen arrays of a calibration.
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

// One calibration kit. Offsets in metres, delay one way in seconds, frequencies in hertz; the
// tables are 32-bit on purpose (kit files hold them so).
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
  // frequency, then re and im of T11, T21, T12, T22
  std::array<std::array<float, kKitRows>, 9> KitThruData{};
};

// How the isolation of a calibration with two kits is measured: that of the load sweep, or with the
// device in one or two sweeps of its own. Session files hold the number.
enum class IsoMethod : std::int16_t { Basic = 0, OneSweep = 1, TwoSweeps = 2 };

// Which calibration is in force. At most one of the four kinds is set.
struct CalState {
  bool CalDataReady = false;
  bool CalS11 = false;
  bool CalS21 = false;
  bool CalS11S21 = false;
  bool Cal12Term = false;
  bool CalInterpolated = false;
  bool CalThruReady = false;  // a through has been measured or loaded
  bool IsoSweepDone = false;
  SweepMode CalKind = SweepMode::All;  // the kind last applied
  qk::IsoMethod IsoMethod = qk::IsoMethod::Basic;

  bool AnyKind() const { return ModeInForce(*this).has_value(); }
};

// The instrument's receiver and tables.
struct ReceiverState {
  double DcOffsetI = 0, DcOffsetQ = 0;  // volts
  bool DcOffsetValid = false;
  std::array<std::array<double, 2>, 5> DcHistory{};  // counts, I and Q; 0 the oldest
  std::int16_t OffsetTicks = 0;
  float RxDcCorrection = 0;          // 32-bit, as the EEPROM byte gives it
  std::optional<float> Temperature;  // degrees Celsius, the last reading
};

// Level code tables: code rows by frequency columns.
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
  std::int16_t PortNumber = 0;  // 1 to 16, 0 no instrument
};

struct AveragingState {
  std::int16_t Averages = 1;     // in force in the instrument
  std::int16_t AveragesSet = 1;  // entered by the user; the averaging switch restores it
  bool AverOn = false;           // the switch
  std::int16_t SmoothingPercent = 0;
  bool SmoothOn = false;  // the switch
};

// The flags that coordinate sweep loop, timers and handlers.
struct SweepFlags {
  bool SweepRunning = false;
  bool SweepIdle = true;
  bool SigGenActive = false;
  bool SigGenWave = false;  // the generator's wave is what the source gives
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
  float PrevPhaseReflection = 0;  // shared by all channels, on purpose
  float PrevPhaseTransmission = 0;
  bool MemoryInUse = false;
  qk::MemoryFunction MemoryFunction = qk::MemoryFunction::None;
  qk::MemoryHold MemoryHold = qk::MemoryHold::Off;
  std::int16_t MemoryNumber = 1;  // of the memory that is stored, held and combined, 1 to 4
  std::array<bool, kMemories> MemoryShown{true, true, true, true};  // "Data and Memory" draws it
  bool ShowLimits = false;
  bool LimitAlarmOn = false;
  bool MarkersOn = false;
  int PointCounter = 0;       // points of the running sweep reduced so far
  bool SweepCounted = false;  // PointCounter belongs to a sweep that has been triggered
  // When the last point came; seconds since 1970-01-01T00:00:00Z, empty before the first sweep.
  std::optional<std::int64_t> SweptUtc;
  bool SweepDisturbed = false;  // the last whole sweep had bytes too many
};

// Colours of the picture area as 0xRRGGBB.
struct Colours {
  std::uint32_t BackColour = 0xFFFFFF;
  std::uint32_t GridColour = 0x808080;
  std::uint32_t DataColour = 0x000080;
  std::uint32_t MemoryColour = 0x808000;
  std::uint32_t TextColour = 0x000000;
  std::uint32_t OutlineColour = 0x000000;
  std::uint32_t LimitColour = 0x800000;
};

// Reference planes in metres, delays in seconds; 32-bit as entered.
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

// Time domain: times in ns.
struct TimeDomainState {
  double TdT1 = -5, TdT2 = 161.667, TdStep = 166.667 / (kTimeDomainPoints - 1);
  qk::TdWindow TdWindow = qk::TdWindow::Rect;
  std::int16_t TdKaiserOrder = 5;  // 1 to 10
  qk::TdDcTerm TdDcTerm = qk::TdDcTerm::Auto;
  float TdResistance = 50;  // ohms, for TdDcTerm::Res; 32-bit as entered
  TimeAxis Axis = TimeAxis::Time;
  qk::Cable Cable = qk::Cable::Air;
  double VelocityFactor = 1;  // above 0, 1 at most
  GateKind Gate = GateKind::Off;
  double GateStart = 0, GateStop = 5;  // on the time axis
};

// What the one time-domain channel computes with. Spectrum entries count from point 1, 0 is the dc
// term; the entries of TdSplineY2 past its last computed knot stay 0 for ever.
struct TimeDomainArrays {
  std::array<double, kTimeDomainPoints + 1> TdInRe{}, TdInIm{};  // the sweep, turned
  std::array<double, kTimeDomainPoints + 1> TdSpecRe{},
      TdSpecIm{};  // with dc term, window, normalised
  std::array<double, kTimeDomainPoints + 1> TdWeight{}, TdKaiserArg{};
  std::array<double, 2 * kTimeDomainPoints> TdImpulse{}, TdStepResponse{}, TdSplineY2{};
};

// What gates compute with, by point, from 1.
struct GateArrays {
  using Points = std::array<Complex, kMaxPoints + 1>;
  static constexpr std::size_t kSamples = 8192;

  std::array<Points, 4> In{};  // the sweep of each gated channel, memory math done
  Points Work{};               // what a gate has made of one of them
  Spectrum<kSamples> Response;
};

// Points in FreqTable are 22-byte synthesiser records; record i, byte j stands at 22 * i + 3 + j.
// Positions 1 and 2 are left out by the table builder.
using FreqTable = std::array<std::uint8_t, 23001>;

struct Session {
  SweepPlan Plan;
  std::array<ChannelSettings, kChannels> Channels;
  SParamData Data;
  ErrorTerms Terms;
  ErrorTerms SavedTerms;  // base of every later interpolation
  StandardsMeasured Standards;
  CalState Cal;
  CalRecord CalMade;  // of the calibration in force
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
  Network MemoryZoSet;  // the stored traces' four parameters at SystemZo
  std::array<MemoryBank, kMemories - 1> MoreMemories;  // memories 2 to 4
  NetworkState Networks;
  qk::PowerRun PowerRun;
  TimeDomainState TimeDomain;
  TimeDomainArrays TdArrays;
  GateArrays Gates;
  qk::FreqTable FreqTable{};
  std::string SweepStatusText = "Sweep Off";
  std::array<std::string, kPanels + 1> Panels;  // texts of the status panels, by Panel
  std::string InstallFolder;                    // where the session, log and receiver files stand

  const std::string& TextOf(Panel panel) const { return Panels[static_cast<std::size_t>(panel)]; }
  ChannelSettings& Channel(int n) { return Channels[static_cast<std::size_t>(n - 1)]; }
  const ChannelSettings& Channel(int n) const { return Channels[static_cast<std::size_t>(n - 1)]; }
};

// The session is large; it lives on the heap.
std::unique_ptr<Session> MakeSession();

// Sets every default: plan, channels, data, terms, flags, calibration state, kits, colours, and no
// instrument. Only the install folder is kept; the panels' texts are emptied without the windows
// being told.
void InitSession(Session& session);

// The status text of the calibration: "UNCAL", "S21 Cal", "S11 Cal", "12 Term Cal" or
// "S11+S21 Cal" (the later of these wins), without the question mark.
std::string CalStatusText(const CalState& cal);

// True when the calibration no longer matches the sweep as measured: interpolated, or another
// level. The status then carries " ?".
bool CalDoubtful(const Session& session);

}  // namespace qk
