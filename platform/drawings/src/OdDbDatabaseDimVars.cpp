// The drawing's current dimension settings and the variables stored beside them.
#include <cmath>

#include "DimVarStorage.h"
#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbDimStyleTableRecord.h"

using namespace dimvarstore;

static OdString headerName(const DimVarDefault& row) { return OdString::fromUtf8("$" + std::string(row.name)); }

OdDimVarValue OdDbDatabase::dimVar(std::size_t index) const {
  const DimVarDefault& row = kDimVarDefaults[index];
  auto kept = m_dimVarsSessionOnly.find(index);
  if (kept != m_dimVarsSessionOnly.end()) return kept->second;
  // What the header holds counts, even where the version does not normally write it.
  OdResBufPtr rb = row.headerCode ? getHeaderVar(headerName(row)) : OdResBufPtr();
  if (!rb) {
    // Without a header variable the settings are those of the current style.
    auto style = odOpen<OdDbDimStyleTableRecord>(dimstyle());
    return style ? style->dimVar(index) : builtIn(row, this);
  }
  OdDimVarValue v;
  switch (row.kind) {
    case DimVarKind::String: v.text = rb->getString(); break;
    case DimVarKind::Color: v.color = OdCmColor::fromDxf(rb->getInt16()); break;
    case DimVarKind::Block:
    case DimVarKind::Linetype:
    case DimVarKind::TextStyle:
      v.id = lookup(row, this, rb->getString());
      if (row.kind == DimVarKind::Linetype && nameOf(v.id).iCompare(L"ByBlock") == 0) v.id = OdDbObjectId();
      break;
    case DimVarKind::Double: v.number = rb->getDouble(); break;
    default: v.number = static_cast<double>(rb->getInt64());
  }
  return v;
}

void OdDbDatabase::setDimVar(std::size_t index, const OdDimVarValue& value) {
  const DimVarDefault& row = kDimVarDefaults[index];
  if (!row.inHeader(m_version) || !m_header) {
    m_dimVarsSessionOnly[index] = value;
    return;
  }
  m_dimVarsSessionOnly.erase(index);
  OdResBufPtr rb = OdResBuf::newRb(row.headerCode);
  switch (row.kind) {
    case DimVarKind::String: rb->setString(value.text); break;
    case DimVarKind::Color: rb->setInt64(value.color.dxfAci()); break;
    case DimVarKind::Block:
    case DimVarKind::Linetype:
    case DimVarKind::TextStyle: rb->setString(nameOf(value.id)); break;
    case DimVarKind::Double: rb->setDouble(value.number); break;
    default: rb->setInt64(std::llround(value.number));
  }
  setHeaderVar(headerName(row), rb.get());
}

OdDbObjectId OdDbDatabase::dimstyle() const {
  auto table = odOpen<OdDbSymbolTable>(getDimStyleTableId());
  if (!table) return OdDbObjectId();
  OdDbObjectId id = table->getAt(headerString("$DIMSTYLE", L"Standard"));
  return id.isNull() ? table->getAt(L"Standard") : id;
}

void OdDbDatabase::setDimstyle(const OdDbObjectId& styleId) {
  auto rec = odOpen<OdDbDimStyleTableRecord>(styleId);
  if (!rec) throw OdError(eWrongObjectType, "not a dimension style");
  setHeaderString("$DIMSTYLE", 2, rec->getName());
}

void OdDbDatabase::setDimstyleData(const OdDbObjectId& styleId) {
  auto rec = odOpen<OdDbDimStyleTableRecord>(styleId);
  if (!rec) throw OdError(eWrongObjectType, "not a dimension style");
  setDimstyle(styleId);
  for (std::size_t i = 0; i < kDimVarCatalogueSize; ++i) {
    OdDimVarValue v = rec->dimVar(i);
    if (!OdDimVarValue::same(kDimVarDefaults[i].kind, v, dimVar(i))) setDimVar(i, v);
  }
}

// ---- variables kept in the variable dictionary ----

static OdDbObjectId variableDictionary(const OdDbDatabase& db) {
  auto nod = odOpen<OdDbDictionary>(db.getNamedObjectsDictionaryId());
  return nod ? nod->getAt(L"AcDbVariableDictionary") : OdDbObjectId();
}

std::optional<OdString> OdDbDatabase::dictionaryVar(const OdString& name) const {
  auto dict = odOpen<OdDbDictionary>(variableDictionary(*this));
  auto var = dict ? odOpen<OdDbObject>(dict->getAt(name)) : OdDbObjectPtr();
  if (!var) return std::nullopt;
  OdDbObject::Range r = var->subclassRange("DictionaryVariables");
  long i = var->findTag(1, r.found ? r : var->commonRange());
  if (i < 0) return std::nullopt;
  return var->decodeText(var->tags()[static_cast<size_t>(i)].text);
}

void OdDbDatabase::setDictionaryVar(const OdString& name, const OdString& value) {
  auto nod = odOpen<OdDbDictionary>(getNamedObjectsDictionaryId(), OdDb::kForWrite);
  if (!nod) throw OdError(eNotApplicable, "the drawing has no named objects dictionary");
  OdDbObjectId dictId = nod->getAt(L"AcDbVariableDictionary");
  if (dictId.isNull()) {
    OdSmartPtr<OdDbDictionary> dict = OdDbDictionary::createObject();
    dict->setDxfName("DICTIONARY");
    dictId = nod->setAt(L"AcDbVariableDictionary", dict.get());
    DxfTagList& t = dict->tagsForWrite();
    t.emplace_back(100, "AcDbDictionary");
    t.emplace_back(281, "1");
  }
  auto dict = odOpen<OdDbDictionary>(dictId, OdDb::kForWrite);
  auto var = odOpen<OdDbObject>(dict->getAt(name), OdDb::kForWrite);
  if (!var) {
    OdSmartPtr<OdDbProxyObject> fresh = OdDbProxyObject::createObject();
    fresh->setDxfName("DICTIONARYVAR");
    dict->setAt(name, fresh.get());
    DxfTagList& t = fresh->tagsForWrite();
    t.emplace_back(100, "DictionaryVariables");
    t.emplace_back(280, "0");
    t.emplace_back(1, m_codec.encode(value.view()));
    return;
  }
  OdDbObject::Range r = var->subclassRange("DictionaryVariables");
  var->setTagText(1, m_codec.encode(value.view()), r.found ? r : var->commonRange(), {280, 1});
}

int OdDbDatabase::getDIMASSOC() const {
  if (hasHeaderVar(L"$DIMASSOC")) return headerInt("$DIMASSOC", 2);
  if (auto v = dictionaryVar(L"DIMASSOC")) return std::wcstol(v->c_str(), nullptr, 10);
  return 2;
}

void OdDbDatabase::setDIMASSOC(int value) {
  if (m_version >= DxfVersion::R2004) setHeaderInt("$DIMASSOC", 280, value);
  else if (m_version >= DxfVersion::R2000) setDictionaryVar(L"DIMASSOC", OdString::format(L"%d", value));
  else setHeaderInt("$DIMASO", 70, value == 0 ? 0 : 1);
}

OdString OdDbDatabase::getCANNOSCALE() const { return dictionaryVar(L"CANNOSCALE").value_or(OdString(L"1:1")); }

void OdDbDatabase::setCANNOSCALE(const OdString& scaleName) { setDictionaryVar(L"CANNOSCALE", scaleName); }
