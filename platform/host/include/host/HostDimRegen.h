// DIMREGEN: recomputes the blocks that dimensions show from their points and
// variables, and re-places leaders on their annotations (LeaderGeometry.h).
//   Dimensions to recompute [ALL/Select] <ALL>:
// ALL (or Enter) takes every dimension and leader of the drawing: model space,
// the paper space layouts and the block definitions. Select asks for objects with
// the selection service ("Select objects: ") and keeps the dimensions and leaders
// among them. It ends with "N dimension(s) and L leader(s) recomputed.", adding
// ", M left as they were" for dimensions of a kind the geometry engine does not
// compute and leaders whose annotation is not of the kind they name (they keep
// their blocks and vertices), and ", K failed" for any other error.
// The command runs in one undo group, so UNDO takes all of it back at once.
#pragma once

#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbObjectId.h"

struct HostDimRegenCount {
  int recomputed = 0;  // dimensions
  int leaders = 0;     // leaders re-placed (or with nothing to place)
  int notYet = 0;      // left as they were: eNotImplementedYet
  int failed = 0;      // any other error
};

// Every dimension and leader in every block record of the drawing (layouts included).
OdDbObjectIdArray hostAllDimensions(const OdDbDatabase& db);
// Recomputes the dimensions and leaders among `ids`; other entities are skipped.
HostDimRegenCount hostRecomputeDimensions(const OdDbObjectIdArray& ids);
// The command, talking through the installed host context.
void hostDimRegenCommand();
