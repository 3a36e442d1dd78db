// Helpers of the style model's tests: a drawing made the host's active one, the
// host's language and Yes/No answers, the trace log, and holders to compare.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "drawings/OdDbBlockBuilder.h"
#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbDimStyleTableRecord.h"
#include "drawings/OdDmUtil.h"
#include "host/HostServices.h"
#include "host/HostTrace.h"
#include "model/DimVarTable.h"

namespace ddstest {

inline std::string corpus(const char* name) { return std::string(CORPUS_DIR) + "/" + name; }

// Restores every host setting a test may change.
class ModelTest : public ::testing::Test {
protected:
  void SetUp() override {
    hostSetLanguage("en");
    hostTraceSetSink([this](const std::wstring& line) { trace.push_back(line); });
  }
  void TearDown() override {
    hostTraceSetSink(nullptr);
    hostSetYesNoHandler(nullptr);
    hostSetActiveDatabase(nullptr);
    hostSetLanguage("en");
  }
  // Makes `db` the active drawing for the rest of the test.
  OdDbDatabase* activate(OdDbDatabasePtr db) {
    m_db = db;
    hostSetActiveDatabase(db.get());
    return db.get();
  }
  OdDbDatabase* newDrawing(bool metric = false) {
    return activate(OdDbDatabase::createNew(DxfVersion::R2018, metric));
  }

  std::vector<std::wstring> trace;
  OdDbDatabasePtr m_db;
};

inline OdDbDimStyleTableRecordPtr openStyle(const OdDbObjectId& id, OdDb::OpenMode mode = OdDb::kForRead) {
  return odOpen<OdDbDimStyleTableRecord>(id, mode);
}

// A new style record named `name`; with `copyOf`, holding that style's values.
inline OdDbObjectId addStyle(OdDbDatabase& db, const wchar_t* name, const OdDbObjectId& copyOf = OdDbObjectId()) {
  auto styles = odOpen<OdDbSymbolTable>(db.getDimStyleTableId(), OdDb::kForWrite);
  OdDbDimStyleTableRecordPtr rec = OdDbDimStyleTableRecord::createObject();
  db.addOdDbObject(rec.get(), styles->objectId());
  DxfTagList& t = rec->tagsForWrite();
  t.emplace_back(100, "AcDbSymbolTableRecord");
  t.emplace_back(100, "AcDbDimStyleTableRecord");
  t.emplace_back(2, "x");
  t.emplace_back(70, "0");
  rec->setName(name);
  const OdDbObjectId id = styles->add(rec.get());
  if (auto from = openStyle(copyOf)) {
    for (std::size_t row = 0; row < kDimVarCatalogueSize; ++row) rec->setDimVar(row, from->dimVar(row));
  }
  return id;
}

inline std::wstring styleName(const OdDbObjectId& id) {
  auto rec = odOpen<OdDbSymbolTableRecord>(id);
  return rec ? rec->getName().str() : std::wstring(L"<none>");
}

// A holder without a drawing that records which rows are read.
class FakeHolder : public OdDimVarSource {
public:
  OdDimVarValue dimVar(std::size_t row) const override {
    reads.push_back(row);
    return values[row];
  }
  void setDimVar(std::size_t row, const OdDimVarValue& v) override { values[row] = v; }

  std::array<OdDimVarValue, kDimVarDefaults.size()> values{};
  mutable std::vector<std::size_t> reads;
};

// A value of the variable's kind that differs from `current`, valid in `db`.
inline OdDimVarValue otherValue(const dds::DimVarInfo& v, const OdDimVarValue& current, OdDbDatabase& db) {
  OdDimVarValue x = current;
  switch (v.kind) {
    case DimVarKind::Bool: x.number = current.number != 0.0 ? 0.0 : 1.0; break;
    case DimVarKind::Int16:
    case DimVarKind::UInt16:
    case DimVarKind::UInt8: x.number = current.number == 1.0 ? 2.0 : 1.0; break;
    case DimVarKind::LineWeight: x.number = current.number == 25.0 ? 50.0 : 25.0; break;
    case DimVarKind::Double: x.number = current.number + 0.5; break;
    case DimVarKind::String: x.text = current.text + OdString(L"x"); break;
    case DimVarKind::Color:
      x.color.setColorIndex(current.color.isByACI() && current.color.colorIndex() == 3 ? 5 : 3);
      break;
    case DimVarKind::Block: {
      const OdDbObjectId tick = OdDmUtil::getArrowId(L"_ArchTick", &db);
      x.id = current.id == tick ? OdDmUtil::getArrowId(L"_Dot", &db) : tick;
      break;
    }
    case DimVarKind::Linetype: {
      const OdDbObjectId continuous = odOpen<OdDbSymbolTable>(db.getLinetypeTableId())->getAt(L"Continuous");
      x.id = current.id == continuous ? OdDbObjectId() : continuous;
      break;
    }
    case DimVarKind::TextStyle: {
      const OdDbObjectId standard = odOpen<OdDbSymbolTable>(db.getTextStyleTableId())->getAt(L"Standard");
      x.id = current.id == standard ? OdDbObjectId() : standard;
      break;
    }
  }
  return x;
}

}  // namespace ddstest
