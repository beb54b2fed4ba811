#include "trace/graph_type.h"

#include <gtest/gtest.h>

#include <string>

namespace qk {
namespace {

TEST(GraphType, EveryNameHasItsKind) {
  EXPECT_EQ(GraphKindOf("LogMag"), GraphKind::LogMag);
  EXPECT_EQ(GraphKindOf("Phase"), GraphKind::Phase);
  EXPECT_EQ(GraphKindOf("Smith"), GraphKind::Smith);
  EXPECT_EQ(GraphKindOf("SWR"), GraphKind::Swr);
  EXPECT_EQ(GraphKindOf("Group Delay"), GraphKind::GroupDelay);
  EXPECT_EQ(GraphKindOf("LinMag"), GraphKind::LinMag);
  EXPECT_EQ(GraphKindOf("Real"), GraphKind::Real);
  EXPECT_EQ(GraphKindOf("Imag"), GraphKind::Imag);
  EXPECT_EQ(GraphKindOf("TD"), GraphKind::Td);
}

TEST(GraphType, ANameWithAnyCharacterChangedIsUnknown) {
  for (const std::string name :
       {"LogMag", "Phase", "Smith", "SWR", "Group Delay", "LinMag", "Real", "Imag", "TD"}) {
    for (std::size_t i = 0; i < name.size(); ++i) {
      std::string other = name;
      other[i] = '#';
      EXPECT_EQ(GraphKindOf(other), GraphKind::Unknown) << other;
    }
    EXPECT_EQ(GraphKindOf(name + " "), GraphKind::Unknown);
    EXPECT_EQ(GraphKindOf(name.substr(1)), GraphKind::Unknown);
  }
  EXPECT_EQ(GraphKindOf(""), GraphKind::Unknown);
}

}  // namespace
}  // namespace qk
