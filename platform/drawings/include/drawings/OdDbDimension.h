// Dimension entities. Every dimension variable of a dimension is its style's value
// unless the dimension overrides it ("ACAD" "DSTYLE" extended data).
#pragma once

#include <vector>

#include "drawings/OdDbEntity.h"
#include "drawings/OdDimVarOverrides.h"

class OdDbDimension : public OdDbEntity, public OdDimVarOverrides {
  ODRX_DECLARE_MEMBERS(OdDbDimension)

public:
  // The style (code 3); files that name none use "Standard".
  OdDbObjectId dimensionStyle() const;
  void setDimensionStyle(const OdDbObjectId& styleId);

  // The user's text: "" or "<>" the measurement, " " none, else the text with "<>"
  // standing for the measurement.
  OdString dimensionText() const;
  void setDimensionText(const OdString& text);
  OdGePoint3d textPosition() const;  // code 11
  void setTextPosition(const OdGePoint3d& p);
  double textRotation() const;  // radians (code 53, degrees in the file)
  void setTextRotation(double radians);
  // The measurement written by the program that computed the block (code 42);
  // radians for angular dimensions. Null when the file has none.
  std::optional<double> measurement() const;
  bool isUsingDefaultTextPosition() const;  // bit 128 of code 70 clear
  // The block that holds the dimension's drawn geometry (code 2).
  OdDbObjectId dimBlockId() const;
  // 0 rotated, 1 aligned, 2 two-line angular, 3 diameter, 4 radius, 5 three-point
  // angular, 6 ordinate (code 70 & 7); arc-length and large-radius dimensions are
  // entities of their own.
  int dimensionType() const;
  // The associativity object (extension dictionary entry "ACAD_DIMASSOC"); null when
  // the dimension is not associative.
  OdDbObjectId dimAssocId() const;
  bool isAssociative() const { return !dimAssocId().isNull(); }

protected:
  const OdDbObject& overridesHolder() const override { return *this; }
  OdDbObject& overridesHolder() override { return *this; }
  OdDbObjectId overridesStyle() const override { return dimensionStyle(); }
  OdGePoint3d point(std::string_view marker, int code) const;
  void setPoint(std::string_view marker, int code, const OdGePoint3d& p);
};
using OdDbDimensionPtr = OdSmartPtr<OdDbDimension>;

class OdDbAlignedDimension : public OdDbDimension {
  ODRX_DECLARE_MEMBERS(OdDbAlignedDimension)

public:
  // A new aligned dimension (type 1), made like OdDbRotatedDimension::createFor.
  static OdSmartPtr<OdDbAlignedDimension> createFor(const OdDbDatabase& db);
  OdGePoint3d xLine1Point() const { return point("AcDbAlignedDimension", 13); }
  void setXLine1Point(const OdGePoint3d& p) { setPoint("AcDbAlignedDimension", 13, p); }
  OdGePoint3d xLine2Point() const { return point("AcDbAlignedDimension", 14); }
  void setXLine2Point(const OdGePoint3d& p) { setPoint("AcDbAlignedDimension", 14, p); }
  OdGePoint3d dimLinePoint() const { return point("AcDbDimension", 10); }
  void setDimLinePoint(const OdGePoint3d& p) { setPoint("AcDbDimension", 10, p); }
  double oblique() const;  // radians (code 52)
};

class OdDbRotatedDimension : public OdDbAlignedDimension {
  ODRX_DECLARE_MEMBERS(OdDbRotatedDimension)

public:
  // A new dimension with the tags a drawing of db's version expects, in the current
  // dimension style; its block comes when its geometry is computed.
  static OdSmartPtr<OdDbRotatedDimension> createFor(const OdDbDatabase& db);
  double rotation() const;  // radians (code 50)
  void setRotation(double radians);
};

class OdDb2LineAngularDimension : public OdDbDimension {
  ODRX_DECLARE_MEMBERS(OdDb2LineAngularDimension)

public:
  // New dimensions of the other kinds are made like OdDbRotatedDimension::createFor:
  // every defining point at the origin until it is set, the current style, no block.
  static OdSmartPtr<OdDb2LineAngularDimension> createFor(const OdDbDatabase& db);
  OdGePoint3d xLine1Start() const { return point("AcDb2LineAngularDimension", 13); }
  void setXLine1Start(const OdGePoint3d& p) { setPoint("AcDb2LineAngularDimension", 13, p); }
  OdGePoint3d xLine1End() const { return point("AcDb2LineAngularDimension", 14); }
  void setXLine1End(const OdGePoint3d& p) { setPoint("AcDb2LineAngularDimension", 14, p); }
  OdGePoint3d xLine2Start() const { return point("AcDbDimension", 10); }
  void setXLine2Start(const OdGePoint3d& p) { setPoint("AcDbDimension", 10, p); }
  OdGePoint3d xLine2End() const { return point("AcDb2LineAngularDimension", 15); }
  void setXLine2End(const OdGePoint3d& p) { setPoint("AcDb2LineAngularDimension", 15, p); }
  OdGePoint3d arcPoint() const { return point("AcDb2LineAngularDimension", 16); }
  void setArcPoint(const OdGePoint3d& p) { setPoint("AcDb2LineAngularDimension", 16, p); }
};

