// SPDX-License-Identifier: MIT
// The simulated instrument on a pseudo-terminal, with a named pipe for bench commands.
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
  // Removes the link if it is still its own, and the pipe if it created it.
  ~PtyServer();

  // Opens the pseudo-terminal, the link and the pipe; returns the error, or an empty text.
  std::string Open();
  // Runs until stopFd becomes readable. Returns an error if the terminal is lost.
  std::string Serve(int stopFd);
  // True if a client had the terminal open at the last check. Callable from any thread.
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
  // Follows the cable state: disconnects when the bench unplugged it, and reconnects.
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
