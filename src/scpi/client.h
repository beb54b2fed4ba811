// SPDX-License-Identifier: MIT
// One remote client: its bytes cut into messages, its commands run one after the other, and what is
// its own: status, form of numbers, the trace that it has selected.
//
// A message ends with LF (a CR before it is a blank); a block holds any bytes. Replies to the
// queries of a message are joined by semicolons and end with LF. A command that has to wait holds
// this client alone.
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

// Where a client's bytes go.
class Transport {
 public:
  virtual ~Transport() = default;
  virtual void Send(std::string_view bytes) = 0;
  virtual std::size_t Unsent() const = 0;  // bytes that the other side has not taken yet
  // No more bytes are wanted, and none is given; the transport ends the client later.
  virtual void Close() = 0;
  // The client takes bytes again after it did not (Client::WantsInput).
  virtual void WantInput() {}
  // The other side sends no more (Client::EndInput), and all that it sent has been run and
  // answered.
  virtual void AllAnswered() {}
};

class Client {
 public:
  static constexpr std::size_t kLongestMessage = 1 << 20;
  static constexpr std::size_t kMostUnread = 8 << 20;

  Client(Remote& remote, Transport& transport, std::string address, int number);

  // Bytes as split as they come; the commands in them are run by Remote::Serve.
  void Receive(std::string_view bytes);
  // The other side sends no more and may still read: what has come is run, and what waits is
  // answered. A message without its line end is not run: it may be cut short.
  void EndInput() { inputEnded_ = true; }
  bool InputEnded() const { return inputEnded_; }
  // False while enough is waiting: the transport keeps further bytes back.
  bool WantsInput() const { return !closed_ && (!atWork_ || buffer_.size() < kLongestMessage); }
  // Runs what has come, as far as it may be run. True when there is more to do at once.
  bool Run();
  // Nothing is left to run, or only what waits for more bytes.
  bool Idle() const { return !atWork_; }
  bool Held() const { return held_; }
  bool Closed() const { return closed_; }
  bool Running() const { return running_; }
  // The transport is gone: nothing is sent any more, nothing run.
  void Forget() { closed_ = true; }

  void Write(std::string_view reply);
  void Push(const Error& error);

  const std::string& Address() const { return address_; }
  int Number() const { return number_; }
  const std::string& LastCommand() const { return lastCommand_; }

  // ---- what is the client's own --------------------------------------------------------------
  ClientStatus Status;
  DataForm Form = DataForm::Ascii;
  bool Swapped = true;
  bool CompletionAsked = false;  // "*OPC"
  // The trace that "CALCulate:PARameter<n>:SELect" chose, or a measurement by name.
  int Trace = 1;
  struct Measurement {
    std::string Name;
    Parameter Which;
  };
  std::vector<Measurement> Measurements{{"CH1_S11_1", Parameter::S11}};
  std::optional<std::string> Selected;  // by name; nothing: Trace
  // The sweep of this client's last INITiate, and the parameters of it that have not been read.
  KeptSweep Own;
  unsigned Fresh = 0;  // a bit a parameter
  // It asked for a sweep that is not there, and no whole sweep has come since: older numbers may be
  // of another device.
  bool AwaitsOwn = false;

 private:
  std::optional<std::string> TakeMessage();
  bool ScanBlock();
  void Overrun();
  void LeaveOutBlock();
  void DropScanned();
  bool NextUnit();
  void EndMessage();
  // False: the unit has to wait.
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

  // The bytes that have come, and how far the search for the end of a message has got.
  std::string buffer_;
  std::size_t begin_ = 0;  // of the message that is coming in
  std::size_t scanned_ = 0;
  char quote_ = 0;
  bool skipping_ = false;    // to the next LF
  std::size_t leftOut_ = 0;  // bytes of an overlong block that are still to be skipped
  bool firstMessage_ = true;

  // The message at work.
  std::string message_;
  MessageReader reader_;
  Unit unit_;
  std::string path_;  // of the header before, with its colon
  bool atWork_ = false;
  bool unitWaits_ = false;
  bool inputWaits_ = false;  // the transport may have kept bytes back
  bool inputEnded_ = false;
  bool held_ = false;
  bool replied_ = false;
  std::string reply_;
  std::string shownReply_;  // its beginning, for the log
  std::string lastCommand_;

  bool running_ = false;
  bool closed_ = false;
};

}  // namespace qk::scpi
