// SPDX-License-Identifier: MIT
// The vocabulary of the text front panel: names of icons, buttons and control kinds, escaped line
// breaks, numbers with 17 significant digits, and splitting a command into words.
#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/form.h"
#include "core/host.h"

namespace qk::console {

std::string_view IconWord(Icon icon);           // "none" ... "critical"
std::string_view ButtonsWord(Buttons buttons);  // "ok", "ok/cancel", "yes/no", "retry/cancel"
std::string_view DialogWord(DialogKind kind);   // "open", "save", "colour", "print"
std::string_view KindWord(ControlKind kind);    // "Label", "TextField", ...
std::optional<Answer> AnswerOf(std::string_view word);
bool Offers(Buttons buttons, Answer answer);

// Text on one line: a line break (CR LF, LF or CR) becomes \n.
std::string OneLine(std::string_view text);
// 17 significant digits, so that the value reads back the same.
std::string Digits17(double value);
// "INDEX VALUE...", each value with 17 digits.
std::string IndexedLine(int index, std::initializer_list<double> values);

// The first word of line; rest is everything after the single blank that follows it, unchanged.
std::string_view FirstWord(std::string_view line, std::string_view& rest);
// The words separated by blanks and tabs.
std::vector<std::string_view> Words(std::string_view line);
// Parses a whole word as an integer; empty if it contains anything else.
std::optional<long> WholeNumber(std::string_view word);

}  // namespace qk::console
