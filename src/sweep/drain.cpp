// SPDX-License-Identifier: MIT
#include "sweep/drain.h"

#include "core/text.h"
#include "link/command_set.h"

namespace qk {

namespace {
constexpr int kSliceMs = 5;  // longest sleep in the port between two turns
}  // namespace

Drained DrainLine(Rig& rig, bool untilEndMark, const std::function<bool()>& turn) {
  EventLoop& loop = rig.host.loop;
  const std::int64_t start = loop.NowMs();
  std::int64_t lastByte = start;
  Drained drained;
  Bytes taken;
  char previous = 0;
  bool goesOn = true;
  while (goesOn && rig.link.IsOpen()) {
    taken.clear();
    if (rig.link.TakeInput(taken) > 0) {
      lastByte = loop.NowMs();
      drained.Bytes += taken.size();
      for (const std::uint8_t byte : taken) {
        drained.EndMark = previous == 'X' && byte == 'X';
        previous = static_cast<char>(byte);
      }
    }
    const std::int64_t now = loop.NowMs();
    if (now > start + command::kDrainTimeout) break;
    const bool over = drained.EndMark || !untilEndMark;
    if (over && now >= lastByte + command::kStreamQuiet) break;
    rig.link.WaitForInput(kSliceMs);
    goesOn = turn();
  }
  return drained;
}

bool KnowsAbort(const Session& session) {
  return Val(session.Id.FirmwareVersion) > 1;
}

void AbortSweep(Rig& rig, std::size_t received, std::size_t expected,
                const std::function<bool()>& turn) {
  rig.link.SendCommand(command::kAbort);
  const Drained drained = DrainLine(rig, true, turn);
  // A missing end mark may still arrive, unless the stream was complete.
  if (!drained.EndMark && received + drained.Bytes < expected) rig.link.ForgetState();
}

}  // namespace qk
