// Dimension variables of style records and of the current settings, checked
// against an independent reader over real drawings and through save and reload.
#include <gtest/gtest.h>

#include "TestSupport.h"

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <map>
#include <numbers>
#include <sstream>

#include "DimVarSnapshot.h"
#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbDimStyleTableRecord.h"
#include "drawings/OdDbDimension.h"
#include "drawings/OdDbLeader.h"
#include "drawings/OdDmUtil.h"

namespace fs = std::filesystem;

namespace {
using testsupport::haveEzdxf;

// (section, style, variable) -> value text, as ezdxf reads them.
struct EzdxfView {
  std::map<std::tuple<std::string, std::string, std::string>, std::string> values;
  bool ok = false;
};

EzdxfView ezdxfView(const std::string& path) {
  EzdxfView view;
  std::string cmd = "/usr/bin/python3 " TESTS_DIR "/dump_dimvars.py '" + path + "' 2>/dev/null";
  FILE* p = popen(cmd.c_str(), "r");
  if (!p) return view;
  std::string all;
  char buf[4096];
  size_t n;
  while ((n = fread(buf, 1, sizeof buf, p)) > 0) all.append(buf, n);
  view.ok = pclose(p) == 0;
  std::istringstream in(all);
  for (std::string line; std::getline(in, line);) {
    std::vector<std::string> f;
    std::string cell;
    std::istringstream ls(line);
    while (std::getline(ls, cell, '\t')) f.push_back(cell);
    if (line.back() == '\t') f.push_back("");
    if (f.size() == 4 && (f[0] == "STYLE" || f[0] == "OVERRIDE")) view.values[{f[0], f[1], f[2]}] = f[3];
    if (f.size() == 3 && f[0] == "HEADER") view.values[{f[0], "", f[1]}] = f[2];
  }
  return view;
}

std::size_t rowIndex(const std::string& lowerName) {
  const DimVarDefault* row = findDimVar(lowerName);
  return row ? static_cast<std::size_t>(row - kDimVarDefaults.data()) : kDimVarDefaults.size();
}

std::wstring folded(const OdString& s) {
  std::wstring f = odstr::folded(s.view());
  if (!f.empty() && f[0] == L'_') f.erase(0, 1);  // arrow names with and without the underscore
  return f;
}

// Whether our value and ezdxf's text agree for the row.
bool agrees(const DimVarDefault& row, const OdDimVarValue& ours, const std::string& theirs, bool styleRecord,
            const OdDbObjectId& table) {
  switch (row.kind) {
    case DimVarKind::String: return ours.text.toUtf8() == theirs;
    case DimVarKind::Color: return std::to_string(ours.color.dxfAci()) == theirs;
    case DimVarKind::Block:
    case DimVarKind::Linetype:
    case DimVarKind::TextStyle: {
      OdString name;
      if (auto rec = odOpen<OdDbSymbolTableRecord>(ours.id)) name = rec->getName();
      OdString other = OdString::fromUtf8(theirs);
      if (folded(name) == folded(other)) return true;
      // No linetype is the ByBlock linetype; a name that no record has reads as none.
      if (ours.id.isNull() && row.kind == DimVarKind::Linetype && other.iCompare(L"ByBlock") == 0) return true;
      return ours.id.isNull() && odOpen<OdDbSymbolTable>(table)->getAt(other).isNull();
    }
    case DimVarKind::Double: {
      double t = std::stod(theirs);
      double o = ours.number;
      // DIMSTYLE records hold the jog angle in degrees; we hand out radians.
      if (styleRecord && row.has(dimvar::kStyleDegrees)) o = o * 180.0 / std::numbers::pi;
      return std::fabs(o - t) <= 1e-9 * std::max(1.0, std::fabs(t));
    }
    default: return static_cast<long long>(std::llround(ours.number)) == std::stoll(theirs);
  }
}

}  // namespace

