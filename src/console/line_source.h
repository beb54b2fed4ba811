// SPDX-License-Identifier: MIT
// Where the commands of the text front panel come from: standard input, a script, or a test.
#pragma once

#include <string>

namespace qk {

class LineSource {
 public:
  enum class Got { Line, Nothing, End };

  virtual ~LineSource() = default;
  // Waits up to waitMs milliseconds (0: not at all, negative: without limit) for the next line,
  // which is given without its line end. A last line without a line end counts as a line.
  virtual Got Next(int waitMs, std::string& line) = 0;
  // No further line will come, as far as is known without waiting.
  virtual bool AtEnd() = 0;
  // Why the lines ended before their end; empty when they did not.
  virtual std::string Broken() const { return {}; }
};

// Lines from a file descriptor; sleeps in the system while there are none. The descriptor stays
// the caller's. A line longer than kLongest ends them: it is no command.
class DescriptorLines : public LineSource {
 public:
  static constexpr std::size_t kLongest = 1 << 20;

  // wake: a second descriptor that ends a wait when it can be read; -1 for none.
  explicit DescriptorLines(int descriptor, int wake = -1) : descriptor_(descriptor), wake_(wake) {}
  Got Next(int waitMs, std::string& line) override;
  bool AtEnd() override;
  std::string Broken() const override;

 private:
  bool TakeLine(std::string& line);
  // False when nothing came within the time.
  bool Fill(int waitMs);

  int descriptor_, wake_;
  bool end_ = false;
  bool tooLong_ = false;
  std::size_t searched_ = 0;  // bytes of buffer_ known to hold no line end
  std::string buffer_;
};

}  // namespace qk
