// SPDX-License-Identifier: MIT
// The command tree: one table of rows, each with a header, its set and query functions, and its
// text for the manual. A header pattern uses SCPI notation:
//
//   SENSe#1:AVERage[:STATe]     short form in capitals, optional nodes in brackets
//   CALCulate#1:PARameter#4:DEFine    # and a number: a suffix from 1 to that number may follow
//   *IDN
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qk::scpi {

class Call;

// The reply of a query that fails: a number, an empty string, an empty block, or data in the
// current format.
enum class Fallback { Number, Text, Block, Data };

// The precondition of a command.
enum class Needs {
  Nothing,     // affects only the client: also runs while the user has a message box open
  Program,     // changes the session: refused while the user has a prompt open
  Instrument,  // also waits while an operation other than sweeps is pending
  Completion,  // waits until no operation is pending
  Sweep,       // also waits, while sweeps are running, until one is complete
};

// The number of parameters.
struct Span {
  std::size_t Least, Most;
};

struct Row {
  std::string_view Pattern;
  void (*Set)(Call&) = nullptr;    // nullptr: cannot be set
  void (*Query)(Call&) = nullptr;  // nullptr: cannot be read
  std::string_view Takes = {};     // parameters of the set form, for the manual
  std::string_view Asks = {};      // parameters of the query
  std::string_view Help = {};
  Fallback Otherwise = Fallback::Number;
  Needs Before = Needs::Program;  // for the set form
  Needs BeforeQuery = Needs::Nothing;
  Span SetTakes{1, 1};
  Span QueryTakes{0, 0};
  // Called when the set form is refused because of the user's activity; nullptr: nothing to do.
  void (*Refused)(Call&) = nullptr;
};

// A header found in the table.
struct Found {
  const Row* Which = nullptr;  // nullptr: not found
  int Index = 1;               // the suffix of the node with a maximum above 1
  bool SuffixOutOfRange = false;
};

class Tree {
 public:
  // rows must outlive the tree. A malformed or duplicate pattern is a programming error:
  // std::logic_error.
  explicit Tree(const std::vector<std::span<const Row>>& tables);

  // header: complete from the root, without a leading colon, in short or long form, any case.
  Found Find(std::string_view header) const;

  // All rows in the order of the tables.
  const std::vector<const Row*>& Rows() const { return rows_; }

 private:
  struct Node {
    std::string_view Short, Long;
    bool Optional = false;
    int Largest = 0;  // 0: no suffix allowed
  };
  struct Path {
    const Row* Which;
    std::vector<Node> Nodes;
  };
  static Path Compile(const Row& row);
  static bool Matches(std::span<const Node> nodes, std::string_view header, Found& found);

  std::vector<const Row*> rows_;
  std::vector<Path> paths_;
};

// A header in its long form without the markup of the pattern: "SENSe:AVERage[:STATe]" keeps the
// brackets, "#4" becomes "<n>" and "#1" is removed.
std::string ShownHeader(std::string_view pattern);
// The list for SYSTem:HELP:HEADers?: one header per line, followed by /qonly/ or /nquery/ where it
// applies.
std::string HeaderList(const Tree& tree);
// The command table for the manual.
std::string ManualTable(const Tree& tree);

}  // namespace qk::scpi