TEST(DimStyle, EveryCorpusStyleAndHeaderAgreesWithAnIndependentReader) {
  if (!fs::exists(CORPUS_DIR)) GTEST_SKIP() << "no corpus";
  if (!haveEzdxf()) GTEST_SKIP() << "ezdxf is not installed";
  int compared = 0, files = 0;
  for (auto& entry : fs::directory_iterator(CORPUS_DIR)) {
    if (entry.path().extension() != ".dxf") continue;
    EzdxfView view = ezdxfView(entry.path().string());
    if (!view.ok) continue;  // files ezdxf itself cannot read
    ++files;
    OdDbDatabasePtr db = OdDbDatabase::readDxfFile(entry.path().string());
    auto styles = odOpen<OdDbSymbolTable>(db->getDimStyleTableId());
    for (auto& [key, theirs] : view.values) {
      const auto& [section, styleName, var] = key;
      std::size_t index = rowIndex(var);
      if (index >= kDimVarCatalogueSize) continue;
      const DimVarDefault& row = kDimVarDefaults[index];
      OdDimVarValue ours;
      if (section == "OVERRIDE") {
        DxfTag h;
        h.text = styleName;  // the entity's handle
        OdDbObjectId id = db->getOdDbObjectId(OdDbHandle(h.toHandle()));
        if (auto dim = odOpen<OdDbDimension>(id)) {
          EXPECT_TRUE(dim->hasDimVarOverride(index)) << entry.path().filename() << " " << styleName << " " << var;
          ours = dim->dimVar(index);
          // The geometry reads all overrides in one pass: it must see the same.
          EXPECT_TRUE(OdDimVarValue::same(row.kind, dimgeom::DimVarSnapshot(*dim).dimVar(index), ours))
              << entry.path().filename() << " " << styleName << " " << var;
        } else if (auto leader = odOpen<OdDbLeader>(id)) {
          EXPECT_TRUE(leader->hasDimVarOverride(index)) << entry.path().filename() << " " << styleName << " " << var;
          ours = leader->dimVar(index);
        } else {
          ADD_FAILURE() << "no dimension or leader " << styleName;
          continue;
        }
      } else if (section == "STYLE") {
        auto rec = odOpen<OdDbDimStyleTableRecord>(styles->getAt(OdString::fromUtf8(styleName)));
        ASSERT_TRUE(rec) << entry.path().filename() << ": no style " << styleName;
        ours = rec->dimVar(index);
        EXPECT_TRUE(OdDimVarValue::same(row.kind, dimgeom::styleValues(*rec)[index], ours))
            << entry.path().filename() << " " << styleName << " " << var;
      } else {
        ours = db->dimVar(index);
      }
      OdDbObjectId table = row.kind == DimVarKind::Block       ? db->getBlockTableId()
                           : row.kind == DimVarKind::Linetype  ? db->getLinetypeTableId()
                                                               : db->getTextStyleTableId();
      EXPECT_TRUE(agrees(row, ours, theirs, section == "STYLE", table))
          << entry.path().filename() << " " << section << " " << styleName << " " << var << ": ezdxf " << theirs
          << ", ours " << ours.number << " \"" << ours.text.toUtf8() << "\"";
      ++compared;
    }
  }
  EXPECT_GT(files, 40);
  EXPECT_GT(compared, 3000);
}

TEST(DimStyle, AbsentCodesMeanTheImperialValuesWhateverTheUnits) {
  // A metric drawing's "Standard" written from R2000 on lists no codes at all.
  OdDbDatabasePtr db = OdDbDatabase::createNew(DxfVersion::R2018, true);
  auto styles = odOpen<OdDbSymbolTable>(db->getDimStyleTableId());
  auto iso = odOpen<OdDbDimStyleTableRecord>(styles->getAt(L"ISO-25"));
  ASSERT_TRUE(iso);
  EXPECT_DOUBLE_EQ(iso->dimasz(), 2.5);
  EXPECT_EQ(iso->dimtad(), 1);
  EXPECT_EQ(iso->dimdsep(), L',');
  EXPECT_DOUBLE_EQ(iso->dimjogang(), std::numbers::pi / 4);
  // Current settings mirror the current style.
  EXPECT_EQ(db->dimstyle(), iso->objectId());
  for (std::size_t i = 0; i < kDimVarCatalogueSize; ++i)
    EXPECT_TRUE(OdDimVarValue::same(kDimVarDefaults[i].kind, db->dimVar(i), iso->dimVar(i))) << kDimVarDefaults[i].name;
}

