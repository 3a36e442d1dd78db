#include "drawings/NewDrawing.h"

#include <gtest/gtest.h>

#include "TestSupport.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "drawings/DimVarDefaults.h"
#include "drawings/DxfVersion.h"

namespace {

using V = DxfVersion;

// ---- A small, strict reader for what the generator writes -----------------

struct Tag { int code; std::string value; };

struct Record {  // one "0 <type>" group outside the HEADER
  std::string section;
  std::string type;
  std::vector<Tag> tags;

  std::optional<std::string> get(int code) const {
    for (const Tag& t : tags)
      if (t.code == code) return t.value;
    return std::nullopt;
  }
  std::string handle() const { return get(type == "DIMSTYLE" ? 105 : 5).value_or(""); }
};

struct Parsed {
  std::map<std::string, std::vector<Tag>> header;
  std::vector<std::string> headerDuplicates;
  std::vector<Record> records;

  std::optional<Tag> var(const std::string& name) const {
    auto it = header.find(name);
    if (it == header.end() || it->second.empty()) return std::nullopt;
    return it->second.front();
  }
  std::vector<const Record*> ofType(const std::string& type) const {
    std::vector<const Record*> out;
    for (const Record& r : records)
      if (r.type == type) out.push_back(&r);
    return out;
  }
  const Record* byHandle(const std::string& h) const {
    for (const Record& r : records)
      if (r.handle() == h) return &r;
    return nullptr;
  }
};

bool isRealCode(int code) {
  return (code >= 10 && code <= 59) || (code >= 110 && code <= 149) || (code >= 210 && code <= 239);
}

Parsed parse(const std::string& text) {
  Parsed p;
  EXPECT_EQ(text.find('\r'), std::string::npos) << "line endings are LF only";
  std::istringstream in(text);
  std::string codeLine, value, section, headerVar;
  while (std::getline(in, codeLine)) {
    if (!std::getline(in, value)) {
      ADD_FAILURE() << "code line without a value: '" << codeLine << "'";
      break;
    }
    size_t digits = codeLine.size() - codeLine.find_first_not_of(' ');
    int code = std::atoi(codeLine.c_str());
    if (codeLine.size() != std::max<size_t>(3, digits) || std::to_string(code).size() != digits)
      ADD_FAILURE() << "group code not right-aligned in three columns: '" << codeLine << "'";
    if (isRealCode(code) && value.find('.') == std::string::npos)
      ADD_FAILURE() << "real without a decimal point: " << code << " '" << value << "'";
    if (code == 0 && value == "SECTION") {
      section.clear();
      continue;
    }
    if (code == 2 && section.empty()) {
      section = value;
      continue;
    }
    if (code == 0 && (value == "ENDSEC" || value == "EOF")) continue;
    if (section == "HEADER") {
      if (code == 9) {
        headerVar = value;
        if (p.header.count(value)) p.headerDuplicates.push_back(value);
        p.header[value];
      } else {
        p.header[headerVar].push_back({code, value});
      }
    } else if (code == 0) {
      p.records.push_back({section, value, {}});
    } else if (!p.records.empty()) {
      p.records.back().tags.push_back({code, value});
    }
  }
  return p;
}

struct Case { DxfVersion version; bool metric; };

std::string caseName(const Case& c) {
  return std::string(dxfver::keyword(c.version)) + (c.metric ? "_metric" : "_imperial");
}

void PrintTo(const Case& c, std::ostream* os) { *os << caseName(c); }

std::vector<Case> allCases() {
  std::vector<Case> cases;
  for (V v : {V::R12, V::R13, V::R14, V::R2000, V::R2004, V::R2007, V::R2010, V::R2013, V::R2018})
    for (bool metric : {false, true}) cases.push_back({v, metric});
  return cases;
}

std::set<int> range(int first, int last) {
  std::set<int> s;
  for (int c = first; c <= last; ++c) s.insert(c);
  return s;
}

std::set<int> unite(std::set<int> a, const std::set<int>& b) {
  a.insert(b.begin(), b.end());
  return a;
}

// ---- Versions and the variable table ---------------------------------------

TEST(DxfVersionTest, AcadVerAndKeywordMapBothWays) {
  struct Row { DxfVersion v; const char* acadver; const char* keyword; };
  const Row rows[] = {
      {V::AC1003, "AC1003", "R2.6"}, {V::AC1004, "AC1004", "R9"},     {V::AC1006, "AC1006", "R10"},
      {V::R12, "AC1009", "R12"},     {V::R13, "AC1012", "R13"},       {V::R14, "AC1014", "R14"},
      {V::R2000, "AC1015", "R2000"}, {V::R2004, "AC1018", "R2004"},   {V::R2007, "AC1021", "R2007"},
      {V::R2010, "AC1024", "R2010"}, {V::R2013, "AC1027", "R2013"},   {V::R2018, "AC1032", "R2018"},
  };
  for (const Row& r : rows) {
    SCOPED_TRACE(r.keyword);
    EXPECT_EQ(dxfver::acadVer(r.v), r.acadver);
    EXPECT_EQ(dxfver::keyword(r.v), r.keyword);
    EXPECT_EQ(dxfver::fromAcadVer(r.acadver), r.v);
    EXPECT_EQ(dxfver::fromKeyword(r.keyword), r.v);
  }
  EXPECT_EQ(dxfver::fromKeyword("r2000"), V::R2000);
  EXPECT_EQ(dxfver::fromAcadVer("ac1032"), V::R2018);
  for (const char* unknown : {"", "AC1016", "AC10", "AC10150", "R2001", "2000", "R"}) {
    EXPECT_FALSE(dxfver::fromAcadVer(unknown)) << unknown;
    EXPECT_FALSE(dxfver::fromKeyword(unknown)) << unknown;
  }
}

TEST(DimVarDefaultsTest, TableMatchesTheCatalogue) {
  // Counts per kind of the 78 catalogue variables.
  const std::map<DimVarKind, int> expected{
      {DimVarKind::Bool, 16},     {DimVarKind::Int16, 15}, {DimVarKind::UInt16, 2},   {DimVarKind::UInt8, 5},
      {DimVarKind::Double, 22},   {DimVarKind::String, 4}, {DimVarKind::Color, 4},    {DimVarKind::Block, 4},
      {DimVarKind::Linetype, 3},  {DimVarKind::TextStyle, 1}, {DimVarKind::LineWeight, 2}};
  std::map<DimVarKind, int> counted;
  for (const DimVarDefault& row : dimVarCatalogue()) ++counted[row.kind];
  EXPECT_EQ(counted, expected);

  std::set<std::string_view> names;
  for (const DimVarDefault& row : kDimVarDefaults) {
    SCOPED_TRACE(std::string(row.name));
    EXPECT_TRUE(names.insert(row.name).second) << "duplicate name";
    EXPECT_EQ(findDimVar("$" + std::string(row.name)), &row);
    // The header code must suit the value, or a reader takes a real for an integer.
    int want = 70;
    switch (row.kind) {
      case DimVarKind::Double: want = 40; break;
      case DimVarKind::String:
      case DimVarKind::Block: want = 1; break;
      case DimVarKind::TextStyle: want = 7; break;
      case DimVarKind::Linetype: want = 6; break;
      default: break;
    }
    if (row.headerCode != 0) {
      EXPECT_EQ(row.headerCode, want);
    }
  }
  EXPECT_EQ(findDimVar("dimasz"), findDimVar("DIMASZ"));
  EXPECT_EQ(findDimVar("DIMNONE"), nullptr);

  // Two variables on one DIMSTYLE code would make a record unreadable.
  for (V v : {V::R12, V::R13, V::R14, V::R2000, V::R2004, V::R2007, V::R2010, V::R2013, V::R2018}) {
    std::set<int> codes;
    for (const DimVarDefault& row : kDimVarDefaults)
      if (int code = row.styleCodeIn(v)) {
        EXPECT_TRUE(codes.insert(code).second) << row.name << " shares code " << code << " in " << dxfver::keyword(v);
      }
  }
}

TEST(NewDrawingTest, RefusesVersionsOlderThanR12) {
  EXPECT_THROW(newDrawingDxf(V::AC1006, false), std::invalid_argument);
}

// ---- Every version in both unit systems ------------------------------------

class NewDrawingStructure : public ::testing::TestWithParam<Case> {
protected:
  void SetUp() override { p_ = parse(newDrawingDxf(GetParam().version, GetParam().metric)); }
  bool atLeast(V v) const { return GetParam().version >= v; }
  Parsed p_;
};

TEST_P(NewDrawingStructure, HeaderHoldsWhatTheVersionHas) {
  const auto [v, metric] = GetParam();
  EXPECT_TRUE(p_.headerDuplicates.empty()) << p_.headerDuplicates.front();
  ASSERT_TRUE(p_.var("$ACADVER"));
  EXPECT_EQ(p_.var("$ACADVER")->value, dxfver::acadVer(v));

  struct Gated { const char* name; V first; std::optional<V> last; };
  const Gated gated[] = {
      {"$ACADMAINTVER", V::R14, {}}, {"$MEASUREMENT", V::R14, {}}, {"$INSUNITS", V::R2000, {}},
      {"$EXTNAMES", V::R2000, {}},   {"$LWDISPLAY", V::R2000, {}}, {"$DIMASSOC", V::R2004, {}},
      {"$HANDLING", V::R12, V::R14}, {"$DIMADEC", V::R2000, {}},   {"$DIMTXSTY", V::R13, {}},
      {"$DIMUNIT", V::R13, V::R14},  {"$DIMFIT", V::R13, V::R14},  {"$DIMLDRBLK", V::R2000, {}},
      {"$DIMJOGANG", V::R2007, {}},  {"$DIMLTEX2", V::R2007, {}},  {"$DIMTXTDIRECTION", V::R2010, {}},
      {"$DIMBLK", V::R12, {}},       {"$DWGCODEPAGE", V::R12, {}},
  };
  for (const Gated& g : gated)
    EXPECT_EQ(p_.var(g.name).has_value(), v >= g.first && (!g.last || v <= *g.last)) << g.name;
  EXPECT_FALSE(p_.var("$DIMMZF")) << "sub-unit variables are not header variables";

  // Number of $DIM... variables CAD programs write in each version's header.
  int dimVars = 0;
  for (const auto& [name, tags] : p_.header) dimVars += name.rfind("$DIM", 0) == 0;
  int expected = atLeast(V::R2010) ? 78 : atLeast(V::R2007) ? 77 : atLeast(V::R2004) ? 68
               : atLeast(V::R2000) ? 67 : atLeast(V::R13) ? 58 : 42;
  EXPECT_EQ(dimVars, expected);

  auto value = [this](const char* name) { return p_.var(name).value_or(Tag{-1, "(absent)"}).value; };
  if (atLeast(V::R14)) {
    EXPECT_EQ(value("$MEASUREMENT"), metric ? "1" : "0");
  }
  if (atLeast(V::R2000)) {
    EXPECT_EQ(value("$INSUNITS"), metric ? "4" : "1");
    EXPECT_EQ(value("$DIMDSEP"), metric ? "44" : "46");
  }
  if (atLeast(V::R2007)) {
    EXPECT_EQ(value("$DIMJOGANG"), "0.7853981633974483");
  }
  EXPECT_EQ(value("$DIMASZ"), metric ? "2.5" : "0.18");
  EXPECT_EQ(value("$DIMALTF"), metric ? "0.03937007874016" : "25.4");
  EXPECT_EQ(value("$EXTMIN"), "1.0e+20");
}

TEST_P(NewDrawingStructure, HandlesAreUniqueBelowTheSeedAndEveryReferenceResolves) {
  ASSERT_TRUE(p_.var("$HANDSEED"));
  const unsigned long seed = std::stoul(p_.var("$HANDSEED")->value, nullptr, 16);
  std::set<std::string> handles;
  for (const Record& r : p_.records) {
    std::string h = r.handle();
    if (h.empty()) continue;
    EXPECT_TRUE(handles.insert(h).second) << "duplicate handle " << h;
    EXPECT_LT(std::stoul(h, nullptr, 16), seed) << r.type << " " << h;
  }
  if (!atLeast(V::R13)) {
    EXPECT_TRUE(handles.empty()) << "R12 table records carry no handles";
    return;
  }
  // The records that must exist, each with a handle.
  for (const char* type : {"VPORT", "LTYPE", "LAYER", "STYLE", "APPID", "DIMSTYLE", "BLOCK_RECORD", "BLOCK", "ENDBLK", "DICTIONARY"})
    for (const Record* r : p_.ofType(type)) EXPECT_FALSE(r->handle().empty()) << type;
  for (const Record& r : p_.records)
    for (const Tag& t : r.tags) {
      bool pointer = t.code == 330 || t.code == 331 || t.code == 340 || t.code == 350 || t.code == 360 || t.code == 390;
      if (!pointer || (t.code == 330 && t.value == "0")) continue;
      EXPECT_TRUE(handles.count(t.value)) << r.type << " " << r.handle() << ": " << t.code << " -> " << t.value;
    }
  // An owned object names its owner; the owner of a table record is its table.
  for (const Record* rec : p_.ofType("LAYER")) {
    const Record* table = p_.byHandle(rec->get(330).value_or(""));
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->type, "TABLE");
    EXPECT_EQ(table->get(2), "LAYER");
  }
}

