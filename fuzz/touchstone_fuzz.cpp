// SPDX-License-Identifier: MIT
// Any bytes as a Touchstone file: refused with a line number, or read with finite values at every
// point of a sweep.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "files/touchstone.h"
#include "files/touchstone_sweep.h"

namespace {
void Require(bool holds) {
  if (!holds) std::abort();
}

void RequireFinite(const qk::ComplexArray& array, int points) {
  for (int i = 0; i < points; ++i)
    Require(std::isfinite(array[i].re) && std::isfinite(array[i].im));
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(bytes), size);
  static const auto network = std::make_unique<qk::Network>();
  for (const qk::Reference reference : {qk::Reference::Ignored, qk::Reference::ConvertedTo50}) {
    const auto table = qk::ReadTouchstone(text, reference);
    if (!table) {
      Require(!table.Why().Message.empty() && table.Why().Text().size() < 200);
      continue;
    }
    Require(table->Rows >= 1 && table->Rows <= qk::kFileRows);
    Require(table->Columns >= 0 && table->Columns <= 8);
    qk::PlanGrid grid;
    grid.NumPoints = 51;
    *network = {};
    (void)qk::ToNetwork(*table, grid, *network);
    for (const auto* array : {&network->S11, &network->S21, &network->S12, &network->S22})
      RequireFinite(*array, grid.NumPoints);
  }
  return 0;
}
