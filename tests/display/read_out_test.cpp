// SPDX-License-Identifier: MIT
// The value under the cursor, read from the traces as they are drawn.
#include "display/read_out.h"

#include "graphs_fixture.h"

namespace qk::test {
namespace {

struct ReadOut : GraphsFixture {
  ReadOut() {
    graphs.RedrawAll(true);
    Sweep(1, -12.5);
    graphs.RedrawOverlay();
  }
  CanvasPoint At(int index) const {
    return graphs.Trace(0, kDataTrace).Pixel[static_cast<std::size_t>(index)];
  }
};

TEST_F(ReadOut, ReportsChannelFrequencyValueAndUnit) {
  EXPECT_EQ(ReadOutAt(graphs, 50, At(1)), "CH1  3.0000 MHz\n-12.500 dB");
  EXPECT_EQ(ReadOutAt(graphs, 50, At(101)), "CH1  3000.0000 MHz\n-12.500 dB");
}

TEST_F(ReadOut, TakesTheNearestPointWithinTenPixels) {
  const CanvasPoint p = At(51);
  EXPECT_EQ(ReadOutAt(graphs, 50, {p.x + 1, p.y - 9}), ReadOutAt(graphs, 50, p));
  EXPECT_EQ(ReadOutAt(graphs, 50, {p.x, p.y - 11}), std::nullopt);
}

TEST_F(ReadOut, ReadsNothingOfAGraphThatIsNotDisplayed) {
  session->Display.DisplaySet = DisplaySet::ThreeFour;
  const CanvasPoint before = At(51);
  graphs.RedrawAll(true);
  const auto text = ReadOutAt(graphs, 50, before);
  EXPECT_TRUE(!text || text->substr(0, 3) != "CH1");
}

TEST_F(ReadOut, ATimeDomainChannelReportsTheTime) {
  session->Plan.NumPoints = kMaxPoints;
  session->TimeDomain.TdT1 = -1;
  session->TimeDomain.TdStep = 0.01;
  Channel(1).GraphType = GraphType::Td;
  Channel(1).Units = Unit::U;
  graphs.RedrawAll(true);
  Sweep(1, 0.5);
  EXPECT_EQ(ReadOutAt(graphs, 50, At(1)), "CH1  -1.0000 ns\n0.500 U");
  EXPECT_EQ(ReadOutAt(graphs, 50, At(kMaxPoints)), "CH1  9.2300 ns\n0.500 U");
}

TEST_F(ReadOut, ASmithChartReportsTheImpedance) {
  Channel(1).GraphType = GraphType::Smith;
  graphs.RedrawAll(true);
  Sweep(1, 0);  // a perfect load
  const auto text = ReadOutAt(graphs, 75, At(1));
  ASSERT_TRUE(text.has_value());
  EXPECT_NE(text->find("75.000,  0.000 j"), std::string::npos) << *text;
}

}  // namespace
}  // namespace qk::test
