// SPDX-License-Identifier: MIT
// The serial port as the program needs it: one object that can stand on COM 1 to 16. Given by the
// Qt skin (real ports and pseudo-terminals), by the simulated instrument, and scripted in tests.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qk {

// Line settings; the program only ever uses 115200 baud, no parity, 8 data bits, 1 stop bit, RTS
// handshake. Buffer sizes in bytes, 0 for the driver's own.
struct LineSettings {
  int Baud = 115200;
  char Parity = 'N';
  int DataBits = 8;
  int StopBits = 1;
  bool RtsHandshake = true;
  int ReceiveBuffer = 0;
  int TransmitBuffer = 0;
};

class SerialPort {
 public:
  virtual ~SerialPort() = default;

  // Chooses COM number (1 to 16). Only while closed.
  virtual void SetPort(int com) = 0;
  // Stored, and put in force by the next Open (or at once when open).
  virtual void SetLine(const LineSettings& settings) = 0;
  // False when there is no such port or it is taken. Opening an open port is harmless.
  virtual bool Open() = 0;
  virtual void Close() = 0;
  // Falls to false by itself when the port is pulled out.
  virtual bool IsOpen() const = 0;

  // Queues the bytes and returns; never waits. Bytes to a closed port are lost.
  virtual void Write(std::span<const std::uint8_t> bytes) = 0;
  // Bytes received and not yet taken.
  virtual std::size_t InBufferCount() = 0;
  // Appends all waiting bytes to out; gives their number.
  virtual std::size_t Input(std::vector<std::uint8_t>& out) = 0;
  // Sleeps until at least one byte is waiting, or ms milliseconds have passed. True when bytes are
  // waiting. Never spins; on a closed port it sleeps ms and gives false.
  virtual bool WaitForInput(int ms) = 0;
};

}  // namespace qk
