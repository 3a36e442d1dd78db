// Geometric entities typed over their DXF tags: line, circle, arc, point, solid,
// lightweight polyline and block reference.
//
// New entities: Class::createFor(db) gives an entity with the tags a drawing of
// db's version expects (markers from R13 on, none in R12); set its values and
// append it with OdDbBlockTableRecord::appendOdDbEntity. Angles are in radians
// (DXF stores degrees).
#pragma once

#include "drawings/OdDbEntity.h"

class OdDbDatabase;

struct OdGePoint2d {
  double x = 0, y = 0;
  friend bool operator==(const OdGePoint2d& a, const OdGePoint2d& b) { return a.x == b.x && a.y == b.y; }
};

struct OdGeVector3d {
  double x = 0, y = 0, z = 0;
  friend bool operator==(const OdGeVector3d& a, const OdGeVector3d& b) { return a.x == b.x && a.y == b.y && a.z == b.z; }
};

struct OdGeScale3d {
  double sx = 1, sy = 1, sz = 1;
  friend bool operator==(const OdGeScale3d& a, const OdGeScale3d& b) { return a.sx == b.sx && a.sy == b.sy && a.sz == b.sz; }
};

// The base of entities that are paths (line, circle, arc, polyline, leader).
class OdDbCurve : public OdDbEntity {
  ODRX_DECLARE_MEMBERS(OdDbCurve)
};

class OdDbLine : public OdDbCurve {
  ODRX_DECLARE_MEMBERS(OdDbLine)

public:
  static OdSmartPtr<OdDbLine> createFor(const OdDbDatabase& db);
  OdGePoint3d startPoint() const;
  void setStartPoint(const OdGePoint3d& p);
  OdGePoint3d endPoint() const;
  void setEndPoint(const OdGePoint3d& p);
};
using OdDbLinePtr = OdSmartPtr<OdDbLine>;

class OdDbCircle : public OdDbCurve {
  ODRX_DECLARE_MEMBERS(OdDbCircle)

public:
  static OdSmartPtr<OdDbCircle> createFor(const OdDbDatabase& db);
  OdGePoint3d center() const;
  void setCenter(const OdGePoint3d& p);
  double radius() const;
  void setRadius(double r);
};
using OdDbCirclePtr = OdSmartPtr<OdDbCircle>;

// Counter-clockwise from startAngle to endAngle.
class OdDbArc : public OdDbCurve {
  ODRX_DECLARE_MEMBERS(OdDbArc)

public:
  static OdSmartPtr<OdDbArc> createFor(const OdDbDatabase& db);
  OdGePoint3d center() const;
  void setCenter(const OdGePoint3d& p);
  double radius() const;
  void setRadius(double r);
  double startAngle() const;
  void setStartAngle(double radians);
  double endAngle() const;
  void setEndAngle(double radians);
};
using OdDbArcPtr = OdSmartPtr<OdDbArc>;

class OdDbPoint : public OdDbEntity {
  ODRX_DECLARE_MEMBERS(OdDbPoint)

public:
  static OdSmartPtr<OdDbPoint> createFor(const OdDbDatabase& db);
  OdGePoint3d position() const;
  void setPosition(const OdGePoint3d& p);
};
using OdDbPointPtr = OdSmartPtr<OdDbPoint>;

// A filled quadrilateral; corners 0-3 in DXF order (the fourth equals the third
// for a triangle). An index outside 0-3 throws eInvalidInput.
class OdDbSolid : public OdDbEntity {
  ODRX_DECLARE_MEMBERS(OdDbSolid)

public:
  static OdSmartPtr<OdDbSolid> createFor(const OdDbDatabase& db);
  void getPointAt(int index, OdGePoint3d& p) const;
  void setPointAt(int index, const OdGePoint3d& p);
};
using OdDbSolidPtr = OdSmartPtr<OdDbSolid>;

// LWPOLYLINE: 2D vertices in the entity's plane at elevation(). A vertex index
// past the last one throws eInvalidInput (addVertexAt appends instead).
class OdDbPolyline : public OdDbCurve {
  ODRX_DECLARE_MEMBERS(OdDbPolyline)

public:
  static OdSmartPtr<OdDbPolyline> createFor(const OdDbDatabase& db);
  unsigned int numVerts() const;
  void getPointAt(unsigned int index, OdGePoint2d& p) const;
  void setPointAt(unsigned int index, const OdGePoint2d& p);
  double getBulgeAt(unsigned int index) const;
  void setBulgeAt(unsigned int index, double bulge);
  // Per-vertex widths, or the constant width where a vertex has none.
  void getWidthsAt(unsigned int index, double& startWidth, double& endWidth) const;
  void setWidthsAt(unsigned int index, double startWidth, double endWidth);
  // Inserts before vertex `index`, or appends when index >= numVerts(). Negative
  // widths leave the vertex without widths of its own.
  void addVertexAt(unsigned int index, const OdGePoint2d& p, double bulge = 0.0, double startWidth = -1.0,
                   double endWidth = -1.0);
  void removeVertexAt(unsigned int index);
  bool isClosed() const;
  void setClosed(bool closed);
  // Setting a constant width drops the per-vertex widths, which would override it.
  double getConstantWidth() const;
  void setConstantWidth(double width);
  double elevation() const;
  void setElevation(double z);
};
using OdDbPolylinePtr = OdSmartPtr<OdDbPolyline>;

// INSERT. Its block is named in the tags and found in the drawing's block table.
class OdDbBlockReference : public OdDbEntity {
  ODRX_DECLARE_MEMBERS(OdDbBlockReference)

public:
  static OdSmartPtr<OdDbBlockReference> createFor(const OdDbDatabase& db);
  // Null when the block is missing or the reference is in no drawing.
  OdDbObjectId blockTableRecord() const;
  void setBlockTableRecord(const OdDbObjectId& blockId);
  OdGePoint3d position() const;
  void setPosition(const OdGePoint3d& p);
  OdGeScale3d scaleFactors() const;
  void setScaleFactors(const OdGeScale3d& s);
  double rotation() const;
  void setRotation(double radians);
};
using OdDbBlockReferencePtr = OdSmartPtr<OdDbBlockReference>;
