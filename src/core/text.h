// SPDX-License-Identifier: MIT
// Number and text formats of the program: number pictures ("#0.00"), plain numbers, print zones,
// and the lenient parser for numbers the user typed. Independent of the locale: the decimal
// separator is always a point.
#pragma once

#include <string>
#include <string_view>

namespace qk {

// Formats value with a number picture: "#" is an optional digit, "0" a mandatory digit. Rounds half
// away from zero; a zero result has no minus sign. Rounding uses the shortest decimal text of the
// value, so that a number is rounded as the user typed it: 1.005 is "1.01" in "#0.00", although its
// binary value is slightly smaller. Exponent forms: "#0.0E+00" (one digit before the point, sign
// always shown) and "0.0000E-00" (sign shown only when negative); at least two exponent digits.
// Infinities and NaN print as "0" in the picture.
std::string FormatNumber(double value, std::string_view picture);

// The shortest digits that read back to the same value: plain from 1e-5 to below 1e15, with an
// exponent ("1E-11", "2.5E+15") outside. A value that is not finite is written as "0".
std::string PlainNumber(double value);
std::string PlainNumber(float value);

// A whole number as print and "&" format it: with a leading blank unless it is negative.
std::string WholeNumberText(long value);

// The number at the start of a typed text: skips leading blanks, then reads an optional sign,
// digits, point, digits, exponent. 0 if there are none. "3,5" is 3. An exponent that is too large
// gives the largest double, never infinity.
double Val(std::string_view text);

// Parses a whole text as one number; blanks around it are allowed. Returns false and leaves out
// unchanged if there is anything else, or if the number is too large for a double.
bool ParseNumber(std::string_view text, double& out);

// The text without the blanks and tabs around it.
std::string_view Trimmed(std::string_view text);

// The text with A to Z in lower case; all other characters unchanged.
std::string AsciiLower(std::string_view text);

// Appends item to line at the next print zone. Zones start at multiples of 14 columns. If line is
// empty, item starts at its first column; a line that ends exactly at a zone boundary is padded by
// one whole zone. Columns count UTF-8 characters.
std::string NextZone(std::string line, std::string_view item);

}  // namespace qk
