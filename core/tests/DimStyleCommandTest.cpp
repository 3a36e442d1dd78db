// The command-line command "-dimstyle": its printed layout, its keyword lists in
// both languages, the start-up checks, and what Save and Apply leave in the
// drawing. The console sessions cover the dialogue itself.
#include "DimStyleCommand.h"

#include <deque>

#include "DdsModelTestSupport.h"
#include "drawings/OdDbDimension.h"
#include "drawings/OdDbLeader.h"
#include "host/HostApDocManager.h"
#include "model/DimStyleCompare.h"
#include "res/DdsStrings.h"

using namespace dds;
using namespace ddstest;

namespace {

// Answers prompts from a script, as the console would take typed lines: ""
// is Enter, "\x1b" cancels.
class ScriptedContext : public IVxContext {
public:
  HostResult addCommand(const VxCommandDesc&) override { return kHostOk; }
  void print(const OdString& text) override { printed.push_back(text.str()); }
  HostResult getKeyword(const OdString& prompt, const OdString& keywords, OdString& result) override {
    const std::wstring typed = next(prompt);
    if (typed == L"\x1b") return kHostAbort;
    if (typed.empty()) return kHostNone;
    result = HostKeywordList::parse(keywords).match(typed);
    EXPECT_FALSE(result.isEmpty()) << "no keyword " << odstr::narrow(typed);
    return result.isEmpty() ? kHostAbort : kHostOk;
  }
  HostResult getString(const OdString& prompt, bool, OdString& result, const OdString& keywords) override {
    const std::wstring typed = next(prompt);
    if (typed == L"\x1b") return kHostAbort;
    if (typed.empty()) return kHostNone;
    result = HostKeywordList::parse(keywords).match(typed);
    if (!result.isEmpty()) return kHostKeyword;
    result = typed;
    return kHostOk;
  }
  HostResult getEntity(const OdString& prompt, OdDbObjectId& id) override {
    next(prompt);
    id = picked;
    return id.isNull() ? kHostNone : kHostOk;
  }
  HostResult selectObjects(const OdString& prompt, OdDbObjectIdArray& ids) override {
    next(prompt);
    ids = selection;
    return ids.empty() ? kHostNone : kHostOk;
  }
  bool askYesNo(const OdString&) override { return false; }

  // Prompts seen that begin with `start`.
  int promptsStarting(const std::wstring& start) const {
    int n = 0;
    for (const auto& p : prompts) n += p.rfind(start, 0) == 0;
    return n;
  }

  std::deque<std::wstring> script;
  std::vector<std::wstring> prompts, printed;
  OdDbObjectId picked;
  OdDbObjectIdArray selection;

private:
  std::wstring next(const OdString& prompt) {
    prompts.push_back(prompt.str());
    if (script.empty()) return L"\x1b";
    std::wstring typed = script.front();
    script.pop_front();
    return typed;
  }
};

OdDbDatabasePtr readSample() { return OdDbDatabase::readDxfFile(SAMPLES_DIR "/dimstyles.dxf"); }

OdDbObjectId byHandle(OdDbDatabase& db, uint64_t handle) { return db.getOdDbObjectId(OdDbHandle(handle)); }

std::size_t rowOf(const wchar_t* name) { return FindDimVarInfo(name)->row; }

std::vector<std::size_t> overrideRows(const OdDimVarOverrides& e) {
  std::vector<std::size_t> rows = e.dimVarOverrides();
  std::sort(rows.begin(), rows.end());
  return rows;
}

class DimStyleCommandTest : public ModelTest {};

}  // namespace

