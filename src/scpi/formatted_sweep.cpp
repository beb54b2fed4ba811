// SPDX-License-Identifier: MIT
#include "scpi/formatted_sweep.h"

#include "trace/formatting.h"

namespace qk::scpi {

FormattedSweep::FormattedSweep(Session& session, int channel, const SweepData& sweep)
    : session_(session), channel_(channel) {
  live_->Take(session, channel);
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
  const Parameter parameter = session.Channel(channel).Parameter;
  const ComplexArray& points = ArrayOf(sweep.Data, parameter);
  for (int i = 1; i <= sweep.Grid.NumPoints; ++i)
    DispatchPointToChannel(session, sink, channel, points[i - 1], i, parameter);
}

FormattedSweep::~FormattedSweep() {
  live_->Restore(session_, channel_);
}

}  // namespace qk::scpi
