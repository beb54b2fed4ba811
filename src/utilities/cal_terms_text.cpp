// SPDX-License-Identifier: MIT
#include "utilities/cal_terms_text.h"

#include <array>

#include "core/text.h"

namespace qk {

namespace {
constexpr const char* kHead =
    "Key: Real and imaginary components, terms marked ' are reverse terms\r\n"
    "ED = Forward directivity \r\n"
    "ERT = Forward reflection tracking\r\n"
    "ES = Forward source match\r\n"
    "EX = Forward isolation\r\n"
    "ETT = Forward transmission tracking\r\n"
    "EL = Forward load match\r\n"
    "EDr EDi   ERTr  ERTi  ESr  ESi  EXr  EXi  ETTr  ETTi  ELr  ELi EDr' EDi'   ERTr'  ERTi'  "
    "ESr'  ESi'  EXr'  EXi'  ETTr'  ETTi'  ELr'  ELi'\r\n";

// The print list format of a number: a leading blank unless negative, and one after it.
std::string Printed(double value) {
  const std::string text = PlainNumber(value);
  return (text.front() == '-' ? "" : " ") + text + " ";
}
}  // namespace

std::string CalTermsText(const ErrorTerms& terms, int numPoints) {
  std::string text = kHead;
  for (int i = 0; i < numPoints; ++i) {
    for (const PortTerms* side : {&terms.Forward, &terms.Reverse})
      for (const ComplexArray* term :
           {&side->ED, &side->ERT, &side->ES, &side->EX, &side->ETT, &side->EL})
        text += Printed((*term)[i].re) + Printed((*term)[i].im);
    text += "\r\n";
  }
  return text;
}

}  // namespace qk
