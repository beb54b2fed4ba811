// The modal windows of the non-insertable calibration, one standard on one port at a time, and the
// choice of the isolation method.
#pragma once

#include "cal/standards.h"
#include "core/form.h"
#include "core/host.h"
#include "core/session.h"

namespace qk {

// OpenCal, ShortCal, MatchCal: a button a port, and "Exit", which asks when a port is missing.
class PortCalForm : public Form {
 public:
  struct Texts {
    std::string Name;      // "OpenCal"
    std::string Title;     // "Open Cal"
    std::string Standard;  // "Open"
  };
  PortCalForm(Rig& rig, const Texts& texts, Standard port1, Standard port2);

  void OnOpen() override { PlainCaptions(); }
  bool OnCloseBox() override { return MayLeave(); }
  void PlainCaptions();
  // A port was left out, or its last sweep failed.
  bool Incomplete() const { return !port1_.Good || !port2_.Good; }

 private:
  struct Port {
    std::string Button;
    std::string Plain;
    Standard Measured;
    bool Pressed = false;
    bool Good = false;
  };
  void Measure(Port& port);
  void Exit();
  bool MayLeave();

  Rig& rig_;
  std::string title_;
  Port port1_, port2_;
  bool measuring_ = false;
};

// The through standard of the kit, between both ports.
class ThruCalForm : public Form {
 public:
  explicit ThruCalForm(Rig& rig);
  void OnOpen() override { PlainCaptions(); }
  bool OnCloseBox() override { return !measuring_; }
  void PlainCaptions();
  bool Incomplete() const { return !good_; }

 private:
  void Measure();
  void Exit();

  Rig& rig_;
  bool measuring_ = false;
  bool good_ = false;
};

// How the isolation of an insertable device is found. Opening it chooses the basic method.
class IsoMethodForm : public Form {
 public:
  explicit IsoMethodForm(Rig& rig);
  void OnOpen() override { rig_.session.Cal.IsoMethod = 0; }

 private:
  void Take(std::int16_t method);

  Rig& rig_;
};

}  // namespace qk
