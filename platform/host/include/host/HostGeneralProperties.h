// The host's own palette properties, which every entity has: colour, layer,
// linetype, lineweight and linetype scale ("General.Color" ...), and the kind of
// an entity as the palette's filter names it.
//
// The property objects are made once, on the first registration, and live until
// the program ends; every document's manager gets the same objects, in the same
// order, ahead of whatever modules add. Texts of values are the drawing's own
// spellings ("ByLayer", "red", "0.25 mm", layer names), which typed values are
// compared with case-insensitively. Messages go through Supp_Translate with the
// context "HostGeneralProperties".
#pragma once

#include <vector>

#include "drawings/OdCmColor.h"
#include "drawings/OdDbEntity.h"
#include "host/HostPropertyManager.h"

// Adds the general properties to `manager` (null: nothing). Adding them again
// to the same manager changes nothing.
void hostRegisterGeneralProperties(IOdPropertyManager* manager);
// The objects that registration adds, in their order.
const std::vector<IOdProperty*>& hostGeneralProperties();

// The English name of the object's kind ("Rotated Dimension", "Leader", "Line",
// "Block Reference" ...), which the palette translates. A kind we do not model is
// named by its DXF name ("HATCH").
OdString hostEntityTypeName(const OdDbObject& object);

// Texts of values and their reading back, as the properties show and take them.
// "ByLayer", "ByBlock", "red" … "white" for indices 1..7, "Index 8", "R,G,B",
// "BOOK$NAME", "Foreground", "None".
OdString hostColorText(const OdCmColor& color);
// Also takes a bare index ("8"). False for anything else.
bool hostParseColorText(const OdString& text, OdCmColor& color);
// "ByLayer", "ByBlock", "Default", "0.25 mm".
OdString hostLineWeightText(OdDb::LineWeight weight);
// Also takes the number without " mm"; only the standard weights.
bool hostParseLineWeightText(const OdString& text, OdDb::LineWeight& weight);
