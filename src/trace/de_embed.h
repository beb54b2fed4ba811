// SPDX-License-Identifier: MIT
// De-embedding: removes the active networks from port 1, port 2 or both of a corrected point. One
// function per kind of sweep. Parameters that the sweep does not deliver are replaced by a fixed
// value.
#pragma once

#include "core/session.h"

namespace qk {

// Point i counts from 0. The delivered parameters of the point are changed in place.
void DeEmbedPointS11(Session& session, int i);  // only the network of port 1
void DeEmbedPointS21(Session& session, int i);
void DeEmbedPointS11S21(Session& session, int i);
void DeEmbedPointAll(Session& session, int i);

}  // namespace qk
