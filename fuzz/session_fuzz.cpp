// Any bytes as a session file: refused with a line and the session as it was, or read, and then
// what is written of it reads back to the same bytes.
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "files/session_file.h"

namespace {
void Require(bool holds) {
  if (!holds) std::abort();
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const auto session = qk::MakeSession();
  static const std::string defaults = qk::SessionBytes(*session);
  const std::string_view text(reinterpret_cast<const char*>(bytes), size);
  const qk::Result<qk::Done> read = qk::ReadSession(text, *session);
  const std::string written = qk::SessionBytes(*session);
  if (!read) {
    Require(!read.Why().Message.empty() && read.Why().Text().size() < 1200);
    Require(written == defaults);
    return 0;
  }
  Require(qk::ReadSession(written, *session).Ok());
  Require(qk::SessionBytes(*session) == written);
  Require(qk::ReadSession(defaults, *session).Ok());
  qk::InitSession(*session);
  return 0;
}
