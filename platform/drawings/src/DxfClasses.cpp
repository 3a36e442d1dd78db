#include "DxfClasses.h"

#include <string>
#include <unordered_map>
#include <deque>
#include <vector>

#include "drawings/OdDbAnnotation.h"
#include "drawings/OdDbDictionary.h"
#include "drawings/OdDbDimension.h"
#include "drawings/OdDbDimStyleTableRecord.h"
#include "drawings/OdDbGeometry.h"
#include "drawings/OdDbLeader.h"
#include "drawings/OdDbSymbolTable.h"
#include "drawings/OdDbText.h"

const DxfTableKind* dxfTableKind(std::string_view name) {
  // Order of the slots: block, layer, linetype, text style, dimension style,
  // application id, view, UCS, viewport (as the database's accessors expect).
  static const struct {
    std::string_view name;
    DxfTableKind kind;
  } kinds[] = {
      {"BLOCK_RECORD", {OdDbBlockTable::desc(), OdDbBlockTableRecord::desc(), 0}},
      {"LAYER", {OdDbLayerTable::desc(), OdDbLayerTableRecord::desc(), 1}},
      {"LTYPE", {OdDbLinetypeTable::desc(), OdDbLinetypeTableRecord::desc(), 2}},
      {"STYLE", {OdDbTextStyleTable::desc(), OdDbTextStyleTableRecord::desc(), 3}},
      {"DIMSTYLE", {OdDbDimStyleTable::desc(), OdDbDimStyleTableRecord::desc(), 4}},
      {"APPID", {OdDbRegAppTable::desc(), OdDbRegAppTableRecord::desc(), 5}},
      {"VIEW", {OdDbViewTable::desc(), OdDbViewTableRecord::desc(), 6}},
      {"UCS", {OdDbUCSTable::desc(), OdDbUCSTableRecord::desc(), 7}},
      {"VPORT", {OdDbViewportTable::desc(), OdDbViewportTableRecord::desc(), 8}},
  };
  for (auto& k : kinds)
    if (k.name == name) return &k.kind;
  return nullptr;
}

using ClassMap = std::unordered_map<std::string_view, const OdRxClass*>;

static ClassMap makeMap(std::initializer_list<const OdRxClass*> classes) {
  // The names are kept alive by the classes, which live for the whole program.
  ClassMap m;
  for (const OdRxClass* c : classes) {
    static std::deque<std::string> names;  // a deque never moves its elements
    names.push_back(c->dxfName().toUtf8());
    m.emplace(names.back(), c);
  }
  return m;
}

const OdRxClass* dxfEntityClass(std::string_view name, int typeCode) {
  // A DIMENSION's class follows its type code.
  if (name == "DIMENSION") return odDimensionClassOfType(typeCode);
  static const ClassMap m = makeMap({OdDbSequenceEnd::desc(), OdDbArcDimension::desc(), VxHugeRadius::desc(),
                                      OdDbLine::desc(), OdDbCircle::desc(), OdDbArc::desc(), OdDbPoint::desc(),
                                      OdDbSolid::desc(), OdDbPolyline::desc(), OdDbBlockReference::desc(),
                                      OdDbText::desc(), OdDbMText::desc(), OdDbLeader::desc()});
  auto it = m.find(name);
  return it == m.end() ? OdDbEntity::desc() : it->second;
}

const OdRxClass* dxfObjectClass(std::string_view name) {
  // Every kind of per-scale context data shares the scale and default-flag part.
  constexpr std::string_view contextData = "OBJECTCONTEXTDATA_CLASS";
  if (name.size() > contextData.size() && name.substr(name.size() - contextData.size()) == contextData)
    return OdDbAnnotScaleObjectContextData::desc();
  static const ClassMap m = makeMap({OdDbDictionary::desc(), OdDbXrecord::desc(), OdDbScale::desc()});
  auto it = m.find(name);
  return it == m.end() ? OdDbProxyObject::desc() : it->second;
}
