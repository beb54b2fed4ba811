// SPDX-License-Identifier: MIT
// The simulated instrument behind a pseudo-terminal, with a named pipe for bench lines.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "sim/instrument.h"
#include "sim/simulated_port.h"
#include "sim/wire.h"

namespace qk::sim {

// A file descriptor that closes itself.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int fd) : fd_(fd) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { Reset(); }
  void Reset(int fd = -1);
  int Get() const { return fd_; }
  bool IsOpen() const { return fd_ >= 0; }

 private:
  int fd_ = -1;
};

class PtyServer {
 public:
  PtyServer(Instrument& instrument, std::string link, std::string control);
  // Removes the link when it is still its own, and the pipe when it made it.
  ~PtyServer();

  // Opens the pseudo-terminal, the link and the pipe; what went wrong, or empty.
  std::string Open();
  // Serves until stopFd can be read. A terminal that can no longer be had is told.
  std::string Serve(int stopFd);
  // A client holds the terminal open, as far as was last seen. From any thread.
  bool HasClient() const { return client_; }

 private:
  std::string LinkPathTaken() const;
  std::string OpenTerminal();
  std::string OpenControl();
  void CloseTerminal();
  void ReadyForClient() const;
  void ReadTerminal();
  void WriteTerminal();
  void ReadControl();
  void RunBenchLines();
  // Follows the cable: out when the bench pulled it, in again.
  std::string FollowCable();
  void ClientGone();
  int WaitMs() const;

  Instrument& instrument_;
  Wire wire_;
  PortClock clock_;
  std::string link_, control_;
  Descriptor master_, pipe_;
  std::string slaveName_;
  bool madeControl_ = false;
  int unpluggings_;
  std::atomic<bool> client_ = false;
  std::vector<std::uint8_t> toClient_;
  std::string controlText_;
};

}  // namespace qk::sim
