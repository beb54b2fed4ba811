// SPDX-License-Identifier: MIT
// Any bytes as a session file: either refused with a line number and an unchanged session, bit for
// bit, or read; then the file written from it reads back to the same bytes.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "files/session_file.h"

namespace {
void Require(bool holds) {
  if (!holds) std::abort();
}

// The sessions that the inputs are read into. They are reused, because allocating the million bytes
// of a session takes longer than reading a file of 51 points.
class Bench {
 public:
  Bench() { Reset(); }

  qk::Result<qk::Done> Read(std::string_view text) {
    return qk::ReadSession(text, *session_, *room_);
  }
  std::string Written() const { return qk::SessionBytes(*session_); }

  // As at program start. The texts are short enough to be stored in the string objects.
  void Reset() {
    std::destroy_at(session_.get());
    std::construct_at(session_.get(), *defaults_);
    std::memcpy(before_.data(), session_.get(), before_.size());
  }
  // Nothing was written since, not even the same bytes.
  bool Untouched() const {
    return std::memcmp(before_.data(), session_.get(), before_.size()) == 0;
  }

 private:
  std::unique_ptr<qk::Session> defaults_ = qk::MakeSession();
  std::unique_ptr<qk::Session> session_ = qk::MakeSession();
  std::unique_ptr<qk::Session> room_ = qk::MakeSession();
  std::vector<char> before_ = std::vector<char>(sizeof(qk::Session));
};
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static Bench bench;
  const std::string_view text(reinterpret_cast<const char*>(bytes), size);
  const qk::Result<qk::Done> read = bench.Read(text);
  if (!read) {
    Require(!read.Why().Message.empty() && read.Why().Text().size() < 1200);
    Require(bench.Untouched());
    return 0;
  }
  const std::string written = bench.Written();
  if (written != text) {  // otherwise these bytes have just been read
    Require(bench.Read(written).Ok());
    Require(bench.Written() == written);
  }
  bench.Reset();
  return 0;
}
