// SPDX-License-Identifier: MIT
#include "ui/qt_serial_port.h"

#include <algorithm>
#include <utility>

#include <QElapsedTimer>
#include <QThread>

#include "ui/port_trouble.h"
#include "ui/serial_devices.h"

namespace qk {

QtSerialPort::QtSerialPort(std::function<std::string(int com)> deviceOf)
    : deviceOf_(std::move(deviceOf)) {
  QObject::connect(&port_, &QSerialPort::errorOccurred, &port_,
                   [this](QSerialPort::SerialPortError error) {
                     if (error != QSerialPort::ResourceError && error != QSerialPort::ReadError &&
                         error != QSerialPort::WriteError)
                       return;
                     lost_ = true;
                     // Not inside the port's own read handler; if it stayed open, a dead descriptor
                     // would wake the message loop repeatedly.
                     QMetaObject::invokeMethod(
                         &port_,
                         [this] {
                           if (lost_) Close();
                         },
                         Qt::QueuedConnection);
                   });
}

QtSerialPort::~QtSerialPort() {
  port_.disconnect();
}

void QtSerialPort::SetPort(int com) {
  device_ = LocationOfDevice(deviceOf_(com));
}

void QtSerialPort::SetLine(const LineSettings& settings) {
  line_ = settings;
  if (IsOpen()) PutLineInForce();
}

void QtSerialPort::PutLineInForce() {
  port_.setBaudRate(line_.Baud);
  port_.setDataBits(static_cast<QSerialPort::DataBits>(line_.DataBits));
  port_.setParity(line_.Parity == 'E'   ? QSerialPort::EvenParity
                  : line_.Parity == 'O' ? QSerialPort::OddParity
                                        : QSerialPort::NoParity);
  port_.setStopBits(line_.StopBits == 2 ? QSerialPort::TwoStop : QSerialPort::OneStop);
  port_.setFlowControl(line_.RtsHandshake ? QSerialPort::HardwareControl
                                          : QSerialPort::NoFlowControl);
  // Without a limit the buffer would grow while a device sends and nothing is read.
  constexpr qint64 kDriversOwn = 4096;
  port_.setReadBufferSize(line_.ReceiveBuffer > 0 ? line_.ReceiveBuffer : kDriversOwn);
}

bool QtSerialPort::Open() {
  if (IsOpen()) return true;
  Close();
  if (device_.empty()) return false;
  port_.setPortName(QString::fromStdString(device_));
  PutLineInForce();  // applied by open; a port that refuses them is closed again
  const bool opened = port_.open(QIODevice::ReadWrite);
  lost_ = false;
  if (!opened && OnRefused) OnRefused(WhyNotOpened(device_, port_.errorString().toStdString()));
  return opened;
}

void QtSerialPort::Close() {
  if (port_.isOpen()) port_.close();
  lost_ = false;
}

void QtSerialPort::Write(std::span<const std::uint8_t> bytes) {
  if (!IsOpen()) return;
  port_.write(reinterpret_cast<const char*>(bytes.data()), static_cast<qint64>(bytes.size()));
  port_.flush();  // passes on what the line accepts now; the rest follows by itself
}

void QtSerialPort::Collect() {
  if (IsOpen()) port_.waitForReadyRead(0);
  if (lost_ && port_.bytesAvailable() == 0) Close();
}

std::size_t QtSerialPort::InBufferCount() {
  Collect();
  return port_.isOpen() ? static_cast<std::size_t>(port_.bytesAvailable()) : 0;
}

std::size_t QtSerialPort::Input(std::vector<std::uint8_t>& out) {
  const std::size_t count = InBufferCount();
  if (count == 0) return 0;
  const std::size_t had = out.size();
  out.resize(had + count);
  const qint64 got =
      port_.read(reinterpret_cast<char*>(out.data() + had), static_cast<qint64>(count));
  out.resize(had + static_cast<std::size_t>(std::max<qint64>(got, 0)));
  return out.size() - had;
}

bool QtSerialPort::WaitForInput(int ms) {
  if (InBufferCount() > 0) return true;
  QElapsedTimer elapsed;
  elapsed.start();
  if (IsOpen()) port_.waitForReadyRead(ms);
  if (InBufferCount() > 0) return true;
  // A port that is closed, or was just unplugged, must not cause a busy loop.
  const qint64 left = ms - elapsed.elapsed();
  if (left > 0) QThread::msleep(static_cast<unsigned long>(left));
  return false;
}

}  // namespace qk
