// The command-line command "-dimstyle": reports the current dimension style and
// its overrides, saves the current settings as a named style, restores a named
// style (or a picked dimension's) as the current one, lists styles and their
// variables, and applies the current settings to existing dimensions. It talks
// to the user only through the host context; the work is done by the model.
#pragma once

#include <optional>

#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbDimStyleTableRecord.h"
#include "host/HostApDocManager.h"
#include "host/IVxContext.h"
#include "model/DimStyleOverrides.h"
#include "vextypes.h"

namespace dds {

// ---------------------------------------------------------------- printed lists

// A printed line is the name padded to kNameColumnWidth, then the value; the
// three-column form pads the value to kValueColumnWidth and adds the third text.
// A text as wide as its column or wider still gets one blank behind it.
inline constexpr int kNameColumnWidth = 16;
inline constexpr int kValueColumnWidth = 21;

CXStringW FormatTwoColumns(const DimVarTriple& row);
CXStringW FormatThreeColumns(const DimVarTriple& row);

// ---------------------------------------------------------------- options

// The options, in the order of their keyword list (IDS_DS_OPTION_KEYWORDS).
enum class DimStyleOption { Annotative, Save, Restore, Status, Variables, Apply, List, Unknown };

// The position in `keywordList` ("ANnotative Save ... *ANnotative ...") of the
// local keyword `localKeyword`, which the host's keyword prompts answer with
// whether the local or the global form was typed; -1 when it is none of them.
int KeywordIndex(const OdString& keywordList, const OdString& localKeyword);
// The option that an answer to the option prompt names, in the host's language.
DimStyleOption OptionOfKeyword(const OdString& localKeyword);

// Whether a style name matches a List pattern: '*' any run of characters, '?'
// one character, compared without regard to case.
bool MatchStylePattern(const OdString& name, const OdString& pattern);

// ---------------------------------------------------------------- applying

// Gives every dimension and leader among `ids` the drawing's current style and,
// as its own overrides, exactly the current overrides (the current settings
// that differ from the current style): overrides the entity has beyond those
// are removed. Other entities are skipped. The number of entities changed goes
// to *pApplied.
VxResult ApplyCurrentSettings(OdDbDatabase* pDb, const OdDbObjectIdArray& ids, int* pApplied = nullptr);

// ---------------------------------------------------------------- the command

class CDimStyleCommand {
public:
  CDimStyleCommand(IVxContext& ui, OdDbDatabase& db) : m_ui(ui), m_db(db) {}

  // The whole command: the report of the current style and overrides, then the
  // option prompt and its option.
  void Run();

  // The options. Each returns S_OK when it did its work, E_ABORT when the user
  // cancelled or gave up, another failure when the drawing let it down; "?"
  // and ANnotative (after a successful save) lead back to the option prompt.
  VxResult Annotative();
  // `annotative`: the choice of the ANnotative option, none for Save itself.
  VxResult Save(std::optional<bool> annotative = std::nullopt);
  VxResult Restore() { return Choose(true); }
  VxResult Status();
  VxResult Variables() { return Choose(false); }
  VxResult Apply();
  VxResult List();

  // Sets the drawing's current style (DIMSTYLE) to the named one without
  // touching the current settings. S_FALSE for an empty name, E_INVALIDARG
  // when no style has that name.
  VxResult MakeCurrentByName(const OdString& name);

private:
  // Restore (`restore`) or Variables: by name, by comparison, or by a pick.
  VxResult Choose(bool restore);
  VxResult ChoosePicked(bool restore);
  void PrintCurrentStyleLine();
  void PrintOverrides();
  // The heading "Differences between ..." with `shownName`, then the comparison
  // of the style named `name` with the current settings.
  void PrintComparison(const OdString& shownName, const OdString& name);
  void PrintThreeColumns(const DimVarList& rows);
  // Yes, No (also Enter, as `dflt`), or E_ABORT, at a prompt with the yes/no keywords.
  VxResult AskYesNo(int promptId, bool dflt, bool& answer);
  // The record that Save writes: a new one with that name, or the existing one
  // if the user agrees to redefine it. S_FALSE: ask for a name again.
  VxResult SaveTarget(const OdString& name, OdDbDimStyleTableRecordPtr& pStyle);
  void Print(const CXStringW& text);
  OdDbObjectId StyleByName(const OdString& name) const;

  IVxContext& m_ui;
  OdDbDatabase& m_db;
};

// The handler of "-dimstyle": the start-up checks (the active document of
// `pDocManager`, its drawing, editor input and selection sets, each logged when
// missing), then the command. Returns the failed check's status or S_OK.
VxResult DimStyleCommand(HostApDocManager* pDocManager);

}  // namespace dds