namespace {

// A value of `row` that differs from the built-in one, valid for the variable.
OdDimVarValue nonDefault(const DimVarDefault& row, OdDbDatabase& db, const OdDbObjectId& textStyle) {
  OdDimVarValue v;
  const DimVarValue& d = row.imperial;
  switch (row.kind) {
    case DimVarKind::Bool: v.number = d.number == 0 ? 1 : 0; break;
    case DimVarKind::Double: v.number = d.number + 0.25; break;
    case DimVarKind::String: v.text = L"<> mm"; break;
    case DimVarKind::Color: v.color.setColorIndex(3); break;
    case DimVarKind::LineWeight: v.number = 35; break;
    case DimVarKind::Block: v.id = OdDmUtil::getArrowId(L"_ArchTick", &db); break;
    case DimVarKind::Linetype: v.id = odOpen<OdDbSymbolTable>(db.getLinetypeTableId())->getAt(L"Continuous"); break;
    case DimVarKind::TextStyle: v.id = textStyle; break;
    default: v.number = row.name == "DIMDSEP" ? ',' : d.number + 1;
  }
  return v;
}

OdDbObjectId addTextStyle(OdDbDatabase& db, const OdString& name) {
  auto styles = odOpen<OdDbSymbolTable>(db.getTextStyleTableId(), OdDb::kForWrite);
  OdSmartPtr<OdDbTextStyleTableRecord> rec = OdDbTextStyleTableRecord::createObject();
  rec->setDxfName("STYLE");
  db.addOdDbObject(rec.get(), styles->objectId());
  DxfTagList& t = rec->tagsForWrite();
  if (db.version() > DxfVersion::R12) {
    t.emplace_back(100, "AcDbSymbolTableRecord");
    t.emplace_back(100, "AcDbTextStyleTableRecord");
  }
  for (auto [code, text] : std::initializer_list<std::pair<int, const char*>>{
           {2, "x"}, {70, "0"}, {40, "0.0"}, {41, "0.8"}, {50, "0.0"}, {71, "0"}, {42, "2.5"}, {3, "txt"}, {4, ""}})
    t.emplace_back(code, text);
  rec->setName(name);
  return styles->add(rec.get());
}

// Whether the version keeps row's value in a style record, in the header, in overrides.
bool styleHolds(const DimVarDefault& row, DxfVersion v) {
  int code = row.styleCodeIn(v);
  if (code >= 290 && code <= 299 && row.kind != DimVarKind::Bool) return false;
  return code != 0 || (v >= DxfVersion::R2000 && v <= DxfVersion::R2004 && row.styleCode != 0 &&
                                     row.styleSince == DxfVersion::R2007 && row.kind != DimVarKind::String &&
                                     row.name != "DIMTXTDIRECTION");
}

}  // namespace

