// SPDX-License-Identifier: MIT
#include "trace/zo.h"

#include <algorithm>

#include "core/instrument_limits.h"
#include "numeric/two_port.h"
#include "trace/memory.h"

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

// The four parameters of a point, from a sweep or from stored traces.
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

// Converts point i (from 0) of the traces of one memory. It converts the channels' own points, not
// the values in ZoSet: a trace may have been stored or updated by a hold since then, and two
// channels may have traces of the same parameter.
void ConvertMemory(Session& session, int number, int i, double fromOhms, double toOhms) {
  Network& zoSet = MemoryZoSetOf(session, number);
  TwoPort set{kNotMeasured, kNotMeasured, kNotMeasured, kNotMeasured};
  if (toOhms == kInstrumentOhms) set = Read(zoSet, i);
  for (int n = 1; n <= kChannels; ++n) {
    const StoredMemory memory = MemoryOf(session, n, number);
    if (memory.Valid && memory.Of) Of(set, *memory.Of) = memory.At(i + 1);
  }
  Write(zoSet, i, ConvertZo(fromOhms, toOhms, set));
  for (int n = 1; n <= kChannels; ++n) {
    const StoredMemory memory = MemoryOf(session, n, number);
    if (!memory.Valid || !memory.Of) continue;
    TwoPort own = set;
    Of(own, *memory.Of) = memory.At(i + 1);
    TwoPort converted = ConvertZo(fromOhms, toOhms, own);
    memory.Set(i + 1, Of(converted, *memory.Of));
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
    for (int number = 1; number <= kMemories; ++number)
      ConvertMemory(session, number, i, fromOhms, toOhms);
  }
}

}  // namespace qk
