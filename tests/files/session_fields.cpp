// SPDX-License-Identifier: MIT
// Writes session files with every field at random, and beside each one the fields as the session
// holds them ("NAME<tab>VALUE", numbers as hexadecimal floats), for a reader that was made without
// the program's own: session_fields FOLDER COUNT.
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "files/session_file.h"
#include "random_session.h"

namespace qk {
namespace {

class Teller {
 public:
  explicit Teller(const std::string& path) : out_(path, std::ios::binary) {}

  void Put(const std::string& name, const std::string& text) {
    out_ << name << '\t' << text << '\n';
  }
  void Put(const std::string& name, std::string_view text) { Put(name, std::string(text)); }
  void Put(const std::string& name, double value) {
    char text[64];
    std::snprintf(text, sizeof text, "%a", value);
    Put(name, std::string(text));
  }
  void Put(const std::string& name, float value) { Put(name, static_cast<double>(value)); }
  void Put(const std::string& name, int value) { Put(name, std::to_string(value)); }

  void Array(const std::string& name, const ComplexArray& array, int points) {
    for (int k = 0; k < points; ++k) {
      const std::string at = name + "[" + std::to_string(k) + "].";
      Put(at + "re", array[k].re);
      Put(at + "im", array[k].im);
    }
  }

 private:
  std::ofstream out_;
};

void ReadKit(Teller& t, const std::string& port, const CalKit& kit) {
  t.Put(port + ".name", kit.KitName);
  t.Put(port + ".male", kit.KitMale);
  t.Put(port + ".offset", kit.KitOffset);
  t.Put(port + ".delay", kit.KitDelay);
  t.Put(port + ".C0", kit.KitC0);
  t.Put(port + ".C1", kit.KitC1);
  t.Put(port + ".C2", kit.KitC2);
  t.Put(port + ".C3", kit.KitC3);
  t.Put(port + ".load in use", kit.KitLoadInUse);
  t.Put(port + ".load", kit.KitHasLoad);
  for (std::size_t i = 0; i < 101; ++i)
    for (std::size_t c = 0; c < 3; ++c)
      t.Put(port + ".load[" + std::to_string(i) + "]." + std::to_string(c), kit.KitLoadData[c][i]);
}

void ReadThru(Teller& t, const CalKit& kit) {
  t.Put("kit 1.thru", kit.KitHasThru);
  for (std::size_t i = 0; i < 101; ++i)
    for (std::size_t c = 0; c < 9; ++c)
      t.Put("kit 1.thru[" + std::to_string(i) + "]." + std::to_string(c), kit.KitThruData[c][i]);
}

void ReadChannel(Teller& t, const ChannelSettings& c, const std::string& name, int points) {
  t.Put(name + "unit", NameOf(c.Units));
  t.Put(name + "reference", c.Reference);
  t.Put(name + "position", c.RefPosition);
  t.Put(name + "scale", c.Scale);
  t.Put(name + "parameter", NameOf(c.Parameter));
  t.Put(name + "graph", NameOf(c.GraphType));
  t.Put(name + "active", c.Active);
  t.Put(name + "stored", c.MemoryValid);
  t.Put(name + "stored parameter",
        c.MemoryParameter ? NameOf(*c.MemoryParameter) : std::string_view());
  t.Put(name + "limits", c.LimitsOn);
  for (std::size_t i = 1; i <= static_cast<std::size_t>(points); ++i) {
    const std::string at = name + "[" + std::to_string(i) + "].";
    t.Put(at + "value", c.Value[i]);
    t.Put(at + "value2", c.Value2[i]);
    t.Put(at + "memory re", c.MemoryRe[i]);
    t.Put(at + "memory im", c.MemoryIm[i]);
    t.Put(at + "upper", c.UpperLimit[i]);
    t.Put(at + "lower", c.LowerLimit[i]);
    t.Put(at + "smooth", c.SmoothValue[i]);
    t.Put(at + "smooth2", c.SmoothValue2[i]);
    t.Put(at + "work", c.SmoothWork[i]);
  }
}

void ReadExtension(Teller& t, const Session& s) {
  for (int n = 1; n <= 4; ++n) {
    const std::string name = "channel " + std::to_string(n) + ".";
    t.Put(name + "element", NameOf(s.Channel(n).Element));
    t.Put(name + "grid", NameOf(s.Channel(n).Grid));
    t.Put(name + "gated", s.Channel(n).Gated);
  }
  t.Put("memory number", s.Display.MemoryNumber);
  for (std::size_t m = 0; m < kMemories; ++m)
    t.Put("memory " + std::to_string(m + 1) + ".shown", s.Display.MemoryShown[m]);
  for (std::size_t b = 0; b < s.MoreMemories.size(); ++b) {
    const MemoryBank& bank = s.MoreMemories[b];
    const std::string name = "memory " + std::to_string(b + 2) + ".";
    bool used = false;
    for (std::size_t c = 0; c < 4; ++c) {
      const StoredTrace& trace = bank.OfChannels[c];
      const std::string of = name + std::to_string(c + 1);
      t.Put(of + ".valid", trace.Valid);
      t.Put(of + ".parameter", trace.Of ? NameOf(*trace.Of) : std::string_view());
      used = used || trace.Valid;
    }
    if (!used) continue;
    for (std::size_t c = 0; c < 4; ++c)
      for (std::size_t k = 1; k <= static_cast<std::size_t>(s.Plan.NumPoints); ++k) {
        const std::string at = name + std::to_string(c + 1) + "[" + std::to_string(k) + "].";
        t.Put(at + "re", bank.OfChannels[c].Re[k]);
        t.Put(at + "im", bank.OfChannels[c].Im[k]);
      }
    t.Array(name + "zo S11", bank.ZoSet.S11, s.Plan.NumPoints);
    t.Array(name + "zo S21", bank.ZoSet.S21, s.Plan.NumPoints);
    t.Array(name + "zo S12", bank.ZoSet.S12, s.Plan.NumPoints);
    t.Array(name + "zo S22", bank.ZoSet.S22, s.Plan.NumPoints);
  }
  t.Put("axis", NameOf(s.TimeDomain.Axis));
  t.Put("cable", NameOf(s.TimeDomain.Cable));
  t.Put("velocity factor", s.TimeDomain.VelocityFactor);
  t.Put("gate", NameOf(s.TimeDomain.Gate));
  t.Put("gate start", s.TimeDomain.GateStart);
  t.Put("gate stop", s.TimeDomain.GateStop);
}

void ReadPlanAndCal(Teller& t, const Session& s) {
  t.Put("points", s.Plan.NumPoints);
  t.Put("unit", s.Plan.FreqUnit);
  t.Put("averages", s.Averaging.Averages);
  t.Put("start", s.Plan.StartFreq);
  t.Put("stop", s.Plan.StopFreq);
  t.Put("step", s.Plan.StepFreq);
  t.Put("cal ready", s.Cal.CalDataReady);
  t.Put("cal S11", s.Cal.CalS11);
  t.Put("cal S21", s.Cal.CalS21);
  t.Put("cal S11S21", s.Cal.CalS11S21);
  t.Put("cal 12", s.Cal.Cal12Term);
  t.Put("averaging", s.Averaging.AverOn);
  t.Put("smoothing", s.Averaging.SmoothOn);
  const char* const kKinds[] = {"S11", "S21", "both", "All"};
  t.Put("cal kind", std::string(kKinds[static_cast<int>(s.Cal.CalKind)]));
  t.Put("level", s.Plan.Port1Level);
  t.Put("level target", s.Plan.Port2LevelTarget);
  t.Put("cal level", s.Plan.CalLevel);
  t.Put("averages set", s.Averaging.AveragesSet);
  t.Put("smoothing percent", s.Averaging.SmoothingPercent);
  t.Put("sweep loaded", s.Flags.SweepLoaded);
  t.Put("dwell", s.Flags.DwellOn);
  t.Put("isolation done", s.Cal.IsoSweepDone);
  t.Put("isolation method", static_cast<int>(s.Cal.IsoMethod));
  t.Put("interpolated", s.Cal.CalInterpolated);
  t.Put("saved start", s.Plan.SavedPlan.StartFreq);
  t.Put("saved stop", s.Plan.SavedPlan.StopFreq);
  t.Put("saved points", s.Plan.SavedPlan.NumPoints);
  t.Put("saved step", s.Plan.SavedPlan.StepFreq);
}

void ReadDisplay(Teller& t, const Session& s) {
  t.Put("memory in use", s.Display.MemoryInUse);
  t.Put("memory function", NameOf(s.Display.MemoryFunction));
  t.Put("display mode", NameOf(s.Display.DisplayMode));
  t.Put("display set", NameOf(s.Display.DisplaySet));
  t.Put("active channel", s.Display.ActiveChannel);
  t.Put("refresh", s.Display.PlotRefreshPoints);
  t.Put("hold", static_cast<int>(s.Display.MemoryHold));
  const PlaneState& p = s.Planes;
  t.Put("plane unit", NameOf(p.RefPlaneUnits));
  t.Put("plane active", p.ActivePlane);
  t.Put("delay active", p.ActiveDelay);
  t.Put("plane S11", p.PlaneS11);
  t.Put("delay S11", p.DelayS11);
  t.Put("plane S21", p.PlaneS21);
  t.Put("delay S21", p.DelayS21);
  t.Put("plane S12", p.PlaneS12);
  t.Put("delay S12", p.DelayS12);
  t.Put("plane S22", p.PlaneS22);
  t.Put("delay S22", p.DelayS22);
  t.Put("zo", s.Impedance.SystemZo);
  t.Put("zo conversion", s.Impedance.ZoConvertOn);
  t.Put("external match", s.Impedance.ExternalZoMatch);
  t.Put("dc term", NameOf(s.TimeDomain.TdDcTerm));
  t.Put("resistance", s.TimeDomain.TdResistance);
  t.Put("window", NameOf(s.TimeDomain.TdWindow));
  t.Put("kaiser", s.TimeDomain.TdKaiserOrder);
  t.Put("T1", s.TimeDomain.TdT1);
  t.Put("T2", s.TimeDomain.TdT2);
  t.Put("dT", s.TimeDomain.TdStep);
}

void ReadPicture(Teller& t, const Session& s) {
  t.Put("markers", s.Display.MarkersOn);
  int onMemory = 0;
  for (int m = 0; m < 4; ++m) {
    const std::string name = "marker " + std::to_string(m + 1) + ".";
    t.Put(name + "shown", s.Markers.Set(m).Shown);
    t.Put(name + "ref", s.Markers.Set(m).IsRef);
    t.Put(name + "active", s.Markers.Set(m).IsActive);
    t.Put(name + "set", s.Markers.Set(m).Point);
    for (int g = 0; g < 4; ++g)
      t.Put(name + "point " + std::to_string(g + 1), s.Markers.Of(g, m).Point);
    for (int g = 0; g < 4; ++g)
      if (s.Markers.Of(g, m).Trace == MarkerTrace::Memory) onMemory += 1 << (4 * g + m);
  }
  t.Put("markers on memory", onMemory);
  for (int n = 1; n <= 4; ++n) {
    t.Put("show limits " + std::to_string(n), s.Limits.Of(n).Show);
    t.Put("limits applied " + std::to_string(n), s.Limits.Of(n).Applied);
  }
  t.Put("enable limits", s.Limits.Enabled);
  t.Put("alarm", s.Limits.Alarm);
  int i = 0;
  for (const std::uint32_t rgb :
       {s.Colour.BackColour, s.Colour.GridColour, s.Colour.DataColour, s.Colour.MemoryColour,
        s.Colour.TextColour, s.Colour.OutlineColour, s.Colour.LimitColour}) {
    const std::uint32_t red = rgb / 65536, green = rgb / 256 % 256, blue = rgb % 256;
    t.Put("colour " + std::to_string(i++), static_cast<int>(red + 256 * green + 65536 * blue));
  }
  t.Put("print defaults", s.Print.PrintDefaultColours);
  t.Put("label date", s.Label.Date);
  t.Put("label status", s.Label.Status);
  t.Put("label show", s.Label.Show);
  for (std::size_t label = 0; label < 5; ++label)
    t.Put("label " + std::to_string(label), s.Label.GraphicsLabels[label]);
}

void ReadArrays(Teller& t, const Session& s) {
  const int n = s.Plan.NumPoints;
  for (const CalArray& array : CalArrays()) {
    const std::string name(array.Name);
    t.Array(name, array.In(s.Terms), n);
    t.Array("saved " + name, array.In(s.SavedTerms), s.Plan.SavedPlan.NumPoints);
  }
  t.Array("S11", s.Data.S11, n);
  t.Array("S21", s.Data.S21, n);
  t.Array("S12", s.Data.S12, n);
  t.Array("S22", s.Data.S22, n);
  t.Array("zo S11", s.MemoryZoSet.S11, n);
  t.Array("zo S21", s.MemoryZoSet.S21, n);
  t.Array("zo S12", s.MemoryZoSet.S12, n);
  t.Array("zo S22", s.MemoryZoSet.S22, n);
  for (int c = 1; c <= 4; ++c)
    ReadChannel(t, s.Channel(c), "channel " + std::to_string(c) + ".", n);
}

int Run(const std::string& folder, int count) {
  for (int seed = 1; seed <= count; ++seed) {
    const auto session = test::AnySession(static_cast<unsigned>(seed));
    if (seed % 2 == 0) test::Extend(*session, static_cast<unsigned>(seed));
    const std::string path = folder + "/" + std::to_string(seed);
    if (!SaveSession(path + ".cal", *session)) return 1;
    Teller teller(path + ".fields");
    ReadPlanAndCal(teller, *session);
    ReadDisplay(teller, *session);
    ReadPicture(teller, *session);
    ReadKit(teller, "kit 1", session->Kit1);
    ReadThru(teller, session->Kit1);
    ReadKit(teller, "kit 2", session->Kit2);
    ReadArrays(teller, *session);
    teller.Put("extended", seed % 2 == 0);
    if (seed % 2 == 0) ReadExtension(teller, *session);
  }
  return 0;
}

}  // namespace
}  // namespace qk

int main(int argc, char** argv) {
  return argc == 3 ? qk::Run(argv[1], std::atoi(argv[2])) : 2;
}
