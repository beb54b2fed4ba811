// SPDX-License-Identifier: MIT
// The serial port interface on top of QSerialPort: serial ports, USB adaptors and pseudo-terminals.
#pragma once

#include <functional>
#include <string>

#include <QObject>
#include <QSerialPort>

#include "link/serial_port.h"

namespace qk {

class QtSerialPort : public SerialPort {
 public:
  // deviceOf returns the device for a COM number, empty if there is none. It is called each time a
  // port is selected, so that an adaptor plugged in later is found.
  explicit QtSerialPort(std::function<std::string(int com)> deviceOf);
  ~QtSerialPort() override;

  // Called when a device could not be opened, with the reason in words for the user; may be empty.
  std::function<void(const std::string& why)> OnRefused;

  void SetPort(int com) override;
  void SetLine(const LineSettings& settings) override;
  bool Open() override;
  void Close() override;
  bool IsOpen() const override { return port_.isOpen() && !lost_; }
  void Write(std::span<const std::uint8_t> bytes) override;
  std::size_t InBufferCount() override;
  std::size_t Input(std::vector<std::uint8_t>& out) override;
  bool WaitForInput(int ms) override;

 private:
  void PutLineInForce();
  // Reads what the system has received, without waiting; closes a port that was unplugged.
  void Collect();

  std::function<std::string(int)> deviceOf_;
  std::string device_;
  LineSettings line_;
  QSerialPort port_;
  bool lost_ = false;  // unplugged: reads and writes fail permanently
};

}  // namespace qk
