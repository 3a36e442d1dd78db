// What the drawing view shows, without widgets: one layout of a drawing as each
// entity's primitives, their extents, and hit testing in world coordinates.
#pragma once

#include <unordered_map>
#include <vector>

#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbVectorizer.h"
#include "drawings/OdGiPrimitives.h"

// One layout of a drawing: model space or a paper-space block record.
struct HostViewLayout {
  OdDbObjectId block;  // the block record; model space's for "Model"
  OdString name;       // as its tab shows it
};

// "Model" first, then each paper-space block record (*Paper_Space, *Paper_Space0,
// ...) named as its LAYOUT object names it, in tab order; records without one
// follow in block table order as "Layout1", "Layout2", ... (names not taken).
std::vector<HostViewLayout> hostViewLayouts(const OdDbDatabase& db);

// Distance from `p` to a primitive's ink: 0 inside filled polygons and text boxes.
double hostPrimitiveDistance(const OdGiRecorder::Primitive& primitive, const OdGePoint2d& p);
// Whether any of a primitive's ink lies in the rectangle (edges included).
bool hostPrimitiveTouches(const OdGiRecorder::Primitive& primitive, const OdGiExtents& rect);

class HostViewScene {
public:
  struct Entity {
    OdDbObjectId id;
    OdGiRecorder primitives;  // world units, in the order they paint
    OdGiExtents extents;
  };

  // Vectorizes the layout's entities (model space when `layout` is null), each on
  // its own, under the vectorizer's visibility rules: hidden entities are left out.
  // Throws OdError(eInvalidInput) when `layout` is no block record of `db`.
  void build(const OdDbDatabase& db, OdDbObjectId layout = OdDbObjectId());
  void clear();

  // In drawing order: later ones lie on top.
  const std::vector<Entity>& entities() const { return m_entities; }
  const OdGiExtents& extents() const { return m_extents; }
  const OdGiVectorizeStats& stats() const { return m_stats; }
  // Index into entities(), -1 when the entity is not shown.
  int indexOf(OdDbObjectId id) const;

  // The entity whose ink passes nearest to `p`, within `tolerance`; of equally
  // near ones the top-most. Null when none is that near.
  OdDbObjectId pick(const OdGePoint2d& p, double tolerance) const;
  // Entities lying entirely inside the rectangle given by two opposite corners.
  OdDbObjectIdArray window(const OdGePoint2d& corner1, const OdGePoint2d& corner2) const;
  // Entities with any ink inside the rectangle.
  OdDbObjectIdArray crossing(const OdGePoint2d& corner1, const OdGePoint2d& corner2) const;
  OdDbObjectIdArray all() const;

private:
  std::vector<Entity> m_entities;
  std::unordered_map<OdDbObjectId, int> m_index;
  OdGiExtents m_extents;
  OdGiVectorizeStats m_stats;
};