TEST(DimStyle, EveryVariableSurvivesSavingInEveryVersion) {
  const bool ezdxf = haveEzdxf();
  for (DxfVersion v : {DxfVersion::R12, DxfVersion::R2000, DxfVersion::R2004, DxfVersion::R2007, DxfVersion::R2010,
                       DxfVersion::R2018}) {
    SCOPED_TRACE(std::string(dxfver::keyword(v)));
    OdDbDatabasePtr db = OdDbDatabase::createNew(v, false);
    OdDbObjectId narrow = addTextStyle(*db, L"Narrow");
    auto style = odOpen<OdDbDimStyleTableRecord>(db->dimstyle(), OdDb::kForWrite);
    ASSERT_TRUE(style);
    auto dim = OdDbRotatedDimension::createFor(*db);
    odOpen<OdDbBlockTableRecord>(db->getModelSpaceId(), OdDb::kForWrite)->appendOdDbEntity(dim.get());
    std::vector<OdDimVarValue> want;
    for (std::size_t i = 0; i < kDimVarCatalogueSize; ++i) {
      want.push_back(nonDefault(kDimVarDefaults[i], *db, narrow));
      style->setDimVar(i, want.back());
      db->setDimVar(i, want.back());
      dim->setDimVar(i, want.back());
    }
    // In memory every value is there, whatever the version can save.
    for (std::size_t i = 0; i < kDimVarCatalogueSize; ++i) {
      const auto& row = kDimVarDefaults[i];
      EXPECT_TRUE(OdDimVarValue::same(row.kind, style->dimVar(i), want[i])) << row.name;
      EXPECT_TRUE(OdDimVarValue::same(row.kind, db->dimVar(i), want[i])) << row.name;
      EXPECT_TRUE(OdDimVarValue::same(row.kind, dim->dimVar(i), want[i])) << row.name;
    }
    std::string bytes = db->toDxf();
    OdDbDatabasePtr again = OdDbDatabase::readDxf(bytes);
    auto style2 = odOpen<OdDbDimStyleTableRecord>(again->dimstyle());
    auto dim2 = odOpen<OdDbDimension>(again->getOdDbObjectId(dim->getDbHandle()));
    ASSERT_TRUE(style2 && dim2);
    auto sameRef = [&](const OdDimVarValue& a, const OdDimVarValue& b) {
      return odOpen<OdDbSymbolTableRecord>(a.id) && odOpen<OdDbSymbolTableRecord>(b.id) &&
             odOpen<OdDbSymbolTableRecord>(a.id)->getName() == odOpen<OdDbSymbolTableRecord>(b.id)->getName();
    };
    auto same = [&](const DimVarDefault& row, const OdDimVarValue& got, const OdDimVarValue& w) {
      bool ref = row.kind == DimVarKind::Block || row.kind == DimVarKind::Linetype || row.kind == DimVarKind::TextStyle;
      return ref ? sameRef(got, w) : OdDimVarValue::same(row.kind, got, w);
    };
    for (std::size_t i = 0; i < kDimVarCatalogueSize; ++i) {
      const auto& row = kDimVarDefaults[i];
      if (styleHolds(row, v)) {
        EXPECT_TRUE(same(row, style2->dimVar(i), want[i])) << "style " << row.name;
      }
      if (row.inHeader(v)) {
        EXPECT_TRUE(same(row, again->dimVar(i), want[i])) << "header " << row.name;
      }
      EXPECT_TRUE(dim2->hasDimVarOverride(i)) << row.name;
      EXPECT_TRUE(same(row, dim2->dimVar(i), want[i])) << "override " << row.name;
    }
    if (!ezdxf) continue;
    // ezdxf reads the same values from our file.
    fs::path file = fs::temp_directory_path() / ("vex_dimvars_" + std::string(dxfver::keyword(v)) + ".dxf");
    again->writeDxfFile(file.string());
    EzdxfView view = ezdxfView(file.string());
    ASSERT_TRUE(view.ok);
    int checked = 0;
    for (auto& [key, theirs] : view.values) {
      const auto& [section, owner, var] = key;
      std::size_t index = rowIndex(var);
      if (index >= kDimVarCatalogueSize) continue;
      const auto& row = kDimVarDefaults[index];
      OdDbObjectId table = row.kind == DimVarKind::Block      ? again->getBlockTableId()
                           : row.kind == DimVarKind::Linetype ? again->getLinetypeTableId()
                                                              : again->getTextStyleTableId();
      if (section == "STYLE" && owner == style2->getName().toUtf8() && styleHolds(row, v)) {
        EXPECT_TRUE(agrees(row, want[index], theirs, true, table)) << "style " << var << " ezdxf " << theirs;
        ++checked;
      } else if (section == "HEADER" && row.inHeader(v)) {
        EXPECT_TRUE(agrees(row, want[index], theirs, false, table)) << "header " << var << " ezdxf " << theirs;
        ++checked;
      } else if (section == "OVERRIDE") {
        EXPECT_TRUE(agrees(row, want[index], theirs, false, table)) << "override " << var << " ezdxf " << theirs;
        ++checked;
      }
    }
    EXPECT_GT(checked, v == DxfVersion::R12 ? 60 : 120);
    fs::remove(file);
  }
}

