// SPDX-License-Identifier: MIT
#include "files/kit_file.h"

#include <array>
#include <cmath>
#include <cstddef>

#include "core/instrument_limits.h"
#include "files/comma_form.h"
#include "files/whole_file.h"

namespace qk {

namespace {
constexpr std::size_t kLargestKit = std::size_t{1} << 20;  // a complete one is about 15 KB
constexpr float kLargestHz = 1e38f;  // fits 32 bits after conversion to MHz and back

// Intentional: frequencies are written with a 64-bit division and read with a 32-bit product, which
// may differ in the last bit.
template <std::size_t N>
void WriteTable(CommaWriter& file, const std::array<std::array<float, kKitRows>, N>& table) {
  for (std::size_t i = 0; i < kKitRows; ++i) {
    const double mhz = static_cast<double>(table[0][i]) / 1e6;
    if constexpr (N == 3)
      file.Line(mhz, table[1][i], table[2][i]);
    else
      file.Line(mhz, table[1][i], table[2][i], table[3][i], table[4][i], table[5][i], table[6][i],
                table[7][i], table[8][i]);
  }
}

template <std::size_t N>
void ReadTable(CommaReader& file, std::array<std::array<float, kKitRows>, N>& table) {
  for (std::size_t i = 0; i < kKitRows && file.Good(); ++i) {
    std::array<float, N> row{};
    for (float& item : row) file.Line(item);
    if (!file.Good()) return;
    row[0] *= 1e6f;
    if (!(std::fabs(row[0]) <= kLargestHz)) file.Refuse("a frequency is out of range");
    if (!file.Good()) return;
    for (std::size_t column = 0; column < N; ++column) table[column][i] = row[column];
  }
}

template <class Kit>
std::string Write(const Kit& kit, bool withThru) {
  CommaWriter file;
  file.Line(kit.KitName);
  file.Line(kit.KitMale);
  file.Line(kit.KitOffset, kit.KitDelay, kit.KitC0, kit.KitC1, kit.KitC2, kit.KitC3);
  file.Line(kit.KitHasLoad);
  if (kit.KitHasLoad) WriteTable(file, kit.KitLoadData);
  const bool thru = withThru && kit.KitHasThru;
  file.Line(thru);
  if (thru) WriteTable(file, kit.KitThruData);
  file.Print("EOF");
  return file.Bytes();
}

// withThru: also reads the through data; otherwise reading stops before them.
template <class Kit>
Result<Done> Read(std::string_view bytes, bool withThru, Kit& kit) {
  CommaReader file(bytes);
  Kit read = kit;
  file.Line(read.KitName, read.KitMale, read.KitOffset, read.KitDelay);
  file.Line(read.KitC0, read.KitC1, read.KitC2, read.KitC3, read.KitHasLoad);
  if (read.KitHasLoad) ReadTable(file, read.KitLoadData);
  read.KitHasThru = false;
  if (withThru && file.Good()) {
    const std::string flag = file.AnyItem();
    read.KitHasThru = flag == "True" || flag == "#TRUE#";
    if (read.KitHasThru) ReadTable(file, read.KitThruData);
  }
  if (!file.Good()) return file.Why();
  kit = read;
  return Done{};
}

// Reads a complete file; a failure includes its path.
template <class Taker>
Result<Done> FromFile(const std::string& path, Taker take) {
  Result<std::string> bytes = ReadWhole(path, kLargestKit);
  if (!bytes) return bytes.Why();
  const Result<Done> taken = take(*bytes);
  if (!taken) return Failure{taken.Why().Message, path};
  return Done{};
}

template <class Table>
Result<Done> LoadTable(const std::string& path, Table& table) {
  return FromFile(path, [&table](std::string& bytes) -> Result<Done> {
    bytes += "\r\n";  // the last line may end with the file
    CommaReader file(bytes);
    ReadTable(file, table);
    if (!file.Good()) return file.Why();
    return Done{};
  });
}
}  // namespace

std::string KitBytes(const CalKit& kit, KitPort port) {
  return Write(kit, port == KitPort::Port1);
}

std::string KitBytes(const EditedKit& kit) {
  return Write(kit, true);
}

Result<Done> ReadKitBytes(std::string_view bytes, KitPort port, CalKit& kit) {
  Result<Done> read = Read(bytes, port == KitPort::Port1, kit);
  if (read) kit.KitLoadInUse = kit.KitHasLoad;
  return read;
}

Result<Done> ReadKitBytes(std::string_view bytes, EditedKit& kit) {
  return Read(bytes, true, kit);
}

Result<Done> LoadKit(const std::string& path, KitPort port, CalKit& kit) {
  return FromFile(path, [&](std::string_view bytes) { return ReadKitBytes(bytes, port, kit); });
}

Result<Done> LoadKit(const std::string& path, EditedKit& kit) {
  return FromFile(path, [&](std::string_view bytes) { return ReadKitBytes(bytes, kit); });
}

Result<Done> SaveKit(const std::string& path, const CalKit& kit, KitPort port) {
  return WriteWhole(path, KitBytes(kit, port));
}

Result<Done> SaveKit(const std::string& path, const EditedKit& kit) {
  return WriteWhole(path, KitBytes(kit));
}

Result<Done> LoadLoadData(const std::string& path, KitLoadTable& table) {
  return LoadTable(path, table);
}

Result<Done> LoadThruData(const std::string& path, KitThruTable& table) {
  return LoadTable(path, table);
}

}  // namespace qk
