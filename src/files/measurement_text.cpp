// SPDX-License-Identifier: MIT
#include "files/measurement_text.h"

#include <algorithm>
#include <memory>
#include <string_view>

#include "core/characters.h"
#include "core/instrument_limits.h"
#include "core/text.h"
#include "trace/formatting.h"
#include "trace/gate.h"
#include "trace/memory.h"

namespace qk {

namespace {

// How a format writes a point: its two quantities and their number pictures.
struct FormRow {
  Quantity First, Second;
  std::string_view FirstPicture;
  std::string_view FirstPictureS12;
  std::string_view SecondPicture;
};

constexpr FormRow kMagPhase{quantity::Linear, quantity::Degrees, "#0.00###", "#0.00###", "##0.00"};
constexpr FormRow kRealImag{quantity::Re, quantity::Im, "0.0000E-00", "0.0000E-00", "0.0000E-00"};
// Intentional: only S12 has one decimal less.
constexpr FormRow kLogMagPhase{quantity::Db, quantity::Degrees, "#0.00###", "#0.00##", "##0.00"};

const FormRow& FormRowOf(MeasurementForm form) {
  switch (form) {
    case MeasurementForm::RealImag:
      return kRealImag;
    case MeasurementForm::LogMagPhase:
      return kLogMagPhase;
    case MeasurementForm::Touchstone:
    case MeasurementForm::MagPhase:
      break;
  }
  return kMagPhase;
}

std::string Header(const Session& session, const MeasurementRemark& remark) {
  const double planeMm = static_cast<double>(session.Planes.ActivePlane) * 1000;
  // Intentional: magnitude and angle in MHz, whatever the parameters are.
  return "! " + OnOneLine(remark.Comment) + "  " + remark.Date + "  " + remark.Time + "\r\n" +
         "! Ref Plane: " + FormatNumber(planeMm, "###0.000") + " mm\r\n" + "# MHZ S MA R " +
         FormatNumber(static_cast<double>(session.Impedance.SystemZo), "##0") + "\r\n!\r\n";
}

std::string FrequencyField(MeasurementForm form, double mhz) {
  if (form == MeasurementForm::Touchstone) return FormatNumber(mhz, "###0.0000");
  return (mhz < 0 ? "" : " ") + PlainNumber(mhz) + " ";
}

}  // namespace

Complex SavedPoint(const Session& session, bool applyMemoryMath, Parameter parameter,
                   int pointIndex, Complex z) {
  Complex saved = z;
  if (!applyMemoryMath) return saved;
  for (int n = 1; n <= kChannels; ++n)
    if (session.Channel(n).Parameter == parameter &&
        MemoryOf(session, n, session.Display.MemoryNumber).Valid)
      saved = ApplyMemoryMath(session, n, z, pointIndex);
  return saved;
}

void SavedPoints(Session& session, const MeasurementChoice& choice, Parameter parameter,
                 GateArrays::Points& written) {
  const ComplexArray& data = ArrayOf(session.Data, parameter);
  for (int i = 1; i <= session.Plan.NumPoints; ++i)
    written[static_cast<std::size_t>(i)] =
        SavedPoint(session, choice.ApplyMemoryMath, parameter, i, data[i - 1]);
  if (!choice.ApplyGate || !MayGate(session)) return;
  ApplyGate(session, written);
  written = session.Gates.Work;
}

std::string MeasurementText(Session& session, const MeasurementChoice& choice,
                            const MeasurementRemark& remark) {
  const auto written = std::make_unique<std::array<GateArrays::Points, 4>>();
  for (const Parameter parameter : kWrittenOrder)
    if (const auto p = static_cast<std::size_t>(parameter); choice.Parameters[p])
      SavedPoints(session, choice, parameter, (*written)[p]);
  std::string text;
  if (choice.Form == MeasurementForm::Touchstone) text = Header(session, remark);
  const FormRow& row = FormRowOf(choice.Form);
  for (int i = 0; i < session.Plan.NumPoints; ++i) {
    std::string line = NextZone({}, FrequencyField(choice.Form, session.Plan.Frequency(i) / 1e6));
    for (const Parameter parameter : kWrittenOrder) {
      const auto p = static_cast<std::size_t>(parameter);
      if (!choice.Parameters[p]) continue;
      const Complex z = (*written)[p][static_cast<std::size_t>(i) + 1];
      const bool s12 = parameter == Parameter::S12;
      const std::string_view picture = s12 ? row.FirstPictureS12 : row.FirstPicture;
      line = NextZone(std::move(line), FormatNumber(row.First(z), picture));
      line = NextZone(std::move(line), FormatNumber(row.Second(z), row.SecondPicture));
    }
    text += NextZone(std::move(line), " ") + "\r\n";
  }
  return text;
}

void CommentHistory::Use(const std::string& comment) {
  const auto found = std::find(entries_.begin(), entries_.end(), comment);
  const auto last = found == entries_.end() ? found : found + 1;
  std::rotate(entries_.begin(), last - 1, last);
  entries_.front() = comment;
}

}  // namespace qk
