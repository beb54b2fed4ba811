// SPDX-License-Identifier: MIT
// Any bytes as a message of a remote client: split into units that are inside the message and parse
// the same again, and looked up in the tree of commands.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "scpi/commands.h"
#include "scpi/data_block.h"
#include "scpi/lexer.h"

namespace {
void Require(bool holds) {
  if (!holds) std::abort();
}

bool Inside(std::string_view part, std::string_view whole) {
  return part.empty() ||
         (part.data() >= whole.data() && part.data() + part.size() <= whole.data() + whole.size());
}

void CheckItem(const qk::scpi::Item& item, std::string_view message) {
  Require(Inside(item.Raw, message) && Inside(item.Unit, message));
  if (item.Kind == qk::scpi::ItemKind::Text)
    Require(qk::scpi::Unquoted(item).size() <= item.Raw.size());
  if (item.Kind == qk::scpi::ItemKind::Number) Require(std::isfinite(item.Value));
  if (item.Kind == qk::scpi::ItemKind::Block)
    for (const auto form : {qk::scpi::DataForm::Real32, qk::scpi::DataForm::Real64})
      qk::scpi::NumbersIn(item.Raw, form, true);
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string_view message(reinterpret_cast<const char*>(bytes), size);
  const qk::scpi::Tree& tree = qk::scpi::CommandTree();
  qk::scpi::MessageReader reader(message);
  qk::scpi::Unit unit;
  while (reader.Next(unit)) {
    Require(Inside(unit.Written, message) && Inside(unit.Header, message));
    for (const qk::scpi::Item& item : unit.Items) CheckItem(item, message);
    std::string_view header = unit.Header;
    if (header.starts_with(':')) header.remove_prefix(1);
    const qk::scpi::Found found = tree.Find(header);
    if (found.Which != nullptr && !found.SuffixOutOfRange) Require(found.Index >= 1);
    if (unit.Wrong.Number != qk::scpi::kNoError) {
      Require(!qk::scpi::TextOf(unit.Wrong.Number).empty());
      Require(qk::scpi::ErrorText(unit.Wrong).size() < 700);
      continue;
    }
    qk::scpi::MessageReader again(unit.Written);
    qk::scpi::Unit same;
    Require(again.Next(same) && same.Header == unit.Header && same.Query == unit.Query &&
            same.Items.size() == unit.Items.size());
  }
  return 0;
}
