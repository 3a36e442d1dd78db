// Finding entities without a view: by handle, by a typed point, by a window,
// and the selection-set service that remembers the last selection.
//
// An entity is found through its characteristic points: line ends, the
// insertion point of blocks and texts, the text position (11) and definition
// point (10) of dimensions, leader vertices, polyline and solid corners, the
// quadrant points of circles and the ends of arcs. Only entities of model space
// that are not erased take part, in drawing order.
#pragma once

#include <string_view>
#include <vector>

#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbEntity.h"
#include "drawings/OdDbGeometry.h"

std::vector<OdGePoint3d> hostEntityPoints(const OdDbEntity& entity);

// Model-space entities that can be selected, in drawing order.
OdDbObjectIdArray hostSelectableEntities(const OdDbDatabase& db);

// The entity with the point nearest to `p` (the later one of equals, as it lies
// on top). With no view there is no pick box, so any distance counts. Null when
// nothing has points.
OdDbObjectId hostPickNearest(const OdDbDatabase& db, const OdGePoint2d& p);

// Entities inside the window given by two opposite corners: every point inside
// for a window, any point inside for a crossing window. Edges count as inside.
OdDbObjectIdArray hostSelectWindow(const OdDbDatabase& db, const OdGePoint2d& corner1, const OdGePoint2d& corner2,
                                   bool crossing);

// The entity of a layout (model or paper space) whose handle `hex` spells; null
// when the text is not a handle or names no such entity.
OdDbObjectId hostEntityByHandle(const OdDbDatabase& db, std::string_view hex);

// "x,y" or "x,y,z" with '.' as the decimal mark whatever the locale.
bool hostParsePoint(std::string_view text, OdGePoint2d& p);

// A document's selection sets: the selection that "Previous" selects again.
class HostSelectionSetManager {
public:
  // The last completed selection, without entities erased since.
  OdDbObjectIdArray previous() const;
  void setPrevious(OdDbObjectIdArray ids) { m_previous = std::move(ids); }

private:
  OdDbObjectIdArray m_previous;
};
