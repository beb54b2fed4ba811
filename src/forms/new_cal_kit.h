// SPDX-License-Identifier: MIT
// "Cal Kit Editor": makes or changes a kit on disk without touching the kits in use.
#pragma once

#include <array>
#include <string>

#include "core/form.h"
#include "files/kit_file.h"
#include "link/instrument_link.h"

namespace qk {

class NewCalKit : public Form {
 public:
  explicit NewCalKit(Rig& rig);

  void OnOpen() override { NewKit(); }

 private:
  // A table of measured standards that the kit may carry.
  struct TableTexts {
    const char *Select, *Error, *DialogTitle;
  };

  void NewKit();
  void LoadExisting();
  void ShowKit();
  void ShowCoefficients(const std::array<double, 4>& c);
  void TellContents();
  void SaveEditedKit();
  // The table's file is asked for where the box is ticked and there are no data yet; false ends the
  // save.
  template <class Table>
  bool ReadData(const TableTexts& texts, const Handle& box, bool& valid, Table& table,
                Result<Done> (*load)(const std::string&, Table&));

  Session& session_;
  Host& host_;
  Handle name_, offset_;
  OptionGroup sex_;  // male, female
  std::array<Handle, 4> c_;
  Handle load_, thru_, fault_;
  EditedKit kit_;
  bool editLoadValid_ = false;  // the table holds data that are not to be replaced
  bool editThruValid_ = false;
};

}  // namespace qk
