// SPDX-License-Identifier: MIT
#include "source_texts.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string_view>

namespace qk::test {

namespace {

// What may be between two literals of a statement, as wide as the widest number shown.
constexpr const char* kValue = "-3080.0400";
// A statement longer than this is a table, not a message.
constexpr std::size_t kLongestMessage = 400;

// Tool tips are no messages: the toolkit wraps them.
constexpr std::string_view kTip = ".Tip(";

// A literal that goes on in a value, or follows one: "Point " + N + " of".
bool IsPiece(const std::string& literal) {
  constexpr std::string_view kJoints = " (\n/\"";
  return !literal.empty() && (kJoints.find(literal.front()) != std::string_view::npos ||
                              kJoints.find(literal.back()) != std::string_view::npos);
}

class Reader {
 public:
  explicit Reader(const std::string& source) : source_(source) {}

  std::vector<std::string> Texts() {
    while (at_ < source_.size()) Step();
    EndStatement();
    return std::move(texts_);
  }

 private:
  void Step() {
    const char c = source_[at_];
    if (source_.compare(at_, 2, "//") == 0) {
      at_ = std::min(source_.find('\n', at_), source_.size());
    } else if (source_.compare(at_, 8, "#include") == 0) {
      at_ = std::min(source_.find('\n', at_), source_.size());
    } else if (c == '\'') {
      at_ = source_[std::min(at_ + 1, source_.size() - 1)] == '\\' ? at_ + 4 : at_ + 3;
    } else if (c == '"') {
      TakeLiteral();
    } else if (source_.compare(at_, kTip.size(), kTip) == 0) {
      inTip_ = true;
      at_ += kTip.size();
    } else {
      if (c == ')') inTip_ = false;
      if (c == ';') EndStatement();
      if (c == '{' || c == '}') EndStatement();
      if (c != ' ' && c != '\n' && c != '\t') apart_ = true;
      ++at_;
    }
  }

  void TakeLiteral() {
    std::string text;
    for (++at_; at_ < source_.size() && source_[at_] != '"'; ++at_) {
      if (source_[at_] != '\\') {
        text += source_[at_];
      } else {
        ++at_;
        text += source_[at_] == 'n' ? '\n' : source_[at_];
      }
    }
    ++at_;
    if (inTip_) return;
    if (apart_ || literals_.empty())
      literals_.push_back(text);
    else
      literals_.back() += text;
    apart_ = false;
  }

  void EndStatement() {
    std::string joined;
    for (const std::string& literal : literals_) {
      if (literal.find(' ') != std::string::npos) texts_.push_back(literal);
      if (!joined.empty()) joined += kValue;
      joined += literal;
    }
    if (std::ranges::any_of(literals_, IsPiece) && joined.size() < kLongestMessage)
      texts_.push_back(joined);
    literals_.clear();
  }

  const std::string& source_;
  std::size_t at_ = 0;
  bool inTip_ = false;
  bool apart_ = true;  // something but blanks came since the last literal
  std::vector<std::string> literals_;
  std::vector<std::string> texts_;
};

}  // namespace

std::vector<std::string> TextsIn(const std::string& source) {
  return Reader(source).Texts();
}

std::vector<std::string> TextsOfTheProgram() {
  // The skins above put up no message of their own; what remote control says goes to its clients.
  static const std::set<std::string> kSkins = {"ui", "console", "scpi", "app"};
  std::set<std::string> texts;
  const std::filesystem::path root = std::filesystem::path(QK_SOURCE_DIR) / "src";
  for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
    const std::string suffix = entry.path().extension().string();
    const std::string folder = std::filesystem::relative(entry.path(), root).begin()->string();
    if ((suffix != ".cpp" && suffix != ".h") || kSkins.contains(folder)) continue;
    std::ifstream file(entry.path());
    const std::string source{std::istreambuf_iterator<char>(file), {}};
    for (std::string& text : TextsIn(source)) texts.insert(std::move(text));
  }
  return {texts.begin(), texts.end()};
}

}  // namespace qk::test
