// SPDX-License-Identifier: MIT
// The source of the text front panel's commands: standard input, a script, or a test.
#pragma once

#include <string>

namespace qk {

class LineSource {
 public:
  enum class Got { Line, Nothing, End };

  virtual ~LineSource() = default;
  // Waits up to waitMs milliseconds (0: does not wait, negative: no limit) for the next line, which
  // is returned without its line end. A last line without a line end counts as a line.
  virtual Got Next(int waitMs, std::string& line) = 0;
  // True if no further line will come, as far as is known without waiting.
  virtual bool AtEnd() = 0;
  // The reason if the input ended prematurely; otherwise empty.
  virtual std::string Broken() const { return {}; }
};

// Lines from a file descriptor; sleeps in the system while there are none. The caller keeps
// ownership of the descriptor. A line longer than kLongest ends the input: it cannot be a command.
class DescriptorLines : public LineSource {
 public:
  static constexpr std::size_t kLongest = 1 << 20;

  // wake: a second descriptor that ends a wait when it becomes readable; -1 for none.
  explicit DescriptorLines(int descriptor, int wake = -1) : descriptor_(descriptor), wake_(wake) {}
  Got Next(int waitMs, std::string& line) override;
  bool AtEnd() override;
  std::string Broken() const override;

 private:
  bool TakeLine(std::string& line);
  // False if nothing arrived in time.
  bool Fill(int waitMs);

  int descriptor_, wake_;
  bool end_ = false;
  bool tooLong_ = false;
  std::size_t searched_ = 0;  // bytes of buffer_ already searched for a line end
  std::string buffer_;
};

}  // namespace qk
