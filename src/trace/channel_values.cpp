// SPDX-License-Identifier: MIT
#include "trace/channel_values.h"

namespace qk {

void ChannelValues::Take(const Session& session, int channel) {
  const ChannelSettings& settings = session.Channel(channel);
  Value = settings.Value;
  Value2 = settings.Value2;
  SmoothValue = settings.SmoothValue;
  SmoothValue2 = settings.SmoothValue2;
  TdInRe = session.TdArrays.TdInRe;
  TdInIm = session.TdArrays.TdInIm;
  GateIn = session.Gates.In[static_cast<std::size_t>(channel - 1)];
  Phases.Take(session.Display);
}

void ChannelValues::Restore(Session& session, int channel) const {
  ChannelSettings& settings = session.Channel(channel);
  settings.Value = Value;
  settings.Value2 = Value2;
  settings.SmoothValue = SmoothValue;
  settings.SmoothValue2 = SmoothValue2;
  session.TdArrays.TdInRe = TdInRe;
  session.TdArrays.TdInIm = TdInIm;
  session.Gates.In[static_cast<std::size_t>(channel - 1)] = GateIn;
  Phases.Restore(session.Display);
}

}  // namespace qk
