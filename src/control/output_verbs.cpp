// SPDX-License-Identifier: MIT
#include "control/output_verbs.h"

#include <algorithm>
#include <cmath>

#include "core/local_time.h"
#include "core/sweep_mode.h"
#include "files/touchstone2_text.h"
#include "files/whole_file.h"

namespace qk {

namespace {

// Writes a text that may be a failure. Records the file as recently used if the program can read
// it.
Result<Done> Write(Controller& controller, const std::string& path, const Result<std::string>& text,
                   bool readable) {
  if (!text) return text.Why();
  Result<Done> written = WriteWhole(path, *text);
  if (written && readable) controller.recent().Note(path);
  return written;
}

std::vector<Fact> ProvenanceNow(const Rig& rig) {
  return ProvenanceOf(rig.session, rig.host.loop.UnixSeconds());
}

// A choice with the uncertainty column, and the lines that describe its basis.
struct UncertainCsv {
  CsvChoice Choice;
  std::vector<Fact> Provenance;
};

// Fails if the uncertainty of a chosen parameter that can have one is unknown, and if the values
// are not as measured.
Result<UncertainCsv> WithUncertainty(Controller& controller, const CsvChoice& choice) {
  const Session& session = controller.rig().session;
  const QualityState& quality = controller.quality();
  if (choice.ApplyMemoryMath || choice.ApplyGate)
    return Failure{"the uncertainty of values after memory math or a gate is not known", {}};
  UncertainCsv with{choice, ProvenanceNow(controller.rig())};
  for (const Parameter parameter : {Parameter::S11, Parameter::S21}) {
    if (!choice.Parameters[static_cast<std::size_t>(parameter)]) continue;
    const std::string name(NameOf(parameter));
    if (const std::string why = WhyNoUncertainty(quality, session, parameter); !why.empty())
      return Failure{std::string("no uncertainty of ").append(name).append(": ").append(why), {}};
    with.Provenance.push_back(
        {"Uncertainty " + name + "_U", UncertaintyBasis(quality, session, parameter)});
  }
  with.Choice.StandardUncertainty = [&quality, &session](Parameter parameter, int k) {
    return UncertaintyAt(quality, session, parameter, k);
  };
  return with;
}

// True if there are values although nothing was measured: the last sweep of a loaded session.
// Without one transmissions are 0, and reflections too small to be measured.
bool HoldsLoadedValues(const SParamData& data) {
  constexpr double kNothing = 1e-5;
  for (const ComplexArray* array : {&data.S11, &data.S21, &data.S12, &data.S22})
    for (int k = 0; k < kMaxPoints; ++k)
      if (std::abs((*array)[k].re) > kNothing || std::abs((*array)[k].im) > kNothing) return true;
  return false;
}

}  // namespace

Result<Done> AreMeasured(const Session& session, const std::array<bool, 4>& parameters) {
  const std::optional<SweepMode> mode = ModeInForce(session.Cal);
  if (!mode) return Failure{"no calibration is in force, nothing is measured", {}};
  for (std::size_t p = 0; p < parameters.size(); ++p) {
    const auto parameter = static_cast<Parameter>(p);
    if (!parameters[p] || Delivers(*mode, parameter)) continue;
    return Failure{std::string(NameOf(parameter)) +
                       " is not measured by the calibration in force (" +
                       CalStatusText(session.Cal) + ")",
                   {}};
  }
  return Done{};
}

bool IsOfEarlierSweep(const Session& session, int channel) {
  const std::optional<SweepMode> mode = ModeInForce(session.Cal);
  return mode && !Delivers(*mode, session.Channel(channel).Parameter);
}

Result<Done> HaveValues(const Session& session) {
  if (session.Display.SweepCounted) return Done{};
  if (HoldsLoadedValues(session.Data))
    return Failure{"the traces are those of the loaded session: measure first (START)", {}};
  return Failure{"nothing has been measured yet (START)", {}};
}

Result<Done> SaveMeasurement(Controller& controller, const std::string& path,
                             const MeasurementChoice& choice, const std::string& comment) {
  const Rig& rig = controller.rig();
  const LocalTime now = rig.host.loop.Now();
  return Write(controller, path,
               MeasurementText(rig.session, choice, {comment, DateText(now), TimeText(now)}),
               choice.Form == MeasurementForm::Touchstone);
}

Result<Done> SaveTouchstone2(Controller& controller, const std::string& path,
                             const MeasurementChoice& choice, const std::string& comment) {
  Session& session = controller.rig().session;
  if (Result<Done> values = HaveValues(session); !values) return values;
  if (Result<Done> measured = AreMeasured(session, choice.Parameters); !measured) return measured;
  return Write(controller, path,
               Touchstone2Text(session, choice, comment, ProvenanceNow(controller.rig())), true);
}

Result<Done> SaveCsv(Controller& controller, const std::string& path, const CsvChoice& choice) {
  Session& session = controller.rig().session;
  if (Result<Done> values = HaveValues(session); !values) return values;
  if (Result<Done> measured = AreMeasured(session, choice.Parameters); !measured) return measured;
  if (!choice.Has(CsvColumn::Uncertainty))
    return Write(controller, path, CsvText(session, choice, ProvenanceNow(controller.rig())),
                 false);
  const Result<UncertainCsv> with = WithUncertainty(controller, choice);
  if (!with) return with.Why();
  return Write(controller, path, CsvText(session, with->Choice, with->Provenance), false);
}

Result<Done> SavePicture(Controller& controller, const std::string& path) {
  Graphs& graphs = controller.graphs();
  const LabelState& label = controller.rig().session.Label;
  const std::string shown = label.Show ? label.Composed : std::string();
  PictureSurface& surface = graphs.Surface();
  if (surface.DrawsVectors(path))
    return surface.SaveDrawing(path, surface.Picture().Size(),
                               [&](Canvas& canvas) { graphs.Paint(canvas, shown); });
  graphs.DrawGraphicsLabel(shown);
  Result<Done> saved = surface.Save(path);
  graphs.RedrawAll(true);
  return saved;
}

}  // namespace qk
