// SPDX-License-Identifier: MIT
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
  std::array<pollfd, 2> entries = {{{descriptor_, POLLIN, 0}, {wake_, POLLIN, 0}}};
  if (poll(entries.data(), entries.size(), waitMs) <= 0 || entries[0].revents == 0) return false;
  std::array<char, 65536> block;
  const ssize_t count = read(descriptor_, block.data(), block.size());
  if (count < 0 && (errno == EINTR || errno == EAGAIN)) return false;
  if (count > 0) buffer_.append(block.data(), static_cast<std::size_t>(count));
  end_ = count <= 0;
  return true;
}

LineSource::Got DescriptorLines::Next(int waitMs, std::string& line) {
  for (;;) {
    if (TakeLine(line)) return Got::Line;
    if (buffer_.size() > kLongest) {
      end_ = tooLong_ = true;
      buffer_.clear();
    }
    if (end_) break;
    // A line that arrives in pieces restarts the wait; callers expect early returns.
    if (!Fill(waitMs)) return Got::Nothing;
  }
  if (buffer_.empty()) return Got::End;
  line.swap(buffer_);
  buffer_.clear();
  searched_ = 0;
  return Got::Line;
}

bool DescriptorLines::AtEnd() {
  if (!end_ && buffer_.empty()) Fill(0);
  return end_ && buffer_.empty();
}

std::string DescriptorLines::Broken() const {
  return tooLong_ ? "a line of more than " + std::to_string(kLongest) + " bytes" : std::string();
}

}  // namespace qk
