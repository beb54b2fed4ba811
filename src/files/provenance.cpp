// SPDX-License-Identifier: MIT
#include "files/provenance.h"

#include <array>

#include "core/cal_arrays.h"
#include "core/characters.h"
#include "core/local_time.h"
#include "core/program_version.h"
#include "core/text.h"
#include "trace/reference_plane.h"

namespace qk {

namespace {

std::string Mhz(double hertz) {
  return PlainNumber(hertz / 1e6) + " MHz";
}

std::string InstrumentText(const Session& s) {
  return "QK47-20-09 SN " + std::to_string(s.Id.SerialNumber) + ", firmware " +
         s.Id.FirmwareVersion;
}

std::string SmoothingText(const Session& s) {
  // Files contain measured values; only graphs are smoothed.
  return s.Averaging.SmoothOn
             ? std::to_string(s.Averaging.SmoothingPercent) + " % on graphs, none in saved values"
             : "off";
}

std::string CalText(const Session& s) {
  if (!s.Cal.AnyKind()) return CalStatusText(s.Cal);
  if (TermsAreIdeal(s)) return "none, ideal terms: the values are raw ratios";
  std::string text = CalStatusText(s.Cal);
  text += s.CalMade.MadeUtc ? ", made " + UtcText(*s.CalMade.MadeUtc) : ", time unknown";
  if (s.CalMade.DegC)
    text += " at " + FormatNumber(static_cast<double>(*s.CalMade.DegC), "#0.0") + " degC";
  return text + ", level " + std::to_string(s.Plan.CalLevel) + " dBm";
}

std::string PlanesText(const Session& s) {
  std::string text;
  for (const Parameter p : {Parameter::S11, Parameter::S21, Parameter::S12, Parameter::S22}) {
    const auto metres = static_cast<double>(s.Planes.*PlaneOf(p).Plane);
    text += (text.empty() ? "" : ", ") + std::string(NameOf(p)) + " " +
            FormatNumber(metres * 1000, "#0.000") + " mm";
  }
  return text;
}

std::string NetworksText(const Session& s) {
  if (!s.Impedance.DeEmbedOn) return "none";
  std::string ports;
  if (s.Networks.Port1NetOn) ports = "port 1";
  if (s.Networks.Port2NetOn) ports += ports.empty() ? "port 2" : " and port 2";
  return ports.empty() ? "none" : "network at " + ports + " taken off";
}

std::string ImpedanceText(const Session& s) {
  const ImpedanceState& impedance = s.Impedance;
  std::string text = PlainNumber(impedance.SystemZo) + " ohm";
  if (!impedance.ZoConvertOn) return text;
  return text + (impedance.ExternalZoMatch ? ", external match" : ", converted from 50 ohm");
}

}  // namespace

std::vector<Fact> ProvenanceOf(const Session& s, std::int64_t unixSeconds) {
  const SweepPlan& plan = s.Plan;
  const AveragingState& averaging = s.Averaging;
  // The kits used for the calibration, if they are known.
  const bool made = s.Cal.AnyKind() && s.CalMade.MadeUtc.has_value();
  const std::string& kit1 = made ? s.CalMade.Kit1 : s.Kit1.KitName;
  const std::string& kit2 = made ? s.CalMade.Kit2 : s.Kit2.KitName;
  std::vector<Fact> facts{
      {"Program", "qk47-vna " + std::string(ProgramVersion())},
      {"Instrument", InstrumentText(s)},
      {"Measured", s.Display.SweptUtc ? UtcText(*s.Display.SweptUtc) : "time unknown"},
      {"Written", UtcText(unixSeconds)},
      {"Sweep", Mhz(plan.StartFreq) + " to " + Mhz(plan.Frequency(plan.NumPoints - 1)) + ", " +
                    std::to_string(plan.NumPoints) + " points"},
      {"Level", std::to_string(plan.Port1Level) + " dBm at port 1"},
      {"Averages", std::to_string(averaging.Averages)},
      {"Smoothing", SmoothingText(s)},
      {"Calibration", CalText(s)},
      {"Interpolated", s.Cal.CalInterpolated && !TermsAreIdeal(s) ? "yes" : "no"},
      {"Kits", "port 1 " + kit1 + ", port 2 " + kit2},
      {"Reference planes", PlanesText(s)},
      {"De-embedding", NetworksText(s)},
      {"System impedance", ImpedanceText(s)}};
  if (s.Display.SweepDisturbed)
    facts.push_back(
        {"Disturbed", "bytes were surplus or missing in the sweep, values may be wrong"});
  for (Fact& fact : facts) fact.Value = OnOneLine(std::move(fact.Value));
  return facts;
}

std::string FactLines(const std::vector<Fact>& facts, std::string_view lead, std::string_view end) {
  std::string text;
  for (const Fact& fact : facts)
    (text += lead).append(fact.Name).append(": ").append(fact.Value).append(end);
  return text;
}

}  // namespace qk
