// SPDX-License-Identifier: MIT
#include "ui/serial_devices.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>

#include <QSerialPortInfo>

#include "core/characters.h"

namespace qk {

namespace {

// Removes the digits at the start of text and returns them without leading zeros.
std::string_view TakeNumber(std::string_view& text) {
  std::size_t length = 0;
  while (length < text.size() && IsDigit(text[length])) ++length;
  std::string_view number = text.substr(0, length);
  text.remove_prefix(length);
  while (number.size() > 1 && number.front() == '0') number.remove_prefix(1);
  return number;
}

// Compares names with their numbers by value.
bool NaturallyBefore(std::string_view a, std::string_view b) {
  while (!a.empty() && !b.empty()) {
    if (IsDigit(a.front()) && IsDigit(b.front())) {
      const std::string_view x = TakeNumber(a);
      const std::string_view y = TakeNumber(b);
      if (x.size() != y.size()) return x.size() < y.size();
      if (x != y) return x < y;
      continue;
    }
    if (a.front() != b.front()) return a.front() < b.front();
    a.remove_prefix(1);
    b.remove_prefix(1);
  }
  return a.empty() && !b.empty();
}

}  // namespace

std::vector<SerialDevice> OrderSerialDevices(std::vector<SerialDevice> devices) {
  std::stable_sort(devices.begin(), devices.end(),
                   [](const SerialDevice& a, const SerialDevice& b) {
                     if (a.Usb != b.Usb) return a.Usb;
                     return NaturallyBefore(a.Location, b.Location);
                   });
  return devices;
}

std::vector<SerialDevice> ListSerialDevices() {
  std::vector<SerialDevice> devices;
  for (const QSerialPortInfo& info : QSerialPortInfo::availablePorts())
    devices.push_back({info.systemLocation().toStdString(), info.hasVendorIdentifier()});
  return OrderSerialDevices(std::move(devices));
}

std::string LocationOfDevice(const std::string& device) {
  if (device.empty() || device.front() == '/') return device;
  if (device.find('/') == std::string::npos) return "/dev/" + device;
  std::error_code unknown;
  const std::filesystem::path absolute = std::filesystem::absolute(device, unknown);
  return unknown ? device : absolute.string();
}

std::string DeviceOfCom(int com, const std::map<int, std::string>& given,
                        const std::vector<SerialDevice>& listed) {
  if (const auto it = given.find(com); it != given.end()) return it->second;
  const auto index = static_cast<std::size_t>(com - 1);
  return com >= 1 && index < listed.size() ? listed[index].Location : std::string();
}

std::string ComNumbers::DeviceOf(int com) {
  if (com <= last_) listedInThisScan_ = false;
  last_ = com;
  if (!listedInThisScan_ && !given_.contains(com)) {
    listed_ = list_();
    listedInThisScan_ = true;
  }
  return DeviceOfCom(com, given_, listed_);
}

}  // namespace qk
