// Creating block definitions.
#pragma once

#include "drawings/OdDbDatabase.h"

// Creates an empty block named `name` in a drawing of any version and returns its
// record. From R13 on the record is a BLOCK_RECORD in the block table; R12 files
// have no block records, so there it is made up and never written. The BLOCK and
// ENDBLK go into the BLOCKS section (made if the file had none), and entities that
// OdDbBlockTableRecord::appendOdDbEntity adds to the record are written between
// them.
//
// Where names are limited to the R12–R14 kind (OdDbDatabase::extendedNames() is
// false) the name is stored upper-cased, as those versions store names. An
// anonymous name is '*' and a letter ("*U", "*D"): it is numbered with the next
// number free in the drawing ("*D7") and the block is flagged anonymous.
//
// Throws OdError, leaving the drawing unchanged: eInvalidSymbolTableName when
// OdDbSymUtil::validateSymbolName refuses the name (or the part after an
// anonymous name's '*') or it names a layout (*Model_Space, *Paper_Space...);
// eDuplicateKey when a block of that name exists.
OdDbObjectId odCreateBlock(OdDbDatabase& db, const OdString& name);