TEST_F(DimStyleCommandTest, ColumnsArePaddedToTheirWidthWithAtLeastOneBlank) {
  struct Case {
    const wchar_t* name;
    const wchar_t* value;
    const wchar_t* description;
    const wchar_t* two;
    const wchar_t* three;
  } cases[] = {
      {L"DIMASZ", L"3.0000", L"Arrow size", L"DIMASZ          3.0000",
       L"DIMASZ          3.0000               Arrow size"},
      // 15 and 16 characters: a name as wide as its column still gets a blank.
      {L"DIMTXTDIRECTION", L"No", L"d", L"DIMTXTDIRECTION No", L"DIMTXTDIRECTION No                   d"},
      {L"SIXTEEN_CHARS_AB", L"1", L"d", L"SIXTEEN_CHARS_AB 1", L"SIXTEEN_CHARS_AB 1                    d"},
      {L"DIMBLK", L"Замкнутая закрашенная", L"d", L"DIMBLK          Замкнутая закрашенная",
       L"DIMBLK          Замкнутая закрашенная d"},
      {L"DIMBLK", L"Closed filled but longer", L"d", L"DIMBLK          Closed filled but longer",
       L"DIMBLK          Closed filled but longer d"},
      // An empty value keeps the description in its column.
      {L"DIMPOST", L"", L"Prefix", L"DIMPOST         ", L"DIMPOST                              Prefix"},
      {L"", L"ISO-25", L"Current Setting", L"                ISO-25",
       L"                ISO-25               Current Setting"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(odstr::narrow(c.two));
    const DimVarTriple row{c.name, c.value, c.description};
    EXPECT_EQ(FormatTwoColumns(row), CXStringW(c.two));
    EXPECT_EQ(FormatThreeColumns(row), CXStringW(c.three));
  }
}

// A translation that breaks the list's shape, or a short form that another
// keyword shadows, would make an option unreachable in that language.
TEST_F(DimStyleCommandTest, EveryOptionIsReachableByItsShortFormAndGlobalFormInBothLanguages) {
  struct Typed { const char* language; const wchar_t* typed; DimStyleOption option; } cases[] = {
      {"en", L"AN", DimStyleOption::Annotative}, {"en", L"S", DimStyleOption::Save},
      {"en", L"R", DimStyleOption::Restore},     {"en", L"ST", DimStyleOption::Status},
      {"en", L"V", DimStyleOption::Variables},   {"en", L"A", DimStyleOption::Apply},
      {"en", L"?", DimStyleOption::List},        {"en", L"_apply", DimStyleOption::Apply},
      {"ru", L"АНН", DimStyleOption::Annotative}, {"ru", L"С", DimStyleOption::Save},
      {"ru", L"В", DimStyleOption::Restore},     {"ru", L"СТ", DimStyleOption::Status},
      {"ru", L"П", DimStyleOption::Variables},   {"ru", L"ПР", DimStyleOption::Apply},
      {"ru", L"?", DimStyleOption::List},        {"ru", L"переменные", DimStyleOption::Variables},
      {"ru", L"_AN", DimStyleOption::Annotative}, {"ru", L"_S", DimStyleOption::Save},
      {"ru", L"_R", DimStyleOption::Restore},    {"ru", L"_ST", DimStyleOption::Status},
      {"ru", L"_V", DimStyleOption::Variables},  {"ru", L"_A", DimStyleOption::Apply},
      {"ru", L"_?", DimStyleOption::List},
  };
  for (const Typed& c : cases) {
    SCOPED_TRACE(std::string(c.language) + " " + odstr::narrow(c.typed));
    hostSetLanguage(c.language);
    const HostKeywordList list = HostKeywordList::parse(OdString(ddsString(IDS_DS_OPTION_KEYWORDS).str()));
    EXPECT_EQ(OptionOfKeyword(list.match(c.typed)), c.option);
  }

  // Both languages: seven options, the same global forms, and Yes before No.
  for (const char* language : {"en", "ru"}) {
    SCOPED_TRACE(language);
    const HostKeywordList options =
        HostKeywordList::parse(OdString(ddsString(IDS_DS_OPTION_KEYWORDS, language).str()));
    EXPECT_EQ(options.local.size(), 7u);
    EXPECT_EQ(options.global, HostKeywordList::parse(L"x *ANnotative *Save *Restore *STatus *Variables *Apply *?").global);
    const OdString yesNo(ddsString(IDS_DS_YES_NO_KEYWORDS, language).str());
    const HostKeywordList answers = HostKeywordList::parse(yesNo);
    EXPECT_EQ(answers.global, (std::vector<OdString>{L"Yes", L"No"}));
    EXPECT_EQ(KeywordIndex(yesNo, answers.match(L"_Yes")), 0);
    EXPECT_EQ(KeywordIndex(yesNo, answers.match(L"_No")), 1);
  }
  EXPECT_EQ(OptionOfKeyword(L"Frobnicate"), DimStyleOption::Unknown);
}

TEST_F(DimStyleCommandTest, ListPatterns) {
  struct Case { const wchar_t* name; const wchar_t* pattern; bool matches; } cases[] = {
      {L"ISO-25", L"*", true},       {L"ISO-25", L"iso-25", true},   {L"ISO-25", L"ISO", false},
      {L"ISO-25$0", L"ISO-25$?", true}, {L"ISO-25", L"ISO-25$?", false}, {L"Mechanical", L"m*l", true},
      {L"Mechanical", L"*a*a*", true}, {L"Mechanical", L"*x*", false}, {L"Русский", L"РУС*", true},
      {L"", L"*", true},             {L"A", L"", false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(odstr::narrow(c.name) + " / " + odstr::narrow(c.pattern));
    EXPECT_EQ(MatchStylePattern(c.name, c.pattern), c.matches);
  }
}

TEST_F(DimStyleCommandTest, StartUpChecksLogWhatIsMissingAndEndSilently) {
  auto logged = [this](const wchar_t* expr) {
    const std::wstring start = L"ERROR(80004005) 'RETERRIF marco, expr: " + std::wstring(expr) + L" [dds:";
    return std::count_if(trace.begin(), trace.end(), [&](const std::wstring& l) { return l.rfind(start, 0) == 0; });
  };
  EXPECT_EQ(DimStyleCommand(nullptr), E_FAIL);
  EXPECT_EQ(logged(L"!pDocManager "), 1);

  HostApDocManager docs;
  EXPECT_EQ(DimStyleCommand(&docs), E_FAIL);
  EXPECT_EQ(logged(L"!pAD "), 1);

  docs.addDocument(std::make_unique<HostApDocument>(OdDbDatabasePtr()));
  EXPECT_EQ(DimStyleCommand(&docs), E_FAIL);
  EXPECT_EQ(logged(L"!pBase "), 1);

  docs.addDocument(std::make_unique<HostApDocument>(OdDbDatabase::createNew()));
  ASSERT_EQ(gpVxContext, nullptr);
  EXPECT_EQ(DimStyleCommand(&docs), E_FAIL);
  EXPECT_EQ(logged(L"!pEdInput "), 1);

  // With everything there, the command talks through the document's editor input.
  ScriptedContext ui;
  gpVxContext = &ui;
  EXPECT_EQ(DimStyleCommand(&docs), S_OK);
  gpVxContext = nullptr;
  EXPECT_EQ(ui.printed, (std::vector<std::wstring>{L"Current dimension style: \"Standard\". Annotative: No."}));
  EXPECT_EQ(ui.prompts.size(), 1u);
  EXPECT_EQ(trace.size(), 4u);
}

TEST_F(DimStyleCommandTest, AnnotativeSavesAndPromptsAgainWhereSaveEnds) {
  OdDbDatabasePtr db = readSample();
  {
    ScriptedContext ui;
    ui.script = {L"AN", L"", L"First", L"s", L"Second"};
    CDimStyleCommand(ui, *db).Run();
    EXPECT_EQ(ui.promptsStarting(L"Enter a dimension style option"), 2);
    EXPECT_TRUE(ui.script.empty());
    EXPECT_EQ(styleName(db->dimstyle()), L"Second");
    EXPECT_TRUE(openStyle(odOpen<OdDbSymbolTable>(db->getDimStyleTableId())->getAt(L"First"))->isAnnotative());
    EXPECT_FALSE(openStyle(db->dimstyle())->isAnnotative());
  }
  {
    ScriptedContext ui;
    ui.script = {L"s", L"Third"};
    CDimStyleCommand(ui, *db).Run();
    EXPECT_EQ(ui.promptsStarting(L"Enter a dimension style option"), 1);
    EXPECT_EQ(styleName(db->dimstyle()), L"Third");
  }
}

// Enter at the option prompt is Restore: the same name prompt, the same result.
TEST_F(DimStyleCommandTest, EnterAtTheOptionPromptRestores) {
  for (const wchar_t* option : {L"", L"R", L"_Restore"}) {
    OdDbDatabasePtr db = readSample();
    ScriptedContext ui;
    ui.script = {option, L"Mechanical"};
    CDimStyleCommand(ui, *db).Run();
    EXPECT_EQ(styleName(db->dimstyle()), L"Mechanical");
    EXPECT_FALSE(HasOverrides(openStyle(db->dimstyle()).get(), db.get()));
    EXPECT_EQ(ui.printed.back(), L"Current dimension style: \"Mechanical\". Annotative: No.");
  }
}

TEST_F(DimStyleCommandTest, RefusedNamesCreateNothing) {
  struct Case {
    DxfVersion version;
    const wchar_t* name;
  } cases[] = {{DxfVersion::R2018, L"a<b"}, {DxfVersion::R2018, L"*D1"},
               {DxfVersion::R12, L"with blank"}, {DxfVersion::R12, L"Ünïcode"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(odstr::narrow(c.name));
    OdDbDatabasePtr db = OdDbDatabase::createNew(c.version);
    const std::size_t before = odOpen<OdDbSymbolTable>(db->getDimStyleTableId())->recordIds().size();
    ScriptedContext ui;
    ui.script = {L"S", c.name};
    CDimStyleCommand(ui, *db).Run();
    EXPECT_EQ(ui.printed.back(), L"Invalid dimension style name.");
    EXPECT_EQ(ui.promptsStarting(L"Enter name for new dimension style"), 2);  // asked again
    EXPECT_EQ(odOpen<OdDbSymbolTable>(db->getDimStyleTableId())->recordIds().size(), before);
  }
}

TEST_F(DimStyleCommandTest, SaveWritesEveryCodeOfOldRecordsAndOldNamesInCapitals) {
  for (DxfVersion version : {DxfVersion::R12, DxfVersion::R2018}) {
    OdDbDatabasePtr db = OdDbDatabase::createNew(version, true);
    db->setDimasz(4.0);
    ScriptedContext ui;
    ui.script = {L"S", L"Saved"};
    CDimStyleCommand(ui, *db).Run();
    OdDbDimStyleTableRecordPtr saved = openStyle(db->dimstyle());
    ASSERT_TRUE(saved);
    EXPECT_EQ(saved->getName(), version == DxfVersion::R12 ? L"SAVED" : L"Saved");
    EXPECT_FALSE(HasOverrides(saved.get(), db.get()));
    EXPECT_EQ(saved->dimasz(), 4.0);
    // R12 records list every code, also those equal to the built-in values
    // (DIMSCALE 1.0), which readers of that version do not all know.
    const DxfTagList& tags = saved->tags();
    const bool hasScale = std::any_of(tags.begin(), tags.end(), [](const DxfTag& t) { return t.code == 40; });
    EXPECT_EQ(hasScale, version == DxfVersion::R12);
    OdDbDatabasePtr back = OdDbDatabase::readDxf(db->toDxf());
    auto again = openStyle(odOpen<OdDbSymbolTable>(back->getDimStyleTableId())->getAt(L"Saved"));
    ASSERT_TRUE(again);
    EXPECT_FALSE(DimVarsDiffer(*again, *back));
  }
}

TEST_F(DimStyleCommandTest, ApplyLeavesExactlyTheCurrentOverridesOnDimensionsAndLeaders) {
  OdDbDatabasePtr db = readSample();
  const OdDbObjectId iso = db->dimstyle();
  const OdDbObjectId dimTxt = byHandle(*db, 0x82), dimTol = byHandle(*db, 0x9C), leader = byHandle(*db, 0xF3),
                     annotative = byHandle(*db, 0xA9), untouched = byHandle(*db, 0x5A), line = byHandle(*db, 0x43);
  ASSERT_EQ(overrideRows(*odOpen<OdDbDimension>(dimTol)).size(), 3u);
  const std::vector<std::size_t> current = [] {
    std::vector<std::size_t> rows{rowOf(L"DIMASZ"), rowOf(L"DIMTXT"), rowOf(L"DIMCLRD")};
    std::sort(rows.begin(), rows.end());
    return rows;
  }();

  int applied = -1;
  ASSERT_EQ(ApplyCurrentSettings(db.get(), {dimTxt, dimTol, leader, annotative, line}, &applied), S_OK);
  EXPECT_EQ(applied, 4);
  for (const OdDbObjectId& id : {dimTxt, dimTol, annotative}) {
    auto dim = odOpen<OdDbDimension>(id);
    EXPECT_EQ(dim->dimensionStyle(), iso);
    EXPECT_EQ(overrideRows(*dim), current);
    EXPECT_FALSE(DimVarsDiffer(*dim, *db));
  }
  auto pLeader = odOpen<OdDbLeader>(leader);
  EXPECT_EQ(pLeader->dimensionStyle(), iso);
  EXPECT_EQ(overrideRows(*pLeader), current);
  EXPECT_EQ(pLeader->dimasz(), 3.0);
  EXPECT_TRUE(overrideRows(*odOpen<OdDbDimension>(untouched)).empty());
  EXPECT_FALSE(odOpen<OdDbObject>(line)->isModified());

  // With no current overrides every override goes.
  db->setDimstyleData(iso);
  ASSERT_EQ(ApplyCurrentSettings(db.get(), {dimTxt, leader}), S_OK);
  EXPECT_TRUE(overrideRows(*odOpen<OdDbDimension>(dimTxt)).empty());
  EXPECT_TRUE(overrideRows(*odOpen<OdDbLeader>(leader)).empty());
}
