#include "drawings/OdDbAnnotation.h"

#include "drawings/OdDbDatabase.h"

ODRX_DEFINE_MEMBERS(OdDbScale, OdDbObject, L"SCALE")
ODRX_DEFINE_MEMBERS(OdDbAnnotScaleObjectContextData, OdDbObject, L"")

namespace {

// Value text of the first `code` after `marker` (or anywhere, when the marker is missing).
std::optional<std::string> valueIn(const OdDbObject& o, std::string_view marker, int code) {
  OdDbObject::Range r = o.subclassRange(marker);
  long i = o.findTag(code, r.found ? r : OdDbObject::Range{0, o.xdataStart(), true});
  if (i < 0) return std::nullopt;
  return o.tags()[static_cast<size_t>(i)].text;
}

double number(const std::optional<std::string>& text, double dflt) {
  if (!text) return dflt;
  DxfTag t;
  t.text = *text;
  return t.toDouble();
}

}  // namespace

OdString OdDbScale::scaleName() const {
  auto v = valueIn(*this, "AcDbScale", 300);
  return v ? decodeText(*v) : OdString();
}
double OdDbScale::paperUnits() const { return number(valueIn(*this, "AcDbScale", 140), 1.0); }
double OdDbScale::drawingUnits() const { return number(valueIn(*this, "AcDbScale", 141), 1.0); }
bool OdDbScale::isUnitScale() const { return number(valueIn(*this, "AcDbScale", 290), 0.0) != 0.0; }

OdDbObjectId OdDbAnnotScaleObjectContextData::scaleId() const {
  auto v = valueIn(*this, "AcDbAnnotScaleObjectContextData", 340);
  if (!v || !database()) return OdDbObjectId();
  DxfTag t;
  t.text = *v;
  return database()->getOdDbObjectId(OdDbHandle(t.toHandle()));
}

OdString OdDbAnnotScaleObjectContextData::scaleName() const {
  auto scale = odOpen<OdDbScale>(scaleId());
  return scale ? scale->scaleName() : OdString();
}

bool OdDbAnnotScaleObjectContextData::isDefaultContextData() const {
  return number(valueIn(*this, "AcDbObjectContextData", 290), 0.0) != 0.0;
}

void OdDbAnnotScaleObjectContextData::setIsDefaultContextData(bool isDefault) {
  assertWriteEnabled();
  Range r = subclassRange("AcDbObjectContextData");
  setTagText(290, isDefault ? "1" : "0", r, {70, 290});
}

namespace OdDbAnnotation {

bool isAnnotative(const OdDbObject& object) {
  // 1001 AcadAnnotative, 1000 AnnotativeData, 1002 {, 1070 version, 1070 flag, 1002 }
  int n = 0;
  for (OdResBufPtr p = object.xData(L"AcadAnnotative"); p; p = p->next())
    if (p->restype() == 1070 && ++n == 2) return p->getInt16() != 0;
  return false;
}

OdDbObjectIdArray contextDataIds(const OdDbObject& entity) {
  OdDbObjectIdArray ids;
  auto ext = odOpen<OdDbDictionary>(entity.extensionDictionary());
  auto manager = ext ? odOpen<OdDbDictionary>(ext->getAt(L"AcDbContextDataManager")) : OdDbDictionaryPtr();
  auto scales = manager ? odOpen<OdDbDictionary>(manager->getAt(L"ACDB_ANNOTATIONSCALES")) : OdDbDictionaryPtr();
  if (!scales) return ids;
  for (auto& [name, id] : scales->entries()) ids.push_back(id);
  return ids;
}

OdDbObjectIdArray scaleIds(const OdDbDatabase& db) {
  OdDbObjectIdArray ids;
  auto nod = odOpen<OdDbDictionary>(db.getNamedObjectsDictionaryId());
  auto list = nod ? odOpen<OdDbDictionary>(nod->getAt(L"ACAD_SCALELIST")) : OdDbDictionaryPtr();
  if (!list) return ids;
  for (auto& [name, id] : list->entries()) ids.push_back(id);
  return ids;
}

}  // namespace OdDbAnnotation
