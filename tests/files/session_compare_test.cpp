// SPDX-License-Identifier: MIT
// Two sessions compared as text.
#include "files/session_compare.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <type_traits>
#include <vector>

#include "files/session_file.h"
#include "files/session_rows.h"

namespace qk {
namespace {

struct Comparison : testing::Test {
  std::unique_ptr<Session> one = MakeSession(), other = MakeSession();
  std::string Text() { return CompareSessions(*one, "a.cal", *other, "b.cal"); }
  static constexpr const char* kHead = "--- a.cal\n+++ b.cal\n";
};

TEST_F(Comparison, OfEqualSessionsSaysSo) {
  EXPECT_EQ(Text(), std::string(kHead) + "No differences.\n");
}

TEST_F(Comparison, NamesEachSettingWithBothValues) {
  other->Averaging.AveragesSet = 16;
  other->Channel(2).Parameter = Parameter::S21;
  EXPECT_EQ(Text(), std::string(kHead) + "Averages\n- 1\n+ 16\nCH2 parameter\n- S11\n+ S21\n");
}

TEST_F(Comparison, OfArraysTheLargestDifferenceIsReported) {
  other->Terms.Forward.ED.Set(10, {0.25, 0});
  other->Terms.Forward.ED.Set(50, {0, -0.5});
  other->Channel(3).UpperLimit[1] = 7;
  one->Channel(3).UpperLimit[1] = 5;
  EXPECT_EQ(Text(), std::string(kHead) +
                        "Error term ED\n  largest difference 0.5 at 1501.5 MHz\n"
                        "CH3 upper limit\n  largest difference 2 at 3 MHz\n");
}

TEST_F(Comparison, OfMemoriesThoseThatBothHoldAreCompared) {
  other->MemoryZoSet.S11.Set(3, {0.2, 0});
  other->Channel(2).MemoryRe[4] = 0.2;
  other->MoreMemories[1].ZoSet.S21.Set(3, {6e-18, 0});
  other->MoreMemories[1].OfChannels[3].Im[7] = 0.5;
  EXPECT_EQ(Text(), std::string(kHead) + "No differences.\n") << "all memories are empty";
  for (Session* session : {one.get(), other.get()}) {
    session->Channel(2).MemoryValid = true;
    session->MoreMemories[1].OfChannels[3].Valid = true;
  }
  const std::string text = Text();
  EXPECT_NE(text.find("Memory 1 S11\n  largest difference 0.199999 "), std::string::npos) << text;
  EXPECT_NE(text.find("Memory 1 trace of CH2\n  largest difference 0.2 "), std::string::npos);
  EXPECT_NE(text.find("Memory 3 S21\n  largest difference 1E-06"), std::string::npos);
  EXPECT_NE(text.find("Memory 3 trace of CH4\n  largest difference 0.5 "), std::string::npos);
  other->Channel(2).MemoryValid = false;
  EXPECT_EQ(Text().find("Memory 1 S11\n"), std::string::npos);
  EXPECT_EQ(Text().find("Memory 1 trace of CH2\n  largest"), std::string::npos);
}

TEST_F(Comparison, OfTwoSweepsNoPointsAreCompared) {
  other->Plan.StartFreq = 6e6;
  other->Terms.Forward.ED.Set(10, {0.25, 0});
  EXPECT_NE(Text().find("Sweep\n- 3 MHz to 3000 MHz, 101 points, step 29.97 MHz\n+ 6 MHz to"),
            std::string::npos);
  EXPECT_NE(Text().find("are not compared: the sweeps differ\n"), std::string::npos);
  EXPECT_EQ(Text().find("Error term ED"), std::string::npos);
}

TEST_F(Comparison, ATextFromAFileNeverBreaksItsLine) {
  other->Kit1.KitName = "a\n+ b";
  EXPECT_NE(Text().find("Kit 1 name\n- Default\n+ a + b\n"), std::string::npos);
}

TEST_F(Comparison, EveryFactHasANameOfItsOwn) {
  std::set<std::string> names;
  for (const Fact& fact : SessionFacts(*one))
    EXPECT_TRUE(names.insert(fact.Name).second) << fact.Name;
}

// Walks the rows of a session file and changes one of their fields, the one of that number.
class FieldChanger {
 public:
  explicit FieldChanger(std::size_t number) : number_(number) {}

  // Asked before each row of a table or point of a trace: two of each are enough.
  bool Good() { return ++asked_ % 3 != 0; }
  void Header(std::string_view) {}
  void Needs(std::string_view, const Session&) {}
  void Require(bool, std::string_view) {}
  void Grid(const PlanGrid&) {}
  template <class... Fields>
  void Line(Fields&&... fields) {
    (Visit(fields), ...);
  }

  bool Changed() const { return at_ != nullptr; }
  const void* At() const { return at_; }  // the changed field

