#include "drawings/OdDbDimension.h"

#include "EntityTags.h"
#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbDimStyleTableRecord.h"

ODRX_DEFINE_MEMBERS(OdDbDimension, OdDbEntity, L"DIMENSION")
ODRX_DEFINE_MEMBERS(OdDbAlignedDimension, OdDbDimension, L"DIMENSION")
ODRX_DEFINE_MEMBERS(OdDbRotatedDimension, OdDbAlignedDimension, L"DIMENSION")
ODRX_DEFINE_MEMBERS(OdDb2LineAngularDimension, OdDbDimension, L"DIMENSION")
ODRX_DEFINE_MEMBERS(OdDb3PointAngularDimension, OdDbDimension, L"DIMENSION")
ODRX_DEFINE_MEMBERS(OdDbDiametricDimension, OdDbDimension, L"DIMENSION")
ODRX_DEFINE_MEMBERS(OdDbRadialDimension, OdDbDimension, L"DIMENSION")
ODRX_DEFINE_MEMBERS(OdDbOrdinateDimension, OdDbDimension, L"DIMENSION")
ODRX_DEFINE_MEMBERS(OdDbArcDimension, OdDbDimension, L"ARC_DIMENSION")
ODRX_DEFINE_MEMBERS(VxHugeRadius, OdDbDimension, L"LARGE_RADIAL_DIMENSION")

namespace {

// The common codes of a dimension in the order they are written.
constexpr int kDimensionOrder[] = {280, 2, 10, 11, 12, 70, 71, 72, 41, 42, 73, 74, 75, 1, 53, 51, 210, 3};
constexpr int kPointOrder[] = {10, 11, 12, 13, 14, 15, 16, 17, 40, 50, 52};

DxfSubclass subclass(std::string_view marker) {
  if (marker == "AcDbDimension") return DxfSubclass{marker, kDimensionOrder};
  return DxfSubclass{marker, kPointOrder};
}

const DxfSubclass kDimension = subclass("AcDbDimension");

}  // namespace

namespace {

// The common part of a new dimension: its first defining point and text position
// at the origin, the type code and the current dimension style.
DxfTagList commonTags(const OdDbDatabase& db, int type) {
  const OdGePoint3d origin;
  DxfTagList common = entitytags::pointTags(10, origin);
  DxfTagList text = entitytags::pointTags(11, origin);
  common.insert(common.end(), text.begin(), text.end());
  // Bit 32: the block belongs to this dimension alone (R12 files do not set it).
  common.emplace_back(70, std::to_string(db.version() > DxfVersion::R12 ? type | 32 : type));
  common.emplace_back(3, db.codec().encode(db.headerString("$DIMSTYLE", L"Standard").view()));
  return common;
}

// Point tags at the origin for each code.
DxfTagList originPoints(std::initializer_list<int> codes) {
  DxfTagList out;
  for (int code : codes) {
    DxfTagList p = entitytags::pointTags(code, OdGePoint3d());
    out.insert(out.end(), p.begin(), p.end());
  }
  return out;
}

template <class T>
OdSmartPtr<T> newDimension(const OdDbDatabase& db, std::string_view dxfName, DxfVersion firstVersion, int type,
                           std::string_view marker, const DxfTagList& own) {
  static const DxfSubclass mine = subclass(marker);
  OdSmartPtr<T> d = T::createObject();
  entitytags::frame(*d, db, dxfName, firstVersion, {{&kDimension, commonTags(db, type)}, {&mine, own}});
  return d;
}

}  // namespace

OdSmartPtr<OdDbRotatedDimension> OdDbRotatedDimension::createFor(const OdDbDatabase& db) {
  static const DxfSubclass aligned = subclass("AcDbAlignedDimension");
  static const DxfSubclass rotated = subclass("AcDbRotatedDimension");
  OdSmartPtr<OdDbRotatedDimension> d = OdDbRotatedDimension::createObject();
  entitytags::frame(*d, db, "DIMENSION", DxfVersion::R12,
                    {{&kDimension, commonTags(db, 0)}, {&aligned, originPoints({13, 14})}, {&rotated, DxfTagList()}});
  return d;
}

OdSmartPtr<OdDbAlignedDimension> OdDbAlignedDimension::createFor(const OdDbDatabase& db) {
  return newDimension<OdDbAlignedDimension>(db, "DIMENSION", DxfVersion::R12, 1, "AcDbAlignedDimension",
                                            originPoints({13, 14}));
}

