// Checks on the names of symbol-table records (layers, styles, blocks, ...).
#pragma once

#include "drawings/OdResult.h"
#include "drawings/OdString.h"

class OdDbDatabase;

namespace OdDbSymUtil {

// eOk when `name` may name a new record, eInvalidSymbolTableName when not.
//
// Extended names (R2000 and later with $EXTNAMES 1, the default): 1 to 255
// characters, none of them a control character (U+0000–U+001F, U+007F–U+009F) or
// one of  < > / \ " : ; ? * | , = `
// Names as R12–R14 knew them ($EXTNAMES 0): 1 to 31 characters, each an ASCII
// letter, a digit, '$', '_' or '-'. Lower-case letters pass because those versions
// fold names to upper case when they store them; whoever creates the record
// stores the folded spelling.
//
// Both kinds: no leading or trailing space (plain or no-break), so a name of
// spaces only fails too, because such names cannot be told apart in a list; a
// leading '*' marks anonymous and system records (*Model_Space, *D12) and fails
// for names that users give ('*' is a forbidden character anyway).
//
// allowVerticalBar accepts the bar of an externally referenced record's name,
// "xref|name": inside the name only, never first, last or doubled, since each side
// names something.
OdResult validateSymbolName(const OdString& name, bool allowVerticalBar, bool extendedNames);
// With extended names.
OdResult validateSymbolName(const OdString& name, bool allowVerticalBar = false);
// With the rules of `db` (OdDbDatabase::extendedNames()); extended names when null.
OdResult validateSymbolName(const OdString& name, bool allowVerticalBar, const OdDbDatabase* db);

}  // namespace OdDbSymUtil
