// SPDX-License-Identifier: MIT
// Splits a program message into units, and a unit into header and parameters, following IEEE 488.2:
//
//   :SENS1:FREQ:STAR 100 MHZ;STOP 2e9;*OPC?
//   CALC:PAR:EXT 'n',"S11"          strings in either quote, which is doubled inside
//   SENS:CORR:COEF ed,1,1,#216...   a block: # and the number of length digits, length, bytes
//
// All results are views into the message. Nothing here depends on specific commands.
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
  std::string_view Raw;   // a word or a number as written, the contents of a string or block
  double Value = 0;       // Number
  std::string_view Unit;  // Number: the letters after it
};

struct Unit {
  std::string_view Written;  // the whole unit without surrounding blanks
  std::string_view Header;   // ":SENS1:FREQ:STAR", "*IDN"; without the question mark
  bool Query = false;
  std::vector<Item> Items;
  Error Wrong;  // Number 0: no error
};

class MessageReader {
 public:
  MessageReader() = default;
  // message: without its line end. It must outlive the reader and its units.
  explicit MessageReader(std::string_view message) : message_(message) {}

  // The next unit; false after the last one. Skips empty units. A malformed unit is returned with
  // Wrong set and its header as far as it could be read; reading continues after the next
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

// The text of a string item with doubled quotes replaced by single ones. The byte before item.Raw
// shows which quote it uses.
std::string Unquoted(const Item& item);

// Converts lower-case ASCII letters to upper case, independent of the locale.
char Upper(char c);
bool SameWord(std::string_view a, std::string_view b);

}  // namespace qk::scpi
