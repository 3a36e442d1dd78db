// Documents and their reactors, commands that modules add, system variables
// and the translation of module texts.
#include <gtest/gtest.h>

#include <map>
#include <tuple>
#include <sstream>

#include "host/HostCommands.h"
#include "host/HostServices.h"
#include "host/HostSession.h"
#include "host/HostSysVars.h"
#include "host/HostTranslation.h"

namespace {

// Writes down every notification as "<what> <document number>".
struct Recorder : HostApDocManagerReactor {
  std::vector<std::string> events;
  std::map<HostApDocument*, int> numbers;
  std::string name(HostApDocument* d) {
    if (!numbers.count(d)) numbers[d] = static_cast<int>(numbers.size()) + 1;
    return std::to_string(numbers[d]);
  }
  void documentCreateStarted(HostApDocument* d) override { events.push_back("createStarted " + name(d)); }
  void documentCreated(HostApDocument* d) override { events.push_back("created " + name(d)); }
  void documentToBeDestroyed(HostApDocument* d) override { events.push_back("toBeDestroyed " + name(d)); }
  void documentActivated(HostApDocument* d) override { events.push_back("activated " + name(d)); }
};

}  // namespace

TEST(HostApDocManager, SessionTellsReactorsOfDocumentsInOrder) {
  std::istringstream in("NEW\n\nNEW\nMetric\nCLOSE\nQUIT\n");
  std::ostringstream out;
  HostCommandLine cl(in, out, true);
  Recorder r;
  {
    HostSession session(cl);
    ASSERT_EQ(hostDocManager(), &session.docManager());
    EXPECT_EQ(hostDocManager()->addReactor(&r), kHostOk);
    EXPECT_EQ(hostDocManager()->addReactor(&r), kHostNone);  // once only
    session.run();
    EXPECT_EQ(hostActiveDatabase(), session.activeDocument()->database());
    session.closeAllDocuments();
    EXPECT_EQ(hostActiveDatabase(), nullptr);
    EXPECT_EQ(session.docManager().removeReactor(&r), kHostOk);
  }
  EXPECT_EQ(hostDocManager(), nullptr);
  EXPECT_EQ(r.events, (std::vector<std::string>{"createStarted 1", "created 1", "activated 1", "createStarted 2",
                                                "created 2", "activated 2", "toBeDestroyed 2", "activated 1",
                                                "toBeDestroyed 1"}));
}

TEST(HostApDocManager, ReactorsMayDetachWhileTold) {
  HostApDocManager docs;
  struct Once : HostApDocManagerReactor {
    HostApDocManager* docs = nullptr;
    int created = 0;
    void documentCreated(HostApDocument*) override {
      ++created;
      docs->removeReactor(this);
    }
  } once, other;
  once.docs = other.docs = &docs;
  docs.addReactor(&once);
  docs.addReactor(&other);
  docs.addDocument(std::make_unique<HostApDocument>(OdDbDatabase::createNew()));
  docs.addDocument(std::make_unique<HostApDocument>(OdDbDatabase::createNew()));
  EXPECT_EQ(once.created, 1);
  EXPECT_EQ(other.created, 1);
  EXPECT_EQ(docs.reactorCount(), 0u);
  EXPECT_EQ(docs.removeReactor(&once), kHostNone);
  EXPECT_EQ(docs.addReactor(nullptr), kHostInvalidArg);
}

TEST(HostApDocManager, PropertiesKeepTheirOrderAndOnlyPaletteDocumentsHaveThem) {
  struct Prop : IOdProperty {
    OdString name() const override { return L"p"; }
  } a, b, c;
  HostApDocument doc(OdDbDatabase::createNew());
  IOdPropertyManager* pm = nullptr;
  ASSERT_TRUE(doc.getPropManager(&pm));
  for (IOdProperty* p : {&b, &a, &c}) EXPECT_EQ(pm->addProperty(p), kHostOk);
  EXPECT_EQ(pm->addProperty(&a), kHostNone);
  EXPECT_EQ(pm->removeProperty(&a), kHostOk);
  EXPECT_EQ(pm->removeProperty(&a), kHostNone);
  EXPECT_EQ(pm->properties(), (std::vector<IOdProperty*>{&b, &c}));
  HostApDocument bare(OdDbDatabase::createNew(), "", false);
  EXPECT_FALSE(bare.getPropManager(&pm));
  EXPECT_EQ(pm, nullptr);
}

