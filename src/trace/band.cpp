// SPDX-License-Identifier: MIT
#include "trace/band.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>

#include "core/quantity_text.h"
#include "core/text.h"
#include "trace/formatting.h"
#include "trace/gate.h"
#include "trace/memory.h"
#include "trace/units.h"

namespace qk {

namespace {
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kFirstOrder = 0.25;  // of the distance to a point where the impedance has no value
constexpr double kAlike = 0.1;        // relative difference of the two halves shown as one width

double SizeOf(Complex z) {
  return Magnitude(z.re, z.im);
}

BandEnds About(double shown, double halfWidth) {
  return {shown - halfWidth, shown + halfWidth};
}

BandEnds DecibelEnds(const Region& region, double shown) {
  const double part = region.Radius / std::max(SizeOf(region.Centre), kDivisionFloor);
  return {region.ReachesZero() ? -kInfinity : shown + 20 * std::log10(1 - part),
          shown + 20 * std::log10(1 + part)};
}

double PhaseWidth(const Region& region) {
  if (region.ReachesZero()) return 180;
  return std::asin(region.Radius / SizeOf(region.Centre)) * 180 / std::numbers::pi;
}

// The smallest magnitude in the region.
double LeastOf(const Region& region) {
  return region.ReachesZero() ? 0 : SizeOf(region.Centre) - region.Radius;
}

double Ratio(double size) {
  return size < 1 ? (1 + size) / (1 - size) : kInfinity;
}

// The trace itself is limited to a ratio of 199.
BandEnds SwrEnds(const ChannelSettings& channel, const Region& region, double shown) {
  const double size = SizeOf(region.Centre), middle = SwrOf(size, 0);
  return {shown + InUnits(channel, SwrOf(LeastOf(region), 0) - middle),
          shown + InUnits(channel, Ratio(size + region.Radius) - middle)};
}

// How much the quantity of an impedance type changes with the impedance; empty for the quality
// factor.
std::optional<double> ComponentWidth(const ChannelSettings& channel, Complex ohms, double radius,
                                     double hertz) {
  const double w = 2 * std::numbers::pi * hertz;
  switch (channel.GraphType) {
    case GraphType::ImpedanceMagnitude:
    case GraphType::Resistance:
    case GraphType::Reactance:
      return radius;
    case GraphType::Inductance:
      return radius / w;
    case GraphType::Capacitance:
      if (radius > kFirstOrder * std::fabs(ohms.im)) return std::nullopt;
      return radius / (w * ohms.im * ohms.im);
    default:
      return std::nullopt;
  }
}

std::optional<BandEnds> ComponentEnds(const Session& session, const ChannelSettings& channel,
                                      const Region& region, int pointIndex, double shown) {
  const auto zo = static_cast<double>(session.Impedance.SystemZo);
  const Element element = ElementOf(channel);
  const auto radius = ImpedanceRadius(element, region, zo);
  if (!radius) return std::nullopt;
  const auto width = ComponentWidth(channel, component::ImpedanceOf(element, region.Centre, zo),
                                    *radius, session.Plan.Frequency(pointIndex - 1));
  if (!width || !std::isfinite(*width)) return std::nullopt;
  return About(shown, InUnits(channel, *width));
}

// A number picture with this number of decimals.
const char* PictureOf(int decimals) {
  constexpr std::array kPictures{"#0", "#0.0", "#0.00", "#0.000", "#0.0000", "#0.00000"};
  return kPictures[static_cast<std::size_t>(std::clamp(decimals, 0, 5))];
}

// The number of decimals at which a width has two digits.
int DecimalsOf(double width) {
  if (!(width > 0)) return 3;
  return 1 - static_cast<int>(std::floor(std::log10(width * (1 + 5e-3))));
}
}  // namespace

bool Region::ReachesZero() const {
  return SizeOf(Centre) <= std::max(Radius, ZeroRadius);
}

std::optional<double> ImpedanceRadius(Element element, const Region& region, double zo) {
  const double toOne = SizeOf(OnePlus(-region.Centre)), size = SizeOf(region.Centre);
  const bool series = element == Element::Series;
  if (!(region.Radius <= kFirstOrder * (series ? size : toOne))) return std::nullopt;
  switch (element) {  // |dZ / dS| of component::ImpedanceOf
    case Element::Series:
      return 2 * zo * region.Radius / (size * size);
    case Element::Shunt:
      return zo * region.Radius / (2 * toOne * toOne);
    case Element::Reflection:
      break;
  }
  return 2 * zo * region.Radius / (toOne * toOne);
}

std::optional<BandEnds> EndsOf(const Session& session, const ChannelSettings& channel,
                               const Region& region, int pointIndex, double shown) {
  if (!std::isfinite(shown)) return std::nullopt;
  const double radius = region.Radius;
  switch (channel.GraphType) {
    case GraphType::LogMag:
      return DecibelEnds(region, shown);
    case GraphType::Phase:
    case GraphType::UnwrappedPhase:
      return About(shown, PhaseWidth(region));
    case GraphType::Swr:
      return SwrEnds(channel, region, shown);
    case GraphType::LinMag: {
      const double width = InUnits(channel, radius);
      return BandEnds{region.ReachesZero() ? 0 : std::max(0.0, shown - width), shown + width};
    }
    case GraphType::Real:
    case GraphType::Imag:
      return About(shown, InUnits(channel, radius));
    case GraphType::ImpedanceMagnitude:
    case GraphType::Resistance:
    case GraphType::Reactance:
    case GraphType::Inductance:
    case GraphType::Capacitance:
      return ComponentEnds(session, channel, region, pointIndex, shown);
    case GraphType::Smith:
    case GraphType::GroupDelay:
    case GraphType::Quality:
    case GraphType::Td:
    case GraphType::TdImpedance:
      break;
  }
  return std::nullopt;
}

double ShownFor(const Session& session, const ChannelSettings& channel, Complex z, int pointIndex) {
  const GraphTypeRow& type = RowOf(channel.GraphType);
  switch (type.Form) {
    case PointForm::Quantity:
      return InUnits(channel, type.Formula(z));
    case PointForm::Component:
      return InUnits(channel, ComponentOf(session, channel, z, pointIndex));
    case PointForm::Unwrapped: {
      const double near = channel.Value[static_cast<std::size_t>(pointIndex)];
      const double phase = quantity::Degrees(z);
      return std::isfinite(near) ? phase + 360 * std::round((near - phase) / 360) : phase;
    }
    case PointForm::Chart:
    case PointForm::Delay:
    case PointForm::Spectrum:
      break;
  }
  return component::kNone;
}

namespace {
bool TypeHasBand(GraphType type) {
  switch (type) {
    case GraphType::GroupDelay:
    case GraphType::Quality:
    case GraphType::Td:
    case GraphType::TdImpedance:
      return false;
    default:
      return true;
  }
}

bool MathActs(const Session& session, int channel) {
  const DisplayState& display = session.Display;
  return display.DisplayMode == DisplayMode::MemoryMath &&
         display.MemoryFunction != MemoryFunction::None &&
         MemoryOf(session, channel, display.MemoryNumber).Valid;
}
}  // namespace

bool HasNoBand(const Session& session, int channel) {
  const ChannelSettings& settings = session.Channel(channel);
  return !TypeHasBand(settings.GraphType) || MathActs(session, channel) ||
         GateActs(session, settings);
}

std::string WhyNoBand(const Session& session, int channel) {
  const ChannelSettings& settings = session.Channel(channel);
  if (!TypeHasBand(settings.GraphType)) return std::string(NameOf(settings.GraphType));
  if (MathActs(session, channel)) return "memory math";
  return GateActs(session, settings) ? "gate" : "";
}

const char* BandPicture(double halfWidth) {
  return PictureOf(DecimalsOf(halfWidth));
}

std::string BandReadOut(double value, const BandEnds& edges, Unit unit) {
  if (!std::isfinite(value)) return std::string(kNoValue);
  double scale = 1;
  if (HasPrefixes(RowOf(unit).Family)) {
    const Unit best = BestUnit(unit, value * RowOf(unit).Size);
    scale = RowOf(unit).Size / RowOf(best).Size;
    unit = best;
  }
  const double up = scale * (edges.High - value), down = scale * (value - edges.Low);
  const double shown = scale * value;
  const std::string name = " " + std::string(NameOf(unit));
  if (!std::isfinite(up) || !std::isfinite(down)) {
    const char* picture = PictureOf(DecimalsOf(std::isfinite(up) ? up : down));
    std::string text = FormatNumber(shown, picture) + name;
    if (!std::isfinite(up) && !std::isfinite(down)) return text;
    return std::isfinite(up) ? text + ", at most " + FormatNumber(scale * edges.High, picture)
                             : text + ", at least " + FormatNumber(scale * edges.Low, picture);
  }
  const double wider = std::max(up, down);
  const char* picture = PictureOf(DecimalsOf(wider));
  if (std::fabs(up - down) <= kAlike * wider)
    return FormatNumber(shown, picture) + " ± " + FormatNumber(wider, picture) + name;
  return FormatNumber(shown, picture) + " +" + FormatNumber(up, picture) + " -" +
         FormatNumber(down, picture) + name;
}

}  // namespace qk