TEST(DimStyle, PurgeKeepsWhatDimensionsAndStylesUse) {
  const std::string sample = TESTS_DIR "/../../../samples/dimstyles.dxf";
  if (!fs::exists(sample)) GTEST_SKIP() << "no sample drawing";
  OdDbDatabasePtr db = OdDbDatabase::readDxfFile(sample);
  auto styles = odOpen<OdDbSymbolTable>(db->getDimStyleTableId(), OdDb::kForWrite);
  // An unused style and an unused child of a used parent.
  OdDbObjectId lonely, child;
  for (auto [name, out] : {std::pair<const wchar_t*, OdDbObjectId*>{L"Unused", &lonely}, {L"Architectural$6", &child}}) {
    OdSmartPtr<OdDbDimStyleTableRecord> rec = OdDbDimStyleTableRecord::createObject();
    db->addOdDbObject(rec.get(), styles->objectId());
    DxfTagList& t = rec->tagsForWrite();
    t.emplace_back(100, "AcDbSymbolTableRecord");
    t.emplace_back(100, "AcDbDimStyleTableRecord");
    t.emplace_back(2, "x");
    t.emplace_back(70, "0");
    rec->setName(name);
    *out = styles->add(rec.get());
  }
  OdDbObjectIdArray ids = styles->recordIds();
  db->purge(ids);
  std::set<std::wstring> purgeable;
  for (auto& id : ids) purgeable.insert(odOpen<OdDbSymbolTableRecord>(id)->getName().str());
  // Styles used by dimensions and leaders, the current one and parents of children stay.
  EXPECT_EQ(purgeable, (std::set<std::wstring>{L"ISO-25$0", L"ISO-25$2", L"ISO-25$3", L"ISO-25$4", L"ISO-25$7",
                                               L"Unused", L"Architectural$6"}));
  // Arrow blocks and text styles that styles refer to are not purgeable.
  auto blocks = odOpen<OdDbSymbolTable>(db->getBlockTableId());
  OdDbObjectIdArray bids = blocks->recordIds();
  db->purge(bids);
  for (auto& id : bids) EXPECT_NE(odOpen<OdDbSymbolTableRecord>(id)->getName().left(1), OdString(L"_"));
}

TEST(DimStyle, OverridesAreChangedAndRemovedInPlace) {
  const std::string path = std::string(CORPUS_DIR) + "/qcad__qcad__leader_overrides.dxf";
  if (!fs::exists(path)) GTEST_SKIP();
  OdDbDatabasePtr db = OdDbDatabase::readDxfFile(path);
  std::string before = db->toDxf();
  OdSmartPtr<OdDbLeader> leader;
  auto ms = odOpen<OdDbBlockTableRecord>(db->getModelSpaceId());
  const std::size_t asz = rowIndex("dimasz");
  for (auto& id : ms->entityIds()) {
    auto l = odOpen<OdDbLeader>(id, OdDb::kForWrite);
    if (l && l->hasDimVarOverride(asz)) leader = l;
  }
  ASSERT_TRUE(leader);
  ASSERT_TRUE(leader->hasDimVarOverride(asz));
  const double style = odOpen<OdDbDimStyleTableRecord>(leader->dimensionStyle())->dimasz();
  // Changing an override rewrites only its value.
  leader->setDimasz(leader->dimasz() * 2);
  OdDbDatabasePtr changed = OdDbDatabase::readDxf(db->toDxf());
  EXPECT_DOUBLE_EQ(odOpen<OdDbLeader>(changed->getOdDbObjectId(leader->getDbHandle()))->dimasz(), leader->dimasz());
  // Removing every override leaves the style's values and no DSTYLE group.
  for (std::size_t row : leader->dimVarOverrides()) leader->removeDimVarOverride(row);
  EXPECT_TRUE(leader->dimVarOverrides().empty());
  EXPECT_DOUBLE_EQ(leader->dimasz(), style);
  OdResBufPtr acad = leader->xData(L"ACAD");
  for (OdResBufPtr p = acad; p; p = p->next()) EXPECT_NE(p->getString(), OdString(L"DSTYLE"));
  std::string after = db->toDxf();
  OdDbDatabasePtr again = OdDbDatabase::readDxf(after);
  EXPECT_TRUE(odOpen<OdDbLeader>(again->getOdDbObjectId(leader->getDbHandle()))->dimVarOverrides().empty());
  EXPECT_LT(after.size(), before.size());
}

