// SPDX-License-Identifier: MIT
#include "files/touchstone2_text.h"

#include <algorithm>

#include "core/characters.h"
#include "core/text.h"
#include "files/digits.h"

namespace qk {

Result<std::string> Touchstone2Text(Session& session, const MeasurementChoice& choice,
                                    const std::string& comment,
                                    const std::vector<Fact>& provenance) {
  std::vector<Parameter> parameters;
  for (const Parameter p : {Parameter::S11, Parameter::S21, Parameter::S12, Parameter::S22})
    if (choice.Parameters[static_cast<std::size_t>(p)]) parameters.push_back(p);
  const bool onePort = parameters.size() == 1 && RowOf(parameters.front()).Reflection;
  if (!onePort && parameters.size() != 4)
    return Failure{
        "a file of version 2 holds all parameters of its ports: choose S11 alone, S22 alone or all "
        "four",
        {}};

  const std::string ohms = PlainNumber(session.Impedance.SystemZo);
  std::string text;
  if (comment.find_first_not_of(' ') != std::string::npos)
    text = "! " + OnOneLine(comment) + "\r\n";
  if (onePort && parameters.front() == Parameter::S22) text += "! Port 2 of the instrument\r\n";
  text += FactLines(provenance, "! ", "\r\n");
  text += "[Version] 2.0\r\n# HZ S RI R " + ohms + "\r\n[Number of Ports] " +
          (onePort ? "1\r\n" : "2\r\n[Two-Port Data Order] 21_12\r\n") +
          "[Number of Frequencies] " + std::to_string(session.Plan.NumPoints) + "\r\n";
  // One port needs only the option line, and a widely used reader rejects more.
  if (!onePort) text += "[Reference] " + ohms + " " + ohms + "\r\n";
  text += "[Network Data]\r\n";
  std::vector<GateArrays::Points> points(parameters.size());
  for (std::size_t p = 0; p < parameters.size(); ++p)
    SavedPoints(session, choice, parameters[p], points[p]);
  for (int i = 0; i < session.Plan.NumPoints; ++i) {
    AppendPlainDigits(text, session.Plan.Frequency(i));
    for (const GateArrays::Points& values : points) {
      const Complex z = values[static_cast<std::size_t>(i) + 1];
      for (const double part : {z.re, z.im}) {
        text += ' ';
        AppendDigits(text, part);
      }
    }
    text += "\r\n";
  }
  return text + "[End]\r\n";
}

}  // namespace qk
