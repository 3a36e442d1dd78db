// The geometry of a leader that points at an annotation: where its last vertex
// and its hook line go for the annotation and the leader's dimension variables, the
// way CAD programs re-place a leader when its dimension style changes.
#pragma once

#include "drawings/OdDbLeader.h"
#include "drawings/OdResult.h"

// The annotation stays where it is and the leader follows it:
// - The horizontal direction is the MTEXT's x direction (stored as code 211 when
//   it is not the world x axis), "up" the MTEXT's y direction.
// - The annotation lies on the side of the leader where its insertion point is,
//   seen from the vertex the leader's arm ends at (the one before the hook line,
//   or before the last vertex without one); code 74 follows. Where that vertex
//   is level with the insertion point, the stored side (74) is kept.
// - The point the leader attaches to is the insertion point, set back by
//   DIMGAP x DIMSCALE towards the leader. With DIMTAD not 0 (text above the
//   line) it is lowered to the bottom of the annotation's box and DIMGAP further,
//   so that the hook line runs under the text.
// - The last vertex is that point plus the user's offset (code 213, kept).
// - With a hook line (code 75) and three or more vertices, the vertex before the
//   last is DIMASZ x DIMSCALE from it, against the annotation's side.
// - Codes 40 and 41 take the annotation's measured height and width (the ink of
//   its lines, the first line's top no lower than its capitals).
// DIMSCALE 0 counts as 1. The arm's other vertices and code 77 stay as they are.
//
// A tolerance frame or a block reference has no line of text to run under: the
// last vertex is the annotation's insertion point plus the stored offset (213
// for a tolerance, 212 for a block), the horizontal is the frame's x direction
// or the block's rotation, and side and hook line follow as above.
//
// eOk also when there is nothing to place (no annotation, or its reference
// leads nowhere; fewer than two vertices); eNotImplementedYet when the
// annotation is not of the kind the leader says; eNotInDatabase when the leader
// is in no drawing; eNotOpenForWrite when it is not open for write.
OdResult recomputeLeader(OdDbLeader& leader);
