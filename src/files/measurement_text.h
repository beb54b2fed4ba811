// SPDX-License-Identifier: MIT
// The S-parameters of the last sweep as a text file: Touchstone, or plain columns for other tools.
//
// One line per point: the frequency in MHz and two numbers for each chosen parameter, in the order
// S11, S21, S12, S22, and a blank at the end. The fields start at multiples of 14 characters; a
// field of more than 13 moves the next one a zone further. Lines end with CR LF. The Touchstone
// format has four header lines:
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

// The order of the parameters in a file.
inline constexpr std::array<Parameter, 4> kWrittenOrder{Parameter::S11, Parameter::S21,
                                                        Parameter::S12, Parameter::S22};

struct MeasurementChoice {
  MeasurementForm Form = MeasurementForm::Touchstone;
  std::array<bool, 4> Parameters{};  // S11, S21, S12, S22
  bool ApplyMemoryMath = false;
  bool ApplyGate = false;  // if MayGate; after memory math, as on the screen
};

// The contents of the first header line.
struct MeasurementRemark {
  std::string Comment, Date, Time;
};

// The value to write for z, point pointIndex (from 1) of the parameter: if memory math is requested
// and the display mode is "Memory+", z combined with the stored trace of the last channel that
// shows the parameter and has one; otherwise z itself.
Complex SavedPoint(const Session& session, bool applyMemoryMath, Parameter parameter,
                   int pointIndex, Complex z);

// The values to write for a parameter, by point from 1, with the memory math and the gate of the
// choice. Gating uses session.Gates.
void SavedPoints(Session& session, const MeasurementChoice& choice, Parameter parameter,
                 GateArrays::Points& saved);

// The complete text of the file. The values are the session's S-parameters: after reference plane,
// de-embedding and impedance conversion, before smoothing. Gating uses session.Gates.
std::string MeasurementText(Session& session, const MeasurementChoice& choice,
                            const MeasurementRemark& remark);

// What the list of comments holds before a user types one.
inline constexpr const char* kNoComment = " ";

// The last five comments, newest first.
class CommentHistory {
 public:
  CommentHistory() { entries_.fill(kNoComment); }
  // Moves or inserts the comment at the front; the entries before its old position, or all, move
  // down.
  void Use(const std::string& comment);
  const std::array<std::string, 5>& Entries() const { return entries_; }

 private:
  std::array<std::string, 5> entries_;
};

}  // namespace qk
