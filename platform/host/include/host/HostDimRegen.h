// DIMREGEN: recomputes the blocks that dimensions show from their points and
// variables.
//   Dimensions to recompute [ALL/Select] <ALL>:
// ALL (or Enter) takes every dimension of the drawing: model space, the paper
// space layouts and the block definitions. Select asks for objects with the
// selection service ("Select objects: ") and keeps the dimensions among them.
// It ends with "N dimension(s) recomputed, M of kinds not computed yet."; the
// dimensions of kinds the geometry engine does not compute yet keep their blocks.
// The command runs in one undo group, so UNDO takes all of it back at once.
#pragma once

#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbObjectId.h"

struct HostDimRegenCount {
  int recomputed = 0;
  int notYet = 0;   // kinds that return eNotImplementedYet
  int failed = 0;   // any other error
};

// Every dimension in every block record of the drawing (layouts included).
OdDbObjectIdArray hostAllDimensions(const OdDbDatabase& db);
// Recomputes the dimensions among `ids`; other entities are skipped.
HostDimRegenCount hostRecomputeDimensions(const OdDbObjectIdArray& ids);
// The command, talking through the installed host context.
void hostDimRegenCommand();
