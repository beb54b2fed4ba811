// SPDX-License-Identifier: MIT
// De-embedding: the networks in use are taken off port 1, port 2 or both of a corrected point. One
// routine for each kind of sweep; what a sweep does not deliver takes a fixed value.
#pragma once

#include "core/session.h"

namespace qk {

// Point i counts from 0. The point is changed in place, in the parameters that the sweep delivers.
void DeEmbedPointS11(Session& session, int i);  // port 1's network alone
void DeEmbedPointS21(Session& session, int i);
void DeEmbedPointS11S21(Session& session, int i);
void DeEmbedPointAll(Session& session, int i);

}  // namespace qk
