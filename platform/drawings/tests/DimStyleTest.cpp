// Dimension variables of style records and of the current settings, checked
// against an independent reader over real drawings and through save and reload.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <map>
#include <numbers>
#include <sstream>

#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbDimStyleTableRecord.h"

namespace fs = std::filesystem;

namespace {

bool haveEzdxf() { return std::system("/usr/bin/python3 -c 'import ezdxf' >/dev/null 2>&1") == 0; }

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
    if (f.size() == 4 && f[0] == "STYLE") view.values[{f[0], f[1], f[2]}] = f[3];
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
      if (section == "STYLE") {
        auto rec = odOpen<OdDbDimStyleTableRecord>(styles->getAt(OdString::fromUtf8(styleName)));
        ASSERT_TRUE(rec) << entry.path().filename() << ": no style " << styleName;
        ours = rec->dimVar(index);
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
