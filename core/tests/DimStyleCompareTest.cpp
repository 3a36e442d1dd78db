// Comparing, listing and copying whole sets of dimension values.
#include "model/DimStyleCompare.h"

#include <cmath>
#include <filesystem>
#include <limits>

#include "DdsModelTestSupport.h"
#include "res/DdsStrings.h"

using namespace dds;
using namespace ddstest;

namespace {

std::wstring upperName(std::size_t row) { return CXStringW::FromUtf8(kDimVarDefaults[row].name).str(); }

std::vector<std::wstring> column(const DimVarCells& cells, std::size_t width, std::size_t col) {
  std::vector<std::wstring> out;
  for (std::size_t p = col; p < cells.size(); p += width) out.push_back(cells[p].str());
  return out;
}

// ---------------------------------------------------------------- one variable at a time

class EachVariable : public ModelTest, public ::testing::WithParamInterface<int> {};

// For every variable: a value set on the current settings is an override, listed
// with both values in the right order, and each copy operation carries it over.
TEST_P(EachVariable, IsComparedListedAndCopied) {
  const DimVarInfo& v = DimVarTable[static_cast<std::size_t>(GetParam())];
  OdDbDatabase* db = newDrawing();
  const OdDbObjectId styleId = db->dimstyle();
  auto style = openStyle(styleId);
  ASSERT_FALSE(HasOverrides(style.get(), db));

  const OdDimVarValue before = v.get(*db);
  const OdDimVarValue changed = otherValue(v, before, *db);
  v.set(*db, changed);
  ASSERT_TRUE(v.differ(v.get(*db), before)) << "the drawing did not take the value";
  EXPECT_TRUE(HasOverrides(style.get(), db));
  EXPECT_TRUE(HasOverrides(style.get()));  // the active drawing stands in

  DimVarCells out{L"stale"};
  ListDifferences(style.get(), nullptr, out, true);
  ASSERT_EQ(out.size(), 4u);
  EXPECT_EQ(out[0].str(), upperName(v.row));
  EXPECT_NE(out[1], out[2]);
  EXPECT_EQ(out[1], v.format(before));
  EXPECT_EQ(out[2], v.format(changed));
  EXPECT_EQ(out[3], ddsString(v.descriptionId, "en"));
  ListDifferences(nullptr, style.get(), out, false);
  ASSERT_EQ(out.size(), 3u);
  EXPECT_EQ(out[1], v.format(changed));
  EXPECT_EQ(out[2], v.format(before));

  // Into the style: no override left, and no other variable of the style moved.
  DimVarCells valuesBefore, valuesAfter;
  ListStyleValues(style.get(), valuesBefore, false);
  ASSERT_EQ(CopyCurrentToStyle(openStyle(styleId, OdDb::kForWrite).get(), db), S_OK);
  EXPECT_FALSE(HasOverrides(style.get(), db));
  EXPECT_FALSE(v.differ(v.get(*style), changed));
  ListStyleValues(style.get(), valuesAfter, false);
  ASSERT_EQ(valuesAfter.size(), valuesBefore.size());
  for (std::size_t p = 0; p < valuesAfter.size(); p += 2) {
    if (valuesAfter[p].str() == upperName(v.row)) continue;
    EXPECT_EQ(valuesAfter[p + 1], valuesBefore[p + 1]) << valuesAfter[p].ToUtf8();
  }

  // And back from a style into the current settings.
  const OdDbObjectId otherId = addStyle(*db, L"Other", styleId);
  auto other = openStyle(otherId, OdDb::kForWrite);
  v.set(*other, before);
  DimVarCells twoStyles;
  ListDifferences(style.get(), other.get(), twoStyles, false);
  EXPECT_EQ(column(twoStyles, 3, 0), std::vector<std::wstring>{upperName(v.row)});
  ASSERT_EQ(CopyStyleToCurrent(db, other.get()), S_OK);
  EXPECT_FALSE(HasOverrides(other.get(), db));
  EXPECT_FALSE(v.differ(v.get(*db), before));
}

INSTANTIATE_TEST_SUITE_P(Catalogue, EachVariable, ::testing::Range(0, static_cast<int>(kDimVarCount)),
                         [](const ::testing::TestParamInfo<int>& info) {
                           return std::string(kDimVarDefaults[static_cast<std::size_t>(info.param)].name);
                         });

// ---------------------------------------------------------------- whole listings

class Listings : public ModelTest {};

TEST_F(Listings, EveryDifferenceInAlphabeticalOrder) {
  OdDbDatabase* db = newDrawing();
  auto style = openStyle(db->dimstyle());
  for (const DimVarInfo& v : DimVarTable) v.set(*db, otherValue(v, v.get(*db), *db));

  std::vector<std::wstring> sorted;
  for (std::size_t row = 0; row < kDimVarCount; ++row) sorted.push_back(upperName(row));
  std::sort(sorted.begin(), sorted.end());

  DimVarCells out;
  ListDifferencesStyleCurrent(style.get(), db, out, true);
  ASSERT_EQ(out.size(), kDimVarCount * 4);
  EXPECT_EQ(column(out, 4, 0), sorted);
  EXPECT_EQ(out[0], CXStringW(L"DIMADEC"));
  EXPECT_EQ(out[3], CXStringW(L"Angular decimal places"));
  ListDifferencesCurrentStyle(db, style.get(), out, false);
  ASSERT_EQ(out.size(), kDimVarCount * 3);
  EXPECT_EQ(column(out, 3, 0), sorted);

  DimVarCells values;
  ListStyleValues(style.get(), values, true);
  ASSERT_EQ(values.size(), kDimVarCount * 3);
  EXPECT_EQ(column(values, 3, 0), sorted);
  EXPECT_EQ(values.front(), CXStringW(L"DIMADEC"));
  EXPECT_EQ(values[values.size() - 3], CXStringW(L"DIMZIN"));
  EXPECT_EQ(values.back(), CXStringW(L"Zero suppression"));
  ListCurrentValues(nullptr, values, false);
  ASSERT_EQ(values.size(), kDimVarCount * 2);
  EXPECT_EQ(column(values, 2, 0), sorted);
}

TEST_F(Listings, ExactComparison) {
  OdDbDatabase* db = newDrawing();
  const OdDbObjectId aId = addStyle(*db, L"A", db->dimstyle());
  const OdDbObjectId bId = addStyle(*db, L"B", db->dimstyle());
  auto a = openStyle(aId, OdDb::kForWrite), b = openStyle(bId, OdDb::kForWrite);

  DimVarCells out{L"stale", L"cells", L"here"};
  ListDifferencesStyleStyle(a.get(), b.get(), out, true);
  EXPECT_TRUE(out.empty()) << "identical styles list nothing";

  a->setDimasz(2.5);
  b->setDimasz(std::nextafter(2.5, 3.0));  // differs in the sixteenth digit
  ListDifferencesStyleStyle(a.get(), b.get(), out, false);
  EXPECT_EQ(column(out, 3, 0), std::vector<std::wstring>{L"DIMASZ"});

  b->setDimasz(2.5);
  a->setDimpost(L"mm");
  b->setDimpost(L"MM");
  ListDifferencesStyleStyle(a.get(), b.get(), out, false);
  EXPECT_EQ(out, (DimVarCells{L"DIMPOST", L"mm", L"MM"}));
}

TEST_F(Listings, NaNAndTheSameHolder) {
  FakeHolder a, b;
  const std::size_t asz = FindDimVarInfo(L"DIMASZ")->row;
  a.values[asz].number = b.values[asz].number = std::numeric_limits<double>::quiet_NaN();
  DimVarCells out;
  ListDimVarDifferences(&a, &b, out, false);
  EXPECT_EQ(column(out, 3, 0), std::vector<std::wstring>{L"DIMASZ"});
  EXPECT_TRUE(DimVarsDiffer(a, b));

  // The same holder on both sides: nothing is read, and the list is emptied.
  a.reads.clear();
  ListDimVarDifferences(&a, &a, out, true);
  EXPECT_TRUE(out.empty());
  EXPECT_FALSE(DimVarsDiffer(a, a));
  EXPECT_TRUE(a.reads.empty());
}

TEST_F(Listings, StopsAtTheFirstDifference) {
  FakeHolder a, b;
  const std::size_t dec = FindDimVarInfo(L"DIMDEC")->row;  // row 22 of 78
  const std::size_t tfill = FindDimVarInfo(L"DIMTFILL")->row;
  b.values[dec].number = 3;
  b.values[tfill].number = 1;
  EXPECT_TRUE(DimVarsDiffer(a, b));
  ASSERT_FALSE(a.reads.empty());
  EXPECT_EQ(a.reads.back(), dec);
  EXPECT_EQ(*std::max_element(b.reads.begin(), b.reads.end()), dec);

  b.values[dec].number = 0;
  b.values[tfill].number = 0;
  a.reads.clear();
  EXPECT_FALSE(DimVarsDiffer(a, b));
  EXPECT_EQ(a.reads.size(), kDimVarCount);
}

TEST_F(Listings, MissingSidesLeaveTheListAlone) {
  const DimVarCells stale{L"x", L"y", L"z"};
  DimVarCells out = stale;
  ListDifferences(nullptr, nullptr, out, false);  // no active drawing either
  EXPECT_EQ(out, stale);

  OdDbDatabase* db = newDrawing();
  auto style = openStyle(db->dimstyle());
  ListDifferences(nullptr, nullptr, out, false);  // current settings against themselves: still nothing
  EXPECT_EQ(out, stale);
  hostSetActiveDatabase(nullptr);
  ListDifferences(style.get(), nullptr, out, true);
  EXPECT_EQ(out, stale);
  ListDifferencesCurrentStyle(nullptr, style.get(), out, true);
  EXPECT_EQ(out, stale);
  EXPECT_FALSE(HasOverrides(style.get()));
  EXPECT_EQ(CopyStyleToCurrent(nullptr, style.get()), E_INVALIDARG);

  // A style id that opens nothing lists nothing and says why.
  trace.clear();
  ListStyleValues(OdDbObjectId(), out, false);
  EXPECT_EQ(out, stale);
  ASSERT_EQ(trace.size(), 1u);
  EXPECT_NE(trace[0].find(L"RETERRIF3VOID marco, expr: !pStyle "), std::wstring::npos) << CXStringW(trace[0]).ToUtf8();
  EXPECT_NE(trace[0].find(L"[dds:"), std::wstring::npos);
}

// ---------------------------------------------------------------- the same drawing in two versions

// Listings of the rows an R12 file can hold: the style's DIMSTYLE slots and the
// header's variables of that version. The others are R13 and later additions,
// which an R12 file leaves at their built-in values.
struct R12View { std::vector<std::wstring> style, current, overrides; };

R12View r12View(OdDbDatabase& db) {
  hostSetActiveDatabase(&db);
  auto style = openStyle(db.dimstyle());
  DimVarCells styleValues, currentValues, diffs;
  ListStyleValues(db.dimstyle(), styleValues, true);
  ListCurrentValues(&db, currentValues, true);
  ListDifferences(style.get(), nullptr, diffs, true);
  R12View view;
  auto keep = [](const DimVarCells& cells, std::size_t w, bool styleSlot, std::vector<std::wstring>& out) {
    for (std::size_t p = 0; p < cells.size(); p += w) {
      const DimVarDefault& row = kDimVarDefaults[FindDimVarInfo(cells[p])->row];
      if (styleSlot ? row.styleCodeIn(DxfVersion::R12) == 0 : !row.inHeader(DxfVersion::R12)) continue;
      for (std::size_t c = 0; c < w; ++c) out.push_back(cells[p + c].str());
    }
  };
  keep(styleValues, 3, true, view.style);
  keep(currentValues, 3, false, view.current);
  keep(diffs, 4, false, view.overrides);
  return view;
}

void expectSameView(const R12View& a, const R12View& b) {
  EXPECT_GE(a.style.size(), 35u * 3) << "too few variables to compare";
  EXPECT_GE(a.current.size(), 35u * 3);
  EXPECT_EQ(a.style, b.style);
  EXPECT_EQ(a.current, b.current);
  EXPECT_EQ(a.overrides, b.overrides);
}

// The same overrides on both drawings, all of variables R12 holds.
void addOverrides(OdDbDatabase& db) {
  db.setDimasz(3.5);
  db.setDimpost(L"<> mm");
  OdCmColor red;
  red.setColorIndex(1);
  db.setDimclrd(red);
  db.setDimblk1(OdDmUtil::getArrowId(L"_ArchTick", &db));
}

class SameDrawing : public ModelTest {};

TEST_F(SameDrawing, R12AndR2018FilesListAlike) {
  const std::string r12 = corpus("LibreDWG__libredwg__example_r12.dxf");
  const std::string r2018 = corpus("LibreDWG__libredwg__example_2018.dxf");
  if (!std::filesystem::exists(r12) || !std::filesystem::exists(r2018)) GTEST_SKIP() << "no corpus";
  OdDbDatabasePtr a = OdDbDatabase::readDxfFile(r12);
  OdDbDatabasePtr b = OdDbDatabase::readDxfFile(r2018);
  ASSERT_EQ(a->version(), DxfVersion::R12);
  ASSERT_EQ(styleName(a->dimstyle()), L"ISO-25");
  ASSERT_EQ(styleName(b->dimstyle()), L"ISO-25");
  expectSameView(r12View(*a), r12View(*b));

  addOverrides(*a);
  addOverrides(*b);
  const R12View va = r12View(*a), vb = r12View(*b);
  EXPECT_EQ(va.overrides.size(), 4u * 4) << ::testing::PrintToString(va.overrides);
  expectSameView(va, vb);
  hostSetActiveDatabase(nullptr);
}

TEST_F(SameDrawing, R2018SavedAsR12ListsAlike) {
  const std::string path = corpus("LibreDWG__libredwg__example_2018.dxf");
  if (!std::filesystem::exists(path)) GTEST_SKIP() << "no corpus";
  OdDbDatabasePtr db = OdDbDatabase::readDxfFile(path);
  {
    // A style with values of its own, arrow blocks among them (R12 names them
    // where later versions point at them), then overrides on top.
    auto style = openStyle(db->dimstyle(), OdDb::kForWrite);
    style->setDimsah(true);
    style->setDimblk1(OdDmUtil::getArrowId(L"_Oblique", db.get()));
    style->setDimblk2(OdDmUtil::getArrowId(L"_BoxBlank", db.get()));
    OdCmColor blue;
    blue.setColorIndex(5);
    style->setDimclre(blue);
    style->setDimapost(L"[]\"");
    style->setDimtxt(1.75);
  }
  addOverrides(*db);
  DxfSaveOptions asR12;
  asR12.version = DxfVersion::R12;
  OdDbDatabasePtr r12 = OdDbDatabase::readDxf(db->toDxf(asR12));
  ASSERT_EQ(r12->version(), DxfVersion::R12);
  const R12View original = r12View(*db), saved = r12View(*r12);
  // The style's changes are overrides as well (the current settings kept their
  // values); DIMBLK1 was overridden already.
  EXPECT_EQ(saved.overrides.size(), 9u * 4) << ::testing::PrintToString(saved.overrides);
  expectSameView(original, saved);
  hostSetActiveDatabase(nullptr);
}

}  // namespace
