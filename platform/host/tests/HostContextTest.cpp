// The console context: keyword and text prompts, picking one entity and
// selecting several on a small drawing, driven through streams as a user would.
#include <gtest/gtest.h>

#include <sstream>

#include "drawings/OdDbDimension.h"
#include "drawings/OdDbLeader.h"
#include "drawings/OdDbText.h"
#include "host/HostConsoleContext.h"

namespace {

const OdString kOptions =
    L"ANnotative Save Restore STatus Variables Apply ? *ANnotative *Save *Restore *STatus *Variables *Apply *?";

// A console with scripted input and one drawing:
//   line (0,0)-(10,0), text at (20,20), rotated dimension with its text at
//   (50,10) and definition point (50,5), leader (100,100)-(105,105), circle
//   at (0,50) radius 5 (appended last).
struct Console {
  // Tests that need handles in their input give it once the drawing is made.
  explicit Console(const std::string& input, bool withDrawing = true) : in(input), cl(in, out, true), ctx(cl, docs) {
    if (!withDrawing) return;
    OdDbDatabasePtr db = OdDbDatabase::createNew();
    docs.addDocument(std::make_unique<HostApDocument>(db));
    auto ms = odOpen<OdDbBlockTableRecord>(db->getModelSpaceId(), OdDb::kForWrite);
    auto add = [&](auto e) { return ms->appendOdDbEntity(e.get()); };
    auto l = OdDbLine::createFor(*db);
    l->setEndPoint({10, 0, 0});
    line = add(l);
    auto t = OdDbText::createFor(*db);
    t->setPosition({20, 20, 0});
    text = add(t);
    auto d = OdDbRotatedDimension::createFor(*db);
    d->setTextPosition({50, 10, 0});
    d->setDimLinePoint({50, 5, 0});
    dim = add(d);
    auto ld = OdDbLeader::createFor(*db);
    ld->appendVertex({100, 100, 0});
    ld->appendVertex({105, 105, 0});
    leader = add(ld);
    auto ci = OdDbCircle::createFor(*db);
    ci->setCenter({0, 50, 0});
    ci->setRadius(5);
    circle = add(ci);
  }
  OdDbDatabase& db() { return *docs.curDocument()->database(); }
  std::string handle(const OdDbObjectId& id) { return id.getHandle().ascii().toUtf8(); }

  std::istringstream in;
  std::ostringstream out;
  HostCommandLine cl;
  HostApDocManager docs;
  HostConsoleContext ctx;
  OdDbObjectId line, text, dim, leader, circle;
};

}  // namespace

TEST(HostConsoleContext, KeywordPromptsTakeLocalGlobalAndShortFormsEnterAndCancel) {
  Console c("st\n_apply\nx\n?\n\n\x1b\n", false);
  OdString r;
  const OdString prompt = L"Enter a dimension style option [%s]<Restore>:";
  // "x" is refused before "?"; Enter answers nothing.
  for (auto [result, keyword] : {std::pair{kHostOk, L"STatus"}, {kHostOk, L"Apply"}, {kHostOk, L"?"}, {kHostNone, L""}}) {
    EXPECT_EQ(c.ctx.getKeyword(prompt, kOptions, r), result);
    EXPECT_EQ(r, keyword);
  }
  EXPECT_EQ(c.ctx.getKeyword(prompt, kOptions, r), kHostAbort);
  EXPECT_EQ(c.ctx.getKeyword(prompt, kOptions, r), kHostAbort);  // end of input
  const std::string shown = "Enter a dimension style option [ANnotative/Save/Restore/STatus/Variables/Apply/?]<Restore>: ";
  EXPECT_EQ(c.out.str().substr(0, shown.size() + 3), shown + "st\n");
  EXPECT_NE(c.out.str().find("x\nInvalid option keyword.\n" + shown + "?\n"), std::string::npos);
}

TEST(HostConsoleContext, LocalKeywordsOfAnotherScriptAndTheirGlobalForms) {
  // The global form answers with the local keyword; the short form of a Cyrillic
  // keyword is its capital, typed in either case.
  Console c("_y\nн\ny\nДА\n", false);
  OdString r;
  const OdString yesNo = L"Да Нет *Yes *No";
  for (const wchar_t* keyword : {L"Да", L"Нет", L"Да"}) {  // "y" is refused before the last
    EXPECT_EQ(c.ctx.getKeyword(L"Redefine? [%s]<Нет>:", yesNo, r), kHostOk);
    EXPECT_EQ(r, keyword);
  }
  EXPECT_NE(c.out.str().find("Redefine? [Да/Нет]<Нет>: y\nInvalid option keyword.\n"), std::string::npos);
}

