// SPDX-License-Identifier: MIT
#include "utilities/cal_terms_text.h"

#include <gtest/gtest.h>

#include <sstream>

namespace qk::test {
namespace {

TEST(CalTermsText, HoldsKeyHeaderAndALineOf24ValuesAPoint) {
  auto session = MakeSession();
  ErrorTerms& terms = session->Terms;
  int n = 0;
  for (PortTerms* side : {&terms.Forward, &terms.Reverse})
    for (ComplexArray* array : {&side->ED, &side->ERT, &side->ES, &side->EX, &side->ETT, &side->EL})
      for (int i = 0; i < 2; ++i) {
        array->Set(i, {100.0 * i + n, -0.5 - n});
        if (i == 1) ++n;
      }
  EXPECT_EQ(CalTermsText(terms, 2),
            "Key: Real and imaginary components, terms marked ' are reverse terms\r\n"
            "ED = Forward directivity \r\n"
            "ERT = Forward reflection tracking\r\n"
            "ES = Forward source match\r\n"
            "EX = Forward isolation\r\n"
            "ETT = Forward transmission tracking\r\n"
            "EL = Forward load match\r\n"
            "EDr EDi   ERTr  ERTi  ESr  ESi  EXr  EXi  ETTr  ETTi  ELr  ELi EDr' EDi'   ERTr'  "
            "ERTi'  ESr'  ESi'  EXr'  EXi'  ETTr'  ETTi'  ELr'  ELi'\r\n"
            " 0 -0.5  1 -1.5  2 -2.5  3 -3.5  4 -4.5  5 -5.5  6 -6.5  7 -7.5  8 -8.5  9 -9.5  10 "
            "-10.5  11 -11.5 \r\n"
            " 100 -0.5  101 -1.5  102 -2.5  103 -3.5  104 -4.5  105 -5.5  106 -6.5  107 -7.5  108 "
            "-8.5  109 -9.5  110 -10.5  111 -11.5 \r\n");
}

TEST(CalTermsText, KeepsEveryDigit) {
  auto session = MakeSession();
  session->Terms.Forward.ED.Set(0, {1.0 / 3, 1e-12});
  std::istringstream text(CalTermsText(session->Terms, 1));
  std::string line;
  for (int i = 0; i < 9; ++i) std::getline(text, line);
  EXPECT_TRUE(line.starts_with(" 0.3333333333333333  1E-12 ")) << line;
}

}  // namespace
}  // namespace qk::test
