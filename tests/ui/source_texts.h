// SPDX-License-Identifier: MIT
// Every text that the program can show, as its own sources state them: string literals, and the
// statements that join several with values between them. It grows with the sources.
#pragma once

#include <string>
#include <vector>

namespace qk::test {

// The texts in C++ source, in order: each literal of several words, adjacent literals as one; and
// each statement of more than one literal as one text, a value standing between its literals.
std::vector<std::string> TextsIn(const std::string& source);

// The texts of all files under the source folder's parts that put up messages, each once.
std::vector<std::string> TextsOfTheProgram();

}  // namespace qk::test
