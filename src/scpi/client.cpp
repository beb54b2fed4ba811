// SPDX-License-Identifier: MIT
#include "scpi/client.h"

#include <algorithm>
#include <array>
#include <utility>

#include "core/characters.h"
#include "scpi/call.h"
#include "scpi/commands.h"
#include "scpi/remote.h"

namespace qk::scpi {

namespace {

constexpr int kUnitsPerTurn = 32;
constexpr std::size_t kShownLength = 200;
constexpr std::size_t kSendAt = 1 << 18;
constexpr std::size_t kMoveAt = 1 << 16;
constexpr std::size_t kLongestSkipped = 64 << 20;
// The first words that a web browser sends.
constexpr std::array<std::string_view, 5> kWebWords{"GET ", "POST ", "PUT ", "HEAD ", "OPTIONS "};

// A printable single line for the log.
std::string Shown(std::string_view text) {
  std::string shown(text.substr(0, kShownLength));
  for (char& c : shown)
    if (c < ' ' || c > '~') c = '.';
  if (text.size() > kShownLength) shown += "...";
  return shown;
}

class Flag {
 public:
  explicit Flag(bool& flag) : flag_(flag) { flag_ = true; }
  ~Flag() { flag_ = false; }
  Flag(const Flag&) = delete;
  Flag& operator=(const Flag&) = delete;

