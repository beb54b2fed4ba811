// SPDX-License-Identifier: MIT
// The one owner of the serial port: finds the instrument, keeps the port open, writes command
// bytes, reads fixed-length replies against an idle time-out, and tells whether the instrument
// still answers. No framing, no checksum, no retry: a failed exchange sets
// SweepFlags::ReplyTimedOut and the caller decides what to say. It does not protect itself against
// nested use; the sweep flags and the switching of Timer1 do.
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

// The bytes of a command, wherever they stand: text (one character a byte), a made command, a part
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

  // Scans COM 1 to 16; gives the number of the port on which the instrument answered, or 0. A
  // wrong model is told ("Wrong model instrument") and ends the scan with 0. Leaves the port open.
  // A line on which bytes come in that nobody asked for (an instrument that still sweeps for a
  // program that was killed) is asked when it has gone quiet, within a bound; whenWaiting is told
  // its number first. Lines that were silent are listened to for a moment when no line answered.
  std::int16_t FindInstrument(const std::function<void(int com)>& whenWaiting = {});
  // Closes the port and puts the session's number and line settings on it (buffers of 32512 and
  // 20000 bytes); the next EnsurePortOpen opens it.
  void SetUpSessionPort();

  // Opens the port when it is closed. A failure shows in the next exchange. Without an instrument
  // (Identity::PortNumber 0) it opens nothing.
  void EnsurePortOpen();
  bool IsOpen() const { return port_.IsOpen(); }
  // Without an instrument neither sends: what stands on the port was refused, or never asked for.
  void SendCommand(BytesView bytes);
  void SendByte(int value);  // one write of one byte, 0 to 255

  // Reads until count bytes have come or timeoutMs milliseconds have passed without any (idle
  // time-out, strictly later). The reply may be shorter (ReplyTimedOut set) or longer than asked.
  // Sleeps while waiting; the windows repaint, but no handler and no timer runs. On a closed port
  // it fails at once.
  Bytes ReadReply(std::size_t count, int timeoutMs);
  // "Q" and one character within 2000 ms. False, and ReplyTimedOut set, unless it is "R" or "S".
  // What is waiting before is dropped: a late reply to something else is no answer. Behind a failed
  // exchange late replies may still be on their way, so the identity is asked for and then "Q"
  // again: what comes before the identity is stale, and nothing is outstanding behind it. Without
  // an instrument nothing is sent and it fails at once: what answered as another model is left
  // alone.
  [[nodiscard]] bool LinkCheck();

  // For stream readers: takes what is waiting (appended to buffer; gives the number of bytes),
  // drops what is waiting, sleeps until something is waiting or ms have passed.
  std::size_t TakeInput(Bytes& buffer);
  void DropInput();
  bool WaitForInput(int ms);
  // Takes what comes until nothing has come for quietMs, boundMs at most; false when the bound was
  // met. The bytes are appended to taken, or forgotten without it. The windows repaint meanwhile.
  bool WaitForQuiet(int quietMs, int boundMs, Bytes* taken = nullptr);

  // What the instrument is known to hold.
  InstrumentHolds& Holds() { return holds_; }
  const InstrumentHolds& Holds() const { return holds_; }
  // An exchange failed: nothing is known of what the instrument holds, and late bytes may come. The
  // link itself does so when a reply does not come, a link check fails or the port has gone; a
  // reader of a stream says when that broke.
  void LoseTrack() {
    holds_.UnsetAll();
    outOfStep_ = true;
  }

  SerialPort& Port() { return port_; }

 private:
  // What a port has at its other end.
  enum class Neighbour { Nobody, Talker, Instrument, OtherModel };
  bool OpenForScan(int com);
  Neighbour Ask();
  Neighbour AskWhenQuiet();
  bool Talks();
  Bytes AskStatus();
  bool GetIntoStep();

  SerialPort& port_;
  Session& session_;
  Host& host_;
  InstrumentHolds holds_;
  bool outOfStep_ = false;  // replies to earlier commands may still come
  bool wasOpen_ = false;    // since the port was set up
};

// Everything a routine needs that talks to the instrument.
struct Rig {
  Session& session;
  Host& host;
  InstrumentLink& link;
};

// Counts of the receiver's 16-bit converter in volts.
inline double ConverterVolts(double counts) {
  return counts / 65535 * 4.999924 - 2.5;
}

// A three-byte receiver sample, a sum of as many readings as there are averages, in volts. All of
// it in 64-bit.
inline double VoltsFromCounts(int high, int middle, int low, int averages) {
  return ConverterVolts(
      (static_cast<double>(high) * 65536 + static_cast<double>(middle) * 256 + low) / averages);
}

}  // namespace qk
