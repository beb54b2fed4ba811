// SPDX-License-Identifier: MIT
#include "forms/iso_method.h"

#include <gtest/gtest.h>

#include "support/program_fixture.h"

namespace qk::test {
namespace {

Texts TextsIn(const RecordingCanvas& canvas) {
  Texts texts;
  for (const Drawn& item : canvas.Items)
    if (item.What == Drawn::Kind::Text) texts.push_back(item.Text);
  return texts;
}

Texts SchemeOf(ScriptedProgram& vna, const char* picture) {
  RecordingCanvas canvas({220, 200});
  vna.At(picture).Draw(canvas);
  return TextsIn(canvas);
}

TEST(IsoMethod, EachMethodIsReportedInWordsAndByWhatStandsOnThePorts) {
  ScriptedProgram vna;
  EXPECT_EQ(vna.At("IsoMethod.Label1").Caption, "Single step, basic (part of load calibration)");
  EXPECT_EQ(vna.At("IsoMethod.Label2").Caption, "One sweep with the device on both ports");
  EXPECT_EQ(vna.At("IsoMethod.Label3").Caption,
            "Two sweeps, the device on each port in turn and a load on the other");
  EXPECT_EQ(SchemeOf(vna, "IsoMethod.Picture1"), (Texts{"Port 1", "Port 2", "Load", "Load"}));
  EXPECT_EQ(SchemeOf(vna, "IsoMethod.Picture2"), (Texts{"Port 1", "Port 2", "DUT", "DUT"}));
  EXPECT_EQ(SchemeOf(vna, "IsoMethod.Picture3"), (Texts{"Port 1", "Port 2", "DUT", "Load", "1.",
                                                        "Port 1", "Port 2", "Load", "DUT", "2."}));
}

TEST(IsoMethod, ASchemeStandsWithinItsPictureWhateverItsSize) {
  for (const Extent size : {Extent{160, 140}, Extent{220, 200}, Extent{600, 400}}) {
    RecordingCanvas canvas(size);
    DrawPortSchemes(canvas, {{"DUT", "Load"}, {"Load", "DUT"}});
    for (const Drawn& item : canvas.Items)
      for (const CanvasPoint& point : item.Points) {
        EXPECT_TRUE(point.x >= 0 && point.x <= size.width) << point.x << " of " << size.width;
        EXPECT_TRUE(point.y >= 0 && point.y <= size.height) << point.y << " of " << size.height;
      }
  }
}

}  // namespace
}  // namespace qk::test
