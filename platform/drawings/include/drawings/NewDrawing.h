// The contents of a new, empty drawing.
#pragma once

#include <string>

#include "drawings/DxfVersion.h"

// A complete ASCII DXF text of an empty drawing in `version` (R12 or later), with
// imperial settings (inches, "Standard" dimension style) or metric ones
// (millimetres, "ISO-25"). A new drawing is opened by reading this text like any
// file, so new and loaded drawings share one path through the reader and every
// new drawing is something other programs can open too.
// Throws std::invalid_argument for the versions before R12, which are only read.
std::string newDrawingDxf(DxfVersion version, bool metric);
