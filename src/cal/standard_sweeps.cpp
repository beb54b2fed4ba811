// SPDX-License-Identifier: MIT
#include "cal/standard_sweeps.h"

#include <algorithm>

#include "core/text.h"

namespace qk {

namespace {

// The destinations of the ratios.
// clang-format off
ComplexArray& Load1(Session& s) { return s.Standards.CalLoad1; }
ComplexArray& Load2(Session& s) { return s.Standards.CalLoad2; }
ComplexArray& Short1(Session& s) { return s.Standards.CalShort1; }
ComplexArray& Short2(Session& s) { return s.Standards.CalShort2; }
ComplexArray& Open1(Session& s) { return s.Standards.CalOpen1; }
ComplexArray& Open2(Session& s) { return s.Standards.CalOpen2; }
ComplexArray& ThruRefl1(Session& s) { return s.Standards.CalThruRefl1; }
ComplexArray& ThruRefl2(Session& s) { return s.Standards.CalThruRefl2; }
ComplexArray& DutRefl1(Session& s) { return s.Standards.CalDutRefl1; }
ComplexArray& DutRefl2(Session& s) { return s.Standards.CalDutRefl2; }
ComplexArray& Isolation(Session& s) { return s.Terms.Forward.EX; }
ComplexArray& Isolation2(Session& s) { return s.Terms.Reverse.EX; }
ComplexArray& Tracking(Session& s) { return s.Terms.Forward.ETT; }
ComplexArray& Tracking2(Session& s) { return s.Terms.Reverse.ETT; }
ComplexArray& IsoFwd1(Session& s) { return s.Terms.IsoFwd1; }
ComplexArray& IsoFwd2(Session& s) { return s.Terms.IsoFwd2; }
ComplexArray& IsoRev1(Session& s) { return s.Terms.IsoRev1; }
ComplexArray& IsoRev2(Session& s) { return s.Terms.IsoRev2; }
// clang-format on

constexpr auto kS11 = &RawPoint::S11;
constexpr auto kS21 = &RawPoint::S21;
constexpr auto kS12 = &RawPoint::S12;
constexpr auto kS22 = &RawPoint::S22;

// The format of the standards' offsets in a prompt, in millimetres.
enum class Offset {
  None,
  Port1,  // " (0.00mm)"
  Both,   // " (0.00 / 0.00mm)"
  Bare    // " (0.00)", where the port 1 kit is used at both ports in turn
};

struct StandardRow {
  Standard Which;
  std::string_view Title;
  std::string_view Text;
  Offset NamedOffset;
  SweepMode Mode;
  std::array<Store, 4> Stores;
};

constexpr std::string_view kLoad = "Load Cal";
constexpr std::string_view kShort = "Short Cal";
constexpr std::string_view kOpen = "Open Cal";
constexpr std::string_view kThru = "Through Cal";
constexpr std::string_view kIso = "Iso Cal";

using enum Standard;
constexpr auto kOnePort = SweepMode::S11;
constexpr auto kResponse = SweepMode::S21;
constexpr auto kBoth = SweepMode::S11S21;
constexpr auto kAll = SweepMode::All;

constexpr std::array<Store, 4> kThruStores{
    {{kS21, Tracking}, {kS12, Tracking2}, {kS11, ThruRefl1}, {kS22, ThruRefl2}}};
constexpr std::array<Store, 4> kIsoStores{
    {{kS11, DutRefl1}, {kS21, IsoFwd1}, {kS22, DutRefl2}, {kS12, IsoRev1}}};

// clang-format off
constexpr StandardRow kRows[] = {
    {LoadS11, kLoad, "Matched Load on Port 1", Offset::None, kOnePort, {{{kS11, Load1}}}},
    {ShortS11, kShort, "Short Circuit on Port 1", Offset::Port1, kOnePort, {{{kS11, Short1}}}},
    {OpenS11, kOpen, "Open Circuit on Port 1", Offset::Port1, kOnePort, {{{kS11, Open1}}}},
    {LoadBoth, kLoad, "Matched Load on Port 1", Offset::None, kBoth, {{{kS11, Load1}}}},
    {ShortBoth, kShort, "Short Circuit on Port 1", Offset::Port1, kBoth, {{{kS11, Short1}}}},
    {OpenBoth, kOpen, "Open Circuit on Port 1", Offset::Port1, kBoth, {{{kS11, Open1}}}},
    {LoadInsertable, kLoad, "Matched Load on Ports 1 & 2", Offset::None, kAll,
     {{{kS11, Load1}, {kS22, Load2}, {kS21, Isolation}, {kS12, Isolation2}}}},
    {ShortInsertable, kShort, "Short Circuit on Ports 1 and 2", Offset::Both, kAll,
     {{{kS11, Short1}, {kS22, Short2}}}},
    {OpenInsertable, kOpen, "Open Circuit on Ports 1 and 2", Offset::Both, kAll,
     {{{kS11, Open1}, {kS22, Open2}}}},
    {LoadPort1, kLoad, "Matched Load on Port 1", Offset::None, kAll,
     {{{kS11, Load1}, {kS21, Isolation}}}},
    {LoadPort2, kLoad, "Matched Load on Port 2", Offset::None, kAll,
     {{{kS22, Load2}, {kS12, Isolation2}}}},
    {ShortPort1, kShort, "Short Circuit on Port 1", Offset::Bare, kAll, {{{kS11, Short1}}}},
    {ShortPort2, kShort, "Short Circuit on Port 2", Offset::Bare, kAll, {{{kS22, Short2}}}},
    // Intentional: an open on one port has two blanks before its offset.
    {OpenPort1, kOpen, "Open Circuit on Port 1 ", Offset::Bare, kAll, {{{kS11, Open1}}}},
    {OpenPort2, kOpen, "Open Circuit on Port 2 ", Offset::Bare, kAll, {{{kS22, Open2}}}},
    {ThruS21, kThru, "Connect Through", Offset::None, kResponse, {{{kS21, Tracking}}}},
    {ThruBoth, kThru, "Connect Through", Offset::None, kBoth,
     {{{kS21, Tracking}, {kS11, ThruRefl1}}}},
    {ThruInsertable, kThru, "Connect Through (0.00 mm)", Offset::None, kAll, kThruStores},
    {ThruNonInsertable, kThru, "Connect through using Through Standard", Offset::None, kAll,
     kThruStores},
    {IsoS21, kIso, "Terminate Ports 1 & 2", Offset::None, kResponse, {{{kS21, Isolation}}}},
    {IsoBoth, kIso, "Terminate Ports 1 & 2", Offset::None, kBoth, {{{kS21, Isolation}}}},
    {IsoInsertable, kIso, "DUT on Port 1, DUT on Port 2 ", Offset::None, kAll, kIsoStores},
};

// The two device sweeps of isolation method 2.
constexpr StandardRow kIsoFirst = {IsoInsertable, kIso, "DUT on Port 1, Matched load on Port 2 ",
                           Offset::None, kAll, kIsoStores};
constexpr StandardRow kIsoSecond = {IsoInsertable, kIso, "Matched load on Port 1, DUT on Port 2 ",
                            Offset::None, kAll,
                            {{{kS21, IsoFwd2}, {kS22, DutRefl2}, {kS12, IsoRev2}}}};
// clang-format on

std::string Millimetres(const CalKit& kit) {
  return FormatNumber(static_cast<double>(kit.KitOffset) * 1000, "#0.00");
}

std::string OffsetText(Offset offset, const Session& session) {
  const std::string port1 = " (" + Millimetres(session.Kit1);
  switch (offset) {
    case Offset::Port1:
      return port1 + "mm)";
    case Offset::Both:
      return port1 + " / " + Millimetres(session.Kit2) + "mm)";
    case Offset::Bare:
      return port1 + ")";
    case Offset::None:
      break;
  }
  return "";
}

StandardSweep FromRow(const StandardRow& row, const Session& session) {
  return {row.Title, std::string(row.Text) + OffsetText(row.NamedOffset, session), row.Mode,
          row.Stores};
}

}  // namespace

std::string PromptAtPort2(const Session& session, Standard standard) {
  if (standard == LoadPort2) return "Matched Load on Port 2";
  const char* what = standard == ShortPort2 ? "Short Circuit on Port 2" : "Open Circuit on Port 2";
  return what + (" (" + Millimetres(session.Kit2)) + "mm)";
}

StandardSweep SweepOf(const Session& session, Standard standard) {
  if (standard == IsoInsertable && session.Cal.IsoMethod == IsoMethod::TwoSweeps)
    return FromRow(kIsoFirst, session);
  return FromRow(*std::ranges::find(kRows, standard, &StandardRow::Which), session);
}

StandardSweep SecondIsoSweep(const Session& session) {
  return FromRow(kIsoSecond, session);
}

}  // namespace qk
