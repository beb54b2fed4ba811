// SPDX-License-Identifier: MIT
#include "forms/kit_dialogs.h"

#include <tuple>
#include <utility>

#include "core/text.h"

namespace qk {

Dialog KitDialog(const Session& session, DialogKind kind, std::string title) {
  return {kind, std::move(title), session.InstallFolder,
          "All Files (*.*)|*.*|kit_files(*.kit)|*.kit|", 2};
}

Dialog DataDialog(const Session& session, std::string title) {
  return {DialogKind::Open, std::move(title), session.InstallFolder,
          "All Files (*.*)|*.*|dat_files(*.dat)|*.dat|", 2};
}

std::string OffsetText(float offset) {
  return FormatNumber(static_cast<double>(offset) * 1000, "#0.00");
}

std::string CoefficientText(double c) {
  return FormatNumber(c, "#0.0E+00");
}

bool SameKit(const CalKit& a, const CalKit& b) {
  const auto shown = [](const CalKit& k) {
    return std::tie(k.KitName, k.KitMale, k.KitOffset, k.KitC0, k.KitC1, k.KitC2, k.KitC3,
                    k.KitHasLoad, k.KitLoadInUse, k.KitHasThru);
  };
  return shown(a) == shown(b);
}

}  // namespace qk
