// SPDX-License-Identifier: MIT
// A program message cut into its units, and a unit into header and parameters, as IEEE 488.2 writes
// them:
//
//   :SENS1:FREQ:STAR 100 MHZ;STOP 2e9;*OPC?
//   CALC:PAR:EXT 'n',"S11"          strings in either quote, which is doubled inside
//   SENS:CORR:COEF ed,1,1,#216...   a block: # and the number of length digits, length, bytes
//
// Everything is a view into the message. Nothing here knows a command.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "scpi/errors.h"

namespace qk::scpi {

enum class ItemKind { Word, Number, Text, Block };

struct Item {
  ItemKind Kind = ItemKind::Word;
  std::string_view Raw;   // a word or a number as written, the inside of a string or block
  double Value = 0;       // Number
  std::string_view Unit;  // Number: letters behind it
};

struct Unit {
  std::string_view Written;  // the whole unit without blanks around it
  std::string_view Header;   // ":SENS1:FREQ:STAR", "*IDN"; without the question mark
  bool Query = false;
  std::vector<Item> Items;
  Error Wrong;  // Number 0: well-formed
};

class MessageReader {
 public:
  MessageReader() = default;
  // message: without its line end. It must outlive the reader and its units.
  explicit MessageReader(std::string_view message) : message_(message) {}

  // The next unit; false behind the last. Empty units are passed over. A unit that is malformed is
  // given with Wrong set, its header as far as it was read; reading goes on behind the next
  // semicolon.
  bool Next(Unit& unit);

 private:
  void ReadHeader(Unit& unit);
  void ReadItems(Unit& unit);
  bool ReadItem(Unit& unit);
  bool ReadText(Unit& unit, Item& item);
  bool ReadBlock(Unit& unit, Item& item);
  bool ReadRadix(Item& item);
  bool ReadNumber(Unit& unit, Item& item);
  std::size_t SpacedExponent(std::size_t from) const;
  void SkipBlanks();
  void SkipUnit();
  bool Fail(Unit& unit, int number, std::string detail = {});
  bool AtEnd() const { return at_ >= message_.size(); }
  char Peek() const { return message_[at_]; }

  std::string_view message_;
  std::size_t at_ = 0;
};

// The text of a string item with doubled quotes made single. quote: which one it stood in is told
// by the byte before item.Raw.
std::string Unquoted(const Item& item);

// Lower-case ASCII letters made upper-case, without the locale.
char Upper(char c);
bool SameWord(std::string_view a, std::string_view b);

}  // namespace qk::scpi
