// SPDX-License-Identifier: MIT
#include "benchmarks/road.h"

#include "cal/correction.h"
#include "sweep/reduction.h"
#include "trace/de_embed.h"
#include "trace/formatting.h"
#include "trace/reference_plane.h"
#include "trace/zo.h"

namespace qk::benchmarks {

namespace {

constexpr std::array kOrder{Parameter::S21, Parameter::S12, Parameter::S11, Parameter::S22};

// Planes, two networks, a system impedance.
void SwitchOn(Session& session) {
  PlaneState& planes = session.Planes;
  planes.PlaneS11 = planes.PlaneS21 = planes.PlaneS12 = planes.PlaneS22 = 0.1f;
  planes.DelayS11 = planes.DelayS21 = planes.DelayS12 = planes.DelayS22 = 0.33e-9f;
  for (const int port : {1, 2}) {
    Network& network = session.Networks.OfPort(port);
    network.S11.Fill({0.1, 0.05});
    network.S21.Fill({0.7, -0.3});
    network.S12.Fill({0.7, -0.3});
    network.S22.Fill({0.05, 0.1});
  }
  session.Networks.Port1NetOn = session.Networks.Port2NetOn = true;
  session.Impedance.SystemZo = 75;
}

}  // namespace

Road::Road(Extras extras) : extras_(extras), session_(MakeMeasuringSession(kRoadPoints)) {
  if (extras_ == Extras::All) SwitchOn(*session_);
  graphs_.RedrawAll(true);
  for (std::size_t i = 0; i < bytes_.size(); ++i)
    bytes_[i] = static_cast<std::uint8_t>(i % 3 == 0 ? 0 : 90 + 5 * i);
}

void Road::StoreRaw(int k) {
  const RawPoint raw = ReducePoint(SweepMode::All, bytes_.data(), session_->Receiver, 1);
  session_->Data.RawS11.Set(k, raw.S11);
  session_->Data.RawS21.Set(k, raw.S21);
  session_->Data.RawS12.Set(k, raw.S12);
  session_->Data.RawS22.Set(k, raw.S22);
}

void Road::Carry(int k) {
  StoreRaw(k);
  Correct12TermPoint(*session_, k);
  for (const Parameter parameter : kOrder) {
    ComplexArray& array = ArrayOf(session_->Data, parameter);
    array.Set(k, ApplyReferencePlane(*session_, array[k], k + 1, parameter));
  }
  if (extras_ == Extras::All) {
    DeEmbedPointAll(*session_, k);
    ConvertPointZo(*session_, k, kOrder);
  }
  for (const Parameter parameter : kOrder)
    DispatchPoint(*session_, graphs_, ArrayOf(session_->Data, parameter)[k], k + 1, parameter);
}

}  // namespace qk::benchmarks
