// SPDX-License-Identifier: MIT
// The serial port interface: one object that can select COM 1 to 16. Implemented by the Qt skin
// (real ports and pseudo-terminals), by the simulated instrument, and by scripted ports in tests.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qk {

// Line settings. The program only uses 115200 baud, no parity, 8 data bits, 1 stop bit, RTS
// handshake. Buffer sizes in bytes, 0 for the driver's default.
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

  // Selects COM number (1 to 16). Only while closed.
  virtual void SetPort(int com) = 0;
  // Stores the settings. They take effect at the next Open, or at once if open.
  virtual void SetLine(const LineSettings& settings) = 0;
  // False if the port does not exist or is in use. No effect if already open.
  virtual bool Open() = 0;
  virtual void Close() = 0;
  // Becomes false by itself when the port is unplugged.
  virtual bool IsOpen() const = 0;

  // Queues the bytes and returns without waiting. Bytes sent to a closed port are lost.
  virtual void Write(std::span<const std::uint8_t> bytes) = 0;
  // Number of bytes received and not yet read.
  virtual std::size_t InBufferCount() = 0;
  // Appends all waiting bytes to out and returns their number.
  virtual std::size_t Input(std::vector<std::uint8_t>& out) = 0;
  // Sleeps until at least one byte is waiting or ms milliseconds have passed. Returns true if bytes
  // are waiting. Never spins; on a closed port it sleeps ms and returns false.
  virtual bool WaitForInput(int ms) = 0;
};

}  // namespace qk
