// SPDX-License-Identifier: MIT
#include "core/vocabulary.h"

#include <gtest/gtest.h>

#include <set>

namespace qk {
namespace {

template <class Word>
class Vocabulary : public testing::Test {};
using Words = testing::Types<Parameter, GraphType, Unit, DisplaySet, DisplayMode, MemoryFunction,
                             MemoryHold, PlaneUnit, TdWindow, TdDcTerm>;
TYPED_TEST_SUITE(Vocabulary, Words);

TYPED_TEST(Vocabulary, EveryNameIsThatOfOneWord) {
  const std::vector<std::string> names = NamesOf<TypeParam>();
  EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), names.size());
  for (const std::string& name : names) {
    ASSERT_TRUE(Named<TypeParam>(name)) << name;
    EXPECT_EQ(NameOf(*Named<TypeParam>(name)), name);
  }
}

TYPED_TEST(Vocabulary, ANameWithAnyCharacterChangedIsNone) {
  for (const std::string& name : NamesOf<TypeParam>()) {
    EXPECT_FALSE(Named<TypeParam>(name + " "));
    for (std::size_t i = 0; i < name.size(); ++i) {
      std::string other = name;
      other[i] = '~';
      EXPECT_FALSE(Named<TypeParam>(other)) << other;
    }
  }
}

TEST(Vocabulary, ListsStandInTheOrderThatWindowsAndFilesUse) {
  using Texts = std::vector<std::string>;
  EXPECT_EQ(NamesOf<Parameter>(), (Texts{"S11", "S21", "S12", "S22"}));
  EXPECT_EQ(NamesOf<GraphType>(),
            (Texts{"LogMag", "Phase", "Smith", "SWR", "Group Delay", "LinMag", "Real", "Imag", "TD",
                   "|Z|", "R", "X", "L", "C", "Q", "Unwrapped Phase", "TD Z"}));
  EXPECT_EQ(NamesOf<Unit>(), (Texts{"ps", "ns", "us", "U", "mU", "dB", "deg", "mohm", "ohm", "kohm",
                                    "Mohm", "nH", "uH", "mH", "pF", "nF", "uF"}));
  EXPECT_EQ(NameOf(GraphType::Td), "TD");  // enumerators and rows agree at the far end
  EXPECT_EQ(NameOf(Unit::Deg), "deg");
  EXPECT_EQ(NameOf(GraphType::TdImpedance), "TD Z");
  EXPECT_EQ(NameOf(Unit::MicroFarad), "uF");
  EXPECT_EQ(NameOf(Cable::Own), "Own");
  EXPECT_EQ(NameOf(GateKind::Notch), "Notch");
  EXPECT_EQ(NameOf(DisplaySet::ThreeFour), "three-four");
  EXPECT_EQ(NameOf(DisplayMode::MemoryMath), "Memory+");
}

TEST(Vocabulary, AGraphTypesNaturalUnitIsOfItsFamily) {
  for (const GraphTypeRow& row : kGraphTypes) {
    ASSERT_EQ(row.NaturalUnit.has_value(), row.Family.has_value()) << row.Name;
    if (row.NaturalUnit) {
      EXPECT_EQ(RowOf(*row.NaturalUnit).Family, *row.Family) << row.Name;
    }
    EXPECT_EQ(row.Formula != nullptr, row.Form == PointForm::Quantity) << row.Name;
  }
}

}  // namespace
}  // namespace qk