TEST(HostConsoleContext, NamePromptsTakeTextKeywordsAndBlanksAsAsked) {
  Console c("?\nMy Style\nMy Style\n\n", false);
  OdString r;
  const OdString prompt = L"Enter name for new dimension style or [%s]:";
  EXPECT_EQ(c.ctx.getString(prompt, false, r, L"? *?"), kHostKeyword);
  EXPECT_EQ(r, L"?");
  EXPECT_EQ(c.ctx.getString(prompt, false, r, L"? *?"), kHostOk);
  EXPECT_EQ(r, L"My");
  EXPECT_EQ(c.ctx.getString(prompt, true, r, L"? *?"), kHostOk);
  EXPECT_EQ(r, L"My Style");
  EXPECT_EQ(c.ctx.getString(prompt, true, r), kHostNone);
  EXPECT_EQ(c.ctx.getString(prompt, true, r), kHostAbort);
  EXPECT_EQ(c.out.str().substr(0, 45), "Enter name for new dimension style or [?]: ?\n");
}

TEST(HostConsoleContext, PickingOneEntityByHandleOrNearestPoint) {
  Console c("");
  c.in.str("zz\n50,9\n" + c.handle(c.leader) + "\n-1,49\n\n\x1b\n");
  OdDbObjectId id;
  // "zz" is refused first; the last is nearest to a quadrant point of the circle.
  for (const OdDbObjectId& picked : {c.dim, c.leader, c.circle}) {
    EXPECT_EQ(c.ctx.getEntity(L"Select dimension", id), kHostOk);
    EXPECT_EQ(id, picked);
  }
  EXPECT_EQ(c.ctx.getEntity(L"Select dimension", id), kHostNone);
  EXPECT_TRUE(id.isNull());
  EXPECT_EQ(c.ctx.getEntity(L"Select dimension", id), kHostAbort);
  EXPECT_EQ(c.out.str().substr(0, 40), "Select dimension: zz\nNothing found.\nSele");

  Console none("1\n", false);
  EXPECT_EQ(none.ctx.getEntity(L"Select dimension", id), kHostFail);
  EXPECT_EQ(none.out.str(), "No drawing is open.\n");
}

TEST(HostConsoleContext, WindowsSelectByAllOrAnyPoint) {
  Console c("");
  struct Case { OdGePoint2d a, b; bool crossing; std::vector<OdDbObjectId> expected; } cases[] = {
      {{-1, -1}, {11, 1}, false, {c.line}},
      {{5, 1}, {-1, -1}, false, {}},  // half the line
      {{5, 1}, {-1, -1}, true, {c.line}},
      {{45, 0}, {55, 6}, false, {}},  // the definition point without the text
      {{45, 0}, {55, 6}, true, {c.dim}},
      {{40, 0}, {60, 20}, false, {c.dim}},
      {{-5, 45}, {5, 55}, false, {c.circle}},  // edges count as inside
      {{-5, 45}, {4, 55}, false, {}},
      {{-100, -100}, {200, 200}, false, {c.line, c.text, c.dim, c.leader, c.circle}},
  };
  for (const auto& k : cases)
    EXPECT_EQ(hostSelectWindow(c.db(), k.a, k.b, k.crossing), k.expected)
        << k.a.x << "," << k.a.y << " " << k.b.x << "," << k.b.y << (k.crossing ? " crossing" : " window");
}

TEST(HostConsoleContext, SelectingGathersOverPromptsAndCountsLikeCadPrograms) {
  Console c("");
  c.in.str("W -1,-1 11,1\nC\n45,0\nnope\n55,6\n" + c.handle(c.line) + " frob L\nl\n\nP\nALL\n\x1b\n\n");
  OdDbObjectIdArray ids;
  EXPECT_EQ(c.ctx.selectObjects(L"Select objects", ids), kHostOk);
  EXPECT_EQ(ids, (OdDbObjectIdArray{c.line, c.dim, c.circle}));
  EXPECT_EQ(c.out.str(),
            "Select objects: W -1,-1 11,1\n"
            "1 found\n"
            "Select objects: C\n"
            "Specify first corner: 45,0\n"
            "Specify opposite corner: nope\n"
            "Requires a point x,y.\n"
            "Specify opposite corner: 55,6\n"
            "1 found, 2 total\n"
            "Select objects: " + c.handle(c.line) + " frob L\n"
            "1 found (1 duplicate), 2 total\n"
            "*Invalid selection*\n"
            "Expects a point, a handle or Window/Last/Crossing/ALL/Previous\n"
            "Select objects: l\n"
            "1 found, 3 total\n"
            "Select objects: \n");
  // Previous selects the last completed selection again; a cancel keeps nothing.
  EXPECT_EQ(c.ctx.selectObjects(L"Select objects", ids), kHostAbort);
  EXPECT_TRUE(ids.empty());
  EXPECT_NE(c.out.str().find("Select objects: P\n3 found\nSelect objects: ALL\n5 found (3 duplicate), 5 total\n"),
            std::string::npos);
  EXPECT_EQ(c.ctx.selectObjects(L"Select objects", ids), kHostNone);
}
