// SPDX-License-Identifier: MIT
// The whole program over the simulated instrument, with remote clients, on the clock that the test
// moves. What clients post runs when the program lets events run, as in a message loop.
#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "scpi/remote.h"
#include "support/fake_host.h"
#include "support/link_fixture.h"
#include "support/program_fixture.h"
#include "support/recording_canvas.h"
#include "support/scratch_folder.h"

namespace qk::test {

// A client's end of a connection.
class TestClient : public scpi::Transport {
 public:
  explicit TestClient(scpi::Remote& remote, std::string address = "test")
      : remote_(remote), client(remote.Connect(*this, std::move(address))) {}
  ~TestClient() override {
    if (client != nullptr) remote_.Disconnect(*client);
  }

  void Send(std::string_view bytes) override { received += bytes; }
  std::size_t Unsent() const override { return unread; }
  void Close() override { closed = true; }
  void RequestInput() override { ++inputWanted; }
  void AllAnswered() override { answered = true; }

  void Bytes(std::string_view bytes) {
    client->Receive(bytes);
    remote_.Serve(*client);
  }
  void Write(const std::string& message) { Bytes(message + "\n"); }
  // What has been received since, without the last line end.
  std::string Take() {
    std::string taken = std::exchange(received, {});
    if (taken.ends_with('\n')) taken.pop_back();
    return taken;
  }

 private:
  scpi::Remote& remote_;

 public:
  scpi::Client* client;
  std::string received;
  std::size_t unread = 0;
  bool closed = false, answered = false;
  int inputWanted = 0;
};

// Shown by a form of the program to a person who clicks and answers.
struct RemoteFixture : SimulatedLine, Hands {
  explicit RemoteFixture(sim::Pace pace = sim::Pace::Unpaced) : SimulatedLine(pace), Hands(fake) {
    fake.OnTick = [this](TimerId timer) { program.Tick(timer); };
    fake.OnEvents = [this] {
      if (OnEvents) OnEvents();
      RunPosted();
    };
    program.StartUp();
    fake.Show("Form1");
    Write("*CLS");
  }
  ~RemoteFixture() { fake.OnEvents = {}; }

  // Runs what has been posted, whole sweeps too.
  void RunPosted() {
    for (std::size_t n = posted.size(); n > 0 && !posted.empty(); --n) {
      const auto act = std::move(posted.front());
      posted.pop_front();
      act();
    }
  }
  void Settle() {
    for (int i = 0; i < 1000 && !posted.empty(); ++i) RunPosted();
  }

  void Write(const std::string& message) { one.Write(message); }
  // The answer, after everything that has been posted has run.
  std::string Ask(const std::string& message) { return Ask(one, message); }
  std::string Ask(TestClient& client, const std::string& message) {
    client.Take();
    client.Write(message);
    Settle();
    return client.Take();
  }
  std::string Error() { return Ask("SYST:ERR?"); }
  // All errors since, which are then forgotten.
  std::string Errors() { return Ask("SYST:ERR:ALL?"); }
  static constexpr const char* kNone = "0,\"No error\"";

  // Applies limits to channel 1 from 100 MHz to 3 GHz; their test stays off.
  void ApplyLimits(const std::string& upper, const std::string& lower) {
    fake.Show("NewLimitsSet");
    Type("NewLimitsSet.Text1", "100");
    Type("NewLimitsSet.Text2", "3000");
    Type("NewLimitsSet.Text3", upper);
    Type("NewLimitsSet.Text4", lower);
    Click("NewLimitsSet.Command2");
    Click("NewLimitsSet.Command1");
  }
  static constexpr const char* kUntested = "-221,\"Settings conflict;the trace is not tested\"";

  // A calibration of all twelve terms at these points, in force.
  void Calibrate(const std::string& points = "51") {
    Write("SENS:FREQ:STAR 100 MHZ;STOP 3 GHZ;:SENS:SWE:POIN " + points);
    Write("SENS:CORR:COLL:METH INS");
    for (const std::string n : {"1", "2"}) {
      Collect("port" + n + " open", "OPEN," + n);
      Collect("port" + n + " short", "SHOR," + n);
      Collect("port" + n + " load", "LOAD," + n);
    }
    Collect("through", "THRU");
    Write("SENS:CORR:COLL ISOL");
    Settle();
    Write("SENS:CORR:COLL:SAVE");
    Settle();
    ASSERT_EQ(Errors(), kNone);
    ASSERT_EQ(session.Panels[3], "12 Term Cal");
  }
  void Collect(const std::string& bench, const std::string& standard) {
    Bench(bench);
    if (bench.starts_with("port1")) Bench("port2 load");
    if (bench.starts_with("port2")) Bench("port1 load");
    if (bench == "port2 load") Bench("port1 load");
    Write("SENS:CORR:COLL " + standard);
    Settle();
  }

  std::deque<std::function<void()>> posted;
  std::function<void()> OnEvents;
  FakeHost fake{clock};
  RecordingSurface surface;
  ScratchFolder folder;
  Program program{fake.registry(), fake.host(), port, surface, ProgramOptions{folder.Text(), 1}};
  Session& session = program.session();
  scpi::Remote remote{program,
                      [this](std::function<void()> act) { posted.push_back(std::move(act)); }};
  TestClient one{remote, "one"};
};

struct RemoteTest : testing::Test, RemoteFixture {};
struct PacedRemoteTest : testing::Test, RemoteFixture {
  PacedRemoteTest() : RemoteFixture(sim::Pace::Baud115200) {}
};

// Numbers of a list.
inline std::vector<double> Numbers(const std::string& text) {
  std::vector<double> numbers;
  std::size_t at = 0;
  while (at < text.size()) {
    const std::size_t end = std::min(text.find(',', at), text.size());
    numbers.push_back(std::stod(text.substr(at, end - at)));
    at = end + 1;
  }
  return numbers;
}

}  // namespace qk::test
