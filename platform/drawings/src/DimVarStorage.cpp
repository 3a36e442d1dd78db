#include "DimVarStorage.h"

#include <cmath>
#include <numbers>

#include "drawings/OdDbDatabase.h"

bool OdDimVarValue::same(DimVarKind kind, const OdDimVarValue& a, const OdDimVarValue& b) {
  switch (kind) {
    case DimVarKind::String: return a.text == b.text;
    case DimVarKind::Color: return a.color == b.color;
    case DimVarKind::Block:
    case DimVarKind::Linetype:
    case DimVarKind::TextStyle: return a.id == b.id;
    default: return a.number == b.number;
  }
}

namespace dimvarstore {

RefForm refFormOf(int code) { return (code >= 320 && code <= 369) || code == 1005 ? RefForm::Handle : RefForm::Name; }

OdDbObjectId tableOf(const DimVarDefault& row, const OdDbDatabase* db) {
  if (!db) return OdDbObjectId();
  switch (row.kind) {
    case DimVarKind::Block: return db->getBlockTableId();
    case DimVarKind::Linetype: return db->getLinetypeTableId();
    case DimVarKind::TextStyle: return db->getTextStyleTableId();
    default: return OdDbObjectId();
  }
}

OdDbObjectId lookup(const DimVarDefault& row, const OdDbDatabase* db, const OdString& name) {
  if (name.isEmpty() || name == L".") return OdDbObjectId();
  auto table = odOpen<OdDbSymbolTable>(tableOf(row, db));
  if (!table) return OdDbObjectId();
  OdDbObjectId id = table->getAt(name);
  // Older files name the standard arrows without the underscore their blocks have.
  if (id.isNull() && row.kind == DimVarKind::Block && name.getAt(0) != L'_') id = table->getAt(L"_" + name);
  return id;
}

OdString nameOf(const OdDbObjectId& id) {
  auto rec = odOpen<OdDbSymbolTableRecord>(id);
  return rec ? rec->getName() : OdString();
}

static double toNumber(const std::string& text) {
  DxfTag t;
  t.text = text;
  return t.toDouble();
}

OdDimVarValue decode(const DimVarDefault& row, int code, const std::string& text, const OdDbDatabase* db, bool degrees) {
  OdDimVarValue v;
  switch (row.kind) {
    case DimVarKind::String: v.text = db ? db->codec().decode(text) : OdString::fromUtf8(text); break;
    case DimVarKind::Color:
      if (code == 1004) {
        // A colour blob as hex text.
        std::string bytes;
        for (size_t i = 0; i + 1 < text.size(); i += 2) bytes += static_cast<char>(std::stoi(text.substr(i, 2), nullptr, 16));
        if (auto c = OdCmColor::fromBlob(bytes)) v.color = *c;
      } else {
        v.color = OdCmColor::fromDxf(static_cast<int16_t>(toNumber(text)));
      }
      break;
    case DimVarKind::Block:
    case DimVarKind::Linetype:
    case DimVarKind::TextStyle:
      if (refFormOf(code) == RefForm::Handle) {
        DxfTag t;
        t.text = text;
        if (db && t.toHandle()) v.id = db->getOdDbObjectId(OdDbHandle(t.toHandle()));
      } else {
        v.id = lookup(row, db, db ? db->codec().decode(text) : OdString::fromUtf8(text));
      }
      // No linetype means the ByBlock linetype: one spelling for both, so that the
      // two never count as different values.
      if (row.kind == DimVarKind::Linetype && nameOf(v.id).iCompare(L"ByBlock") == 0) v.id = OdDbObjectId();
      break;
    default:
      v.number = toNumber(text);
      if (degrees) v.number = v.number * std::numbers::pi / 180.0;
  }
  return v;
}

std::string encode(const DimVarDefault& row, int code, const OdDimVarValue& v, const OdDbDatabase* db, bool degrees) {
  switch (row.kind) {
    case DimVarKind::String: return db ? db->codec().encode(v.text.view()) : v.text.toUtf8();
    case DimVarKind::Color:
      if (code == 1004) {
        static const char* hex = "0123456789ABCDEF";
        std::string out;
        for (unsigned char c : v.color.toBlob()) {
          out += hex[c >> 4];
          out += hex[c & 15];
        }
        return out;
      }
      return std::to_string(v.color.dxfAci());
    case DimVarKind::Block:
    case DimVarKind::Linetype:
    case DimVarKind::TextStyle:
      if (refFormOf(code) == RefForm::Handle) return v.id.isNull() ? "0" : dxfFormatHandle(v.id.getHandle().value());
      return db ? db->codec().encode(nameOf(v.id).view()) : nameOf(v.id).toUtf8();
    case DimVarKind::Double: return dxfFormatDouble(degrees ? v.number * 180.0 / std::numbers::pi : v.number);
    default: return std::to_string(static_cast<long long>(std::llround(v.number)));
  }
}

OdDimVarValue builtIn(const DimVarDefault& row, const OdDbDatabase* db, bool metric) {
  const DimVarValue& d = row.defaultValue(metric);
  OdDimVarValue v;
  switch (row.kind) {
    case DimVarKind::String: v.text = OdString::fromUtf8(d.text); break;
    case DimVarKind::Color: v.color = OdCmColor::fromDxf(static_cast<int16_t>(d.number)); break;
    case DimVarKind::Block:
    case DimVarKind::Linetype:
    case DimVarKind::TextStyle: v.id = lookup(row, db, OdString::fromUtf8(d.text)); break;
    default: v.number = d.number;
  }
  return v;
}

const XdataSlot* xdataSlot(const DimVarDefault& row) {
  static const struct {
    std::string_view name;
    XdataSlot slot;
  } slots[] = {
      {"DIMLTYPE", {"ACAD_DSTYLE_DIM_LINETYPE", 380, 1005}},
      {"DIMLTEX1", {"ACAD_DSTYLE_DIM_EXT1_LINETYPE", 381, 1005}},
      {"DIMLTEX2", {"ACAD_DSTYLE_DIM_EXT2_LINETYPE", 382, 1005}},
      {"DIMFXLON", {"ACAD_DSTYLE_DIMEXT_ENABLED", 383, 1070}},
      {"DIMFXL", {"ACAD_DSTYLE_DIMEXT_LENGTH", 378, 1040}},
      {"DIMTFILL", {"ACAD_DSTYLE_DIMTEXT_FILL", 376, 1070}},
      {"DIMTFILLCLR", {"ACAD_DSTYLE_DIMTEXT_FILL", 377, 1004}},
      {"DIMARCSYM", {"ACAD_DSTYLE_DIMARC_LENGTH_SYMBOL", 379, 1070}},
      {"DIMJOGANG", {"ACAD_DSTYLE_DIMJOGGED_JOGANGLE_SYMBOL", 384, 1040}},
  };
  for (auto& s : slots)
    if (s.name == row.name) return &s.slot;
  return nullptr;
}

}  // namespace dimvarstore
