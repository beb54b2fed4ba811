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
};

// Lines from a file descriptor; sleeps in the system while there are none. The descriptor stays
// the caller's.
class DescriptorLines : public LineSource {
 public:
  explicit DescriptorLines(int descriptor) : descriptor_(descriptor) {}
  Got Next(int waitMs, std::string& line) override;

 private:
  bool TakeLine(std::string& line);
  // False when nothing came within the time.
  bool Fill(int waitMs);

  int descriptor_;
  bool end_ = false;
  std::size_t searched_ = 0;  // bytes of buffer_ known to hold no line end
  std::string buffer_;
};

}  // namespace qk
