// Arrowhead blocks of dimensions and leaders.
#pragma once

#include "drawings/OdDbDatabase.h"

namespace OdDmUtil {

// The name that DIMBLK and the arrow pickers use for the arrow that block
// `blockId` draws: a standard arrow by its canonical spelling ("_ArchTick",
// "_DotSmall"), whatever case the drawing stores its block in ("_ARCHTICK" in R12
// files); any other block by its own name; "" for a null id, which stands for the
// default closed filled arrow (and for an id that is not a block).
OdString arrowName(const OdDbObjectId& blockId);

// The block that draws arrow `name` in `db`, so that
// getArrowId(arrowName(id), db) == id for every arrow block of db:
// - "" or "." (what users type for the default): the null id, closed filled;
// - the name of a block that exists (compared without case): that block;
// - a standard arrow name, with or without its leading '_' and in any case: its
//   block, created when missing with the arrow drawn at size 1 (tip at the
//   origin, pointing along +X) on layer 0, with colour, linetype and lineweight
//   ByBlock so that the dimension's own properties show;
// - anything else, or a null db: the null id.
OdDbObjectId getArrowId(const OdString& name, OdDbDatabase* db);

}  // namespace OdDmUtil
