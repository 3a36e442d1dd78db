// The dimension variable catalogue, the module's string table, the arrowhead
// catalogue and the value formatters.
#include "model/DimVarTable.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <tuple>

#include "DdsModelTestSupport.h"
#include "model/DimArrows.h"
#include "res/DdsStrings.h"

using namespace dds;
using namespace ddstest;

namespace {

std::wstring lower(std::wstring s) {
  for (auto& c : s) c = static_cast<wchar_t>(std::towlower(c));
  return s;
}

// The printf conversions of a text, in order ("%i", "%s").
std::wstring conversions(const std::wstring& s) {
  std::wstring out;
  for (std::size_t i = 0; i + 1 < s.size(); ++i) {
    if (s[i] != L'%') continue;
    out += s.substr(i, 2);
    ++i;
  }
  return out;
}

TEST(DimVarCatalogue, RowsMatchTheCatalogue) {
  // Each row has the kind of the drawing's catalogue, where the kinds are counted.
  using K = DimVarKind;
  struct Row { std::size_t index; const wchar_t* full; DimVarKind kind; int description; };
  for (const Row& r : {Row{0, L"DIMadec", K::Int16, 1082}, Row{24, L"DIMdsep", K::Int16, 1106},
                       Row{34, L"DIMlwd", K::LineWeight, 1116}, Row{72, L"DIMltex2", K::Linetype, 1154},
                       Row{73, L"DIMtxtdirection", K::Bool, 1169}, Row{75, L"DIMmzs", K::String, 1171},
                       Row{76, L"DIMaltmzf", K::Double, 1174}, Row{77, L"DIMaltmzs", K::String, 1175}}) {
    const DimVarInfo& v = DimVarTable[r.index];
    EXPECT_STREQ(v.fullName, r.full);
    EXPECT_STREQ(v.shortName(), r.full + 3);
    EXPECT_EQ(v.kind, r.kind) << r.full;
    EXPECT_EQ(v.descriptionId, r.description) << r.full;
  }
  EXPECT_EQ(DimVarTable[13].description(), CXStringW(L"Angular zero supression"));
  EXPECT_EQ(DimVarTable[24].description(), CXStringW(L"Decimal separator"));

  // Rows 1..64 are alphabetical; the catalogue's order is not the listing order after that.
  for (std::size_t i = 1; i < 64; ++i) EXPECT_LT(std::wstring(DimVarTable[i - 1].fullName), DimVarTable[i].fullName);
  for (std::size_t i = 0; i < kDimVarCount; ++i) {
    EXPECT_EQ(DimVarTable[i].row, i);
    EXPECT_EQ(DimVarTable[i].foldedName().ToUtf8(), kDimVarDefaults[i].name);
    EXPECT_EQ(DimVarTable[i].kind, kDimVarDefaults[i].kind) << kDimVarDefaults[i].name;
    EXPECT_EQ(FindDimVarInfo(lower(DimVarTable[i].fullName).c_str()), &DimVarTable[i]);
  }
  EXPECT_EQ(FindDimVarInfo(L"DIMUNIT"), nullptr);  // obsolete, not in the catalogue
}

// The generic access by row reads and writes what the typed members do, on
// both holders.
TEST(DimVarCatalogue, AccessAgreesWithTypedMembers) {
  OdDbDatabasePtr db = OdDbDatabase::createNew(DxfVersion::R2018, false);
  auto style = openStyle(db->dimstyle(), OdDb::kForWrite);
  for (OdDimVarSource* holder : {static_cast<OdDimVarSource*>(db.get()), static_cast<OdDimVarSource*>(style.get())}) {
    for (const DimVarInfo& v : DimVarTable) v.set(*holder, otherValue(v, v.get(*holder), *db));
#define CHECK_MEMBER(index, getter, setter, T)                                                    \
  EXPECT_EQ(lower(DimVarTable[index].fullName), L## #getter);                                       \
  EXPECT_FALSE(DimVarTable[index].differ(odDimVarFrom<T>(holder->getter()), DimVarTable[index].get(*holder))) \
      << #getter;
    OD_DIMVARS(CHECK_MEMBER)
#undef CHECK_MEMBER
  }
}

// Integers compare and show as their typed member holds them.
TEST(DimVarCatalogue, ValuesAreTakenAsTheirType) {
  FakeHolder a, b;
  const DimVarInfo& alt = *FindDimVarInfo(L"DIMALT");      // Bool
  const DimVarInfo& tzin = *FindDimVarInfo(L"DIMTZIN");    // UInt8
  const DimVarInfo& adec = *FindDimVarInfo(L"DIMADEC");    // Int16
  a.values[alt.row].number = 2;
  b.values[alt.row].number = 1;
  EXPECT_FALSE(alt.differ(alt.get(a), alt.get(b)));
  EXPECT_FALSE(alt.differ(a.values[alt.row], b.values[alt.row]));
  a.values[tzin.row].number = 264;
  b.values[tzin.row].number = 8;
  EXPECT_FALSE(tzin.differ(tzin.get(a), tzin.get(b)));
  EXPECT_EQ(tzin.format(a.values[tzin.row]), CXStringW(L"8"));
  a.values[adec.row].number = 65535;
  EXPECT_EQ(adec.format(adec.get(a)), CXStringW(L"-1"));
}

TEST(DimVarCatalogue, SortedPositionsAreAlphabetical) {
  const auto& map = DimVarSortedPositions();
  ASSERT_EQ(map.size(), kDimVarCount);
  std::vector<int> seen;
  for (const auto& [name, pos] : map) seen.push_back(pos);
  std::sort(seen.begin(), seen.end());
  for (int i = 0; i < static_cast<int>(kDimVarCount); ++i) EXPECT_EQ(seen[static_cast<std::size_t>(i)], i);

  EXPECT_EQ(DimVarSortedPosition(L"DIMADEC"), 0);
  EXPECT_EQ(DimVarSortedPosition(L"DIMZIN"), 77);
  EXPECT_EQ(DimVarSortedPosition(L"DIMALTMZF") + 1, DimVarSortedPosition(L"DIMALTMZS"));
  EXPECT_EQ(DimVarSortedPosition(L"DIMALTMZS") + 1, DimVarSortedPosition(L"DIMALTRND"));
  EXPECT_EQ(DimVarSortedPosition(L"DIMBLK") + 1, DimVarSortedPosition(L"DIMBLK1"));
  EXPECT_EQ(DimVarSortedPosition(L"DIMTFAC") + 1, DimVarSortedPosition(L"DIMTFILL"));
  EXPECT_EQ(DimVarSortedPosition(L"DIMTFILL") + 1, DimVarSortedPosition(L"DIMTFILLCLR"));
  // One case throughout: the map holds upper case only.
  EXPECT_EQ(DimVarSortedPosition(L"dimadec"), -1);
  EXPECT_EQ(&DimVarSortedPositions(), &map);
}

TEST(DdsStrings, TableIsCompleteInBothLanguages) {
  const VexArray<int> ids = ddsStringIds();
  ASSERT_FALSE(ids.empty());
  for (std::size_t i = 1; i < ids.size(); ++i) EXPECT_LT(ids[i - 1], ids[i]) << "sorted and unique";

  auto cyrillic = [](const CXStringW& s) {
    return std::any_of(s.str().begin(), s.str().end(), [](wchar_t c) { return c >= 0x400 && c <= 0x4FF; });
  };
  for (int id : ids) {
    const CXStringW en = ddsString(id, "en"), ru = ddsString(id, "ru");
    EXPECT_FALSE(en.IsEmpty()) << id;
    EXPECT_TRUE(cyrillic(ru)) << id << " has no Russian text";
    EXPECT_EQ(conversions(en.str()), conversions(ru.str())) << id;
  }
  for (const DimVarInfo& v : DimVarTable) EXPECT_TRUE(ddsHasString(v.descriptionId)) << v.descriptionId;
  for (int id = IDS_BYBLOCK; id <= IDS_NO; ++id) EXPECT_TRUE(ddsHasString(id));
  for (int id = IDS_COLOR_RED; id <= IDS_DEFAULT; ++id) EXPECT_TRUE(ddsHasString(id));

  EXPECT_EQ(ddsString(1172, "en"), CXStringW());  // not a string of the model
  EXPECT_EQ(ddsString(IDS_YES, "de"), CXStringW(L"Yes"));
}

// The arrowhead list as the pickers show it.
const std::pair<const wchar_t*, const wchar_t*> kArrows[] = {
    {L"", L"Closed filled"}, {L"_ClosedBlank", L"Closed blank"}, {L"_Closed", L"Closed"}, {L"_Dot", L"Dot"},
    {L"_ArchTick", L"Architectural tick"}, {L"_Oblique", L"Oblique"}, {L"_Open", L"Open"},
    {L"_Origin", L"Origin indicator"}, {L"_Origin2", L"Origin indicator 2"}, {L"_Open90", L"Right angle"},
    {L"_Open30", L"Open 30"}, {L"_DotSmall", L"Dot small"}, {L"_DotBlank", L"Dot blank"},
    {L"_Small", L"Dot small blank"}, {L"_BoxBlank", L"Box"}, {L"_BoxFilled", L"Box filled"},
    {L"_DatumBlank", L"Datum triangle"}, {L"_DatumFilled", L"Datum triangle filled"}, {L"_Integral", L"Integral"},
    {L"_None", L"None"},
};

class Formatters : public ModelTest {};

TEST_F(Formatters, ArrowheadsByBlockName) {
  OdDbDatabase* db = newDrawing();
  const auto table = ArrowheadTable();
  ASSERT_EQ(table.size(), std::size(kArrows));
  for (std::size_t i = 0; i < table.size(); ++i) {
    const auto [block, display] = kArrows[i];
    EXPECT_STREQ(table[i].blockName, block);
    EXPECT_EQ(ArrowDisplayName(block), CXStringW(display));
    const OdDbObjectId id = OdDmUtil::getArrowId(block, db);
    EXPECT_EQ(id.isNull(), *block == 0);
    for (const wchar_t* var : {L"blk", L"BLK1", L"blk2", L"ldrblk"}) {
      EXPECT_EQ(DimVarFormatId(id, var), CXStringW(display));
    }
  }
  // Exact names only; anything else is shown as it is.
  EXPECT_EQ(ArrowDisplayName(L"_none"), CXStringW(L"_none"));
  EXPECT_EQ(ArrowDisplayName(L"MyTick"), CXStringW(L"MyTick"));
  EXPECT_EQ(DimVarFormatId(odCreateBlock(*db, L"MyTick"), L"blk"), CXStringW(L"MyTick"));
  // The arrow block shown under another variable is just a block name.
  EXPECT_EQ(DimVarFormatId(OdDmUtil::getArrowId(L"_Small", db), L"ltype"), CXStringW(L"_Small"));

  hostSetLanguage("ru");
  EXPECT_EQ(DimVarFormatId(OdDbObjectId(), L"blk"), CXStringW(L"Замкнутая закрашенная"));
  EXPECT_EQ(DimVarFormatId(OdDmUtil::getArrowId(L"_Small", db), L"blk1"), CXStringW(L"Малая пустая точка"));
}

TEST_F(Formatters, RecordsAndNullIds) {
  OdDbDatabase* db = newDrawing();
  const OdDbObjectId continuous = odOpen<OdDbSymbolTable>(db->getLinetypeTableId())->getAt(L"Continuous");
  const OdDbObjectId standard = odOpen<OdDbSymbolTable>(db->getTextStyleTableId())->getAt(L"Standard");
  const OdDbObjectId nod = db->getNamedObjectsDictionaryId();
  const std::wstring nodText = L"0x" + nod.getHandle().ascii().str() + L" (OdDbDictionary)";
  using Case = std::tuple<OdDbObjectId, const wchar_t*, std::wstring>;
  for (const auto& [id, var, text] :
       {Case{OdDbObjectId(), L"ltype", L"BYBLOCK"}, Case{OdDbObjectId(), L"ltex1", L"BYBLOCK"},
        Case{OdDbObjectId(), L"LTEX2", L"BYBLOCK"}, Case{OdDbObjectId(), L"txsty", L"<default>"},
        Case{continuous, L"ltex1", L"Continuous"}, Case{standard, L"txsty", L"Standard"}, Case{nod, L"txsty", nodText},
        Case{nod, L"blk", nodText}})
    EXPECT_EQ(DimVarFormatId(id, var).str(), text) << CXStringW(var).ToUtf8();
  hostSetLanguage("ru");
  EXPECT_EQ(DimVarFormatId(OdDbObjectId(), L"ltex1"), CXStringW(L"ПОБЛОКУ"));
  EXPECT_EQ(DimVarFormatId(OdDbObjectId(), L"txsty"), CXStringW(L"<по умолчанию>"));
}

TEST_F(Formatters, NumbersBoolsAndStrings) {
  OdDbDatabase* db = newDrawing();  // decimal units, 4 places; decimal degrees, 0 places
  using Int = std::tuple<int, const wchar_t*, const wchar_t*>;
  for (auto [value, var, text] : {Int{44, L"dsep", L","}, Int{46, L"DSEP", L"."}, Int{44, L"dec", L"44"},
                                  Int{300, L"dsep", L","}, Int{-1, L"lwd", L"-1"}, Int{-2, L"lwe", L"-2"},
                                  Int{0, L"adec", L"0"}, Int{46, L"tdec", L"46"}})
    EXPECT_EQ(DimVarFormatInteger(value, var), CXStringW(text)) << value << " " << CXStringW(var).ToUtf8();
  using Real = std::tuple<double, const wchar_t*, const wchar_t*>;
  const double quarterPi = 0.7853981633974483;
  for (auto [value, var, text] : {Real{0.18, L"asz", L"0.1800"}, Real{-2.5, L"tm", L"-2.5000"},
                                  Real{quarterPi, L"jogang", L"45"}, Real{quarterPi, L"JogAng", L"45"},
                                  Real{std::numbers::pi / 2, L"jogang", L"90"}, Real{quarterPi, L"asz", L"0.7854"}})
    EXPECT_EQ(DimVarFormatDouble(value, var), CXStringW(text)) << value;
  // The drawing's own settings decide.
  db->setHeaderInt("$LUPREC", 70, 2);
  db->setHeaderInt("$AUPREC", 70, 1);
  EXPECT_EQ(DimVarFormatDouble(0.18, L"asz"), CXStringW(L"0.18"));
  EXPECT_EQ(DimVarFormatDouble(quarterPi, L"jogang"), CXStringW(L"45.0"));

  EXPECT_EQ(DimVarFormatBool(true), CXStringW(L"Yes"));
  EXPECT_EQ(DimVarFormatBool(false), CXStringW(L"No"));
  EXPECT_EQ(DimVarFormatString(L"<> mm"), CXStringW(L"<> mm"));
  hostSetLanguage("ru");
  EXPECT_EQ(DimVarFormatBool(true), CXStringW(L"Да"));
}

TEST_F(Formatters, Colors) {
  newDrawing();
  auto aci = [](int16_t i) { return OdCmColor::fromDxf(i); };
  auto rgb = [](int32_t rgb) { return OdCmColor::fromDxf(7, rgb); };
  using Case = std::pair<OdCmColor, const wchar_t*>;
  for (const auto& [color, text] :
       {Case{OdCmColor(OdCmEntityColor::kByBlock), L"BYBLOCK"}, Case{OdCmColor(OdCmEntityColor::kByLayer), L"BYLAYER"},
        Case{aci(1), L"red"}, Case{aci(2), L"yellow"}, Case{aci(3), L"green"}, Case{aci(4), L"cyan"},
        Case{aci(5), L"blue"}, Case{aci(6), L"magenta"}, Case{aci(7), L"#FFFFFF"}, Case{rgb(0xFF0000), L"#FF0000"},
        Case{rgb(0x123456), L"#123456"}})
    EXPECT_EQ(DimVarFormatColor(color), CXStringW(text)) << CXStringW(text).ToUtf8();
  hostSetLanguage("ru");
  EXPECT_EQ(DimVarFormatColor(aci(1)), CXStringW(L"красный"));
  EXPECT_EQ(DimVarFormatColor(OdCmColor(OdCmEntityColor::kByLayer)), CXStringW(L"ПОСЛОЮ"));
}

}  // namespace
