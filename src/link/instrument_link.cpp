// SPDX-License-Identifier: MIT
// The scan for the instrument and the exchanges on the open port.
#include "link/instrument_link.h"

#include <algorithm>

#include "link/command_set.h"

namespace qk {

namespace {
constexpr int kLastPort = 16;
// A receive buffer of 50000 bytes was once requested and the driver refused it. The driver's
// default is used; a scan needs no more.
constexpr LineSettings kScanLine{.ReceiveBuffer = 0, .TransmitBuffer = 1000};
constexpr LineSettings kSessionLine{.ReceiveBuffer = 32512, .TransmitBuffer = 20000};
// Time slice of a wait in ms: the windows repaint at this interval while waiting for a reply.
constexpr std::int64_t kWaitSlice = 5;

// A sweep with many averages is silent for some tenths of a second between two points.
constexpr int kQuietMs = 500;
// Longest wait for a line that sends unrequested bytes; the user can scan again.
constexpr int kQuietBoundMs = 30000;

bool IsModel(const Bytes& identity) {
  return identity.size() >= command::kModel.size() &&
         std::equal(command::kModel.begin(), command::kModel.end(), identity.begin(),
                    [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; });
}
}  // namespace

InstrumentLink::InstrumentLink(SerialPort& port, Session& session, Host& host)
    : port_(port), session_(session), host_(host) {}

bool InstrumentLink::OpenForScan(int com) {
  if (port_.IsOpen()) port_.Close();
  port_.SetPort(com);
  port_.SetLine(kScanLine);
  return port_.Open();
}

// The two queries of the scan. Any byte beyond the replies means that the line sends unrequested
// bytes, so that no reply so far can be trusted.
InstrumentLink::Neighbour InstrumentLink::Ask() {
  port_.Write(BytesView(command::kStatus));
  const Bytes answer = ReadReply(1, command::kScanTimeout);
  if (answer.empty()) return Neighbour::Nobody;
  if (answer.size() > 1) return Neighbour::Talker;
  if (!command::IsSignOfLife(answer)) return Talks() ? Neighbour::Talker : Neighbour::Nobody;
  port_.Write(BytesView(command::kIdentify));
  if (IsModel(ReadReply(command::kIdentityLength, command::kScanTimeout)))
    return Neighbour::Instrument;
  return Talks() ? Neighbour::Talker : Neighbour::OtherModel;
}

// An instrument that is still sweeping finishes first: only a quiet line is queried.
InstrumentLink::Neighbour InstrumentLink::AskWhenQuiet() {
  if (!WaitForQuiet(kQuietMs, kQuietBoundMs)) return Neighbour::Nobody;
  return Ask();
}

// Listens for the longest pause between two points of a sweep.
bool InstrumentLink::Talks() {
  Bytes heard;
  WaitForQuiet(kQuietMs, kQuietMs, &heard);
  return !heard.empty();
}

std::int16_t InstrumentLink::FindInstrument(const std::function<void(int com)>& whenWaiting) {
  const auto look = [&](int com, Neighbour neighbour) {
    if (neighbour == Neighbour::Talker) {
      if (whenWaiting) whenWaiting(com);
      neighbour = AskWhenQuiet();
    }
    if (neighbour == Neighbour::OtherModel)
      host_.prompts.ShowMessage("Instrument ID", "Wrong model instrument", Icon::Critical);
    return neighbour;
  };
  std::vector<std::int16_t> silent;
  for (std::int16_t com = 1; com <= kLastPort; ++com) {
    if (!OpenForScan(com)) continue;
    const Neighbour first = port_.InBufferCount() > 0 ? Neighbour::Talker : Ask();
    const Neighbour found = look(com, first);
    if (found == Neighbour::Instrument) return com;
    if (found == Neighbour::OtherModel) return 0;
    if (first == Neighbour::Nobody) silent.push_back(com);
  }
  for (const std::int16_t com : silent) {
    if (!OpenForScan(com) || !Talks()) continue;
    const Neighbour found = look(com, Neighbour::Talker);
    if (found == Neighbour::Instrument) return com;
    if (found == Neighbour::OtherModel) return 0;
  }
  return 0;
}

void InstrumentLink::SetUpSessionPort() {
  if (port_.IsOpen()) port_.Close();
  port_.SetPort(session_.Id.PortNumber);
  port_.SetLine(kSessionLine);
  holds_ = {};
  outOfSync_ = wasOpen_ = streamEnded_ = false;
}

void InstrumentLink::EnsurePortOpen() {
  if (session_.Id.PortNumber == 0) return;
  if (!port_.IsOpen()) {
    if (wasOpen_) ForgetState();  // unplugged: bytes in transit are lost
    port_.Open();
  }
  wasOpen_ = wasOpen_ || port_.IsOpen();
}

void InstrumentLink::SendCommand(BytesView bytes) {
  if (session_.Id.PortNumber == 0) return;
  if (!port_.IsOpen()) ForgetState();
  port_.Write(bytes);
}

void InstrumentLink::SendByte(int value) {
  const auto byte = static_cast<std::uint8_t>(value);
  SendCommand({&byte, 1});
}

Bytes InstrumentLink::ReadReply(std::size_t count, int timeoutMs) {
  Bytes reply;
  bool& timedOut = session_.Flags.ReplyTimedOut;
  timedOut = false;
  std::int64_t deadline = host_.loop.NowMs() + timeoutMs;
  for (;;) {
    if (port_.Input(reply) > 0) deadline = host_.loop.NowMs() + timeoutMs;
    const std::int64_t now = host_.loop.NowMs();
    // An unplugged port delivers nothing more, so waiting is useless.
    if (now > deadline || (reply.size() < count && !port_.IsOpen())) {
      timedOut = true;
      ForgetState();
      break;
    }
    if (reply.size() >= count) break;
    if (!port_.WaitForInput(static_cast<int>(std::min(kWaitSlice, deadline - now + 1))))
      host_.loop.Breathe();
  }
  return reply;
}

bool InstrumentLink::LinkCheck() {
  bool& failed = session_.Flags.ReplyTimedOut;
  if (session_.Id.PortNumber == 0) {
    failed = true;
    return false;
  }
  DropStale();  // a late reply to an earlier "Q" must not be taken for this one
  Bytes answer = AskStatus();
  if (outOfSync_ && !answer.empty() && Resynchronise()) answer = AskStatus();
  const bool answers = !outOfSync_ && command::IsSignOfLife(answer);
  if (!answers) ForgetState();
  failed = !answers;
  return answers;
}

Bytes InstrumentLink::AskStatus() {
  SendCommand(command::kStatus);
  return ReadReply(1, command::kLinkCheckTimeout);
}

// Replies arrive in the order of their commands, so once the identity has arrived no earlier reply
// is outstanding.
bool InstrumentLink::Resynchronise() {
  SendCommand(command::kIdentify);
  const std::int64_t start = host_.loop.NowMs();
  Bytes heard;
  while (host_.loop.NowMs() <= start + command::kStepTimeout) {
    const Bytes more = ReadReply(1, command::kLinkCheckTimeout);
    if (more.empty()) return false;
    heard.insert(heard.end(), more.begin(), more.end());
    if (heard.size() < command::kIdentityLength) continue;
    const auto last = static_cast<std::ptrdiff_t>(command::kIdentityLength);
    if (!IsModel({heard.end() - last, heard.end()})) continue;
    outOfSync_ = false;
    return true;
  }
  return false;
}

std::size_t InstrumentLink::TakeInput(Bytes& buffer) {
  return port_.Input(buffer);
}

void InstrumentLink::DropStale() {
  Bytes dropped;
  if (port_.Input(dropped) > 0 && streamEnded_) session_.Display.SweepDisturbed = true;
  streamEnded_ = false;
}

void InstrumentLink::DropInput() {
  Bytes dropped;
  port_.Input(dropped);
}

bool InstrumentLink::WaitForInput(int ms) {
  return port_.WaitForInput(ms);
}

bool InstrumentLink::WaitForQuiet(int quietMs, int boundMs, Bytes* taken) {
  Bytes forgotten;
  const std::int64_t start = host_.loop.NowMs();
  std::int64_t lastByte = start;
  for (;;) {
    forgotten.clear();
    const bool came = port_.Input(taken != nullptr ? *taken : forgotten) > 0;
    const std::int64_t now = host_.loop.NowMs();
    if (came) lastByte = now;
    if (!port_.IsOpen() || now >= lastByte + quietMs) return true;
    if (now >= start + boundMs) return false;
    if (!port_.WaitForInput(static_cast<int>(std::min(kWaitSlice, lastByte + quietMs - now))))
      host_.loop.Breathe();
  }
}

}  // namespace qk
