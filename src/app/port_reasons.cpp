// SPDX-License-Identifier: MIT
#include "app/port_reasons.h"

#include <algorithm>

namespace qk {

void PortReasons::Add(const std::string& why) {
  if (std::ranges::find(reasons_, why) != reasons_.end()) return;
  reasons_.push_back(why);
  report_(why);
  if (OnChange) OnChange();
}

std::string PortReasons::All() const {
  std::string all;
  for (const std::string& why : reasons_) all += (all.empty() ? "" : "\n") + why;
  return all;
}

}  // namespace qk
