#include "display/page.h"

#include <gtest/gtest.h>

namespace qk {
namespace {

void ExpectPlace(const std::optional<Rect>& place, const Rect& told) {
  ASSERT_TRUE(place.has_value());
  EXPECT_EQ(place->left, told.left);
  EXPECT_EQ(place->top, told.top);
  EXPECT_EQ(place->right, told.right);
  EXPECT_EQ(place->bottom, told.bottom);
}

TEST(Page, APortraitPageTakesThePictureAWholeNumberOfTimesLess5Percent) {
  // 9600 / 1000 is rounded up to 10.
  ExpectPlace(PlaceOnPage({9600, 14000}, {1000, 700}), {0, 700, 9500, 700 + 6650});
}

TEST(Page, ALandscapePageTakes8PercentOff) {
  // The height allows 13.4 times: 13.
  ExpectPlace(PlaceOnPage({14000, 9400}, {1000, 700}), {0, 700, 11960, 700 + 8372});
}

TEST(Page, ASquarePageIsLandscape) {
  ExpectPlace(PlaceOnPage({5000, 5000}, {1000, 1000}), {0, 1000, 4600, 5600});
}

TEST(Page, TheHeightCountsWhenItAllowsLess) {
  ExpectPlace(PlaceOnPage({9000, 2600}, {1000, 700}), {0, 700, 3680, 700 + 2576});
}

TEST(Page, APageThatIsNotLargerThanThePictureStaysEmpty) {
  EXPECT_FALSE(PlaceOnPage({1400, 2000}, {1000, 700}).has_value());
  EXPECT_FALSE(PlaceOnPage({500, 300}, {1000, 700}).has_value());
  EXPECT_FALSE(PlaceOnPage({0, 0}, {0, 0}).has_value());
  EXPECT_TRUE(PlaceOnPage({1500, 2100}, {1000, 700}).has_value());
}

TEST(Page, AWindowIsFittedIntoFourFifthsInTheMiddle) {
  ExpectPlace(FitOnPage({1000, 2000}, {400, 400}), {100, 600, 900, 1400});
  ExpectPlace(FitOnPage({2000, 1000}, {400, 400}), {600, 100, 1400, 900});
  ExpectPlace(FitOnPage({1000, 1000}, {4000, 2000}), {100, 300, 900, 700});
}

}  // namespace
}  // namespace qk
