// The command set, byte by byte.
#include "sim/bench_fixture.h"

namespace qk::sim::test {
namespace {

TEST(Controller, AnswersASignOfLife) {
  Talker talker;
  EXPECT_EQ(talker.Say("Q"), Bytes{'R'});
}

TEST(Controller, TellsItsModelInTwelveCharacters) {
  Talker talker;
  const Bytes reply = talker.Say("*IDN?");
  ASSERT_EQ(reply.size(), 12u);
  EXPECT_EQ(std::string(reply.begin(), reply.begin() + 10), "QK47-20-09");
}

TEST(Controller, SweepsAllFourParametersIn36BytesAPoint) {
  Talker talker;
  talker.LoadPlan({3e6, 1e9, 3e9});
  EXPECT_EQ(talker.Say("A").size(), 108u);
}

}  // namespace
}  // namespace qk::sim::test
