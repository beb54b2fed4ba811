// SPDX-License-Identifier: MIT
#include "link/exchange.h"

#include "link/command_set.h"

namespace qk {

bool InstrumentAnswers(Rig& rig, const Complaint& complaint) {
  rig.link.EnsurePortOpen();
  if (rig.link.LinkCheck()) return true;
  rig.host.prompts.ShowMessage(complaint.Title, complaint.NoAnswer, complaint.Mark);
  return false;
}

bool Send(Rig& rig, const Complaint& complaint, BytesView command) {
  if (!InstrumentAnswers(rig, complaint)) return false;
  rig.link.SendCommand(command);
  return true;
}

std::optional<Bytes> SendAndRead(Rig& rig, BytesView command, std::size_t length, int timeoutMs) {
  rig.link.SendCommand(command);
  Bytes reply = rig.link.ReadReply(length, timeoutMs);
  if (command::StateOfReply(reply.size(), length) != command::ReplyState::Whole) {
    rig.link.ForgetState();
    return std::nullopt;
  }
  return reply;
}

std::optional<Bytes> Exchange(Rig& rig, const Complaint& complaint, BytesView command,
                              std::size_t length, int timeoutMs) {
  if (!InstrumentAnswers(rig, complaint)) return std::nullopt;
  std::optional<Bytes> reply = SendAndRead(rig, command, length, timeoutMs);
  if (!reply)
    rig.host.prompts.ShowMessage(complaint.BadReplyTitle, complaint.BadReply, complaint.Mark);
  return reply;
}

}  // namespace qk
