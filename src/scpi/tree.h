// SPDX-License-Identifier: MIT
// The tree of commands: one table of rows, each a header with what sets it, what reads it and what
// the manual says of it. A header pattern is written as SCPI writes it:
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

// What a query answers when it cannot answer: a number, an empty string, an empty block, or data in
// the form in force.
enum class Fallback { Number, Text, Block, Data };

// What a command needs before it runs.
enum class Needs {
  Nothing,     // concerns the client alone: runs also while a message box of a person is up
  Program,     // changes the session: refused while a person is asked something
  Instrument,  // and waits while something other than sweeps is pending
  Completion,  // waits until no operation is pending
  Sweep,       // and, while sweeps run, until one of them is whole
};

// How many parameters.
struct Span {
  std::size_t Least, Most;
};

struct Row {
  std::string_view Pattern;
  void (*Set)(Call&) = nullptr;    // nullptr: cannot be set
  void (*Query)(Call&) = nullptr;  // nullptr: cannot be read
  std::string_view Takes = {};     // parameters of the set, for the manual
  std::string_view Asks = {};      // parameters of the query
  std::string_view Help = {};
  Fallback Otherwise = Fallback::Number;
  Needs Before = Needs::Program;  // of the set
  Needs BeforeQuery = Needs::Nothing;
  Span SetTakes{1, 1};
  Span QueryTakes{0, 0};
  // Runs when the set is refused because of what the user does; nullptr: nothing is to be done.
  void (*Refused)(Call&) = nullptr;
};

// A header found in the table.
struct Found {
  const Row* Which = nullptr;  // nullptr: there is none
  int Index = 1;               // the suffix of the node that counts above 1
  bool SuffixOutOfRange = false;
};

class Tree {
 public:
  // rows must outlive the tree. A malformed pattern or one that is there twice is an error of the
  // program: std::logic_error.
  explicit Tree(const std::vector<std::span<const Row>>& tables);

  // header: whole, from the root, without a leading colon, in short or long form, any case.
  Found Find(std::string_view header) const;

  // Every row in the order of the tables.
  const std::vector<const Row*>& Rows() const { return rows_; }

 private:
  struct Node {
    std::string_view Short, Long;
    bool Optional = false;
    int Largest = 0;  // 0: takes no suffix
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

// A header in its long form without the marks of the pattern: "SENSe:AVERage[:STATe]" keeps the
// brackets, "#4" becomes "<n>" and "#1" goes.
std::string ShownHeader(std::string_view pattern);
// The list of SYSTem:HELP:HEADers?: a header a line, with /qonly/ or /nquery/ behind it.
std::string HeaderList(const Tree& tree);
// The table of the manual.
std::string ManualTable(const Tree& tree);

}  // namespace qk::scpi
