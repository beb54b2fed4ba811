// SPDX-License-Identifier: MIT
// The reader for the table of a session file.
#include <algorithm>
#include <cmath>
#include <concepts>
#include <limits>
#include <memory>
#include <optional>

#include "cal/error_terms.h"
#include "core/instrument_limits.h"
#include "core/text.h"
#include "core/vocabulary.h"
#include "files/cal_info.h"
#include "files/comma_form.h"
#include "files/session_file.h"
#include "files/session_rows.h"
#include "files/whole_file.h"

namespace qk {

namespace {
using namespace session_rows;

class RowReader {
 public:
  explicit RowReader(std::string_view bytes) : file_(bytes) {}

  bool Good() const { return file_.Good(); }
  void Header(std::string_view version) {
    foreign_ = !file_.Takes(version);
    Require(!foreign_, kInvalidHeader);
  }
  template <class... Fields>
  void Line(Fields&&... fields) {
    (In(fields), ...);
  }
  // Records whether the file declares a fourth step.
  void Needs(std::string_view words, const Session&) { extended_ = Good() && file_.Takes(words); }
  bool Extended() const { return extended_; }
  // Checks that the instrument has these points and that start, stop and step agree.
  void Grid(const PlanGrid& plan) {
    const double end = plan.StartFreq + (plan.NumPoints - 1) * plan.StepFreq;
    Require(plan.StartFreq >= kLowestFreq && plan.StopFreq <= kHighestGridFreq &&
                plan.StepFreq >= kSmallestStep && std::fabs(plan.StopFreq - end) <= 1,
            "start, stop, points and step do not form a sweep of the instrument");
  }
  void Require(bool condition, std::string_view cause) {
    if (!condition) file_.Refuse(std::string(cause));
  }

  // The file ends here, like files of an earlier format step.
  bool EndsHere() { return file_.AtEnd() || file_.Takes("EOF"); }
  bool Ended() const { return file_.Ended(); }
  Failure Why() const { return foreign_ ? Failure{std::string(kInvalidHeader), ""} : file_.Why(); }

 private:
  template <class T>
  void In(T& plain) requires(std::is_arithmetic_v<T> || std::same_as<T, std::string>) {
    file_.Line(plain);
  }
  template <class Word>
  void In(Word& word) requires(std::is_enum_v<Word>) {
    std::string name;
    file_.Line(name);
    const std::optional<Word> read = Named<Word>(name);
    RequireWord(read.has_value(), name);
    if (Good()) word = *read;
  }
  template <class Word>
  void In(std::optional<Word>& word) {
    std::string name;
    file_.Line(name);
    const std::optional<Word> read = Named<Word>(name);
    RequireWord(read.has_value() || name.empty(), name);
    if (Good()) word = read;
  }
  template <class T>
  void In(Within<T>& field) {
    T read = field.Value;
    file_.Line(read);
    const auto number = static_cast<double>(read);
    Require(number >= field.Low && number <= field.High,
            std::string(field.Name) + " is " + PlainNumber(number) + ", not from " +
                PlainNumber(field.Low) + " to " + PlainNumber(field.High));
    if (Good()) field.Value = read;
  }
  template <class T, class List>
  void In(OneOf<T, List>& field) {
    T read{};
    file_.Line(read);
    const bool known = std::any_of(field.Choices.begin(), field.Choices.end(),
                                   [&read](const auto& choice) { return choice == read; });
    Require(known, std::string(field.Name) + " is not one of its choices");
    if (Good()) field.Value = read;
  }
  template <class T>
  void In(InMhz<T>& field) {
    double mhz = 0;
    file_.Line(mhz);
    const double hz = mhz * 1e6;
    const bool fits = std::fabs(hz) <= static_cast<double>(std::numeric_limits<float>::max());
    Require(fits, "a frequency is out of range");
    if (Good()) field.Hz = static_cast<float>(hz);
  }
  template <class T>
  void In(ColourNumber<T>& field) {
    std::int32_t bgr = 0;
    file_.Line(bgr);
    Require(bgr >= 0 && bgr <= 0xFFFFFF, "a colour is out of range");
    const auto number = static_cast<std::uint32_t>(bgr);
    if (Good()) field.Rgb = (number & 0xFF) << 16 | (number & 0xFF00) | number >> 16;
  }
  template <class T>
  void In(Ticked<T>& field) {
    std::int16_t read = 0;
    file_.Line(read);
    Require(read == 0 || read == 1, "a switch is neither 0 nor 1");
    if (Good()) field.Flag = read == 1;
  }
  template <class Word>
  void In(PlaceOf<Word>& field) {
    std::int16_t read = 0;
    file_.Line(read);
    Require(read >= 0 && read < static_cast<int>(TableOf(Word{}).size()),
            "a choice is out of range");
    if (Good()) field.Value = static_cast<Word>(read);
  }
  template <class Mode>
  void In(KindName<Mode>& field) {
    std::string name;
    file_.Line(name);
    const Mode read = CalKindNamed(name);
    RequireWord(CalKindName(read) == name, name);
    if (Good()) field.Value = read;
  }
  void In(Follows& field) {
    bool read = field.Flag;
    file_.Line(read);
    Require(read == field.Flag, "a flag contradicts " + std::string(field.From));
  }
  void In(Spare&) {
    double passedOver = 0;
    file_.Line(passedOver);
  }

