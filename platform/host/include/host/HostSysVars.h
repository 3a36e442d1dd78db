// System variables that modules read and set through the host:
//   DIMSTYLE     text  name of the active drawing's current dimension style;
//                      setting it makes the named style current (values unchanged)
//   CMDACTIVE    int   1 while a command runs, else 0; read-only
//   CANNOSCALE   text  the active drawing's current annotation scale
//   LWUNITS      int   lineweights shown in 1 millimetres or 0 inches; the host's
//                      own setting, 1 until set
//   MEASUREMENT  int   0 imperial, 1 metric drawing
// Names are case-insensitive.
#pragma once

#include <variant>

#include "drawings/OdString.h"
#include "host/HostResult.h"

using HostVarValue = std::variant<int, OdString>;

// kHostInvalidArg for an unknown name, a value of the wrong kind or out of
// range (an unknown style, an empty scale name); kHostFail for a drawing
// variable without an active drawing, or for setting a read-only one.
HostResult hostGetVar(const OdString& name, HostVarValue& value);
HostResult hostSetVar(const OdString& name, const HostVarValue& value);

// The host's side: brackets every command it runs (commands may nest).
void hostCommandStarted();
void hostCommandEnded();
