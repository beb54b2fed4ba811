// SPDX-License-Identifier: MIT
// One complete exchange with the instrument, used by nearly every feature: open the port, check the
// link, send the command, read its reply, and report a failure under the title of the feature. With
// no instrument ("No Instrument!") nothing is sent and the user sees No Response. A caller that
// must not be interrupted holds a Timer1Pause meanwhile.
#pragma once

#include <optional>
#include <string_view>

#include "link/instrument_link.h"

namespace qk {

// The message that a failed exchange shows.
struct Complaint {
  std::string_view Title;
  Icon Mark = Icon::Exclamation;
  std::string_view NoAnswer = "No Response";  // the link check failed
  std::string_view BadReply = "No Response";  // the reply is too short or too long
  std::string_view BadReplyTitle;             // only if it differs from Title

  constexpr Complaint(const char* title, Icon mark = Icon::Exclamation)
      : Complaint(std::string_view(title), mark) {}
  constexpr Complaint(std::string_view title, Icon mark = Icon::Exclamation)
      : Title(title), Mark(mark), BadReplyTitle(title) {}
  constexpr Complaint(std::string_view title, std::string_view noAnswer, std::string_view badReply,
                      Icon mark = Icon::Exclamation)
      : Title(title), Mark(mark), NoAnswer(noAnswer), BadReply(badReply), BadReplyTitle(title) {}
};

// Opens the port and checks the link. Returns false if that failed; the user has seen a message.
[[nodiscard]] bool InstrumentAnswers(Rig& rig, const Complaint& complaint);
// Sends a command without a reply, after the same check. Returns false if nothing was sent.
[[nodiscard]] bool Send(Rig& rig, const Complaint& complaint, BytesView command);
// Sends a command and reads its reply of exactly length bytes. timeoutMs is the maximum silence
// before each byte. Empty after a failure, which has been shown; SweepFlags::ReplyTimedOut says
// whether it was a time-out.
[[nodiscard]] std::optional<Bytes> Exchange(Rig& rig, const Complaint& complaint, BytesView command,
                                            std::size_t length, int timeoutMs);
// The same without the check and without messages, for a sequence that has already checked the
// link.
[[nodiscard]] std::optional<Bytes> SendAndRead(Rig& rig, BytesView command, std::size_t length,
                                               int timeoutMs);

}  // namespace qk
