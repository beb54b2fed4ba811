// SPDX-License-Identifier: MIT
// Number and text forms of the program: number pictures ("#0.00"), bare numbers, print zones, and
// the lenient reading of numbers that a user typed. The locale is never asked; the decimal
// separator is always a point.
#pragma once

#include <string>
#include <string_view>

namespace qk {

// value in a number picture: "#" a digit if there is one, "0" a digit always, rounded half away
// from zero; a result of zero has no minus sign. Rounding works on the shortest decimal text of the
// value, so that 1.005, though its binary value lies just below, is "1.01" in "#0.00": what a user
// typed is what is rounded. Exponent forms: "#0.0E+00" (one digit before the point, the sign always
// shown) and "0.0000E-00" (the sign only when negative); two exponent digits at least. Infinities
// and NaN print as "0" in the picture.
std::string FormatNumber(double value, std::string_view picture);

// The shortest digits that read back to the same value: plain from 1e-5 to below 1e15, with an
// exponent ("1E-11", "2.5E+15") outside. What is not finite has no such text and is "0".
std::string PlainNumber(double value);
std::string PlainNumber(float value);

// A whole number as print and "&" turn it to text: one leading blank when not negative.
std::string WholeNumberText(long value);

// The number in the leading digits of a typed text: leading blanks are skipped, then an optional
// sign, digits, point, digits, exponent; 0 when there are none. "3,5" is 3. Overlong exponents end
// at the largest double, never at infinity.
double Val(std::string_view text);

// A whole text as one number, blanks around it allowed; false (and out unchanged) when anything
// else stands in it or when it is too large for a double.
bool ParseNumber(std::string_view text, double& out);

// The text with the letters A to Z in lower case; all others stay.
std::string AsciiLower(std::string_view text);

// Appends item to line at the next print zone: zones begin at multiples of 14 columns. An empty
// line takes the item at its first column; a line that fills its zone to the last column or beyond
// is padded to the zone after. Columns are characters of UTF-8.
std::string NextZone(std::string line, std::string_view item);

}  // namespace qk
