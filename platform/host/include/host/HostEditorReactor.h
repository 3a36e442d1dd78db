// Editor reactors: who wants to hear that a command starts and ends, whatever
// started it (the command line, a menu, a palette change "OPM_CHGPROP").
#pragma once

#include "drawings/OdString.h"
#include "host/HostResult.h"

class HostEditorReactor {
public:
  virtual ~HostEditorReactor() = default;
  virtual void commandWillStart(const OdString& name) { (void)name; }
  virtual void commandEnded(const OdString& name) { (void)name; }
};

// kHostOk; kHostNone when attached already (or, on removal, not attached);
// kHostInvalidArg for null. Reactors are not owned.
HostResult hostAddEditorReactor(HostEditorReactor* reactor);
HostResult hostRemoveEditorReactor(HostEditorReactor* reactor);

// The host's side.
void hostEditorCommandWillStart(const OdString& name);
void hostEditorCommandEnded(const OdString& name);
