// SPDX-License-Identifier: MIT
// "Calibration Kit Parameters": shows and changes the session's two kits, and loads them from
// files.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "control/controller.h"
#include "core/form.h"
#include "files/kit_file.h"

namespace qk {

class CalKitForm : public Form {
 public:
  explicit CalKitForm(Controller& controller);

  void OnOpen() override;
  void OnSessionChanged() override;

 private:
  // The fields of one port's kit.
  struct Fields {
    Handle Name, Offset;
    OptionGroup Sex;  // male, female
    std::array<Handle, 4> C;
    Handle Load;
  };
  struct FieldNames {
    const char *Name, *Offset, *Male, *Female;
    std::array<const char*, 4> C;
    const char* Load;
    std::array<char, 3> Keys;  // mnemonics: name, offset, load
  };
  Fields AddKit(const char* section, const FieldNames& names, Position where);

  void ShowKit(const Fields& fields, const CalKit& kit);
  void ShowPort(KitPort port);
  void LoadKitFile(KitPort port);
  void Apply();
  // False if the kit of port 1 would lose its through, and the user keeps the standards that were
  // measured with it.
  bool MayHaveThrough(bool through, std::string_view title);
  void TakeKit(const Fields& fields, CalKit& kit);

  Controller& controller_;
  Session& session_;
  Host& host_;
  Fields port1_, port2_;
  Handle thru_;
  bool thruOfFile_ =
      false;  // the port 1 kit was loaded from a file, which determines its through data
  CalKit shown1_, shown2_;  // the kits as last copied to the fields
};

}  // namespace qk
