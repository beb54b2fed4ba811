#include "trace/zo.h"

#include <algorithm>

#include "core/instrument_limits.h"
#include "numeric/two_port.h"

namespace qk {

namespace {

Complex& Of(TwoPort& s, Parameter parameter) {
  switch (parameter) {
    case Parameter::S21:
      return s.p21;
    case Parameter::S12:
      return s.p12;
    case Parameter::S22:
      return s.p22;
    case Parameter::S11:
      break;
  }
  return s.p11;
}

// The four parameters of a point, of a sweep or of stored traces.
template <class Arrays>
TwoPort Read(const Arrays& arrays, int i) {
  return {arrays.S11[i], arrays.S12[i], arrays.S21[i], arrays.S22[i]};
}

template <class Arrays>
void Write(Arrays& arrays, int i, const TwoPort& s) {
  arrays.S11.Set(i, s.p11);
  arrays.S12.Set(i, s.p12);
  arrays.S21.Set(i, s.p21);
  arrays.S22.Set(i, s.p22);
}

void ConvertData(SParamData& data, int i, double fromOhms, double toOhms,
                 std::span<const Parameter> delivered) {
  TwoPort measured = Read(data, i);
  TwoPort s{kNotMeasured, kNotMeasured, kNotMeasured, kNotMeasured};
  for (const Parameter parameter : delivered) Of(s, parameter) = Of(measured, parameter);
  Write(data, i, ConvertZo(fromOhms, toOhms, s));
}

// Point i (from 0) of the stored traces. The channels' own points, not what MemoryZoSet remembers
// of them, are converted: a trace may have been stored or held anew since, and two channels may
// hold traces of one parameter.
void ConvertMemory(Session& session, int i, double fromOhms, double toOhms) {
  TwoPort set{kNotMeasured, kNotMeasured, kNotMeasured, kNotMeasured};
  if (toOhms == kInstrumentOhms) set = Read(session.MemoryZoSet, i);
  const auto k = static_cast<std::size_t>(i) + 1;
  for (const ChannelSettings& channel : session.Channels)
    if (channel.MemoryValid && channel.MemoryParameter)
      Of(set, *channel.MemoryParameter) = {channel.MemoryRe[k], channel.MemoryIm[k]};
  Write(session.MemoryZoSet, i, ConvertZo(fromOhms, toOhms, set));
  for (ChannelSettings& channel : session.Channels) {
    if (!channel.MemoryValid || !channel.MemoryParameter) continue;
    TwoPort own = set;
    Of(own, *channel.MemoryParameter) = {channel.MemoryRe[k], channel.MemoryIm[k]};
    TwoPort converted = ConvertZo(fromOhms, toOhms, own);
    channel.MemoryRe[k] = Of(converted, *channel.MemoryParameter).re;
    channel.MemoryIm[k] = Of(converted, *channel.MemoryParameter).im;
  }
}

}  // namespace

void ConvertPointZo(Session& session, int i, std::span<const Parameter> delivered) {
  ConvertData(session.Data, i, kInstrumentOhms, static_cast<double>(session.Impedance.SystemZo),
              delivered);
}

void ReconvertZo(Session& session, double fromOhms, double toOhms,
                 std::span<const Parameter> delivered) {
  for (int i = 0; i < session.Plan.NumPoints; ++i) {
    ConvertData(session.Data, i, fromOhms, toOhms, delivered);
    ConvertMemory(session, i, fromOhms, toOhms);
  }
}

}  // namespace qk
