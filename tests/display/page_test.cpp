// SPDX-License-Identifier: MIT
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
  ExpectPlace(PlaceOnPage({5000, 5000}, {1000, 1000}), {0, 400, 4600, 5000});
}

TEST(Page, TheHeightCountsWhenItAllowsLess) {
  ExpectPlace(PlaceOnPage({9000, 3300}, {1000, 700}), {0, 700 - 620, 4600, 3300});
}

TEST(Page, NothingIsCutOffWhateverThePage) {
  // 2331 of 2000 pixels in its place: it is placed higher, in the same size.
  ExpectPlace(PlaceOnPage({3000, 2000}, {820, 620}), {0, 289, 2263, 2000});
  // 1.5 times is rounded up to 2, less 8 percent: more than the page holds.
  ExpectPlace(PlaceOnPage({1600, 1050}, {1000, 700}), {0, 0, 1500, 1050});
  for (int width = 900; width < 20000; width += 337)
    for (int height = 900; height < 20000; height += 491) {
      const auto place = PlaceOnPage({width, height}, {820, 620});
      if (!place) continue;
      EXPECT_GE(place->top, 0);
      EXPECT_LE(place->right, width) << width << " " << height;
      EXPECT_LE(place->bottom, height) << width << " " << height;
      EXPECT_NEAR((place->right - place->left) / 820.0, (place->bottom - place->top) / 620.0,
                  0.002);
    }
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