 private:
  bool& flag_;
};

}  // namespace

Client::Client(Remote& remote, Transport& transport, std::string address, int number)
    : remote_(remote), transport_(transport), address_(std::move(address)), number_(number) {}

void Client::Push(const Error& error) {
  Status.Push(error);
  remote_.NoteError(*this, error);
}

// ---- bytes to messages -------------------------------------------------------------------------

void Client::Receive(std::string_view bytes) {
  if (closed_) return;
  buffer_ += bytes;
  if (!firstMessage_) return;
  const auto begins = [this](std::string_view word) { return buffer_.starts_with(word); };
  if (std::ranges::any_of(kWebWords, begins)) {
    Close();
  } else if (buffer_.size() >= 8 || buffer_.find('\n') != std::string::npos) {
    firstMessage_ = false;
  }
}

// Also discards the rest of a block that has already been found, whatever bytes it contains.
void Client::Overrun() {
  Push({kInputOverrun, {}});
  skipping_ = true;
  LeaveOutBlock();
}

void Client::LeaveOutBlock() {
  if (scanned_ <= buffer_.size()) return;
  leftOut_ = scanned_ - buffer_.size();
  scanned_ = buffer_.size();
}

// Removes the bytes already searched. Bytes are moved only occasionally, because a client may send
// many short messages at once.
void Client::DropScanned() {
  begin_ = scanned_;
  if (begin_ < kMoveAt && begin_ < buffer_.size()) return;
  buffer_.erase(0, begin_);
  scanned_ -= begin_;
  begin_ = 0;
}

// At a "#": skips a block, as far as its length is known. False: more bytes are needed.
bool Client::ScanBlock() {
  const std::size_t first = scanned_ + 1;
  if (first >= buffer_.size()) return false;
  const char count = buffer_[first];
  if (count < '1' || count > '9') {
    ++scanned_;
    return true;
  }
  const auto digits = static_cast<std::size_t>(count - '0');
  std::size_t length = 0;
  for (std::size_t i = first + 1; i <= first + digits; ++i) {
    if (i >= buffer_.size()) return false;
    if (!IsDigit(buffer_[i])) {  // not a block: the message reports the error
      ++scanned_;
      return true;
    }
    length = length * 10 + static_cast<std::size_t>(buffer_[i] - '0');
  }
  // A longer length is treated as a mistyped message: waiting for its bytes would block the client.
  scanned_ = first + 1 + digits + (length <= kLongestSkipped ? length : 0);
  const bool tooLong = length > kLongestSkipped || scanned_ - begin_ > kLongestMessage;
  if (!skipping_ && tooLong) Overrun();
  if (skipping_) LeaveOutBlock();
  return true;
}

std::optional<std::string> Client::TakeMessage() {
  while (scanned_ < buffer_.size()) {
    if (leftOut_ > 0) {
      const std::size_t here = std::min(leftOut_, buffer_.size() - scanned_);
      scanned_ += here;
      leftOut_ -= here;
      continue;
    }
    const char c = buffer_[scanned_];
    if (c == '\n') {
      std::string message = buffer_.substr(begin_, scanned_ - begin_);
      ++scanned_;
      DropScanned();
      quote_ = 0;
      if (std::exchange(skipping_, false)) continue;
      return message;
    }
    if (quote_ == 0 && c == '#') {
      if (!ScanBlock()) break;
    } else {
      if (quote_ != 0 && c == quote_)
        quote_ = 0;
      else if (quote_ == 0 && (c == '"' || c == '\''))
        quote_ = c;
      ++scanned_;
    }
    if (!skipping_ && scanned_ - begin_ > kLongestMessage) Overrun();
  }
  if (skipping_) DropScanned();
  return std::nullopt;
}

// ---- messages to commands ----------------------------------------------------------------------

bool Client::NextUnit() {
  for (;;) {
    if (atWork_) {
      if (reader_.Next(unit_)) return true;
      EndMessage();
    }
    std::optional<std::string> message = TakeMessage();
    if (!message) return false;
    message_ = std::move(*message);
    reader_ = MessageReader(message_);
    path_.clear();
    atWork_ = true;
    firstMessage_ = false;
    lastCommand_ =
        Shown(message_.ends_with('\r') ? std::string_view(message_).substr(0, message_.size() - 1)
                                       : std::string_view(message_));
  }
}

void Client::EndMessage() {
  atWork_ = false;
  if (std::exchange(replied_, false)) {
    reply_ += '\n';
    Flush();
  }
  if (!lastCommand_.empty()) remote_.NoteExchange(*this, lastCommand_, Shown(shownReply_));
  shownReply_.clear();
}

bool Client::Run() {
  if (running_ || closed_) return false;
  if (remote_.StartsUp()) return atWork_ || !buffer_.empty();
  {
    const Flag running(running_);
    for (int n = 0; n < kUnitsPerTurn && !closed_; ++n) {
      if (!unitWaits_ && !NextUnit()) break;
      held_ = unitWaits_ = !RunUnit();
      if (held_) break;
    }
  }
  if (closed_) return false;
  if (held_) Flush();
  if (atWork_) {
    inputWaits_ = true;
    return !held_;
  }
  if (std::exchange(inputWaits_, false)) transport_.RequestInput();
  if (inputEnded_) transport_.AllAnswered();
  return false;
}

// The header from the root: one without a leading colon is relative to the previous one.
std::string Client::WholeHeader() const {
  if (unit_.Header.starts_with(':')) return std::string(unit_.Header.substr(1));
  if (unit_.Header.starts_with('*')) return std::string(unit_.Header);
  return path_ + std::string(unit_.Header);
}

bool Client::RunUnit() {
  const std::string header = WholeHeader();
  const Found found = remote_.tree().Find(header);
  if (found.Which != nullptr && unit_.Wrong.Number == kNoError && !found.SuffixOutOfRange) {
    const Row& row = *found.Which;
    const Needs needs = unit_.Query ? row.BeforeQuery : row.Before;
    if (needs == Needs::Completion && remote_.Pending()) return false;
    if (needs == Needs::Instrument && remote_.AtWork()) return false;
    if (needs == Needs::Sweep && remote_.AwaitsSweep()) return false;
  }
  if (found.Which != nullptr && !header.starts_with('*')) {
    const std::size_t colon = header.rfind(':');
    path_ = colon == std::string::npos ? std::string() : header.substr(0, colon + 1);
  }
  RunFound(found);
  return true;
}

void Client::RunFound(const Found& found) {
  const Fallback otherwise = found.Which == nullptr ? Fallback::Number : found.Which->Otherwise;
  const bool answers = unit_.Query && found.Which != nullptr;
  const auto refuse = [&](int number, std::string detail) {
    Push({number, std::move(detail)});
    if (answers) Answer(otherwise);
  };
  if (unit_.Wrong.Number != kNoError) return refuse(unit_.Wrong.Number, unit_.Wrong.Detail);
  const std::string written(unit_.Header);
  if (found.Which == nullptr) return refuse(kUndefinedHeader, written);
  if (found.SuffixOutOfRange) return refuse(kSuffixOutOfRange, written);
  const Row& row = *found.Which;
  void (*const run)(Call&) = unit_.Query ? row.Query : row.Set;
  if (run == nullptr) return refuse(kUndefinedHeader, written + (unit_.Query ? "?" : ""));
  const Span& takes = unit_.Query ? row.QueryTakes : row.SetTakes;
  if (unit_.Items.size() < takes.Least) return refuse(kMissingParameter, written);
  if (unit_.Items.size() > takes.Most) return refuse(kTooManyParameters, written);
  const bool common = unit_.Header.starts_with('*') && row.Before == Needs::Completion;
  if (!unit_.Query && row.Before != Needs::Nothing && !common)
    if (std::string obstacle = remote_.Obstacle(); !obstacle.empty()) {
      refuse(kExecution, obstacle);
      if (Call refused(remote_, *this, unit_, found); row.Refused != nullptr) row.Refused(refused);
      return;
    }

  Call call(remote_, *this, unit_, found);
  remote_.RunFor(*this, [&] { run(call); });
  if (unit_.Query && !call.Replied()) Answer(otherwise);
}

// Every query with a known header gets a reply: a client without a time-out would wait forever.
void Client::Answer(Fallback otherwise) {
  if (otherwise == Fallback::Text)
    Write("\"\"");
  else if (otherwise == Fallback::Block || (otherwise == Fallback::Data && Form != DataForm::Ascii))
    Write("#10");
  else
    Write("9.91E37");
}

void Client::Write(std::string_view reply) {
  if (closed_) return;
  if (std::exchange(replied_, true)) reply_ += ';';
  if (shownReply_.size() <= kShownLength) {
    if (!shownReply_.empty()) shownReply_ += ';';
    shownReply_ += reply.substr(0, kShownLength + 1);
  }
  reply_ += reply;
  if (reply_.size() >= kSendAt) Flush();
}

void Client::Flush() {
  if (closed_ || reply_.empty()) return;
  transport_.Send(reply_);
  reply_.clear();
  if (transport_.Unsent() > kMostUnread) Close();
}

void Client::Close() {
  if (std::exchange(closed_, true)) return;
  buffer_.clear();
  transport_.Close();
}

}  // namespace qk::scpi
