// Drawings made for the view's tests, entity by entity.
#pragma once

#include <string>

#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbGeometry.h"
#include "drawings/OdDbSymbolTable.h"
#include "drawings/OdDbText.h"

namespace viewtest {

inline OdDbBlockTableRecordPtr modelSpace(OdDbDatabase& db) {
  return odOpen<OdDbBlockTableRecord>(db.getModelSpaceId(), OdDb::kForWrite);
}

inline OdDbObjectId append(OdDbDatabase& db, OdDbEntity* e, const wchar_t* layer, int color) {
  e->setLayer(layer);
  if (color) e->setColorIndex(static_cast<int16_t>(color));
  return modelSpace(db)->appendOdDbEntity(e);
}

inline OdDbObjectId addLine(OdDbDatabase& db, double x1, double y1, double x2, double y2, const wchar_t* layer = L"0",
                            int color = 0) {
  auto l = OdDbLine::createFor(db);
  l->setStartPoint({x1, y1, 0});
  l->setEndPoint({x2, y2, 0});
  return append(db, l.get(), layer, color);
}

inline OdDbObjectId addCircle(OdDbDatabase& db, double x, double y, double r) {
  auto c = OdDbCircle::createFor(db);
  c->setCenter({x, y, 0});
  c->setRadius(r);
  return append(db, c.get(), L"0", 0);
}

inline OdDbObjectId addArc(OdDbDatabase& db, double x, double y, double r, double start, double end) {
  auto a = OdDbArc::createFor(db);
  a->setCenter({x, y, 0});
  a->setRadius(r);
  a->setStartAngle(start);
  a->setEndAngle(end);
  return append(db, a.get(), L"0", 0);
}

inline OdDbObjectId addText(OdDbDatabase& db, double x, double y, double height, const wchar_t* text) {
  auto t = OdDbText::createFor(db);
  t->setPosition({x, y, 0});
  t->setHeight(height);
  t->setTextString(text);
  return append(db, t.get(), L"0", 0);
}

// A filled square with its lower left corner at (x, y).
inline OdDbObjectId addSolid(OdDbDatabase& db, double x, double y, double side) {
  auto s = OdDbSolid::createFor(db);
  s->setPointAt(0, {x, y, 0});
  s->setPointAt(1, {x + side, y, 0});
  s->setPointAt(2, {x, y + side, 0});
  s->setPointAt(3, {x + side, y + side, 0});
  return append(db, s.get(), L"0", 0);
}

// A layer; flags 1 freezes it, a negative colour turns it off.
inline void addLayer(OdDbDatabase& db, const wchar_t* name, int color, int flags = 0) {
  auto layers = odOpen<OdDbSymbolTable>(db.getLayerTableId(), OdDb::kForWrite);
  OdSmartPtr<OdDbLayerTableRecord> rec = OdDbLayerTableRecord::createObject();
  rec->setDxfName("LAYER");
  db.addOdDbObject(rec.get(), layers->objectId());
  DxfTagList& t = rec->tagsForWrite();
  t.emplace_back(100, "AcDbSymbolTableRecord");
  t.emplace_back(100, "AcDbLayerTableRecord");
  t.emplace_back(2, rec->encodeText(name));
  t.emplace_back(70, std::to_string(flags));
  t.emplace_back(62, std::to_string(color));
  t.emplace_back(6, "Continuous");
  layers->add(rec.get());
}

inline std::string corpus(const char* name) { return std::string(CORPUS_DIR) + "/" + name; }

}  // namespace viewtest
