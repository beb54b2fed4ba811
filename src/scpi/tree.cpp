// SPDX-License-Identifier: MIT
#include "scpi/tree.h"

#include <algorithm>
#include <charconv>
#include <set>
#include <stdexcept>

#include "core/characters.h"
#include "scpi/lexer.h"

namespace qk::scpi {

namespace {

bool IsLower(char c) {
  return c >= 'a' && c <= 'z';
}

[[noreturn]] void Malformed(std::string_view pattern) {
  throw std::logic_error("malformed header " + std::string(pattern));
}

// A received mnemonic, split into name and suffix.
struct Mnemonic {
  std::string_view Name;
  std::optional<int> Suffix;
};
Mnemonic Cut(std::string_view text) {
  std::size_t digits = text.size();
  while (digits > 0 && IsDigit(text[digits - 1])) --digits;
  Mnemonic cut{text.substr(0, digits), std::nullopt};
  if (digits == text.size()) return cut;
  int value = 0;
  const auto [end, error] = std::from_chars(text.data() + digits, text.data() + text.size(), value);
  cut.Suffix = error == std::errc() ? value : 0;  // too long for a number: out of range
  return cut;
}

}  // namespace

Tree::Path Tree::Compile(const Row& row) {
  Path path{&row, {}};
  std::string_view rest = row.Pattern;
  while (!rest.empty()) {
    Node node;
    if (rest.starts_with('[')) {
      node.Optional = true;
      rest.remove_prefix(1);
    }
    if (rest.starts_with(':')) rest.remove_prefix(1);
    std::size_t end = rest.find_first_of(":[]");
    if (end == std::string_view::npos) end = rest.size();
    std::string_view name = rest.substr(0, end);
    rest.remove_prefix(end);
    if (node.Optional) {
      if (!rest.starts_with(']')) Malformed(row.Pattern);
      rest.remove_prefix(1);
    }
    if (const std::size_t mark = name.find('#'); mark != std::string_view::npos) {
      const std::string_view number = name.substr(mark + 1);
      std::from_chars(number.data(), number.data() + number.size(), node.Largest);
      if (node.Largest < 1) Malformed(row.Pattern);
      name = name.substr(0, mark);
    }
    if (name.empty()) Malformed(row.Pattern);
    node.Long = name;
    node.Short = name.substr(
        0, static_cast<std::size_t>(std::ranges::find_if(name, IsLower) - name.begin()));
    path.Nodes.push_back(node);
  }
  if (path.Nodes.empty()) Malformed(row.Pattern);
  return path;
}

Tree::Tree(const std::vector<std::span<const Row>>& tables) {
  std::set<std::string> seen;
  for (const std::span<const Row> table : tables) {
    for (const Row& row : table) {
      rows_.push_back(&row);
      paths_.push_back(Compile(row));
      if (!seen.insert(std::string(row.Pattern)).second)
        throw std::logic_error("twice in the tree: " + std::string(row.Pattern));
    }
  }
}

bool Tree::Matches(std::span<const Node> nodes, std::string_view header, Found& found) {
  if (nodes.empty()) return header.empty();
  const Node& node = nodes.front();
  if (!header.empty()) {
    const std::size_t colon = header.find(':');
    const std::string_view text = header.substr(0, colon);
    const std::string_view rest =
        colon == std::string_view::npos ? std::string_view() : header.substr(colon + 1);
    const Mnemonic given = Cut(text);
    const bool named = SameWord(given.Name, node.Short) || SameWord(given.Name, node.Long);
    if (named && (!given.Suffix || node.Largest > 0)) {
      Found deeper = found;
      if (given.Suffix) {
        if (*given.Suffix < 1 || *given.Suffix > node.Largest) deeper.SuffixOutOfRange = true;
        if (node.Largest > 1) deeper.Index = *given.Suffix;
      }
      if (Matches(nodes.subspan(1), rest, deeper)) {
        found = deeper;
        return true;
      }
    }
  }
  return node.Optional && Matches(nodes.subspan(1), header, found);
}

Found Tree::Find(std::string_view header) const {
  for (const Path& path : paths_) {
    Found found;
    found.Which = path.Which;
    if (Matches(path.Nodes, header, found)) return found;
  }
  return {};
}

std::string ShownHeader(std::string_view pattern) {
  std::string shown;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    if (pattern[i] != '#') {
      shown += pattern[i];
      continue;
    }
    const std::size_t first = i + 1;
    while (i + 1 < pattern.size() && IsDigit(pattern[i + 1])) ++i;
    if (pattern.substr(first, i + 1 - first) != "1") shown += "<n>";
  }
  return shown;
}

std::string HeaderList(const Tree& tree) {
  std::string list;
  for (const Row* row : tree.Rows()) {
    if (!row->Pattern.starts_with('*')) list += row->Pattern.starts_with('[') ? "" : ":";
    list += ShownHeader(row->Pattern);
    if (row->Set == nullptr) list += "?/qonly/";
    if (row->Query == nullptr) list += "/nquery/";
    list += '\n';
  }
  return list;
}

namespace {
// A vertical bar would end the table cell.
std::string Cell(std::string_view text) {
  std::string cell;
  for (const char c : text) {
    if (c == '|') cell += '\\';
    cell += c;
  }
  return cell;
}

// A header with its question mark, in brackets if it is optional.
std::string FullHeader(const Row& row) {
  std::string header = ShownHeader(row.Pattern);
  if (row.Query != nullptr) header += row.Set != nullptr ? "[?]" : "?";
  return header;
}

std::string Code(std::string_view text) {
  return text.empty() ? std::string() : "`" + Cell(text) + "`";
}
}  // namespace

std::string ManualTable(const Tree& tree) {
  std::string table = "| Command | Parameters | What it does |\n|---|---|---|\n";
  for (const Row* row : tree.Rows()) {
    std::string parameters = Code(row->Takes);
    if (!row->Asks.empty()) parameters += (parameters.empty() ? "" : "; ?: ") + Code(row->Asks);
    table += "| " + Code(FullHeader(*row)) + " | " + parameters + " | " + Cell(row->Help) + " |\n";
  }
  return table;
}

}  // namespace qk::scpi
