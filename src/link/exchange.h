// SPDX-License-Identifier: MIT
// One exchange with the instrument, the whole of it, as nearly every feature has it: the port open,
// the instrument asked whether it answers, the command sent, its reply read, and a failure told
// under the feature's title. With no instrument ("No Instrument!") nothing is sent and that is told
// as no response. Who must not be interrupted holds a Timer1Pause meanwhile.
#pragma once

#include <optional>
#include <string_view>

#include "link/instrument_link.h"

namespace qk {

// What a failing exchange tells the user.
struct Complaint {
  std::string_view Title;
  Icon Mark = Icon::Exclamation;
  std::string_view NoAnswer = "No Response";  // the link check failed
  std::string_view BadReply = "No Response";  // the reply is cut, or longer than it may be
  std::string_view BadReplyTitle;             // the title, but where it differs

  constexpr Complaint(const char* title, Icon mark = Icon::Exclamation)
      : Complaint(std::string_view(title), mark) {}
  constexpr Complaint(std::string_view title, Icon mark = Icon::Exclamation)
      : Title(title), Mark(mark), BadReplyTitle(title) {}
  constexpr Complaint(std::string_view title, std::string_view noAnswer, std::string_view badReply,
                      Icon mark = Icon::Exclamation)
      : Title(title), Mark(mark), NoAnswer(noAnswer), BadReply(badReply), BadReplyTitle(title) {}
};

// Port open and the instrument alive. False when that was told to fail.
[[nodiscard]] bool InstrumentAnswers(Rig& rig, const Complaint& complaint);
// A command without a reply, behind that check. False when nothing was sent.
[[nodiscard]] bool Send(Rig& rig, const Complaint& complaint, BytesView command);
// A command and its reply of exactly length bytes, timeoutMs for the silence before each. Nothing
// when a failure has been told; SweepFlags::ReplyTimedOut says whether it was silence.
[[nodiscard]] std::optional<Bytes> Exchange(Rig& rig, const Complaint& complaint, BytesView command,
                                            std::size_t length, int timeoutMs);
// The same with nothing before it and nothing told, for a sequence that has asked already.
[[nodiscard]] std::optional<Bytes> SendAndRead(Rig& rig, BytesView command, std::size_t length,
                                               int timeoutMs);

}  // namespace qk
