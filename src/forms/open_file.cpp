// SPDX-License-Identifier: MIT
#include "forms/open_file.h"

#include <filesystem>
#include <system_error>

#include "forms/load_meas.h"

namespace qk {

bool OpenFile(Controller& controller, const std::string& path, std::string_view title) {
  const Rig& rig = controller.rig();
  std::error_code error;
  if (std::filesystem::status(path, error).type() == std::filesystem::file_type::not_found) {
    controller.recent().Forget(path);
    rig.host.prompts.ShowMessage(std::string(title), path + ": the file is no longer there",
                                 Icon::Exclamation);
    rig.host.windows.SessionChanged();
    return false;
  }
  if (UseOfFile(path) == FileUse::Session) return controller.files().LoadCal(path, title);
  return MayLoadMeasurements(rig.session, rig.host.prompts) &&
         LoadMeasurements(controller, path).has_value();
}

}  // namespace qk
