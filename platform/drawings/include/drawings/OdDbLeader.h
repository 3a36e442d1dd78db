// LEADER typed over its DXF tags: the vertex path, arrowhead and hook line, the
// dimension style that draws it and the annotation (MTEXT, tolerance or block
// reference) it points from. Created like the other entities (OdDbGeometry.h).
#pragma once

#include "drawings/OdDbGeometry.h"
#include "drawings/OdDimVarOverrides.h"

class OdDbLeader : public OdDbCurve, public OdDimVarOverrides {
  ODRX_DECLARE_MEMBERS(OdDbLeader)

public:
  enum AnnoType { kMText = 0, kFcf = 1, kBlockRef = 2, kNoAnno = 3 };

  // No vertices yet (a leader needs at least two), drawn with the current
  // dimension style ($DIMSTYLE), arrowhead on. R13 and later.
  static OdSmartPtr<OdDbLeader> createFor(const OdDbDatabase& db);

  int numVertices() const;
  // Index outside 0..numVertices()-1: vertexAt throws eInvalidInput, setVertexAt
  // returns false.
  OdGePoint3d vertexAt(int index) const;
  bool setVertexAt(int index, const OdGePoint3d& p);
  bool appendVertex(const OdGePoint3d& p);
  void removeLastVertex();

  bool hasArrowHead() const;
  void enableArrowHead();
  void disableArrowHead();
  bool hasHookLine() const;
  bool isSplined() const;
  void setToSplineLeader();
  void setToStraightLeader();

  // Where the annotation lies from the last vertex along the horizontal
  // direction: true on its side (code 74 = 0; the hook line then runs back against
  // the direction), false on the other (74 = 1, the default).
  bool annotationOnXDir() const;
  void setAnnotationOnXDir(bool onXDir);
  // The annotation's horizontal direction in world coordinates (211), (1, 0, 0)
  // when the leader does not store one.
  OdGeVector3d horizontalDirection() const;
  void setHorizontalDirection(const OdGeVector3d& dir);
  // The last vertex's offset from where the annotation places it (213), zero
  // when absent: what the user moved the leader's end off its annotation.
  OdGeVector3d annotationOffset() const;
  void setAnnotationOffset(const OdGeVector3d& offset);
  // For a block annotation, the last vertex's offset from the block's insertion
  // point (212), zero when absent.
  OdGeVector3d blockOffset() const;
  void setBlockOffset(const OdGeVector3d& offset);
  // The annotation's height and width as the leader last saw them (40, 41).
  double annotationHeight() const;
  double annotationWidth() const;
  void setAnnotationSize(double height, double width);

  AnnoType annoType() const;
  // Null when there is none or it is not in the drawing.
  OdDbObjectId annotationObjId() const;
  // The annotation must be an MTEXT, TOLERANCE or INSERT of the same drawing
  // (else eInvalidInput); it gets the leader among its reactors.
  void attachAnnotation(const OdDbObjectId& annoId);
  void detachAnnotation();

  // The DIMSTYLE record named by the leader; null when missing or in no drawing.
  OdDbObjectId dimensionStyle() const;
  void setDimensionStyle(const OdDbObjectId& styleId);

 protected:
  const OdDbObject& overridesHolder() const override { return *this; }
  OdDbObject& overridesHolder() override { return *this; }
  OdDbObjectId overridesStyle() const override { return dimensionStyle(); }
};
using OdDbLeaderPtr = OdSmartPtr<OdDbLeader>;
