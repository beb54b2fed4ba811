// SPDX-License-Identifier: MIT
#include "cal/kit_tables.h"

#include <algorithm>
#include <cstddef>

#include "core/instrument_limits.h"

namespace qk {

namespace {
using Row = std::array<float, kKitRows>;
static_assert(CSplineObject::kCapacity >= kKitRows);

void Fill(CSplineObject& spline, const Row& frequency, const Row& value) {
  for (std::size_t i = 0; i < frequency.size(); ++i)
    spline.XYAdd(static_cast<double>(frequency[i]), static_cast<double>(value[i]));
  spline.DoCoeffs();
}
}  // namespace

// An empty spline is 0 everywhere, which is the perfect load.
LoadTable::LoadTable(const CalKit& kit) {
  if (!kit.KitHasLoad) return;
  Fill(re_, kit.KitLoadData[0], kit.KitLoadData[1]);
  Fill(im_, kit.KitLoadData[0], kit.KitLoadData[2]);
}

Complex LoadTable::At(double f) {
  return {re_.GetY(f), im_.GetY(f)};
}

ThruTable::ThruTable(const CalKit& kit) {
  if (!kit.KitHasThru) return;
  for (std::size_t i = 0; i < rows_.size(); ++i)
    Fill(rows_[i], kit.KitThruData[0], kit.KitThruData[i + 1]);
}

ThruStandard ThruTable::At(double f) {
  const auto value = [&](std::size_t row) {
    return Complex{rows_[row].GetY(f), rows_[row + 1].GetY(f)};
  };
  return {value(0), value(2), value(4), value(6)};
}

bool ThruTable::Good() const {
  return std::none_of(rows_.begin(), rows_.end(),
                      [](const CSplineObject& row) { return row.DataError(); });
}

}  // namespace qk
