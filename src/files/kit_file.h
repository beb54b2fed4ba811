// SPDX-License-Identifier: MIT
// Kit files (".kit") and the tables of measured standards that the kit editor takes in (".dat"), in
// the sequential comma form. The lines of a kit file: name; male; offset, delay, C0 to C3; load
// data there; 101 lines of frequency in MHz, real, imaginary where they are; through data there;
// 101 lines of frequency in MHz and the eight parts of T11, T21, T12, T22 where they are; EOF,
// bare.
#pragma once

#include <string>
#include <string_view>

#include "core/result.h"
#include "core/session.h"

namespace qk {

using KitLoadTable = decltype(CalKit::KitLoadData);
using KitThruTable = decltype(CalKit::KitThruData);

// A kit as the editor works on it. The coefficients are 32-bit here and the delay is 64-bit, on
// purpose: a kit file shows the digits of the record that wrote it.
struct EditedKit {
  std::string KitName;
  bool KitMale = true;
  float KitOffset = 0;  // metres
  double KitDelay = 0;  // seconds, one way
  float KitC0 = 0, KitC1 = 0, KitC2 = 0, KitC3 = 0;
  bool KitHasLoad = false;
  KitLoadTable KitLoadData{};
  bool KitHasThru = false;
  KitThruTable KitThruData{};
};

// Port 1's kit may have a through standard. For port 2 reading ends behind the load data and the
// kit that comes of it has none.
enum class KitPort { Port1, Port2 };

// The bytes of a kit file. A kit of port 2 is written without through data.
std::string KitBytes(const CalKit& kit, KitPort port);
std::string KitBytes(const EditedKit& kit);

// A kit file's bytes into kit. A table that the file does not hold stays as it was. KitHasThru is
// true where the file has exactly True or #TRUE# for it; anything else, the end included, is a kit
// without. Delay and offset may disagree: each is taken as it is. On a failure ("line 3: ...")
// kit is as it was.
Result<Done> ReadKitBytes(std::string_view bytes, KitPort port, CalKit& kit);
Result<Done> ReadKitBytes(std::string_view bytes, EditedKit& kit);

// The same from and to a file; failures have the path as their place.
Result<Done> LoadKit(const std::string& path, KitPort port, CalKit& kit);
Result<Done> LoadKit(const std::string& path, EditedKit& kit);
Result<Done> SaveKit(const std::string& path, const CalKit& kit, KitPort port);
Result<Done> SaveKit(const std::string& path, const EditedKit& kit);

// 101 lines of a table's numbers from a data file, comma or blank separated, frequencies in MHz;
// what follows them is not read. On a failure the table holds the lines before it.
Result<Done> LoadLoadData(const std::string& path, KitLoadTable& table);
Result<Done> LoadThruData(const std::string& path, KitThruTable& table);

}  // namespace qk
