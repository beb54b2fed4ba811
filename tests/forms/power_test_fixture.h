// SPDX-License-Identifier: MIT
// The window of a power test (gain compression, AM to PM) on the simulated instrument: both have
// the same buttons for the same actions, except Save and Exit.
#pragma once

#include <string>

#include "utility_fixture.h"

namespace qk::test {

struct PowerTestFixture : UtilityFixture {
  explicit PowerTestFixture(std::string window) : name_(std::move(window)) {}

  std::string Named(const std::string& control) const { return name_ + "." + control; }
  void Work(const std::function<void()>& work) { In(name_, work); }
  void Push(const char* button) { EXPECT_TRUE(Click(Named(button))) << button; }
  void Calibrate() { Push("Command5"); }
  void Start() { Push("Command1"); }
  void Print() { Push("Command3"); }
  std::string Of(const char* control) { return Value(Named(control)); }

 private:
  std::string name_;
};

}  // namespace qk::test
