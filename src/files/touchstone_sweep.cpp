// SPDX-License-Identifier: MIT
#include "files/touchstone_sweep.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "numeric/spline.h"
#include "trace/memory.h"

namespace qk {

namespace {
// One column of a table over frequency, as spline knots.
class ColumnSpline {
 public:
  ColumnSpline(const TouchstoneTable& table, std::size_t column) {
    const TouchstoneTable::Column& frequency = table.FileTable[0];
    const auto rows = static_cast<std::size_t>(table.Rows);
    for (std::size_t row = rows > 0 && frequency[1] == 0 ? 1 : 0; row <= rows; ++row) {
      x_[count_] = static_cast<double>(frequency[row]);
      y_[count_++] = static_cast<double>(table.FileTable[column][row]);
    }
    spline2({x_.data(), count_}, {y_.data(), count_}, {y2_.data(), count_});
  }

  double At(double hertz) {
    return splint2({x_.data(), count_}, {y_.data(), count_}, {y2_.data(), count_}, hertz, empty_);
  }
  bool MetEmpty() const { return empty_; }

 private:
  using Knots = std::array<double, kFileRows + 1>;
  static_assert(std::tuple_size_v<Knots> <= kMaxKnots);
  Knots x_, y_, y2_;
  std::size_t count_ = 0;
  bool empty_ = false;
};

Interval ColumnToGrid(const TouchstoneTable& table, std::size_t column, const PlanGrid& grid,
                      std::span<double> values) {
  ColumnSpline spline(table, column);
  for (int i = 0; i < grid.NumPoints; ++i)
    values[static_cast<std::size_t>(i)] = spline.At(grid.Frequency(i));
  return spline.MetEmpty() ? Interval::Empty : Interval::Good;
}

Interval Worse(Interval a, Interval b) {
  return a == Interval::Empty ? a : b;
}
}  // namespace

bool HasParameter(FileKind kind, Parameter parameter) {
  if (parameter == Parameter::S11) return true;
  if (kind == FileKind::WithS21) return parameter == Parameter::S21;
  return kind == FileKind::AllFour;
}

Interval ToGrid(const TouchstoneTable& table, Parameter parameter, const PlanGrid& grid,
                std::span<double> re, std::span<double> im) {
  const std::size_t column = 2 * static_cast<std::size_t>(parameter) + 1;  // in file order
  const Interval interval = ColumnToGrid(table, column, grid, re);
  return Worse(interval, ColumnToGrid(table, column + 1, grid, im));
}

Interval ToNetwork(const TouchstoneTable& table, const PlanGrid& grid, Network& network) {
  Interval interval = Interval::Good;
  for (const Parameter parameter :
       {Parameter::S11, Parameter::S21, Parameter::S12, Parameter::S22}) {
    if (!HasParameter(table.Kind(), parameter)) continue;
    ComplexArray& array = ArrayOf(network, parameter);
    interval = Worse(interval, ToGrid(table, parameter, grid, array.re, array.im));
  }
  return interval;
}

Interval ToMemory(const TouchstoneTable& table, Session& session) {
  Interval interval = Interval::Good;
  const DisplaySetRow& channels = RowOf(session.Display.DisplaySet);
  for (int n = channels.First; n <= channels.Last; ++n) {
    const Parameter parameter = session.Channel(n).Parameter;
    if (!HasParameter(table.Kind(), parameter)) continue;
    const StoredMemory memory = MemoryOf(session, n, session.Display.MemoryNumber);
    // Stored traces index their points from 1.
    const std::span re = std::span(memory.Re).subspan(1);
    const std::span im = std::span(memory.Im).subspan(1);
    interval = Worse(interval, ToGrid(table, parameter, session.Plan, re, im));
    memory.Valid = true;
    memory.Of = parameter;
  }
  session.Display.MemoryInUse = true;
  return interval;
}

}  // namespace qk
