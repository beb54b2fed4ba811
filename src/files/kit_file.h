// SPDX-License-Identifier: MIT
// Kit files (".kit"), and the tables of measured standards that the kit editor imports (".dat"), in
// the sequential comma format. The lines of a kit file: name; male; offset, delay, C0 to C3; load
// data present; if so, 101 lines of frequency in MHz, real, imaginary; through data present; if so,
// 101 lines of frequency in MHz and the eight parts of T11, T21, T12, T22; EOF without quotes.
#pragma once

#include <string>
#include <string_view>

#include "core/result.h"
#include "core/session.h"

namespace qk {

using KitLoadTable = decltype(CalKit::KitLoadData);
using KitThruTable = decltype(CalKit::KitThruData);

// A kit in the editor. The coefficients are 32-bit and the delay is 64-bit on purpose: a kit file
// shows the digits of the record that wrote it.
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

// A port 1 kit may have a through standard. For port 2, reading stops after the load data and the
// resulting kit has no through standard.
enum class KitPort { Port1, Port2 };

// The bytes of a kit file. A kit for port 2 is written without through data.
std::string KitBytes(const CalKit& kit, KitPort port);
std::string KitBytes(const EditedKit& kit);

// Reads a kit file's bytes into kit. A table that the file does not contain is unchanged.
// KitHasThru is true if the file has exactly True or #TRUE# for it; anything else, including the
// end, means no through standard. Delay and offset need not agree: each is read as it is. On a
// failure ("line 3: ...") kit is unchanged.
Result<Done> ReadKitBytes(std::string_view bytes, KitPort port, CalKit& kit);
Result<Done> ReadKitBytes(std::string_view bytes, EditedKit& kit);

// The same from and to a file; failures have the path as their place.
Result<Done> LoadKit(const std::string& path, KitPort port, CalKit& kit);
Result<Done> LoadKit(const std::string& path, EditedKit& kit);
Result<Done> SaveKit(const std::string& path, const CalKit& kit, KitPort port);
Result<Done> SaveKit(const std::string& path, const EditedKit& kit);

// Reads 101 lines of a table from a data file, comma or blank separated, frequencies in MHz; the
// rest is not read. On a failure the table contains the lines before it.
Result<Done> LoadLoadData(const std::string& path, KitLoadTable& table);
Result<Done> LoadThruData(const std::string& path, KitThruTable& table);

}  // namespace qk
