// SPDX-License-Identifier: MIT
// The writer for the table of a session file.
#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "core/vocabulary.h"
#include "files/cal_info.h"
#include "files/comma_form.h"
#include "files/session_file.h"
#include "files/session_rows.h"
#include "files/whole_file.h"

namespace qk {

namespace {
using namespace session_rows;

// Writes each field as an item of the file. Values that the reader would refuse are clamped to
// their bounds, so that every written file can be read.
class RowWriter {
 public:
  explicit RowWriter(std::size_t expectedBytes) : file_(expectedBytes) {}

  bool Good() const { return true; }
  void Header(std::string_view version) { file_.Line(version); }
  template <class... Fields>
  void Line(const Fields&... fields) {
    file_.Line(Out(fields)...);
  }
  void Needs(std::string_view words, const Session& session) {
    if (NeedsFourthStep(session)) file_.Line(words);
  }
  void Grid(const PlanGrid&) {}
  void Require(bool, std::string_view) {}
  std::string Bytes() && { return std::move(file_).Bytes(); }

 private:
  template <class T>
  static const T& Out(const T& plain) requires(!std::is_enum_v<T>) {
    return plain;
  }
  template <class Word>
  static std::string_view Out(Word word) requires(std::is_enum_v<Word>) {
    return NameOf(word);
  }
  template <class Word>
  static std::string_view Out(const std::optional<Word>& word) {
    return word ? NameOf(*word) : std::string_view();
  }
  template <class T>
  static auto Out(const Within<T>& field) {
    using Number = std::remove_const_t<T>;
    const auto low = static_cast<Number>(field.Low), high = static_cast<Number>(field.High);
    return field.Value >= low ? std::min<Number>(field.Value, high) : low;
  }
  template <class T, class List>
  static const T& Out(const OneOf<T, List>& field) {
    return field.Value;
  }
  template <class T>
  static double Out(const InMhz<T>& field) {
    return std::isfinite(field.Hz) ? static_cast<double>(field.Hz) / 1e6 : 0;
  }
  template <class T>
  static std::int32_t Out(const ColourNumber<T>& field) {
    return static_cast<std::int32_t>((field.Rgb >> 16 & 0xFF) | (field.Rgb & 0xFF00) |
                                     (field.Rgb & 0xFF) << 16);
  }
  template <class T>
  static std::int16_t Out(const Ticked<T>& field) {
    return field.Flag ? 1 : 0;
  }
  template <class Word>
  static std::int16_t Out(const PlaceOf<Word>& field) {
    return static_cast<std::int16_t>(field.Value);
  }
  template <class Mode>
  static std::string_view Out(const KindName<Mode>& field) {
    return CalKindName(field.Value);
  }
  static bool Out(const Follows& field) { return field.Flag; }
  static std::int16_t Out(Spare) { return 0; }

  CommaWriter file_;
};
}  // namespace

std::string SessionBytes(const Session& session) {
  constexpr std::size_t kBytesAPoint = 2500;  // with every array used
  RowWriter file(kBytesAPoint * static_cast<std::size_t>(session.Plan.NumPoints) + 20000);
  FirstStep(file, session);
  SecondStep(file, session);
  ThirdStep(file, session);
  if (NeedsFourthStep(session)) FourthStep(file, session);
  file.Line("EOF");  // the last row
  return std::move(file).Bytes();
}

Result<Done> SaveSession(const std::string& path, const Session& session) {
  const std::string bytes = SessionBytes(session);
  const TypedLimits typed = TypedLimitsOf(session.Limits);
  PrepareCalInfo(path, bytes, session.CalMade, typed);
  Result<Done> written = WriteWhole(path, bytes);
  if (written) WriteCalInfo(path, bytes, session.CalMade, typed);
  return written;
}

}  // namespace qk