 private:
  template <class T>
  void Change(T& value) {
    if (next_++ != number_) return;
    at_ = &value;
    if constexpr (std::is_same_v<T, bool>)
      value = !value;
    else if constexpr (std::is_same_v<T, std::string>)
      value += "x";
    else if constexpr (std::is_enum_v<T>)
      value = static_cast<T>(static_cast<int>(value) == 0 ? 1 : 0);
    else
      value += 1;
  }
  template <class T>
  void Visit(T& plain) {
    Change(plain);
  }
  template <class Word>
  void Visit(std::optional<Word>& word) {
    if (next_++ != number_) return;
    at_ = &word;
    word = word == Word{} ? static_cast<Word>(1) : Word{};
  }
  template <class T>
  void Visit(session_rows::Within<T>& field) {
    Change(field.Value);
  }
  template <class T, class List>
  void Visit(session_rows::OneOf<T, List>& field) {
    Change(field.Value);
  }
  template <class T>
  void Visit(session_rows::InMhz<T>& field) {
    Change(field.Hz);
  }
  template <class T>
  void Visit(session_rows::ColourNumber<T>& field) {
    Change(field.Rgb);
  }
  template <class T>
  void Visit(session_rows::Ticked<T>& field) {
    Change(field.Flag);
  }
  template <class Word>
  void Visit(session_rows::PlaceOf<Word>& field) {
    Change(field.Value);
  }
  template <class Mode>
  void Visit(session_rows::KindName<Mode>& field) {
    Change(field.Value);
  }
  void Visit(session_rows::Follows&) {}
  void Visit(session_rows::Spare&) {}

  std::size_t number_, next_ = 0, asked_ = 0;
  const void* at_ = nullptr;
};

bool ChangeField(Session& session, std::size_t number, const void*& at) {
  FieldChanger changer(number);
  session_rows::FirstStep(changer, session);
  session_rows::SecondStep(changer, session);
  session_rows::ThirdStep(changer, session);
  session_rows::FourthStep(changer, session);
  at = changer.At();
  return changer.Changed();
}

// What follows from other fields, or is measured: no setting.
class NoSettings {
 public:
  explicit NoSettings(const Session& s) {
    Add(s.Data);
    Add(s.Averaging.Averages);  // from the switch and the number set
    for (const float* from : {&s.Planes.ActivePlane, &s.Planes.ActiveDelay, &s.Planes.DelayS11,
                              &s.Planes.DelayS21, &s.Planes.DelayS12, &s.Planes.DelayS22})
      Add(*from);
    Add(s.TimeDomain.TdStep);
    for (const ChannelSettings& c : s.Channels) {
      Add(c.Active);  // from the active channel
      for (const auto* values : {&c.Value, &c.Value2}) Add(*values);
      for (const auto* values : {&c.SmoothValue, &c.SmoothValue2, &c.SmoothWork}) Add(*values);
    }
  }
  bool Holds(const void* at) const {
    const auto* byte = static_cast<const std::byte*>(at);
    for (const auto& [begin, end] : ranges_)
      if (!std::less<>()(byte, begin) && std::less<>()(byte, end)) return true;
    return false;
  }

 private:
  template <class T>
  void Add(const T& member) {
    const auto* begin = reinterpret_cast<const std::byte*>(&member);
    ranges_.emplace_back(begin, begin + sizeof(T));
  }
  std::vector<std::pair<const std::byte*, const std::byte*>> ranges_;
};

// A session in which every part that a file may hold is there.
std::unique_ptr<Session> FullSession() {
  auto session = MakeSession();
  session->Plan.NumPoints = session->Plan.SavedPlan.NumPoints = 51;
  for (MemoryBank& bank : session->MoreMemories)
    for (StoredTrace& trace : bank.OfChannels) {
      trace.Valid = true;
      trace.Of = Parameter::S11;
    }
  for (ChannelSettings& channel : session->Channels) {
    channel.MemoryValid = true;
    channel.MemoryParameter = Parameter::S11;
  }
  return session;
}

TEST(Comparisons, EverySettingOfASessionFileIsListedWhenItDiffers) {
  const auto one = FullSession(), other = FullSession();
  const NoSettings exempt(*other);
  const std::string same = CompareSessions(*one, "a", *other, "b");
  EXPECT_NE(same.find("No differences."), std::string::npos);
  const std::string bytes = SessionBytes(*one);
  std::size_t changed = 0, passedOver = 0;
  for (std::size_t number = 0;; ++number) {
    const void* at = nullptr;
    if (!ChangeField(*other, number, at)) break;
    if (exempt.Holds(at)) {
      ++passedOver;
    } else if (CompareSessions(*one, "a", *other, "b") == same) {
      const std::string now = SessionBytes(*other);
      const auto place = std::mismatch(bytes.begin(), bytes.end(), now.begin(), now.end());
      const auto line = std::count(bytes.begin(), place.first, '\n') + 1;
      ADD_FAILURE() << "field " << number << " differs, line " << line << " of the file";
    }
    ++changed;
    *other = *one;
  }
  EXPECT_GT(changed, 500u);
  EXPECT_LT(passedOver, changed / 4);
}

}  // namespace
}  // namespace qk
