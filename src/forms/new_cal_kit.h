// SPDX-License-Identifier: MIT
// "Cal Kit Editor": creates or changes a kit file without changing the kits in use.
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
  // Texts for a table of measured standards that the kit may contain.
  struct TableTexts {
    const char *Select, *Error, *DialogTitle;
  };

  void NewKit();
  void LoadExisting();
  void ShowKit();
  void ShowCoefficients(const std::array<double, 4>& c);
  void ShowContents();
  void SaveEditedKit();
  // If the box is checked and there are no data yet, asks for the table's file; false cancels the
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
  bool editLoadValid_ = false;  // the table contains data that must not be replaced
  bool editThruValid_ = false;
};

}  // namespace qk
