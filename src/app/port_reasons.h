// SPDX-License-Identifier: MIT
// The reasons why ports did not open: each is written once to standard error, and all of them
// together are the tool tip of the port's panel.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace qk {

class PortReasons {
 public:
  // report is called with each new reason.
  explicit PortReasons(std::function<void(const std::string&)> report)
      : report_(std::move(report)) {}

  void Add(const std::string& why);
  // One reason per line, in the order they were added; empty if every port opened.
  std::string All() const;

  std::function<void()> OnChange;  // may be empty

 private:
  std::function<void(const std::string&)> report_;
  std::vector<std::string> reasons_;
};

}  // namespace qk
