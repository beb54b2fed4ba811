// SPDX-License-Identifier: MIT
// One remote client: splits its bytes into messages, runs its commands one after the other, and
// stores its own state: status, number format, selected trace.
//
// A message ends with LF (a CR before it counts as a blank); a block may contain any bytes. Replies
// to the queries of a message are joined by semicolons and end with LF. A command that must wait
// blocks only this client.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "scpi/data_block.h"
#include "scpi/lexer.h"
#include "scpi/status.h"
#include "scpi/sweep_data.h"
#include "scpi/tree.h"

namespace qk::scpi {

class Remote;

// The destination of a client's bytes.
class Transport {
 public:
  virtual ~Transport() = default;
  virtual void Send(std::string_view bytes) = 0;
  virtual std::size_t Unsent() const = 0;  // bytes that the other side has not yet accepted
  // No more bytes are read from or sent to the client; the transport ends it later.
  virtual void Close() = 0;
  // The client accepts bytes again after it did not (Client::WantsInput).
  virtual void RequestInput() {}
  // The other side has ended its input (Client::EndInput), and everything it sent has been run and
  // answered.
  virtual void AllAnswered() {}
};

class Client {
 public:
  static constexpr std::size_t kLongestMessage = 1 << 20;
  static constexpr std::size_t kMostUnread = 8 << 20;

  Client(Remote& remote, Transport& transport, std::string address, int number);

  // Receives bytes in chunks of any size; Remote::Serve runs the commands in them.
  void Receive(std::string_view bytes);
  // The other side sends no more but may still read: the received commands are run, and pending
  // queries are answered. A message without its line end is not run, because it may be incomplete.
  void EndInput() { inputEnded_ = true; }
  bool InputEnded() const { return inputEnded_; }
  // False while enough input is waiting: the transport then holds further bytes back.
  bool WantsInput() const { return !closed_ && (!atWork_ || buffer_.size() < kLongestMessage); }
  // Runs the received commands as far as possible. Returns true if there is more to run at once.
  bool Run();
  // Nothing is left to run, except an incomplete message.
  bool Idle() const { return !atWork_; }
  bool Held() const { return held_; }
  bool Closed() const { return closed_; }
  bool Running() const { return running_; }
  // The transport has gone: nothing more is sent or run.
  void Forget() { closed_ = true; }

  void Write(std::string_view reply);
  void Push(const Error& error);

  const std::string& Address() const { return address_; }
  int Number() const { return number_; }
  const std::string& LastCommand() const { return lastCommand_; }

  // ---- per-client state -----------------------------------------------------------------------
  ClientStatus Status;
  DataForm Form = DataForm::Ascii;
  bool Swapped = true;
  bool CompletionAsked = false;  // "*OPC"
  // The client requested a sweep that failed, and no complete sweep has followed: older data may
  // belong to another device.
  bool AwaitsOwn = false;
  // The trace selected with "CALCulate:PARameter<n>:SELect", or a measurement by name.
  int Trace = 1;
  struct Measurement {
    std::string Name;
    Parameter Which;
  };
  std::vector<Measurement> Measurements{{"CH1_S11_1", Parameter::S11}};
  std::optional<std::string> Selected;  // by name; empty: Trace
  // The sweep of this client's last INITiate, and its parameters that have not been read yet.
  KeptSweep Own;
  unsigned Fresh = 0;  // one bit per parameter
  // The same for values computed from that sweep: one bit per kind of read (ComputedRead) and
  // parameter.
  std::uint32_t FreshComputed = 0;

 private:
  std::optional<std::string> TakeMessage();
  bool ScanBlock();
  void Overrun();
  void LeaveOutBlock();
  void DropScanned();
  bool NextUnit();
  void EndMessage();
  // False: the unit must wait.
  bool RunUnit();
  void RunFound(const Found& found);
  std::string WholeHeader() const;
  void Answer(Fallback otherwise);
  void Flush();
  void Close();

  Remote& remote_;
  Transport& transport_;
  std::string address_;
  int number_;

  // The received bytes, and the progress of the search for the end of a message.
  std::string buffer_;
  std::size_t begin_ = 0;  // start of the message being received
  std::size_t scanned_ = 0;
  std::size_t leftOut_ = 0;  // remaining bytes to skip of an overlong block
  char quote_ = 0;
  bool skipping_ = false;  // until the next LF
  bool firstMessage_ = true;

  // The message being executed.
  std::string message_;
  MessageReader reader_;
  Unit unit_;
  std::string path_;  // path of the previous header, with its colon
  bool atWork_ = false;
  bool unitWaits_ = false;
  bool inputWaits_ = false;  // the transport may be holding bytes back
  bool inputEnded_ = false;
  bool held_ = false;
  bool replied_ = false;
  std::string reply_;
  std::string shownReply_;  // the start of the reply, for the log
  std::string lastCommand_;

  bool running_ = false;
  bool closed_ = false;
};

}  // namespace qk::scpi