OdSmartPtr<OdDb2LineAngularDimension> OdDb2LineAngularDimension::createFor(const OdDbDatabase& db) {
  return newDimension<OdDb2LineAngularDimension>(db, "DIMENSION", DxfVersion::R12, 2, "AcDb2LineAngularDimension",
                                                 originPoints({13, 14, 15, 16}));
}

OdSmartPtr<OdDb3PointAngularDimension> OdDb3PointAngularDimension::createFor(const OdDbDatabase& db) {
  return newDimension<OdDb3PointAngularDimension>(db, "DIMENSION", DxfVersion::R12, 5, "AcDb3PointAngularDimension",
                                                  originPoints({13, 14, 15}));
}

OdSmartPtr<OdDbDiametricDimension> OdDbDiametricDimension::createFor(const OdDbDatabase& db) {
  DxfTagList own = originPoints({15});
  own.emplace_back(40, "0.0");
  return newDimension<OdDbDiametricDimension>(db, "DIMENSION", DxfVersion::R12, 3, "AcDbDiametricDimension", own);
}

OdSmartPtr<OdDbRadialDimension> OdDbRadialDimension::createFor(const OdDbDatabase& db) {
  DxfTagList own = originPoints({15});
  own.emplace_back(40, "0.0");
  return newDimension<OdDbRadialDimension>(db, "DIMENSION", DxfVersion::R12, 4, "AcDbRadialDimension", own);
}

OdSmartPtr<OdDbOrdinateDimension> OdDbOrdinateDimension::createFor(const OdDbDatabase& db) {
  return newDimension<OdDbOrdinateDimension>(db, "DIMENSION", DxfVersion::R12, 6, "AcDbOrdinateDimension",
                                             originPoints({13, 14}));
}

OdSmartPtr<OdDbArcDimension> OdDbArcDimension::createFor(const OdDbDatabase& db) {
  // After the three points: the arc's start and end angles, "partial" and "has
  // leader" flags (both off) and the two leader points, unused without a leader.
  DxfTagList own = originPoints({13, 14, 15});
  own.emplace_back(40, "0.0");
  own.emplace_back(41, "0.0");
  own.emplace_back(70, "0");
  own.emplace_back(71, "0");
  DxfTagList leader = originPoints({16, 17});
  own.insert(own.end(), leader.begin(), leader.end());
  return newDimension<OdDbArcDimension>(db, "ARC_DIMENSION", DxfVersion::R2004, 5, "AcDbArcDimension", own);
}

OdSmartPtr<VxHugeRadius> VxHugeRadius::createFor(const OdDbDatabase& db) {
  // The stand-in centre, the jog point, the chord point, then the leader length.
  DxfTagList own = originPoints({13, 14, 15});
  own.emplace_back(40, "0.0");
  return newDimension<VxHugeRadius>(db, "LARGE_RADIAL_DIMENSION", DxfVersion::R2004, 9, "AcDbRadialDimensionLarge", own);
}

const OdRxClass* odDimensionClassOfType(int typeCode) {
  switch (typeCode & 7) {
    case 0: return OdDbRotatedDimension::desc();
    case 1: return OdDbAlignedDimension::desc();
    case 2: return OdDb2LineAngularDimension::desc();
    case 3: return OdDbDiametricDimension::desc();
    case 4: return OdDbRadialDimension::desc();
    case 5: return OdDb3PointAngularDimension::desc();
    case 6: return OdDbOrdinateDimension::desc();
    default: return OdDbDimension::desc();
  }
}

OdGePoint3d OdDbDimension::point(std::string_view marker, int code) const {
  return entitytags::getPoint(*this, subclass(marker), code);
}

void OdDbDimension::setPoint(std::string_view marker, int code, const OdGePoint3d& p) {
  assertWriteEnabled();
  entitytags::setPoint(*this, subclass(marker), code, p);
}

// ---- common data ----

OdDbObjectId OdDbDimension::dimensionStyle() const {
  OdDbDatabase* db = database();
  if (!db) return OdDbObjectId();
  auto text = entitytags::getText(*this, kDimension, 3);
  OdDbObjectId id = entitytags::recordId(*this, &OdDbDatabase::getDimStyleTableId, text.value_or(""));
  if (id.isNull()) id = entitytags::recordId(*this, &OdDbDatabase::getDimStyleTableId, "Standard");
  return id;
}

