// SPDX-License-Identifier: MIT
#include "display/label.h"

#include <algorithm>

namespace qk {

std::string ComposeLabel(const Session& session, const std::string& text, const std::string& date) {
  const LabelState& label = session.Label;
  std::string composed = text;
  if (label.Status)
    composed += "  (" + session.TextOf(Panel::Calibration) + "  " + session.TextOf(Panel::Level) +
                "  " + session.TextOf(Panel::Temperature);
  if (label.Date) composed += (label.Status ? "  " : "  (") + date;
  if (label.Status || label.Date) composed += ")";
  return composed;
}

void RememberLabel(LabelState& label, const std::string& text) {
  auto& list = label.GraphicsLabels;
  auto from = std::find(list.begin(), list.end(), text);
  if (from == list.end()) from = list.end() - 1;
  std::move_backward(list.begin(), from, from + 1);
  list.front() = text;
}

CanvasPoint LabelAt(DisplaySet displaySet, bool markerTable, int width, Extent text) {
  const bool all = displaySet == DisplaySet::All;
  const double part = markerTable ? (all ? 0.204 : 0.415) : (all ? 0.55 : 0.44);
  return {std::max(0, static_cast<int>(part * width - 0.5 * text.width)),
          static_cast<int>(0.1 * text.height)};
}

}  // namespace qk
