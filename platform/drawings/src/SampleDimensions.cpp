#include "drawings/SampleDimensions.h"

#include <numbers>

#include "drawings/DimGeometry.h"
#include "drawings/OdDbDimStyleTableRecord.h"

namespace {
double rad(double degrees) { return degrees * std::numbers::pi / 180.0; }
}  // namespace

ModelSpaceBuilder::ModelSpaceBuilder(OdDbDatabase& db)
    : m_db(&db), m_ms(odOpen<OdDbBlockTableRecord>(db.getModelSpaceId(), OdDb::kForWrite)) {}

void ModelSpaceBuilder::line(const OdGePoint3d& a, const OdGePoint3d& b, const OdString& layer) {
  auto l = add(OdDbLine::createFor(*m_db), layer);
  l->setStartPoint(a);
  l->setEndPoint(b);
}

void ModelSpaceBuilder::circle(const OdGePoint3d& c, double r, const OdString& layer) {
  auto e = add(OdDbCircle::createFor(*m_db), layer);
  e->setCenter(c);
  e->setRadius(r);
}

void ModelSpaceBuilder::arc(const OdGePoint3d& c, double r, double startDeg, double endDeg, const OdString& layer) {
  auto e = add(OdDbArc::createFor(*m_db), layer);
  e->setCenter(c);
  e->setRadius(r);
  e->setStartAngle(rad(startDeg));
  e->setEndAngle(rad(endDeg));
}

void ModelSpaceBuilder::text(const OdString& s, const OdGePoint3d& at, double height, const OdString& layer) {
  auto e = add(OdDbText::createFor(*m_db), layer);
  e->setPosition(at);
  e->setHeight(height);
  e->setTextString(s);
}

OdSmartPtr<OdDbMText> ModelSpaceBuilder::mtext(const OdString& s, const OdGePoint3d& at, double height,
                                               OdDbMText::AttachmentPoint attach, const OdString& layer) {
  auto e = add(OdDbMText::createFor(*m_db), layer);
  e->setLocation(at);
  e->setTextHeight(height);
  e->setAttachment(attach);
  e->setContents(s);
  return e;
}

OdDbObjectId ModelSpaceBuilder::style(const OdString& name) {
  return odOpen<OdDbDimStyleTable>(m_db->getDimStyleTableId())->getAt(name);
}

void ModelSpaceBuilder::makeBlock(OdDbDimension& dim, const char* childSuffix) {
  const OdDbObjectId parent = dim.dimensionStyle();
  const OdDbObjectId child =
      childSuffix ? style(odOpen<OdDbDimStyleTableRecord>(parent)->getName() + OdString::fromUtf8(childSuffix))
                  : OdDbObjectId();
  if (!child.isNull()) dim.setDimensionStyle(child);
  const OdResult r = recomputeDimBlock(dim);
  if (!child.isNull()) dim.setDimensionStyle(parent);
  if (r != eOk) throw OdError(r, "a dimension block could not be computed");
}