  void RequireWord(bool known, const std::string& word) {
    Require(known, "'" + word + "' is not one of the words allowed here");
  }

  CommaReader file_;
  bool foreign_ = false;
  bool extended_ = false;
};

// Reads a later step of the format: true if it is complete. False without an error if the file ends
// before it or inside it; otherwise false with the error recorded.
template <class Walk>
bool ReadStep(RowReader& file, Walk walk) {
  if (file.EndsHere()) return false;
  walk();
  return file.Good();
}

// Sets values that follow from the rows.
void Settle(Session& session) {
  CalState& cal = session.Cal;
  if (cal.CalDataReady) {
    if (cal.CalS21 || cal.Cal12Term || cal.CalS11S21) cal.CalThruReady = true;
    if (cal.CalS11) cal.CalThruReady = false;
  }
  for (int n = 1; n <= kChannels; ++n)
    session.Channel(n).Active = n == session.Display.ActiveChannel;
}

// Resets the extension as for a file without a fourth step.
void ForgetExtension(Session& session) {
  for (ChannelSettings& channel : session.Channels)
    static_cast<ChannelSettings::Extension&>(channel) = {};
  const DisplayState display;
  session.Display.MemoryNumber = display.MemoryNumber;
  session.Display.MemoryShown = display.MemoryShown;
  for (MemoryBank& bank : session.MoreMemories)
    for (StoredTrace& trace : bank.OfChannels) {
      trace.Valid = false;
      trace.Of.reset();
    }
  const TimeDomainState td;
  TimeDomainState& own = session.TimeDomain;
  own.Axis = td.Axis;
  own.Cable = td.Cable;
  own.VelocityFactor = td.VelocityFactor;
  own.Gate = td.Gate;
  own.GateStart = td.GateStart;
  own.GateStop = td.GateStop;
}

// Reads into fresh, a copy of the session, first.
Result<Done> Read(std::string_view bytes, Session& session, Session& fresh) {
  RowReader file(bytes);
  FirstStep(file, fresh);
  if (!file.Good()) return file.Why();

  fresh.Cal.CalInterpolated = false;
  const bool second = ReadStep(file, [&] { SecondStep(file, fresh); });
  const bool third = second && ReadStep(file, [&] { ThirdStep(file, fresh); });
  if (!file.Good() && (!file.Ended() || file.Extended())) return file.Why();
  ForgetExtension(fresh);
  if (file.Extended()) {
    file.Require(third, "the file ends before a part that it says it needs");
    FourthStep(file, fresh);
    if (!file.Good()) return file.Why();
  }
  if (!second) {
    fresh.SavedTerms = session.SavedTerms;  // a part of the step may have been read
    SaveCalForInterpolation(fresh);
  }
  if (!third) {
    fresh.Kit1.KitHasThru = session.Kit1.KitHasThru;
    fresh.Kit1.KitThruData = session.Kit1.KitThruData;
    fresh.MemoryZoSet = session.MemoryZoSet;
  }
  Settle(fresh);
  session = fresh;
  return Done{};
}
}  // namespace

Result<Done> ReadSession(std::string_view bytes, Session& session) {
  return Read(bytes, session, *std::make_unique<Session>(session));
}

Result<Done> ReadSession(std::string_view bytes, Session& session, Session& room) {
  room = session;
  return Read(bytes, session, room);
}

Result<Done> LoadSession(const std::string& path, Session& session) {
  const Result<std::string> bytes = ReadWhole(path, kLargestSession);
  if (!bytes) return bytes.Why();
  Result<Done> read = ReadSession(*bytes, session);
  if (!read && read.Why().Message != kInvalidHeader) return Failure{read.Why().Message, path};
  if (read) {
    TypedLimits typed;
    session.CalMade = ReadCalInfo(path, *bytes, &typed);
    PutTypedLimits(typed, session.Limits);
  }
  return read;
}

CalRecord CalRecordIn(const std::string& path) {
  const Result<std::string> bytes = ReadWhole(path, kLargestSession);
  return bytes ? ReadCalInfo(path, *bytes) : CalRecord();
}

}  // namespace qk