TEST(HostSession, ModuleCommandsRunByNameInAnUndoGroup) {
  std::istringstream in("NEW\n\n-probe\nUNDO\n\nDIMSTYLE\n_-PROBE\nQUIT\n");
  std::ostringstream out;
  HostCommandLine cl(in, out, true);
  HostSession session(cl);
  int active = -1;
  VxCommandDesc desc{L"-probe", [&] {
                       HostVarValue v;
                       hostGetVar(L"CMDACTIVE", v);
                       active = std::get<int>(v);
                       hostActiveDatabase()->setHeaderInt("$USERI1", 70, 7);
                     },
                     0x2100000};
  ASSERT_EQ(gpVxContext->addCommand(desc), kHostOk);
  EXPECT_EQ(gpVxContext->addCommand(desc), kHostFail);  // the word is taken
  EXPECT_EQ(hostFindCommand("-PROBE")->flags, 0x2100000u);
  ASSERT_EQ(hostRegisterCommand(L"DIM", L"DimStylesCmd", 0, [] {}), kHostOk);
  EXPECT_EQ(hostRegisterCommand(L"DIM", L"DimStylesCmd", 0, [] {}), kHostFail);
  ASSERT_NE(hostFindRegisteredCommand(L"DIM", L"DimStylesCmd"), nullptr);
  EXPECT_EQ(hostFindRegisteredCommand(L"DIM", L"DimStylesCmd")->word, "DIMSTYLE");
  session.run();
  hostDropModuleCommands(nullptr);
  EXPECT_EQ(hostFindCommand("-PROBE"), nullptr);
  EXPECT_EQ(active, 1);
  HostVarValue v;
  hostGetVar(L"CMDACTIVE", v);
  EXPECT_EQ(std::get<int>(v), 0);
  EXPECT_NE(out.str().find("Command: -probe\nCommand: UNDO\nEnter the number of operations to undo <1>: \n"
                           "UNDO: -PROBE\n"
                           "Command: DIMSTYLE\nThe DIMSTYLE command opens a dialog, which needs the window host.\n"
                           "Command: _-PROBE\nCommand: QUIT\n"),
            std::string::npos)
      << out.str();
  EXPECT_EQ(session.activeDocument()->database()->headerInt("$USERI1", 0), 7);
}

TEST(HostSysVars, ReadAndSetThroughTheActiveDrawing) {
  HostVarValue v;
  EXPECT_EQ(hostGetVar(L"DIMSTYLE", v), kHostFail);  // no drawing
  EXPECT_EQ(hostGetVar(L"NOSUCHVAR", v), kHostInvalidArg);
  OdDbDatabasePtr db = OdDbDatabase::createNew();
  hostSetActiveDatabase(db.get());
  using Read = std::pair<const wchar_t*, HostVarValue>;
  auto expectReads = [&](std::initializer_list<Read> reads) {
    for (const auto& [name, value] : reads) {
      EXPECT_EQ(hostGetVar(name, v), kHostOk);
      EXPECT_EQ(v, value) << OdString(name).toUtf8();
    }
  };
  expectReads({{L"dimstyle", OdString(L"Standard")}, {L"MEASUREMENT", 0}, {L"LWUNITS", 1} /* millimetres until set */});
  // Values of the wrong type or range are refused; read-only variables fail.
  const std::tuple<const wchar_t*, HostVarValue, HostResult> sets[] = {
      {L"DIMSTYLE", OdString(L"Nope"), kHostInvalidArg}, {L"DIMSTYLE", 1, kHostInvalidArg},
      {L"DIMSTYLE", OdString(L"STANDARD"), kHostOk},     {L"CMDACTIVE", 1, kHostFail},
      {L"CANNOSCALE", OdString(L"1:2"), kHostOk},        {L"MEASUREMENT", 2, kHostInvalidArg},
      {L"MEASUREMENT", 1, kHostOk},                      {L"LWUNITS", 0, kHostOk}};
  for (const auto& [name, value, result] : sets) EXPECT_EQ(hostSetVar(name, value), result) << OdString(name).toUtf8();
  EXPECT_EQ(db->getCANNOSCALE(), L"1:2");
  EXPECT_EQ(db->getMEASUREMENT(), 1);
  expectReads({{L"CANNOSCALE", OdString(L"1:2")}, {L"MEASUREMENT", 1}, {L"LWUNITS", 0}});
  hostSetVar(L"LWUNITS", 1);
  hostSetActiveDatabase(nullptr);
}

TEST(HostTranslation, ModuleTablesAnswerOnceSwitchedToTheHostLanguage) {
  int module = 0;  // any address names a module
  EXPECT_EQ(hostRegisterStringTable(&module,
                                    [](const wchar_t* context, const wchar_t* text, const std::string& language,
                                       std::wstring& out) {
                                      if (language != "ru" || std::wstring(text) != L"Yes") return false;
                                      out = context ? L"Да (" + std::wstring(context) + L")" : L"Да";
                                      return true;
                                    }),
            kHostOk);
  EXPECT_EQ(Supp_Translate(nullptr, L"Yes"), L"Yes");  // not switched yet
  hostSetLanguage("ru");
  EXPECT_EQ(Supp_InitResTranslation(&module), kHostOk);
  hostSetLanguage("en");  // the module keeps the language it was switched to
  EXPECT_EQ(Supp_Translate(nullptr, L"Yes"), L"Да");
  EXPECT_EQ(Supp_Translate(L"Arrows:", L"Yes"), L"Да (Arrows:)");
  EXPECT_EQ(Supp_Translate(nullptr, L"No"), L"No");
  hostDropStringTables(&module);
  EXPECT_EQ(Supp_Translate(nullptr, L"Yes"), L"Yes");
  EXPECT_EQ(Supp_InitResTranslation(nullptr), kHostInvalidArg);
}