TEST_P(NewDrawingStructure, DimStyleRecordHoldsTheCodesOfItsVersion) {
  const auto [v, metric] = GetParam();
  auto styles = p_.ofType("DIMSTYLE");
  ASSERT_EQ(styles.size(), 1u);
  const Record& style = *styles.front();
  ASSERT_TRUE(p_.var("$DIMSTYLE"));
  EXPECT_EQ(style.get(2), p_.var("$DIMSTYLE")->value);
  EXPECT_EQ(style.get(2), metric ? "ISO-25" : (atLeast(V::R2000) ? "Standard" : "STANDARD"));

  // Codes a record of each version carries, as CAD programs write them.
  const std::set<int> r12 = unite(unite(unite(unite(range(2, 7), range(40, 48)), range(140, 147)), range(71, 78)),
                                  unite(range(170, 178), {70}));
  const std::set<int> framing{105, 330, 100, 2, 70};
  const std::set<int> metricOnly{41, 42, 43, 44, 73, 74, 77, 78, 140, 141, 143, 147, 171, 172, 271, 272, 274, 278, 283, 284};
  std::set<int> expected;
  if (!atLeast(V::R13))
    expected = r12;
  else if (!atLeast(V::R2000))
    expected = unite(unite(unite(r12, framing), unite(range(270, 275), range(280, 288))), {340});
  else
    expected = unite(unite(framing, {340}), metric ? metricOnly : std::set<int>{});
  std::set<int> codes;
  for (const Tag& t : style.tags) codes.insert(t.code);
  EXPECT_EQ(codes, expected);

  if (metric) {
    EXPECT_EQ(style.get(41), "2.5");
    EXPECT_EQ(style.get(143), "0.03937007874016");
    if (atLeast(V::R2000)) {
      EXPECT_EQ(style.get(278), "44");
    }
  } else if (!atLeast(V::R2000)) {
    EXPECT_EQ(style.get(41), "0.18");
    EXPECT_EQ(style.get(73), "1");
  }
  if (atLeast(V::R13)) {
    const Record* textStyle = p_.byHandle(style.get(340).value_or(""));
    ASSERT_NE(textStyle, nullptr);
    EXPECT_EQ(textStyle->type, "STYLE");
  }

  // A new drawing's header mirrors its current style, code for code.
  for (const Tag& t : style.tags) {
    for (const DimVarDefault& row : kDimVarDefaults) {
      if (row.styleCodeIn(v) != t.code || row.styleCodeIsHandle(v) || !row.inHeader(v)) continue;
      auto header = p_.var("$" + std::string(row.name));
      ASSERT_TRUE(header) << row.name;
      EXPECT_EQ(header->value, t.value) << row.name;
    }
  }
}

