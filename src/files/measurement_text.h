// SPDX-License-Identifier: MIT
// The S-parameters of the last sweep as a text file: Touchstone, or plain columns for other tools.
//
// One line a point: the frequency in MHz and two numbers for each chosen parameter, in the order
// S11, S21, S12, S22, and a blank at the end. The fields begin at multiples of 14 characters; one
// of more than 13 moves the next a zone further. Lines end with CR LF. The Touchstone form has four
// header lines:
//
//     ! COMMENT  DATE  TIME
//     ! Ref Plane: 0.000 mm
//     # MHZ S MA R 50
//     !
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "core/session.h"

namespace qk {

enum class MeasurementForm : std::uint8_t { Touchstone, MagPhase, RealImag, LogMagPhase };

struct MeasurementChoice {
  MeasurementForm Form = MeasurementForm::Touchstone;
  std::array<bool, 4> Parameters{};  // S11, S21, S12, S22
  bool ApplyMemoryMath = false;
  bool ApplyGate = false;  // where MayGate; behind the memory math, as on the screen
};

// What the first header line says.
struct MeasurementRemark {
  std::string Comment, Date, Time;
};

// The value that is written for z, point pointIndex (from 1) of the parameter: with memory math
// asked for and the display mode "Memory+", z combined with the stored trace of the last channel
// that shows the parameter and has one; else z itself.
Complex SavedPoint(const Session& session, bool applyMemoryMath, Parameter parameter,
                   int pointIndex, Complex z);

// What is written of a parameter, by point from 1, with the memory math and the gate of the choice.
// A gate that is asked for works in session.Gates.
void SavedPoints(Session& session, const MeasurementChoice& choice, Parameter parameter,
                 GateArrays::Points& saved);

// The text of the whole file. The values are those of the session's S-parameters: after reference
// plane, de-embedding and impedance conversion, before smoothing.
// A gate that is asked for works in session.Gates.
std::string MeasurementText(Session& session, const MeasurementChoice& choice,
                            const MeasurementRemark& remark);

// The last five comments, the newest first.
class CommentHistory {
 public:
  CommentHistory() { entries_.fill(" "); }
  // The comment becomes the first entry; what stood above its old place, or all, moves down.
  void Use(const std::string& comment);
  const std::array<std::string, 5>& Entries() const { return entries_; }

 private:
  std::array<std::string, 5> entries_;
};

}  // namespace qk
