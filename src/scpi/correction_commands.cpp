// SPDX-License-Identifier: MIT
// The calibration: SENSe:CORRection.
#include <string>

#include "core/cal_arrays.h"
#include "scpi/call.h"
#include "scpi/commands.h"

namespace qk::scpi {

namespace {

void Refuse(Call& call, const std::optional<Error>& why) {
  if (why) call.Fail(why->Number, why->Detail);
}

constexpr std::string_view kMethods[] = {"S11", "S21", "BOTH", "INSertable", "NONinsertable"};
constexpr CalChoice kChoices[] = {CalChoice::S11, CalChoice::S21, CalChoice::S11S21,
                                  CalChoice::Insertable, CalChoice::NonInsertable};

void SetMethod(Call& call) {
  if (const auto method = call.Word(0, kMethods))
    Refuse(call,
           call.remote.calibration().ChooseMethod(kChoices[static_cast<std::size_t>(*method)]));
}
void AskMethod(Call& call) {
  constexpr std::string_view words[] = {"S11", "S21", "BOTH", "INS", "NON"};
  const std::optional<CalChoice> method = call.remote.calibration().Method();
  for (std::size_t i = 0; i < std::size(kChoices); ++i)
    if (method == kChoices[i]) return call.Reply(words[i]);
  call.Reply("NONE");
}

void Collect(Call& call) {
  constexpr std::string_view standards[] = {"OPEN", "SHORt", "LOAD", "THRU", "ISOLation"};
  const auto which = call.Word(0, standards);
  if (!which) return;
  const auto standard = static_cast<CalStandard>(*which);
  int port = 0;
  const bool ported = standard != CalStandard::Thru && standard != CalStandard::Isolation;
  if (!ported && call.Count() > 1) return call.Fail(kTooManyParameters, "no port here");
  if (ported) {
    const auto given = call.Whole(1, 1, 2);
    if (!given) return;
    port = *given;
  }
  Refuse(call, call.remote.calibration().Collect(call.client, standard, port));
}

void Save(Call& call) {
  Refuse(call, call.remote.calibration().Save(call.client));
}

void Preset(Call& call) {
  Refuse(call, call.remote.calibration().Preset(call.client));
}

const RemoteCalibration::TermName* Term(Call& call) {
  const Item& name = call.At(0);
  if (name.Kind != ItemKind::Word && name.Kind != ItemKind::Text) {
    call.Fail(kDataType);
    return nullptr;
  }
  const auto receiver = call.Whole(1, 1, 2);
  if (!receiver) return nullptr;
  const auto source = call.Whole(2, 1, 2);
  if (!source) return nullptr;
  const auto* term = RemoteCalibration::FindTerm(name.Raw, *receiver, *source);
  if (term == nullptr) call.Fail(kIllegalValue, "no such term");
  return term;
}

void ReadTerm(Call& call) {
  const auto* term = Term(call);
  if (term == nullptr) return;
  const auto pairs = call.remote.calibration().Read(*term);
  if (!pairs) return call.Fail(kSettingsConflict, "no calibration");
  call.ReplyData(*pairs);
}

// The numbers after the name of a term, as a list or as one block.
std::optional<std::vector<double>> Values(Call& call) {
  constexpr std::size_t kFirst = 3;
  if (call.At(kFirst).Kind == ItemKind::Block) {
    if (call.Count() > kFirst + 1) {
      call.Fail(kTooManyParameters);
      return std::nullopt;
    }
    const DataForm form = call.client.Form == DataForm::Ascii ? DataForm::Real64 : call.client.Form;
    auto numbers = NumbersIn(call.At(kFirst).Raw, form, call.client.Swapped);
    if (!numbers) call.Fail(kInvalidBlock, "not whole numbers");
    return numbers;
  }
  std::vector<double> numbers;
  numbers.reserve(call.Count() - kFirst);
  for (std::size_t i = kFirst; i < call.Count(); ++i) {
    const Item& item = call.At(i);
    if (item.Kind != ItemKind::Number || !item.Unit.empty()) {
      call.Fail(kDataType);
      return std::nullopt;
    }
    numbers.push_back(item.Value);
  }
  return numbers;
}

void WriteTerm(Call& call) {
  const auto* term = Term(call);
  if (term == nullptr) return;
  const auto values = Values(call);
  if (!values) return;
  Refuse(call, call.remote.calibration().Write(call.client, *term, *values));
}

// Frequency and size of a term at each point of its last check.
void AskCheck(Call& call) {
  const Item& name = call.At(0);
  if (name.Kind != ItemKind::Word && name.Kind != ItemKind::Text) return call.Fail(kDataType);
  for (std::size_t i = 0; i < kCheckTerms; ++i) {
    const auto term = static_cast<CheckTerm>(i);
    if (!SameWord(RowOf(term).Column, name.Raw)) continue;
    const TermFound& found = call.remote.controller().quality().Check.Of(term);
    if (!found.Known) return call.Fail(kStaleData, "not checked");
    std::vector<double> values;
    values.reserve(2 * static_cast<std::size_t>(found.Last - found.First + 1));
    for (int k = found.First; k <= found.Last; ++k) {
      values.push_back(found.Grid.Frequency(k));
      values.push_back(static_cast<double>(found.Size[static_cast<std::size_t>(k)]));
    }
    return call.ReplyData(values);
  }
  call.Fail(kIllegalValue, "no such term");
}

// False for ideal terms, which correct nothing.
bool Corrected(const Session& session) {
  return session.Cal.AnyKind() && !TermsAreIdeal(session);
}

void AskType(Call& call) {
  if (!Corrected(call.session)) return call.Reply("NONE");
  const std::optional<SweepMode> mode = ModeInForce(call.session.Cal);
  constexpr std::string_view words[] = {"S11", "S21", "BOTH", "ALL"};
  call.Reply(mode ? words[static_cast<std::size_t>(*mode)] : "NONE");
}

void AskInterpolated(Call& call) {
  if (!Corrected(call.session)) return call.Reply("NONE");
  call.Reply(call.session.Cal.CalInterpolated ? "INT" : "EXAC");
}

constexpr Row kCorrectionRows[] = {
    {.Pattern = "[SENSe#1]:CORRection[:STATe]",
     .Query = [](Call& call) { call.ReplySwitch(Corrected(call.session)); },
     .Help = "Whether a calibration is in force; ideal terms are none."},
    {.Pattern = "[SENSe#1]:CORRection:TYPE",
     .Query = AskType,
     .Help = "Kind of the calibration in force: NONE, S11, S21, BOTH, ALL.",
     .Otherwise = Fallback::Text},
    {.Pattern = "[SENSe#1]:CORRection:STATe:INTerpolated",
     .Query = AskInterpolated,
     .Help = "NONE, EXAC (at the points of the calibration), INT (interpolated to others).",
     .Otherwise = Fallback::Text},
    {.Pattern = "[SENSe#1]:CORRection:CHECk[:DATA]",
     .Query = AskCheck,
     .Asks = "<term>",
     .Help = "Hertz and size (linear) of a residual term at each point of its last check: "
             "directivity, source_match, ..., as in CalChecks.csv.",
     .Otherwise = Fallback::Data,
     .QueryTakes = {1, 1}},
    {.Pattern = "[SENSe#1]:CORRection:COLLect:METHod",
     .Set = SetMethod,
     .Query = AskMethod,
     .Takes = "S11|S21|BOTH|INS|NON",
     .Help = "Begins a calibration of this kind. The one in force stays until COLLect:SAVE.",
     .Otherwise = Fallback::Text,
     .Before = Needs::Completion},
    {.Pattern = "[SENSe#1]:CORRection:COLLect[:ACQuire]",
     .Set = Collect,
     .Takes = "OPEN|SHOR|LOAD,<port> or THRU|ISOL",
     .Help = "Measures what is connected now as this standard, as an operation.",
     .Before = Needs::Completion,
     .SetTakes = {1, 2}},
    {.Pattern = "[SENSe#1]:CORRection:COLLect:SAVE",
     .Set = Save,
     .Help = "Puts the measured standards in force, as an operation. What was in force is "
             "kept as BeforeRemote.cal, or with the next free number.",
     .Before = Needs::Completion,
     .SetTakes = {0, 0}},
    {.Pattern = "[SENSe#1]:CORRection:COEFficient[:DATA]",
     .Set = WriteTerm,
     .Query = ReadTerm,
     .Takes = "<term>,<receiver>,<source>,<numbers or block>",
     .Asks = "<term>,<receiver>,<source>",
     .Help =
         "An error term as re,im of each point (ed, es, er: 1,1 or 2,2; et, el, ex: 2,1 or 1,2). "
         "Each client has its own set, for the wanted plan. The set takes effect with its twelfth "
         "term; a repeated term begins a new one.",
     .Otherwise = Fallback::Data,
     .Before = Needs::Completion,
     .BeforeQuery = Needs::Completion,
     .SetTakes = {4, 5000},
     .QueryTakes = {3, 3}},
    {.Pattern = "[SENSe#1]:CORRection:COEFficient:PRESet",
     .Set = Preset,
     .Help = "Ideal terms, where no calibration is in force, so that raw ratios can be measured.",
     .Before = Needs::Completion,
     .SetTakes = {0, 0}},
};

}  // namespace

std::span<const Row> CorrectionRows() {
  return kCorrectionRows;
}

}  // namespace qk::scpi
