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
  OdGePoint3d xLine1Start() const { return point("AcDb2LineAngularDimension", 13); }
  OdGePoint3d xLine1End() const { return point("AcDb2LineAngularDimension", 14); }
  OdGePoint3d xLine2Start() const { return point("AcDbDimension", 10); }
  OdGePoint3d xLine2End() const { return point("AcDb2LineAngularDimension", 15); }
  OdGePoint3d arcPoint() const { return point("AcDb2LineAngularDimension", 16); }
};

class OdDb3PointAngularDimension : public OdDbDimension {
  ODRX_DECLARE_MEMBERS(OdDb3PointAngularDimension)

public:
  OdGePoint3d xLine1Point() const { return point("AcDb3PointAngularDimension", 13); }
  OdGePoint3d xLine2Point() const { return point("AcDb3PointAngularDimension", 14); }
  OdGePoint3d centerPoint() const { return point("AcDb3PointAngularDimension", 15); }
  OdGePoint3d arcPoint() const { return point("AcDbDimension", 10); }
};

class OdDbDiametricDimension : public OdDbDimension {
  ODRX_DECLARE_MEMBERS(OdDbDiametricDimension)

public:
  OdGePoint3d chordPoint() const { return point("AcDbDiametricDimension", 15); }
  OdGePoint3d farChordPoint() const { return point("AcDbDimension", 10); }
  double leaderLength() const;
};

class OdDbRadialDimension : public OdDbDimension {
  ODRX_DECLARE_MEMBERS(OdDbRadialDimension)

public:
  OdGePoint3d chordPoint() const { return point("AcDbRadialDimension", 15); }
  OdGePoint3d center() const { return point("AcDbDimension", 10); }
  double leaderLength() const;
};

class OdDbOrdinateDimension : public OdDbDimension {
  ODRX_DECLARE_MEMBERS(OdDbOrdinateDimension)

public:
  OdGePoint3d definingPoint() const { return point("AcDbOrdinateDimension", 13); }
  OdGePoint3d leaderEndPoint() const { return point("AcDbOrdinateDimension", 14); }
  OdGePoint3d origin() const { return point("AcDbDimension", 10); }
  bool isUsingXAxis() const;  // bit 64 of code 70
};

class OdDbArcDimension : public OdDbDimension {
  ODRX_DECLARE_MEMBERS(OdDbArcDimension)

public:
  OdGePoint3d xLine1Point() const { return point("AcDbArcDimension", 13); }
  OdGePoint3d xLine2Point() const { return point("AcDbArcDimension", 14); }
  OdGePoint3d centerPoint() const { return point("AcDbArcDimension", 15); }
  OdGePoint3d arcPoint() const { return point("AcDbDimension", 10); }
};

// The jogged dimension of a large radius (LARGE_RADIAL_DIMENSION).
class VxHugeRadius : public OdDbDimension {
  ODRX_DECLARE_MEMBERS(VxHugeRadius)

public:
  OdGePoint3d center() const { return point("AcDbDimension", 10); }
  OdGePoint3d chordPoint() const { return point("AcDbRadialDimensionLarge", 15); }
  OdGePoint3d overrideCenter() const { return point("AcDbRadialDimensionLarge", 13); }
  OdGePoint3d jogPoint() const { return point("AcDbRadialDimensionLarge", 14); }
};

// The class of a DIMENSION entity by its type code (70).
const OdRxClass* odDimensionClassOfType(int typeCode);
