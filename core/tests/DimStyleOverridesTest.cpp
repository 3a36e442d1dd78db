// The current style, its overrides and child styles.
#include "model/DimStyleOverrides.h"

#include <algorithm>
#include <map>

#include "DdsModelTestSupport.h"
#include "model/DimStyleCompare.h"

using namespace dds;
using namespace ddstest;

namespace {

class Overrides : public ModelTest {
protected:
  // A drawing with the current style "Standard" and a second style "Other"
  // whose arrow size differs.
  void SetUp() override {
    ModelTest::SetUp();
    db = newDrawing();
    standardId = db->dimstyle();
    otherId = addStyle(*db, L"Other", standardId);
    openStyle(otherId, OdDb::kForWrite)->setDimasz(0.25);
    hostSetYesNoHandler([this](const std::wstring& q) {
      questions.push_back(q);
      return answer;
    });
  }
  bool overridden() { return HasOverrides(openStyle(db->dimstyle()).get(), db); }

  OdDbDatabase* db = nullptr;
  OdDbObjectId standardId, otherId;
  std::vector<std::wstring> questions;
  bool answer = false;
};

TEST_F(Overrides, MakeCurrent) {
  EXPECT_EQ(MakeCurrent(nullptr, otherId), E_INVALIDARG);

  // Without overrides nothing is asked.
  EXPECT_EQ(MakeCurrent(db, otherId), S_OK);
  EXPECT_EQ(db->dimstyle(), otherId);
  EXPECT_EQ(db->dimasz(), 0.25);
  EXPECT_TRUE(questions.empty());

  // The current style again: nothing to do, nothing asked, overrides kept.
  db->setDimtxt(9.0);
  EXPECT_EQ(MakeCurrent(db, otherId), S_FALSE);
  EXPECT_TRUE(questions.empty());
  EXPECT_TRUE(overridden());

  // With overrides the user decides.
  answer = false;
  EXPECT_EQ(MakeCurrent(db, standardId), E_ABORT);
  ASSERT_EQ(questions.size(), 1u);
  EXPECT_EQ(questions[0], L"Setting another style current will discard your style overrides.\n\nContinue?");
  EXPECT_EQ(db->dimstyle(), otherId);
  EXPECT_EQ(db->dimtxt(), 9.0);

  answer = true;
  EXPECT_EQ(MakeCurrent(db, standardId), S_OK);
  EXPECT_EQ(questions.size(), 2u);
  EXPECT_EQ(db->dimstyle(), standardId);
  EXPECT_FALSE(overridden());
  EXPECT_EQ(db->dimasz(), openStyle(standardId)->dimasz());

  // Something that is no style of this drawing is refused before any question.
  db->setDimtxt(9.0);
  OdDbDatabasePtr elsewhere = OdDbDatabase::createNew(DxfVersion::R2018, true);
  EXPECT_EQ(MakeCurrent(db, elsewhere->dimstyle()), E_INVALIDARG);
  EXPECT_EQ(MakeCurrent(db, db->getLayerTableId()), E_FAIL);
  EXPECT_EQ(questions.size(), 2u);
  EXPECT_EQ(db->dimstyle(), standardId);

  hostSetLanguage("ru");
  EXPECT_EQ(DiscardOverridesQuestion(),
            CXStringW(L"При назначении текущим другого стиля переопределения стиля будут потеряны.\n\nПродолжить?"));
}

TEST_F(Overrides, CollectListDiscardAndSave) {
  db->setDimpost(L"mm");
  db->setDimasz(0.5);
  DimVarList list{{L"kept", L"", L""}};
  CollectOverrides(nullptr, db, list);
  ASSERT_EQ(list.size(), 3u);
  EXPECT_EQ(list[1].name, CXStringW(L"DIMASZ"));
  EXPECT_EQ(list[1].value, CXStringW(L"0.5000"));  // the overriding value
  EXPECT_EQ(list[1].description, CXStringW(L"Arrow size"));
  EXPECT_EQ(list[2].name, CXStringW(L"DIMPOST"));
  EXPECT_EQ(list[2].value, CXStringW(L"mm"));

  DimVarList all;
  ListCurrentSettings(db, all, false);
  ASSERT_EQ(all.size(), kDimVarCount);
  EXPECT_EQ(all[0].name, CXStringW(L"DIMADEC"));
  EXPECT_TRUE(all[0].description.IsEmpty());
  ListCurrentSettings(db, all, true);
  ASSERT_EQ(all.size(), 2 * kDimVarCount);
  EXPECT_EQ(all.back().description, CXStringW(L"Zero suppression"));

  EXPECT_EQ(DiscardOverrides(db), S_OK);
  EXPECT_FALSE(overridden());
  EXPECT_EQ(db->dimpost(), OdString());

  db->setDimasz(0.5);
  EXPECT_EQ(SaveOverridesToCurrentStyle(db), S_OK);
  EXPECT_FALSE(overridden());
  EXPECT_EQ(openStyle(standardId)->dimasz(), 0.5);

  // Saved under another style, which becomes current with nothing left over.
  db->setDimtxt(4.0);
  EXPECT_EQ(SaveOverridesToStyle(db, otherId), S_OK);
  EXPECT_EQ(db->dimstyle(), otherId);
  EXPECT_FALSE(overridden());
  EXPECT_EQ(openStyle(otherId)->dimtxt(), 4.0);
  EXPECT_EQ(openStyle(otherId)->dimasz(), 0.5);
  EXPECT_NE(openStyle(standardId)->dimtxt(), 4.0);

  hostSetActiveDatabase(nullptr);
  EXPECT_EQ(DiscardOverrides(nullptr), E_INVALIDARG);
}

// In a drawing whose version keeps some variables only in the style, saving and
// discarding still leave no override behind.
TEST_F(Overrides, R12DrawingKeepsNoOverrides) {
  OdDbDatabase* r12 = activate(OdDbDatabase::createNew(DxfVersion::R12, false));
  const OdDbObjectId a = r12->dimstyle();
  const OdDbObjectId b = addStyle(*r12, L"B", a);
  openStyle(b, OdDb::kForWrite)->setDimdec(1);  // DIMDEC: no R12 header variable
  r12->setDimdec(3);
  r12->setDimasz(1.0);
  EXPECT_TRUE(HasOverrides(openStyle(a).get(), r12));
  EXPECT_EQ(SaveOverridesToStyle(r12, b), S_OK);
  EXPECT_FALSE(HasOverrides(openStyle(b).get(), r12));
  EXPECT_EQ(openStyle(b)->dimdec(), 3);
  r12->setDimdec(5);
  EXPECT_EQ(DiscardOverrides(r12), S_OK);
  EXPECT_FALSE(HasOverrides(openStyle(b).get(), r12));
  EXPECT_EQ(r12->dimdec(), 3);
}

TEST_F(Overrides, TraceDumps) {
  db->setDimasz(0.5);
  trace.clear();
  TraceCurrentSettings(db);
  ASSERT_EQ(trace.size(), 1 + kDimVarCount);
  EXPECT_EQ(trace[0], L"Dimension Style overrides");
  EXPECT_EQ(trace[1], L"DIMADEC = 0");
  EXPECT_NE(std::find(trace.begin(), trace.end(), L"DIMASZ = 0.5000"), trace.end());
  EXPECT_NE(std::find(trace.begin(), trace.end(), L"DIMBLK = Closed filled"), trace.end());

  trace.clear();
  TraceStyleValues(openStyle(otherId).get());
  ASSERT_EQ(trace.size(), 1 + kDimVarCount);
  EXPECT_EQ(trace[0], L"Dimension Style Other");
  EXPECT_NE(std::find(trace.begin(), trace.end(), L"DIMASZ = 0.2500"), trace.end());
}

// ---------------------------------------------------------------- child styles

class Children : public ModelTest {
protected:
  void SetUp() override {
    ModelTest::SetUp();
    db = newDrawing();
    for (const wchar_t* name : {L"A", L"A$7", L"A$1", L"A$3", L"A$0", L"A$5", L"A$9", L"A$00", L"A$x", L"B$0",
                                L"A$8", L"A$4", L"a$6"})
      ids[name] = addStyle(*db, name, db->dimstyle());
  }
  OdDbDatabase* db = nullptr;
  std::map<std::wstring, OdDbObjectId> ids;
};

TEST_F(Children, ParseChildName) {
  struct Case { const wchar_t* name; bool child; int code = -1; const wchar_t* parent = L""; };
  for (const Case& c : {Case{L"A$0", true, 0, L"A"}, Case{L"A$3", true, 3, L"A"}, Case{L"A$4", true, 4, L"A"},
                        Case{L"a$6", true, 6, L"a"}, Case{L"A$7", true, 7, L"A"}, Case{L"A$1", false},
                        Case{L"A$5", false}, Case{L"A$8", false}, Case{L"A$9", false}, Case{L"A$00", false},
                        Case{L"A$x", false}, Case{L"B$0", false}, Case{L"A", false}}) {
    int code = -1;
    CXStringW parent = L"untouched";
    EXPECT_EQ(ParseChildName(ids.at(c.name), &code, &parent), c.child) << CXStringW(c.name).ToUtf8();
    if (c.child) {
      EXPECT_EQ(code, c.code);
      EXPECT_EQ(parent, CXStringW(c.parent));
    } else {
      EXPECT_EQ(parent, CXStringW(L"untouched"));
    }
  }
  // By name, against the table: too short, and a parent that exists.
  auto table = odOpen<OdDbSymbolTable>(db->getDimStyleTableId());
  EXPECT_FALSE(ParseChildName(*table, L"$0"));
  EXPECT_TRUE(ParseChildName(*table, L"Standard$2"));
  EXPECT_FALSE(ParseChildName(OdDbObjectId()));
  EXPECT_EQ(ChildStyleName(L"Standard", 4), CXStringW(L"Standard$4"));
}

TEST_F(Children, FamilyInKindOrderThenParent) {
  std::vector<std::wstring> names;
  for (const OdDbObjectId& id : GatherStyleFamily(ids.at(L"A"))) names.push_back(styleName(id));
  EXPECT_EQ(names, (std::vector<std::wstring>{L"A$0", L"A$3", L"A$4", L"a$6", L"A$7", L"A"}));
  names.clear();
  for (const OdDbObjectId& id : GatherStyleFamily(ids.at(L"A$3"))) names.push_back(styleName(id));
  EXPECT_EQ(names, std::vector<std::wstring>{L"A$3"});
  EXPECT_TRUE(GatherStyleFamily(OdDbObjectId()).empty());
}

TEST_F(Children, RenameFamily) {
  auto namesNow = [this] {
    std::vector<std::wstring> n;
    for (const auto& [name, id] : ids) n.push_back(styleName(id));
    return n;
  };
  const std::vector<std::wstring> before = namesNow();

  // Clashes change nothing: the new name, or a child's new name, is taken.
  EXPECT_EQ(RenameStyleFamily(ids.at(L"A"), L"Standard"), E_INVALIDARG);
  addStyle(*db, L"C$4");
  EXPECT_EQ(RenameStyleFamily(ids.at(L"A"), L"C"), E_INVALIDARG);
  EXPECT_EQ(RenameStyleFamily(ids.at(L"A"), L""), E_INVALIDARG);
  EXPECT_EQ(namesNow(), before);

  EXPECT_EQ(RenameStyleFamily(ids.at(L"A"), L"Z"), S_OK);
  EXPECT_EQ(styleName(ids.at(L"A")), L"Z");
  for (auto [old, renamed] : {std::pair{L"A$0", L"Z$0"}, {L"A$3", L"Z$3"}, {L"A$4", L"Z$4"}, {L"a$6", L"Z$6"},
                              {L"A$7", L"Z$7"}, {L"A$1", L"A$1"}, {L"A$00", L"A$00"}, {L"A$x", L"A$x"}}) {
    EXPECT_EQ(styleName(ids.at(old)), renamed);
  }
  int code = 0;
  CXStringW parent;
  EXPECT_TRUE(ParseChildName(ids.at(L"A$7"), &code, &parent));
  EXPECT_EQ(parent, CXStringW(L"Z"));
  EXPECT_FALSE(ParseChildName(ids.at(L"A$1")));
}

}  // namespace