TEST_P(NewDrawingStructure, ObjectsLinkLayoutsAndBlockRecords) {
  const auto [v, metric] = GetParam();
  (void)metric;
  if (!atLeast(V::R13)) {
    EXPECT_TRUE(p_.ofType("DICTIONARY").empty());
    EXPECT_TRUE(p_.ofType("BLOCK").empty());
    return;
  }
  const Record* root = nullptr;
  for (const Record* d : p_.ofType("DICTIONARY"))
    if (d->get(330) == "0") root = d;
  ASSERT_NE(root, nullptr);
  std::map<std::string, std::string> entries;
  for (size_t i = 0; i + 1 < root->tags.size(); ++i)
    if (root->tags[i].code == 3) entries[root->tags[i].value] = root->tags[i + 1].value;
  std::set<std::string> keys;
  for (const auto& [k, h] : entries) keys.insert(k);
  std::set<std::string> want{"ACAD_GROUP", "ACAD_MLINESTYLE"};
  if (atLeast(V::R2000)) want.insert({"ACAD_LAYOUT", "ACAD_PLOTSTYLENAME"});
  if (atLeast(V::R2007)) want.insert({"ACAD_SCALELIST", "AcDbVariableDictionary"});
  if (v == V::R2000) want.insert("AcDbVariableDictionary");
  EXPECT_EQ(keys, want);

  auto blockRecords = p_.ofType("BLOCK_RECORD");
  ASSERT_EQ(blockRecords.size(), 2u);
  for (const Record* br : blockRecords) {
    if (!atLeast(V::R2000)) {
      EXPECT_FALSE(br->get(340)) << "layouts came with R2000";
      continue;
    }
    const Record* layout = p_.byHandle(br->get(340).value_or(""));
    ASSERT_NE(layout, nullptr) << *br->get(2);
    EXPECT_EQ(layout->type, "LAYOUT");
    // The layout points back at its block record (the 330 inside AcDbLayout, the last one).
    std::string back;
    for (const Tag& t : layout->tags)
      if (t.code == 330) back = t.value;
    EXPECT_EQ(back, br->handle());
  }
  for (const Record* block : p_.ofType("BLOCK")) {
    const Record* owner = p_.byHandle(block->get(330).value_or(""));
    ASSERT_NE(owner, nullptr);
    EXPECT_EQ(owner->type, "BLOCK_RECORD");
    EXPECT_EQ(owner->get(2), block->get(2));
  }
  if (atLeast(V::R2007)) {
    bool cannoscale = false;
    for (const Record* var : p_.ofType("DICTIONARYVAR")) cannoscale |= var->get(1) == "1:1";
    EXPECT_TRUE(cannoscale);
  }
}

INSTANTIATE_TEST_SUITE_P(AllVersions, NewDrawingStructure, ::testing::ValuesIn(allCases()),
                         [](const auto& info) { return caseName(info.param); });

// ---- An independent reader --------------------------------------------------

TEST(NewDrawingTest, EzdxfOpensAndAuditsEveryVariantCleanly) {
  if (!testsupport::haveEzdxf()) GTEST_SKIP() << "/usr/bin/python3 with ezdxf is not available";
  std::vector<std::string> files{"--strict"};
  for (const Case& c : allCases()) {
    files.push_back(testsupport::tempPath(caseName(c) + ".dxf"));
    std::ofstream(files.back(), std::ios::binary) << newDrawingDxf(c.version, c.metric);
  }
  const testsupport::ScriptRun run = testsupport::runScript("check_new_drawings.py", files);
  const std::string output = run.out + run.err;
  EXPECT_EQ(run.status, 0) << output;
  EXPECT_EQ(std::count(output.begin(), output.end(), '\n'), static_cast<long>(allCases().size())) << output;
  for (size_t i = 1; i < files.size(); ++i) std::filesystem::remove(files[i]);
}

}  // namespace
