#include "sim/synthesiser.h"

#include "sim/bench_fixture.h"

namespace qk::sim::test {
namespace {

// 20 MHz, worked out by hand. Loop A: 3.075 GHz / 0.25 MHz = 12300 = 32 * 384 + 12; loop B: 12380 =
// 32 * 386 + 28, 80 above it, so the reference is 280 * 20 MHz / 80 = 70 MHz = 751619277 in the
// DDS. Loop C: 3.0744 GHz / 0.25 MHz = 12297.6, 12298 = 32 * 384 + 10; loop D: 3.09535 GHz gives
// 12381.4, 12381 = 32 * 386 + 29, 83 above C: reference 280 * 20.95 MHz / 83 = 70.6746988 MHz =
// 758863800 in the DDS. Loop C stands at 3104.1 MHz and so has its gain bit set, the others are
// below.
constexpr Record kTwentyMegahertz = {0x2C, 0xCC, 0xCC, 0xCD, 0x2D, 0x3B, 0x57, 0xB8,
                                     0x01, 0x80, 0x31, 0x01, 0x82, 0x71, 27,   0x21,
                                     0x80, 0x29, 0x01, 0x82, 0x75, 24};

TEST(Synthesiser, DecodesTheHandWorkedRecordOfTwentyMegahertz) {
  const Decoded d = DecodeRecord(kTwentyMegahertz.data());
  EXPECT_EQ(d.Fault, "");
  ASSERT_TRUE(d.Locked);
  EXPECT_EQ(d.A.N, 12300);
  EXPECT_EQ(d.B.N, 12380);
  EXPECT_EQ(d.C.N, 12298);
  EXPECT_EQ(d.D.N, 12381);
  EXPECT_NEAR(d.Reference1Hz, 70e6, 0.1);
  EXPECT_NEAR(d.SourceHz, 20e6, 1);
  EXPECT_NEAR(d.LoHz, 20.95e6, 1);
  EXPECT_EQ(d.LevelCode, 27);
  EXPECT_EQ(d.ReceiverCode, 24);
}

TEST(Synthesiser, DecodesEveryFrequencyOfTheRangeBackToItself) {
  for (double f = 3e6; f <= 3.08e9; f += 1'237'700) {
    const Record record = RecordFor(f);
    const Decoded d = DecodeRecord(record.data());
    ASSERT_TRUE(d.Locked) << f << " " << d.Fault;
    ASSERT_NEAR(d.SourceHz, f, 5) << f;
    ASSERT_NEAR(d.LoHz, f + 950e3, 10) << f;
  }
}

TEST(Synthesiser, LocksAtTheEdgesOfTheBands) {
  for (double f : {3e6, 799.9999e6, 8e8, 1.5999999e9, 1.6e9, 3.08e9}) {
    const Record record = RecordFor(f);
    EXPECT_TRUE(DecodeRecord(record.data()).Locked) << f;
  }
}

}  // namespace
}  // namespace qk::sim::test
