// SPDX-License-Identifier: MIT
// Any bytes as a kit file, for either port and for the editor: either refused with a line number
// and an unchanged kit, or read; then the file written from it reads back.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "files/kit_file.h"

namespace {
void Require(bool holds) {
  if (!holds) std::abort();
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(bytes), size);
  for (const qk::KitPort port : {qk::KitPort::Port1, qk::KitPort::Port2}) {
    qk::CalKit kit;
    const std::string before = qk::KitBytes(kit, port);
    const qk::Result<qk::Done> read = qk::ReadKitBytes(text, port, kit);
    if (!read) {
      Require(!read.Why().Message.empty() && read.Why().Text().size() < 1200);
      Require(qk::KitBytes(kit, port) == before);
      continue;
    }
    qk::CalKit back;
    Require(qk::ReadKitBytes(qk::KitBytes(kit, port), port, back).Ok());
    Require(back.KitName == kit.KitName && back.KitHasLoad == kit.KitHasLoad);
    Require(port == qk::KitPort::Port1 || !kit.KitHasThru);
  }
  qk::EditedKit edited;
  if (qk::ReadKitBytes(text, edited).Ok())
    Require(qk::ReadKitBytes(qk::KitBytes(edited), edited).Ok());
  return 0;
}
