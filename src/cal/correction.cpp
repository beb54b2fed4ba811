#include "cal/correction.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "numeric/complex_lanes.h"

namespace qk {

namespace {

// What the twelve-term solution of a point reads and writes; 2 marks the reverse twins.
// clang-format off
enum Input {
  kRawS11, kRawS21, kRawS12, kRawS22,
  kED, kERT, kES, kETT, kEL,
  kED2, kERT2, kES2, kETT2, kEL2,
  kIsoFwd0, kIsoFwd1, kIsoFwd2,
  kIsoRev0, kIsoRev1, kIsoRev2,
  kInputs
};
// clang-format on
enum Output { kEX, kEX2, kS11, kS21, kS12, kS22, kOutputs };

std::array<const ComplexArray*, kInputs> InputsOf(const Session& session) {
  const SParamData& d = session.Data;
  const ErrorTerms& t = session.Terms;
  const PortTerms& f = t.Forward;
  const PortTerms& r = t.Reverse;
  // clang-format off
  return {&d.RawS11, &d.RawS21, &d.RawS12, &d.RawS22,
          &f.ED, &f.ERT, &f.ES, &f.ETT, &f.EL,
          &r.ED, &r.ERT, &r.ES, &r.ETT, &r.EL,
          &t.IsoFwd0, &t.IsoFwd1, &t.IsoFwd2,
          &t.IsoRev0, &t.IsoRev1, &t.IsoRev2};
  // clang-format on
}

std::array<ComplexArray*, kOutputs> OutputsOf(Session& session) {
  SParamData& d = session.Data;
  return {&session.Terms.Forward.EX, &session.Terms.Reverse.EX, &d.S11, &d.S21, &d.S12, &d.S22};
}

// The twelve-term solution for whatever in(Input) gives: one point (Complex) or several
// (ComplexLanes); out(Output, value) takes the results.
template <class In, class Out>
inline void SolveTwelveTerms(In in, Out out) {
  const auto es = in(kES);
  const auto es2 = in(kES2);
  const auto el = in(kEL);
  const auto el2 = in(kEL2);
  const auto ert = in(kERT);
  const auto ert2 = in(kERT2);
  const auto difference = [](const auto& left, const auto& right) { return left - right; };
  const auto x = difference(in(kRawS11), in(kED));
  const auto y = difference(in(kRawS22), in(kED2));

  // Isolation of the device at hand, from its own reflections.
  const auto g1 = ComplexDivide(x, ComplexMultiply(es, x) + ert);
  const auto g2 = ComplexDivide(y, ComplexMultiply(es2, y) + ert2);
  const auto ex =
      (ComplexMultiply(in(kIsoFwd1), g1) + in(kIsoFwd0)) + ComplexMultiply(in(kIsoFwd2), g2);
  const auto ex2 =
      (ComplexMultiply(in(kIsoRev1), g1) + in(kIsoRev0)) + ComplexMultiply(in(kIsoRev2), g2);
  out(kEX, ex);
  out(kEX2, ex2);

  // Normalised waves and their common denominator.
  const auto a = ComplexDivide(x, ert);
  const auto b = ComplexDivide(difference(in(kRawS21), ex), in(kETT));
  const auto c = ComplexDivide(difference(in(kRawS12), ex2), in(kETT2));
  const auto d = ComplexDivide(y, ert2);
  const auto port1 = OnePlus(ComplexMultiply(a, es));
  const auto port2 = OnePlus(ComplexMultiply(d, es2));
  const auto bel = ComplexMultiply(b, el);
  const auto bel2 = ComplexMultiply(b, el2);
  const auto w = ComplexMultiply(port1, port2) - ComplexMultiply(ComplexMultiply(bel, el2), c);

  out(kS21, ComplexDivide(ComplexMultiply(b, OnePlus(ComplexMultiply(d, es2 - el))), w));
  out(kS11, ComplexDivide(ComplexMultiply(a, port2) - ComplexMultiply(bel, c), w));
  out(kS12, ComplexDivide(ComplexMultiply(c, OnePlus(ComplexMultiply(a, es - el2))), w));
  out(kS22, ComplexDivide(ComplexMultiply(d, port1) - ComplexMultiply(bel2, c), w));
}

// The session's arrays lie a power of two apart, where they crowd each other out of the cache;
// points are therefore worked on in chunks, copied side by side.
constexpr std::size_t kChunk = 32;
struct Row {
  std::array<double, kChunk> re, im;
};

void SolveChunk(Session& session, std::size_t first) {
  std::array<Row, kInputs> inputs;
  std::array<Row, kOutputs> outputs;
  const auto sources = InputsOf(session);
  for (std::size_t i = 0; i < kInputs; ++i) {
    std::copy_n(sources[i]->re.data() + first, kChunk, inputs[i].re.data());
    std::copy_n(sources[i]->im.data() + first, kChunk, inputs[i].im.data());
  }
  for (std::size_t k = 0; k < kChunk; k += kLanes)
    SolveTwelveTerms(
        [&](Input i) { return LoadLanes(inputs[i].re.data() + k, inputs[i].im.data() + k); },
        [&](Output o, const ComplexLanes& z) {
          StoreLanes(z, outputs[o].re.data() + k, outputs[o].im.data() + k);
        });
  const auto targets = OutputsOf(session);
  for (std::size_t o = 0; o < kOutputs; ++o) {
    std::copy_n(outputs[o].re.data(), kChunk, targets[o]->re.data() + first);
    std::copy_n(outputs[o].im.data(), kChunk, targets[o]->im.data() + first);
  }
}

}  // namespace

void CorrectS11Point(Session& session, int k) {
  SParamData& data = session.Data;
  data.S11.Set(k, CorrectReflection(session.Terms.Forward, k, data.RawS11[k]));
}

void CorrectS21Point(Session& session, int k) {
  const PortTerms& terms = session.Terms.Forward;
  SParamData& data = session.Data;
  data.S21.Set(k, ComplexDivide(data.RawS21[k] - terms.EX[k], terms.ETT[k]));
}

void CorrectEnhancedPoint(Session& session, int k) {
  const PortTerms& terms = session.Terms.Forward;
  SParamData& data = session.Data;
  const Complex match = OnePlus(ComplexMultiply(data.S11[k], terms.ES[k]));
  data.S21.Set(k, ComplexDivide(ComplexDivide(data.RawS21[k] - terms.EX[k], match), terms.ETT[k]));
}

void Correct12TermPoint(Session& session, int k) {
  const auto inputs = InputsOf(session);
  const auto outputs = OutputsOf(session);
  SolveTwelveTerms([&](Input i) { return (*inputs[i])[k]; },
                   [&](Output o, Complex z) { outputs[o]->Set(k, z); });
}

void Correct12TermPoints(Session& session, int first, int last) {
  constexpr int kStep = static_cast<int>(kChunk);
  int k = first;
  for (; k + kStep <= last; k += kStep) SolveChunk(session, static_cast<std::size_t>(k));
  for (; k < last; ++k) Correct12TermPoint(session, k);
}

}  // namespace qk