class OdDb3PointAngularDimension : public OdDbDimension {
  ODRX_DECLARE_MEMBERS(OdDb3PointAngularDimension)

public:
  static OdSmartPtr<OdDb3PointAngularDimension> createFor(const OdDbDatabase& db);
  OdGePoint3d xLine1Point() const { return point("AcDb3PointAngularDimension", 13); }
  void setXLine1Point(const OdGePoint3d& p) { setPoint("AcDb3PointAngularDimension", 13, p); }
  OdGePoint3d xLine2Point() const { return point("AcDb3PointAngularDimension", 14); }
  void setXLine2Point(const OdGePoint3d& p) { setPoint("AcDb3PointAngularDimension", 14, p); }
  OdGePoint3d centerPoint() const { return point("AcDb3PointAngularDimension", 15); }
  void setCenterPoint(const OdGePoint3d& p) { setPoint("AcDb3PointAngularDimension", 15, p); }
  OdGePoint3d arcPoint() const { return point("AcDbDimension", 10); }
  void setArcPoint(const OdGePoint3d& p) { setPoint("AcDbDimension", 10, p); }
};

class OdDbDiametricDimension : public OdDbDimension {
  ODRX_DECLARE_MEMBERS(OdDbDiametricDimension)

public:
  static OdSmartPtr<OdDbDiametricDimension> createFor(const OdDbDatabase& db);
  OdGePoint3d chordPoint() const { return point("AcDbDiametricDimension", 15); }
  void setChordPoint(const OdGePoint3d& p) { setPoint("AcDbDiametricDimension", 15, p); }
  OdGePoint3d farChordPoint() const { return point("AcDbDimension", 10); }
  void setFarChordPoint(const OdGePoint3d& p) { setPoint("AcDbDimension", 10, p); }
  double leaderLength() const;
};

class OdDbRadialDimension : public OdDbDimension {
  ODRX_DECLARE_MEMBERS(OdDbRadialDimension)

public:
  static OdSmartPtr<OdDbRadialDimension> createFor(const OdDbDatabase& db);
  OdGePoint3d chordPoint() const { return point("AcDbRadialDimension", 15); }
  void setChordPoint(const OdGePoint3d& p) { setPoint("AcDbRadialDimension", 15, p); }
  OdGePoint3d center() const { return point("AcDbDimension", 10); }
  void setCenter(const OdGePoint3d& p) { setPoint("AcDbDimension", 10, p); }
  double leaderLength() const;
};

class OdDbOrdinateDimension : public OdDbDimension {
  ODRX_DECLARE_MEMBERS(OdDbOrdinateDimension)

public:
  static OdSmartPtr<OdDbOrdinateDimension> createFor(const OdDbDatabase& db);
  OdGePoint3d definingPoint() const { return point("AcDbOrdinateDimension", 13); }
  void setDefiningPoint(const OdGePoint3d& p) { setPoint("AcDbOrdinateDimension", 13, p); }
  OdGePoint3d leaderEndPoint() const { return point("AcDbOrdinateDimension", 14); }
  void setLeaderEndPoint(const OdGePoint3d& p) { setPoint("AcDbOrdinateDimension", 14, p); }
  OdGePoint3d origin() const { return point("AcDbDimension", 10); }
  void setOrigin(const OdGePoint3d& p) { setPoint("AcDbDimension", 10, p); }
  bool isUsingXAxis() const;  // bit 64 of code 70
  void setUsingXAxis(bool xAxis);
};

class OdDbArcDimension : public OdDbDimension {
  ODRX_DECLARE_MEMBERS(OdDbArcDimension)

public:
  // R2004 and later. Typed 5 (three-point angular) in code 70, as files write it.
  static OdSmartPtr<OdDbArcDimension> createFor(const OdDbDatabase& db);
  OdGePoint3d xLine1Point() const { return point("AcDbArcDimension", 13); }
  void setXLine1Point(const OdGePoint3d& p) { setPoint("AcDbArcDimension", 13, p); }
  OdGePoint3d xLine2Point() const { return point("AcDbArcDimension", 14); }
  void setXLine2Point(const OdGePoint3d& p) { setPoint("AcDbArcDimension", 14, p); }
  OdGePoint3d centerPoint() const { return point("AcDbArcDimension", 15); }
  void setCenterPoint(const OdGePoint3d& p) { setPoint("AcDbArcDimension", 15, p); }
  OdGePoint3d arcPoint() const { return point("AcDbDimension", 10); }
  void setArcPoint(const OdGePoint3d& p) { setPoint("AcDbDimension", 10, p); }
  // The measured arc's start and end angles (radians, codes 40 and 41).
  double arcStartParam() const;
  double arcEndParam() const;
  void setArcStartParam(double radians);
  void setArcEndParam(double radians);
};

// The jogged dimension of a large radius (LARGE_RADIAL_DIMENSION).
class VxHugeRadius : public OdDbDimension {
  ODRX_DECLARE_MEMBERS(VxHugeRadius)

public:
  // R2004 and later. Typed 9 in code 70, as files write it.
  static OdSmartPtr<VxHugeRadius> createFor(const OdDbDatabase& db);
  OdGePoint3d center() const { return point("AcDbDimension", 10); }
  void setCenter(const OdGePoint3d& p) { setPoint("AcDbDimension", 10, p); }
  OdGePoint3d chordPoint() const { return point("AcDbRadialDimensionLarge", 15); }
  void setChordPoint(const OdGePoint3d& p) { setPoint("AcDbRadialDimensionLarge", 15, p); }
  // The stand-in centre the dimension line starts from, near the arc.
  OdGePoint3d overrideCenter() const { return point("AcDbRadialDimensionLarge", 13); }
  void setOverrideCenter(const OdGePoint3d& p) { setPoint("AcDbRadialDimensionLarge", 13, p); }
  OdGePoint3d jogPoint() const { return point("AcDbRadialDimensionLarge", 14); }
  void setJogPoint(const OdGePoint3d& p) { setPoint("AcDbRadialDimensionLarge", 14, p); }
};

// The class of a DIMENSION entity by its type code (70).
const OdRxClass* odDimensionClassOfType(int typeCode);
