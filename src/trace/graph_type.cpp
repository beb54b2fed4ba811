#include "trace/graph_type.h"

namespace qk {

namespace {
GraphKind If(bool same, GraphKind kind) {
  return same ? kind : GraphKind::Unknown;
}
}  // namespace

GraphKind GraphKindOf(std::string_view graphType) {
  // The length alone nearly tells the types apart, so that each costs one comparison.
  switch (graphType.size()) {
    case 2:
      return If(graphType == "TD", GraphKind::Td);
    case 3:
      return If(graphType == "SWR", GraphKind::Swr);
    case 4:
      if (graphType == "Real") return GraphKind::Real;
      return If(graphType == "Imag", GraphKind::Imag);
    case 5:
      if (graphType == "Phase") return GraphKind::Phase;
      return If(graphType == "Smith", GraphKind::Smith);
    case 6:
      if (graphType == "LogMag") return GraphKind::LogMag;
      return If(graphType == "LinMag", GraphKind::LinMag);
    case 11:
      return If(graphType == "Group Delay", GraphKind::GroupDelay);
    default:
      return GraphKind::Unknown;
  }
}

}  // namespace qk
