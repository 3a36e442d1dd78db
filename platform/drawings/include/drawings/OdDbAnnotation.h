// Annotation scales: the SCALE objects of the drawing, and the context data that
// an annotative entity keeps per scale under its extension dictionary
// ("AcDbContextDataManager" / "ACDB_ANNOTATIONSCALES").
#pragma once

#include "drawings/OdDbObject.h"

class OdDbScale : public OdDbObject {
  ODRX_DECLARE_MEMBERS(OdDbScale)

public:
  OdString scaleName() const;  // "1:1"
  double paperUnits() const;
  double drawingUnits() const;
  bool isUnitScale() const;
};
using OdDbScalePtr = OdSmartPtr<OdDbScale>;

// Context data of an annotative entity for one annotation scale.
class OdDbAnnotScaleObjectContextData : public OdDbObject {
  ODRX_DECLARE_MEMBERS(OdDbAnnotScaleObjectContextData)

public:
  OdDbObjectId scaleId() const;
  // The name of the scale, "" when the scale object is missing.
  OdString scaleName() const;
  bool isDefaultContextData() const;
  void setIsDefaultContextData(bool isDefault);
};
using OdDbAnnotScaleObjectContextDataPtr = OdSmartPtr<OdDbAnnotScaleObjectContextData>;

namespace OdDbAnnotation {
// Entities and styles are annotative when their AcadAnnotative extended data says so.
bool isAnnotative(const OdDbObject& object);
// The entity's context data objects, one per annotation scale, in stored order.
OdDbObjectIdArray contextDataIds(const OdDbObject& entity);
// The drawing's annotation scales (the ACAD_SCALELIST dictionary), in stored order.
OdDbObjectIdArray scaleIds(const OdDbDatabase& db);
}  // namespace OdDbAnnotation
