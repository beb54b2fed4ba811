// SPDX-License-Identifier: MIT
// Why ports did not open, for the user: each reason once on standard error, and all that stand
// together for the tool tip of the port's panel.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace qk {

class PortReasons {
 public:
  // tell is given each new reason.
  explicit PortReasons(std::function<void(const std::string&)> tell) : tell_(std::move(tell)) {}

  void Add(const std::string& why);
  // One a line, in the order given; empty when every port opened.
  std::string All() const;

  std::function<void()> OnChange;  // may be empty

 private:
  std::function<void(const std::string&)> tell_;
  std::vector<std::string> reasons_;
};

}  // namespace qk
