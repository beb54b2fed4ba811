// SPDX-License-Identifier: MIT
#include "trace/de_embed.h"

#include "numeric/two_port.h"

namespace qk {

namespace {

TwoPort At(const Network& network, int i) {
  return {network.S11[i], network.S12[i], network.S21[i], network.S22[i]};
}

// The two-port after removing the active networks.
TwoPort TakeOff(const NetworkState& networks, const TwoPort& measured, int i, bool port2) {
  TwoPort m = SToT(measured);
  if (networks.Port1NetOn) m = MultiplyT(InvertT(SToT(At(networks.Port1Net, i))), m);
  if (networks.Port2NetOn && port2) m = MultiplyT(m, InvertT(SToT(At(networks.Port2Net, i))));
  return TToS(m);
}

}  // namespace

void DeEmbedPointS11(Session& session, int i) {
  ComplexArray& s11 = session.Data.S11;
  s11.Set(i, TakeOff(session.Networks, {s11[i], {0, 0}, {1, 0}, {0, 0}}, i, false).p11);
}

void DeEmbedPointS21(Session& session, int i) {
  ComplexArray& s21 = session.Data.S21;
  s21.Set(i, TakeOff(session.Networks, {{0, 0}, {0, 0}, s21[i], {0, 0}}, i, true).p21);
}

void DeEmbedPointS11S21(Session& session, int i) {
  SParamData& data = session.Data;
  const TwoPort s = TakeOff(session.Networks, {data.S11[i], {0, 0}, data.S21[i], {0, 0}}, i, true);
  data.S11.Set(i, s.p11);
  data.S21.Set(i, s.p21);
}

void DeEmbedPointAll(Session& session, int i) {
  SParamData& data = session.Data;
  const TwoPort s =
      TakeOff(session.Networks, {data.S11[i], data.S12[i], data.S21[i], data.S22[i]}, i, true);
  data.S11.Set(i, s.p11);
  data.S21.Set(i, s.p21);
  data.S12.Set(i, s.p12);
  data.S22.Set(i, s.p22);
}

}  // namespace qk