void OdDbDimension::setDimensionStyle(const OdDbObjectId& styleId) {
  assertWriteEnabled();
  entitytags::setText(*this, kDimension, 3, entitytags::recordName(*this, styleId, &OdDbDatabase::getDimStyleTableId));
}

OdString OdDbDimension::dimensionText() const {
  auto text = entitytags::getText(*this, kDimension, 1);
  return text ? decodeText(*text) : OdString();
}

void OdDbDimension::setDimensionText(const OdString& text) {
  assertWriteEnabled();
  if (text.isEmpty()) entitytags::remove(*this, kDimension, 1);
  else entitytags::setText(*this, kDimension, 1, encodeText(text));
}

OdGePoint3d OdDbDimension::textPosition() const { return entitytags::getPoint(*this, kDimension, 11); }

void OdDbDimension::setTextPosition(const OdGePoint3d& p) {
  assertWriteEnabled();
  entitytags::setPoint(*this, kDimension, 11, p);
  // A text placed by the user is marked as such, so that it stays where it is put.
  entitytags::setInt(*this, kDimension, 70, entitytags::getInt(*this, kDimension, 70, 0) | 128);
}

double OdDbDimension::textRotation() const {
  return entitytags::toRadians(entitytags::getDouble(*this, kDimension, 53, 0.0));
}

void OdDbDimension::setTextRotation(double radians) {
  assertWriteEnabled();
  entitytags::setDouble(*this, kDimension, 53, entitytags::toDegrees(radians), 0.0);
}

std::optional<double> OdDbDimension::measurement() const {
  auto text = entitytags::getText(*this, kDimension, 42);
  if (!text) return std::nullopt;
  DxfTag t;
  t.text = *text;
  return t.toDouble();
}

bool OdDbDimension::isUsingDefaultTextPosition() const {
  return (entitytags::getInt(*this, kDimension, 70, 0) & 128) == 0;
}

OdDbObjectId OdDbDimension::dimBlockId() const {
  return entitytags::recordId(*this, &OdDbDatabase::getBlockTableId, entitytags::getText(*this, kDimension, 2).value_or(""));
}

int OdDbDimension::dimensionType() const { return static_cast<int>(entitytags::getInt(*this, kDimension, 70, 0) & 7); }

double OdDbAlignedDimension::oblique() const {
  return entitytags::toRadians(entitytags::getDouble(*this, subclass("AcDbAlignedDimension"), 52, 0.0));
}

double OdDbRotatedDimension::rotation() const {
  return entitytags::toRadians(entitytags::getDouble(*this, subclass("AcDbAlignedDimension"), 50, 0.0));
}

void OdDbRotatedDimension::setRotation(double radians) {
  assertWriteEnabled();
  entitytags::setDouble(*this, subclass("AcDbAlignedDimension"), 50, entitytags::toDegrees(radians), 0.0);
}

double OdDbDiametricDimension::leaderLength() const {
  return entitytags::getDouble(*this, subclass("AcDbDiametricDimension"), 40, 0.0);
}

double OdDbRadialDimension::leaderLength() const {
  return entitytags::getDouble(*this, subclass("AcDbRadialDimension"), 40, 0.0);
}

bool OdDbOrdinateDimension::isUsingXAxis() const { return (entitytags::getInt(*this, kDimension, 70, 0) & 64) != 0; }

void OdDbOrdinateDimension::setUsingXAxis(bool xAxis) {
  assertWriteEnabled();
  const int64_t flags = entitytags::getInt(*this, kDimension, 70, 0);
  entitytags::setInt(*this, kDimension, 70, xAxis ? flags | 64 : flags & ~int64_t{64});
}

double OdDbArcDimension::arcStartParam() const {
  return entitytags::getDouble(*this, subclass("AcDbArcDimension"), 40, 0.0);
}

double OdDbArcDimension::arcEndParam() const {
  return entitytags::getDouble(*this, subclass("AcDbArcDimension"), 41, 0.0);
}

void OdDbArcDimension::setArcStartParam(double radians) {
  assertWriteEnabled();
  entitytags::setDouble(*this, subclass("AcDbArcDimension"), 40, radians);
}

void OdDbArcDimension::setArcEndParam(double radians) {
  assertWriteEnabled();
  entitytags::setDouble(*this, subclass("AcDbArcDimension"), 41, radians);
}

OdDbObjectId OdDbDimension::dimAssocId() const {
  auto ext = odOpen<OdDbDictionary>(extensionDictionary());
  return ext ? ext->getAt(L"ACAD_DIMASSOC") : OdDbObjectId();
}
