// SPDX-License-Identifier: MIT
// De-embedding and the system impedance in "Enhancement Set Up": check boxes, messages, data.
#include <gtest/gtest.h>

#include <fstream>

#include "numeric/two_port.h"
#include "support/program_fixture.h"

namespace qk {
namespace {

using test::ScriptedProgram;
using test::Texts;

constexpr const char* kNotAll =
    "System Zo Conversion|Not all s-parameters are available, so default values will be used for "
    "missing data|none|ok";
constexpr const char* kInvalid =
    "System Zo Conversion|Invalid System Impedance (valid range is 10 < Zsys < 200)|information|ok";

struct SystemFixture : ScriptedProgram {
  SystemFixture() {
    session.Cal.Cal12Term = session.Cal.CalDataReady = true;
    session.Data.S11.Fill({0, 0});  // a matched pad of 6 dB
    session.Data.S22.Fill({0, 0});
    session.Data.S21.Fill({0.5, 0});
    session.Data.S12.Fill({0.5, 0});
    OpenEnhancement();
  }
  bool Tick(const char* control, bool on) { return Window("EnhancePara").Tick(control, on); }
  std::string Shown(const char* control) { return Value("EnhancePara." + std::string(control)); }
  Texts Apply() {
    Click("EnhancePara.ApplyEnhance");
    return TakeMessages();
  }
  Texts Convert(const char* ohms, bool convert = true, bool match = false) {
    Type("EnhancePara.Text1", ohms);
    Tick("Check3", convert);
    Tick("Check4", match);
    return Apply();
  }
  const ImpedanceState& zo() { return session.Impedance; }
  // S11 of the pad at the impedance it is shown in.
  double S11() { return session.Data.S11[50].re; }
  static double PadAt(double ohms) {
    return ConvertZo(50, ohms, {{0, 0}, {0.5, 0}, {0.5, 0}, {0, 0}}).p11.re;
  }
};

TEST(SystemZo, TheControlsBearTheirCaptionsAndShowWhatIsInForce) {
  SystemFixture vna;
  const std::pair<const char*, const char*> captions[] = {{"Option1", "De-embed on"},
                                                          {"Option2", "De-embed off"},
                                                          {"Check1", "Port 1 network"},
                                                          {"Check2", "Port 2 network"},
                                                          {"Check3", "Convert to System Zo"},
                                                          {"Check4", "External Zo match"},
                                                          {"Command2", "Help"}};
  for (const auto& [name, caption] : captions)
    EXPECT_EQ(vna.At("EnhancePara." + std::string(name)).Caption, caption);
  EXPECT_EQ(vna.Shown("Option2"), "on");
  EXPECT_EQ(vna.Shown("Text1"), "50");
  vna.Click("EnhancePara.CloseEnhance");
  vna.session.Impedance.ZoConvertOn = true;
  vna.session.Impedance.SystemZo = 75;
  vna.OpenEnhancement();
  EXPECT_EQ(vna.Shown("Check3"), "on");
  EXPECT_EQ(vna.Shown("Text1"), "75");
}

TEST(SystemZo, HelpOpensTheDocumentInTheInstallFolder) {
  SystemFixture vna;
  vna.Click("EnhancePara.Command2");
  EXPECT_EQ(vna.fake.Documents, (Texts{vna.folder.Text() + "/ZoConversion.pdf"}));
}

TEST(SystemZo, ConversionTakesTheStoredDataThereAndBack) {
  SystemFixture vna;
  EXPECT_TRUE(vna.Convert("75").empty());
  EXPECT_TRUE(vna.zo().ZoConvertOn);
  EXPECT_EQ(vna.zo().SystemZo, 75);
  EXPECT_NEAR(vna.S11(), SystemFixture::PadAt(75), 1e-12);
  EXPECT_TRUE(vna.Convert("25").empty());
  EXPECT_NEAR(vna.S11(), SystemFixture::PadAt(25), 1e-12);
  EXPECT_TRUE(vna.Convert("25", false).empty());
  EXPECT_FALSE(vna.zo().ZoConvertOn);
  EXPECT_EQ(vna.zo().SystemZo, 50);
  EXPECT_EQ(vna.Shown("Text1"), "50");
  EXPECT_NEAR(vna.S11(), 0, 1e-12);
}

TEST(SystemZo, StoredTracesGoAlong) {
  SystemFixture vna;
  vna.session.Channel(1).MemoryValid = true;
  vna.session.Channel(1).MemoryParameter = Parameter::S11;
  vna.session.Channel(1).MemoryRe.fill(1.0 / 3);  // 100 ohms
  vna.Convert("100");
  EXPECT_NEAR(vna.session.Channel(1).MemoryRe[7], 0, 1e-6);
  vna.Convert("100", false);
  EXPECT_NEAR(vna.session.Channel(1).MemoryRe[7], 1.0 / 3, 1e-9);
}

TEST(SystemZo, OutsideItsRangeIsRefusedAndTheConversionGoesOff) {
  for (const char* ohms : {"9", "201", "0", "-75", "9.999", "abc"}) {
    SystemFixture vna;
    EXPECT_EQ(vna.Convert(ohms), (Texts{kInvalid})) << ohms;
    EXPECT_FALSE(vna.zo().ZoConvertOn);
    EXPECT_EQ(vna.zo().SystemZo, 50);
    EXPECT_EQ(vna.Shown("Check3"), "off");
    EXPECT_EQ(vna.S11(), 0);
  }
}

TEST(SystemZo, TenAndTwoHundredAreAccepted) {
  for (const char* ohms : {"10", "200"}) {
    SystemFixture vna;
    EXPECT_TRUE(vna.Convert(ohms).empty()) << ohms;
    EXPECT_TRUE(vna.zo().ZoConvertOn);
  }
}

TEST(SystemZo, FiftyClearsTheChecksAndConvertsNothing) {
  SystemFixture vna;
  vna.fake.Events.clear();
  EXPECT_TRUE(vna.Convert("50").empty());
  EXPECT_EQ(vna.Shown("Check3"), "off");
  EXPECT_EQ(vna.Shown("Check4"), "off");
  EXPECT_EQ(vna.Shown("Text1"), "50");
  EXPECT_FALSE(vna.zo().ZoConvertOn);
  EXPECT_EQ(vna.S11(), 0);
}

// Intentional: what was converted stays so until the next sweep.
TEST(SystemZo, FiftyLeavesConvertedDataAsTheyStand) {
  SystemFixture vna;
  vna.Convert("75");
  const double at75 = vna.S11();
  EXPECT_TRUE(vna.Convert("50").empty());
  EXPECT_EQ(vna.S11(), at75);
  EXPECT_EQ(vna.zo().SystemZo, 50);
}

// Between sweeps the tag belongs to the data that are shown; in a sweep to the points that come.
TEST(SystemZo, WhenItEndsInASweepItsTagGoesAtOnceAndElseWithTheNextSweep) {
  for (const bool sweeping : {false, true}) {
    for (const char* ohms : {"50", "5"}) {
      SystemFixture vna;
      vna.Convert("75");
      ASSERT_NE(FindText(vna.surface.Background(), "[Zo=75]"), nullptr);
      if (sweeping) vna.PretendSweep();
      vna.Convert(ohms);
      EXPECT_EQ(FindText(vna.surface.Background(), "[Zo=75]") == nullptr, sweeping) << ohms;
    }
  }
}

TEST(SystemZo, OtherThanTwelveTermsItWarnsAtEachApplyAndGoesOn) {
  SystemFixture vna;
  vna.session.Cal.Cal12Term = false;
  vna.session.Cal.CalS11 = true;
  EXPECT_EQ(vna.Convert("75"), (Texts{kNotAll}));
  EXPECT_TRUE(vna.zo().ZoConvertOn);
  EXPECT_NEAR(vna.S11(), -0.2, 1e-5);  // 50 ohms alone, seen from 75
  EXPECT_EQ(vna.Convert("75"), (Texts{kNotAll}));
}

TEST(SystemZo, WithAnExternalMatchTheImpedanceIsKnownAndNothingIsConverted) {
  SystemFixture vna;
  EXPECT_TRUE(vna.Convert("75", true, true).empty());
  EXPECT_TRUE(vna.zo().ZoConvertOn);
  EXPECT_TRUE(vna.zo().ExternalZoMatch);
  EXPECT_EQ(vna.zo().SystemZo, 75);
  EXPECT_EQ(vna.S11(), 0);
}

TEST(SystemZo, AnExternalMatchTakesConvertedDataBack) {
  SystemFixture vna;
  vna.Convert("75");
  vna.Convert("75", true, true);
  EXPECT_NEAR(vna.S11(), 0, 1e-12);
  EXPECT_TRUE(vna.zo().ExternalZoMatch);
}

TEST(SystemZo, AnExternalMatchIsCheckedForItsRangeToo) {
  SystemFixture vna;
  EXPECT_EQ(vna.Convert("300", true, true), (Texts{kInvalid}));
  EXPECT_FALSE(vna.zo().ZoConvertOn);
  EXPECT_EQ(vna.Convert("300", false, true), (Texts{kInvalid}));
}

TEST(SystemZo, AnExternalMatchAtFiftyOhmsClearsAll) {
  SystemFixture vna;
  EXPECT_TRUE(vna.Convert("50", true, true).empty());
  EXPECT_FALSE(vna.zo().ZoConvertOn);
  EXPECT_FALSE(vna.zo().ExternalZoMatch);
  EXPECT_EQ(vna.Shown("Check3"), "off");
  EXPECT_EQ(vna.Shown("Check4"), "off");
}

TEST(SystemZo, AMatchThatWasTakenAwayFollowsALoadedSessionAgain) {
  SystemFixture vna;
  vna.Convert("75", true, true);
  vna.Convert("75");
  EXPECT_EQ(vna.Shown("Check4"), "off");
  vna.session.Impedance.ExternalZoMatch = true;
  vna.program.registry().At("EnhancePara").OnSessionChanged();
  EXPECT_EQ(vna.Shown("Check4"), "on");
  vna.Apply();
  EXPECT_TRUE(vna.zo().ExternalZoMatch);
}

TEST(SystemZo, AMatchWithoutConversionIsClearedAgain) {
  SystemFixture vna;
  EXPECT_TRUE(vna.Convert("75", false, true).empty());
  EXPECT_EQ(vna.zo().SystemZo, 50);
  EXPECT_FALSE(vna.zo().ExternalZoMatch);
  EXPECT_EQ(vna.Shown("Check4"), "off");
  EXPECT_EQ(vna.Shown("Text1"), "50");
}

// ---- networks --------------------------------------------------------------------------------

struct NetworkFixture : SystemFixture {
  // A matched attenuator as a file.
  std::string Attenuator(const char* name, double transmission) {
    const std::string path = folder.File(name);
    std::ofstream(path) << "# MHZ S RI R 50\n"
                        << "0 0 0 " << transmission << " 0 " << transmission << " 0 0 0\n"
                        << "3100 0 0 " << transmission << " 0 " << transmission << " 0 0 0\n";
    return path;
  }
  Texts Load(const char* check, const std::string& path) {
    fake.Choices.push_back(path);
    Tick(check, true);
    return TakeMessages();
  }
};

TEST(DeEmbedding, WithoutANetworkItIsRefused) {
  NetworkFixture vna;
  vna.Click("EnhancePara.Option1");
  EXPECT_EQ(vna.TakeMessages(),
            (Texts{"Measurement enhancement|No embedding networks loaded|exclamation|ok"}));
  EXPECT_FALSE(vna.zo().DeEmbedOn);
  EXPECT_EQ(vna.Shown("Option2"), "on");
}

TEST(DeEmbedding, ANetworkIsLoadedByItsTickAndThenUsed) {
  NetworkFixture vna;
  EXPECT_TRUE(vna.Load("Check1", vna.Attenuator("one.s2p", 0.5)).empty());
  EXPECT_TRUE(vna.session.Networks.Port1NetOn);
  EXPECT_NEAR(vna.session.Networks.Port1Net.S21[50].re, 0.5, 1e-6);
  EXPECT_FALSE(vna.session.Networks.Port2NetOn);
  vna.Click("EnhancePara.Option1");
  EXPECT_TRUE(vna.TakeMessages().empty());
  EXPECT_TRUE(vna.zo().DeEmbedOn);
}

TEST(DeEmbedding, TheWindowNamesTheFileOfANetworkAndSaysWhenItIsForAnotherSweep) {
  NetworkFixture vna;
  EXPECT_EQ(vna.At("EnhancePara.Network1").Caption, "");
  vna.Load("Check1", vna.Attenuator("one.s2p", 0.5));
  EXPECT_EQ(vna.At("EnhancePara.Network1").Caption, "Port 1: one.s2p");
  EXPECT_EQ(vna.At("EnhancePara.Network2").Caption, "");
  const PlanGrid before = vna.session.Plan;
  vna.session.Plan.StartFreq += 1e6;
  vna.program.registry().At("EnhancePara").OnSessionChanged();
  EXPECT_EQ(vna.At("EnhancePara.Network1").Caption, "Port 1: one.s2p, for another sweep!");
  static_cast<PlanGrid&>(vna.session.Plan) = before;
  vna.Load("Check2", vna.Attenuator("adapter of the second b\xC3\xA4nch N-SMA.s2p", 0.5));
  EXPECT_EQ(vna.At("EnhancePara.Network1").Caption, "Port 1: one.s2p");
  EXPECT_EQ(vna.At("EnhancePara.Network2").Caption, "Port 2: adapter of th... N-SMA.s2p");
}

TEST(DeEmbedding, EndsWhenTheLastNetworkIsTakenOff) {
  NetworkFixture vna;
  vna.Load("Check1", vna.Attenuator("one.s2p", 0.5));
  vna.Load("Check2", vna.Attenuator("two.s2p", 0.8));
  vna.Click("EnhancePara.Option1");
  vna.Tick("Check1", false);
  EXPECT_TRUE(vna.zo().DeEmbedOn);
  vna.Tick("Check2", false);
  EXPECT_FALSE(vna.zo().DeEmbedOn);
  EXPECT_EQ(vna.Shown("Option2"), "on");
}

TEST(DeEmbedding, AFileThatCannotBeReadLeavesTheTickOffAtFirst) {
  NetworkFixture vna;
  vna.fake.Choices.push_back(std::nullopt);
  vna.Tick("Check2", true);
  EXPECT_EQ(vna.TakeMessages().size(), 1u);
  EXPECT_FALSE(vna.session.Networks.Port2NetOn);
  EXPECT_EQ(vna.Shown("Check2"), "off");
}

TEST(DeEmbedding, ACancelledChoiceUsesWhatWasLoadedBefore) {
  NetworkFixture vna;
  vna.Load("Check2", vna.Attenuator("two.s2p", 0.8));
  vna.Tick("Check2", false);
  vna.fake.Choices.push_back(std::nullopt);
  vna.Tick("Check2", true);
  EXPECT_TRUE(vna.session.Networks.Port2NetOn);
  EXPECT_NEAR(vna.session.Networks.Port2Net.S21[50].re, 0.8, 1e-6);
}

TEST(DeEmbedding, IsSwitchedOffByItsOption) {
  NetworkFixture vna;
  vna.Load("Check1", vna.Attenuator("one.s2p", 0.5));
  vna.Click("EnhancePara.Option1");
  vna.Click("EnhancePara.Option2");
  EXPECT_FALSE(vna.zo().DeEmbedOn);
  EXPECT_TRUE(vna.session.Networks.Port1NetOn);
}

}  // namespace
}  // namespace qk
