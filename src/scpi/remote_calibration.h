// SPDX-License-Identifier: MIT
// Remote calibration: measuring standards one by one without prompts, and error terms computed by a
// client. The active calibration is kept until the new one is complete.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "cal/apply.h"
#include "cal/standards.h"
#include "scpi/errors.h"

namespace qk::scpi {

class Client;
class Remote;

enum class CalStandard { Open, Short, Load, Thru, Isolation };

class RemoteCalibration {
 public:
  explicit RemoteCalibration(Remote& remote);
  ~RemoteCalibration();

  // Starts a new calibration of this kind.
  std::optional<Error> ChooseMethod(CalChoice choice);
  std::optional<CalChoice> Method() const { return method_; }
  // Measures what is currently connected as this standard. port: 1 or 2, 0 if the standard has no
  // port.
  std::optional<Error> Collect(Client& by, CalStandard standard, int port);
  // Activates the measured calibration.
  std::optional<Error> Save(Client& by);

  // Finds one of the twelve terms by the name that clients use: "ed", "es", "er" with 1,1 or 2,2,
  // "et", "el", "ex" with 2,1 or 1,2 (receiving port, driving port). nullptr: no such term.
  struct TermName {
    std::string_view Name;
    int Receiver, Source;
    std::size_t Index;
  };
  static const TermName* FindTerm(std::string_view name, int receiver, int source);
  // re, im of the active term at each point; a term that the calibration kind does not have is 0,
  // tracking is 1.
  std::optional<std::vector<double>> Read(const TermName& term) const;
  // A term for the wanted plan, re, im of each point. Each client writes a set of its own; with the
  // twelfth term the set comes into force. A term that is already in the set begins a new one. So
  // does the first one for another plan, with an error that gives the number of dropped terms.
  std::optional<Error> Write(Client& by, const TermName& term, std::span<const double> pairs);
  // The terms that the client has written and that are not in force are dropped.
  void Forget(int client) { written_.erase(client); }
  // Ideal terms, where no calibration is in force.
  std::optional<Error> Preset(Client& by);

  // Before something takes the place of the calibration in force: keeps it in a file that does not
  // exist yet (BeforeRemote.cal, BeforeRemote-2.cal and so on), unless a file of this run holds it.
  // Of those that clients made the last one is kept: the file of the one before is used again.
  std::optional<Error> KeepOld();

 private:
  struct Collected;
  struct Written;
  std::optional<std::string> MissingText() const;
  void Measure(Client* by, Standard standard, std::size_t step);
  void Apply(Client* by);
  void PutWritten(Client* by, const Written& written);
  void PutIdeal(Client* by);
  void ShowCalibration();
  void NoteOwn();

  Remote& remote_;
  std::optional<CalChoice> method_;
  std::unique_ptr<Collected> collected_;
  std::map<int, std::shared_ptr<Written>> written_;  // by the number of the client
  std::map<std::uint64_t, std::string> known_;       // by fingerprint: the file that keeps it
  std::set<std::uint64_t> own_;                      // fingerprints of those that clients made
  std::string ownFile_;                              // the file with the last of them; may be empty
  std::filesystem::file_time_type ownTime_;          // its time then
};

}  // namespace qk::scpi