TEST(DimStyle, TheSampleDrawingOpensWithStyleOverridesAndEveryDimensionKind) {
  const std::string sample = TESTS_DIR "/../../../samples/dimstyles.dxf";
  if (!fs::exists(sample)) GTEST_SKIP() << "no sample drawing";
  OdDbDatabasePtr db = OdDbDatabase::readDxfFile(sample);
  auto current = odOpen<OdDbDimStyleTableRecord>(db->dimstyle());
  ASSERT_TRUE(current);
  std::set<std::string> differing;
  for (std::size_t i = 0; i < kDimVarCatalogueSize; ++i)
    if (!OdDimVarValue::same(kDimVarDefaults[i].kind, db->dimVar(i), current->dimVar(i)))
      differing.insert(std::string(kDimVarDefaults[i].name));
  EXPECT_EQ(differing, (std::set<std::string>{"DIMASZ", "DIMCLRD", "DIMTXT"}));
  // Every kind of dimension, a leader, and overrides on some of them.
  std::set<std::string> kinds;
  int withOverrides = 0;
  auto ms = odOpen<OdDbBlockTableRecord>(db->getModelSpaceId());
  for (auto& id : ms->entityIds()) {
    auto e = odOpen<OdDbEntity>(id);
    if (auto d = odOpen<OdDbDimension>(id)) {
      kinds.insert(d->isA()->name().toUtf8());
      withOverrides += !d->dimVarOverrides().empty();
    } else if (auto l = odOpen<OdDbLeader>(id)) {
      kinds.insert("OdDbLeader");
      withOverrides += !l->dimVarOverrides().empty();
    }
  }
  EXPECT_EQ(kinds, (std::set<std::string>{"OdDbRotatedDimension", "OdDbAlignedDimension", "OdDb2LineAngularDimension",
                                          "OdDb3PointAngularDimension", "OdDbDiametricDimension", "OdDbRadialDimension",
                                          "OdDbOrdinateDimension", "OdDbArcDimension", "OdDbLeader"}));
  EXPECT_GE(withOverrides, 3);
}

TEST(DimStyle, ExtendedDataOfTheDimensionApplicationsIsKeptAndSettable) {
  const std::string path = std::string(CORPUS_DIR) + "/DomCR__ACadSharp__sample_AC1018_ascii.dxf";
  if (!fs::exists(path)) GTEST_SKIP();
  OdDbDatabasePtr db = OdDbDatabase::readDxfFile(path);
  auto styles = odOpen<OdDbSymbolTable>(db->getDimStyleTableId());
  auto annotative = odOpen<OdDbDimStyleTableRecord>(styles->getAt(L"Annotative"), OdDb::kForWrite);
  ASSERT_TRUE(annotative);
  EXPECT_TRUE(annotative->isAnnotative());
  OdResBufPtr taln = annotative->xData(L"ACAD_DSTYLE_DIMTALN");
  ASSERT_TRUE(taln);
  EXPECT_EQ(taln->next()->getInt16(), 392);
  // Set the value that follows the 392 marker, and make a plain style annotative.
  taln->next()->next()->setInt16(1);
  annotative->setXData(taln.get());
  auto standard = odOpen<OdDbDimStyleTableRecord>(styles->getAt(L"Standard"), OdDb::kForWrite);
  EXPECT_FALSE(standard->isAnnotative());
  standard->setAnnotative(true);
  OdDbDatabasePtr again = OdDbDatabase::readDxf(db->toDxf());
  auto styles2 = odOpen<OdDbSymbolTable>(again->getDimStyleTableId());
  auto a2 = odOpen<OdDbDimStyleTableRecord>(styles2->getAt(L"Annotative"));
  EXPECT_EQ(a2->xData(L"ACAD_DSTYLE_DIMTALN")->next()->next()->getInt16(), 1);
  EXPECT_TRUE(odOpen<OdDbDimStyleTableRecord>(styles2->getAt(L"Standard"))->isAnnotative());
  // The other groups of the record are still there.
  EXPECT_TRUE(a2->xData(L"ACAD_DSTYLE_DIMJAG"));
}
