// SPDX-License-Identifier: MIT
#include "scpi/formatted_sweep.h"

#include "trace/formatting.h"

namespace qk::scpi {

// Everything that formatting changes in the session.
struct FormattedSweep::Kept {
  ChannelSettings::PerPoint<double> Value, Value2;
  ChannelSettings::PerPoint<float> SmoothValue, SmoothValue2;
  std::array<double, kMaxPoints + 1> TdInRe, TdInIm;
  GateArrays::Points GateIn;
  float PhaseReflection, PhaseTransmission;
};

FormattedSweep::FormattedSweep(Session& session, int channel, const SweepData& sweep)
    : session_(session), channel_(channel) {
  ChannelSettings& settings = session.Channel(channel);
  const DisplayState& display = session.Display;
  kept_ = std::unique_ptr<Kept>(
      new Kept{settings.Value, settings.Value2, settings.SmoothValue, settings.SmoothValue2,
               session.TdArrays.TdInRe, session.TdArrays.TdInIm,
               session.Gates.In[static_cast<std::size_t>(channel - 1)], display.PrevPhaseReflection,
               display.PrevPhaseTransmission});

  class Sink : public PointSink {
   public:
    explicit Sink(Shown& shown) : shown_(shown) {}
    void PlotPoint(int /*channel*/, int pointIndex, double value, double value2) override {
      shown_.Value[static_cast<std::size_t>(pointIndex)] = value;
      shown_.Value2[static_cast<std::size_t>(pointIndex)] = value2;
    }

   private:
    Shown& shown_;
  } sink(*shown_);
  const ComplexArray& points = ArrayOf(sweep.Data, settings.Parameter);
  for (int i = 1; i <= sweep.Grid.NumPoints; ++i)
    DispatchPointToChannel(session, sink, channel, points[i - 1], i, settings.Parameter);
}

FormattedSweep::~FormattedSweep() {
  ChannelSettings& settings = session_.Channel(channel_);
  settings.Value = kept_->Value;
  settings.Value2 = kept_->Value2;
  settings.SmoothValue = kept_->SmoothValue;
  settings.SmoothValue2 = kept_->SmoothValue2;
  session_.TdArrays.TdInRe = kept_->TdInRe;
  session_.TdArrays.TdInIm = kept_->TdInIm;
  session_.Gates.In[static_cast<std::size_t>(channel_ - 1)] = kept_->GateIn;
  session_.Display.PrevPhaseReflection = kept_->PhaseReflection;
  session_.Display.PrevPhaseTransmission = kept_->PhaseTransmission;
}

}  // namespace qk::scpi
