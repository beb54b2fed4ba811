#include "console/line_source.h"

#include <array>
#include <cerrno>

#include <poll.h>
#include <unistd.h>

namespace qk {

bool DescriptorLines::TakeLine(std::string& line) {
  const std::size_t end = buffer_.find('\n', searched_);
  if (end == std::string::npos) {
    searched_ = buffer_.size();
    return false;
  }
  line.assign(buffer_, 0, end);
  buffer_.erase(0, end + 1);
  searched_ = 0;
  return true;
}

bool DescriptorLines::Fill(int waitMs) {
  pollfd entry{descriptor_, POLLIN, 0};
  const int ready = poll(&entry, 1, waitMs);
  if (ready == 0 || (ready < 0 && errno == EINTR)) return false;
  std::array<char, 65536> block;
  const ssize_t count = read(descriptor_, block.data(), block.size());
  if (count < 0 && (errno == EINTR || errno == EAGAIN)) return false;
  if (count <= 0)
    end_ = true;
  else
    buffer_.append(block.data(), static_cast<std::size_t>(count));
  return true;
}

LineSource::Got DescriptorLines::Next(int waitMs, std::string& line) {
  for (;;) {
    if (TakeLine(line)) return Got::Line;
    if (end_) break;
    // A line that comes in pieces restarts the wait; the caller's loop allows for waking early.
    if (!Fill(waitMs)) return Got::Nothing;
  }
  if (buffer_.empty()) return Got::End;
  line.swap(buffer_);
  buffer_.clear();
  searched_ = 0;
  return Got::Line;
}

}  // namespace qk
