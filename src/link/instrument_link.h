// SPDX-License-Identifier: MIT
// The only owner of the serial port: finds the instrument, keeps the port open, writes command
// bytes, reads replies of fixed length with an idle time-out, and checks whether the instrument
// still answers. No framing, no checksum, no retry: a failed exchange sets
// SweepFlags::ReplyTimedOut, and the caller decides which message to show. It is not protected
// against nested use; the sweep flags and pausing Timer1 ensure that.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

#include "core/host.h"
#include "core/session.h"
#include "link/instrument_holds.h"
#include "link/serial_port.h"

namespace qk {

using Bytes = std::vector<std::uint8_t>;

// The bytes of a command from any source: text (one character per byte), a generated command, part
// of a table.
struct BytesView : std::span<const std::uint8_t> {
  using std::span<const std::uint8_t>::span;
  BytesView(std::string_view text)
      : span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()) {}
  BytesView(const char* text) : BytesView(std::string_view(text)) {}
};

class InstrumentLink {
 public:
  InstrumentLink(SerialPort& port, Session& session, Host& host);

  // Scans COM 1 to 16. Returns the number of the port on which the instrument answered, or 0. A
  // wrong model shows a message ("Wrong model instrument") and ends the scan with 0. Leaves the
  // port open. A line that sends unrequested bytes (an instrument still sweeping for a program that
  // was killed) is queried once it is quiet, with a bound on the wait; whenWaiting is called with
  // its number first. If no line answered, the silent lines are checked briefly for incoming bytes.
  std::int16_t FindInstrument(const std::function<void(int com)>& whenWaiting = {});
  // Closes the port and applies the session's port number and line settings (buffers of 32512 and
  // 20000 bytes); the next EnsurePortOpen opens it.
  void SetUpSessionPort();

  // Opens the port if it is closed. A failure shows up in the next exchange. Without an instrument
  // (Identity::PortNumber 0) it does nothing.
  void EnsurePortOpen();
  bool IsOpen() const { return port_.IsOpen(); }
  // Without an instrument neither of these sends: the device on the port was rejected or never
  // queried.
  void SendCommand(BytesView bytes);
  void SendByte(int value);  // one write of one byte, 0 to 255

  // Reads until count bytes have arrived, or until timeoutMs milliseconds have passed without a
  // byte (idle time-out, strictly greater). The reply may be shorter (ReplyTimedOut set) or longer
  // than requested. Sleeps while waiting; windows repaint, but no handler and no timer runs. Fails
  // at once on a closed port.
  Bytes ReadReply(std::size_t count, int timeoutMs);
  // Sends "Q" and expects one character within 2000 ms. Returns false and sets ReplyTimedOut unless
  // it is "R" or "S". Bytes already waiting are discarded first: a late reply to something else is
  // not an answer. After a failed exchange late replies may still arrive, so the identity is
  // requested and then "Q" again: everything before the identity is stale, and nothing is
  // outstanding after it. Without an instrument it sends nothing and fails at once: a device that
  // answered as another model is left alone.
  [[nodiscard]] bool LinkCheck();

  // The whole stream of a sweep has arrived. A byte that waits before the next exchange was in it:
  // some of its samples may be shifted, and the sweep counts as disturbed.
  void StreamEnded() { streamEnded_ = true; }
  // Before an exchange: discards unrequested bytes.
  void DropStale();

  // For stream readers. TakeInput appends the waiting bytes to buffer and returns their number.
  // DropInput discards them. WaitForInput sleeps until bytes arrive or ms have passed.
  std::size_t TakeInput(Bytes& buffer);
  void DropInput();
  bool WaitForInput(int ms);
  // Reads until no byte has arrived for quietMs, at most boundMs; returns false if the bound was
  // reached. The bytes are appended to taken, or discarded if it is nullptr. Windows repaint
  // meanwhile.
  bool WaitForQuiet(int quietMs, int boundMs, Bytes* taken = nullptr);

  // The known state of the instrument.
  InstrumentHolds& Holds() { return holds_; }
  const InstrumentHolds& Holds() const { return holds_; }
  // An exchange failed: the state of the instrument is unknown, and late bytes may arrive. The link
  // calls this itself if a reply is missing, a link check fails or the port has gone; code that
  // reads a stream calls it when the stream breaks.
  void ForgetState() {
    holds_.UnsetAll();
    outOfSync_ = true;
  }

  SerialPort& Port() { return port_; }

 private:
  // What is connected to a port.
  enum class Neighbour { Nobody, Talker, Instrument, OtherModel };
  bool OpenForScan(int com);
  Neighbour Ask();
  Neighbour AskWhenQuiet();
  bool Talks();
  Bytes AskStatus();
  bool Resynchronise();

  SerialPort& port_;
  Session& session_;
  Host& host_;
  InstrumentHolds holds_;
  bool outOfSync_ = false;    // replies to earlier commands may still arrive
  bool wasOpen_ = false;      // since the port was set up
  bool streamEnded_ = false;  // no exchange since then
};

// Everything that a routine needs to talk to the instrument.
struct Rig {
  Session& session;
  Host& host;
  InstrumentLink& link;
};

// Counts of the receiver's 16-bit converter in volts.
inline double ConverterVolts(double counts) {
  return counts / 65535 * 4.999924 - 2.5;
}

// A three-byte receiver sample, the sum of the readings of all averages, in volts. All arithmetic
// is in 64-bit.
inline double VoltsFromCounts(int high, int middle, int low, int averages) {
  return ConverterVolts(
      (static_cast<double>(high) * 65536 + static_cast<double>(middle) * 256 + low) / averages);
}

}  // namespace qk
