// SPDX-License-Identifier: MIT
// Calibrating from outside: standards measured one by one without a question, and error terms that
// a client has computed itself. What is in force stays in force until all of the new is there.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
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

  // Begins anew with this kind.
  std::optional<Error> ChooseMethod(CalChoice choice);
  std::optional<CalChoice> Method() const { return method_; }
  // Measures what is connected now as this standard. port: 1 or 2, 0 where a standard has none.
  std::optional<Error> Collect(Client& by, CalStandard standard, int port);
  // Puts what was measured in force.
  std::optional<Error> Save(Client& by);

  // One of the twelve terms, by the name that clients give it: "ed", "es", "er" with 1,1 or 2,2,
  // "et", "el", "ex" with 2,1 or 1,2 (receiving port, driving port). nullptr: no such term.
  struct TermName {
    std::string_view Name;
    int Receiver, Source;
    std::size_t Index;
  };
  static const TermName* FindTerm(std::string_view name, int receiver, int source);
  // re, im of each point of the term in force; those that the kind lacks are 0, tracking 1.
  std::optional<std::vector<double>> Read(const TermName& term) const;
  // A term for the wanted plan, re, im of each point. With the twelfth they come into force.
  std::optional<Error> Write(Client& by, const TermName& term, std::span<const double> pairs);
  // Ideal terms, where no calibration is in force.
  std::optional<Error> Preset(Client& by);

  // Before something takes the place of the calibration in force: keeps it in a file that does not
  // exist yet (BeforeRemote.cal, BeforeRemote-2.cal and so on), unless a client made it or a file
  // of this run holds it.
  std::optional<Error> KeepOld();

 private:
  struct Collected;
  struct Written;
  std::optional<std::string> MissingText() const;
  void Measure(Client* by, Standard standard, std::size_t step);
  void Apply(Client* by);
  void PutWritten(Client* by);
  void PutIdeal(Client* by);
  void ShowCalibration();
  void NoteOwn();

  Remote& remote_;
  std::optional<CalChoice> method_;
  std::unique_ptr<Collected> collected_;
  std::unique_ptr<Written> written_;
  // Calibrations by their fingerprint, with the file that keeps each; no file: a client made it.
  std::map<std::uint64_t, std::string> known_;
};

}  // namespace qk::scpi
