// The drawn geometry of dimensions: the anonymous "*D" block that a DIMENSION
// entity shows, computed from its defining points and its dimension variables
// (with the entity's overrides) the way CAD programs build it, so that readers
// that only draw the block see the same picture as programs that recompute it.
#pragma once

#include "drawings/OdDbDimension.h"

// Replaces the contents of the dimension's block with freshly computed entities,
// in the order CAD programs write them: extension lines, dimension line (split
// around the text where the text sits on it), arrowheads (SOLIDs for the default
// closed filled arrow, INSERTs of the arrow blocks otherwise), the text (MTEXT;
// TEXT in R12 drawings) and the definition points on layer "Defpoints".
//
// The block record and its BLOCK/ENDBLK are kept, and so are its entities while
// their kinds follow the same order (respelled in place, keeping their handles;
// the others are erased, so undo brings them back); a dimension without a block
// gets a new "*D<n>" and its code 2 is set. The text stays at textPosition() when
// the user placed it (isUsingDefaultTextPosition() false); otherwise its computed
// middle becomes the dimension's text position. From R2000 on the measurement
// (code 42) is updated too.
//
// Text is measured, for gaps and fit, with metrics of a few fonts (txt, simplex,
// romans, Arial, Play) kept here; text in other fonts is measured as txt.
//
// Every kind of dimension is computed: rotated, aligned, angular (2 lines and
// 3 points), radial, diametric, ordinate, arc length (with its symbol) and jogged
// radial. eNotImplementedYet for a dimension class outside these, eNotInDatabase
// when the dimension is in no drawing, eNotOpenForWrite when it is not open for write.
OdResult recomputeDimBlock(OdDbDimension& dim);
