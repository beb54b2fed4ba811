// SPDX-License-Identifier: MIT
// The instrument's line over QSerialPort: serial ports, USB adaptors and pseudo-terminals.
#pragma once

#include <functional>
#include <string>

#include <QObject>
#include <QSerialPort>

#include "link/serial_port.h"

namespace qk {

class QtSerialPort : public SerialPort {
 public:
  // deviceOf names the device of a COM number, empty when there is none; it is asked at each
  // choice of a port, so that an adaptor plugged in later is found.
  explicit QtSerialPort(std::function<std::string(int com)> deviceOf);
  ~QtSerialPort() override;

  // A device did not open, and why in words for the user; may be empty.
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
  // Takes what the system holds without waiting; closes a port that was pulled out.
  void Collect();

  std::function<std::string(int)> deviceOf_;
  std::string device_;
  LineSettings line_;
  QSerialPort port_;
  bool lost_ = false;  // pulled out: reads and writes fail for good
};

}  // namespace qk
