// The host context on a terminal: prompts read lines from the command line.
// Prompts are shown ending in ": " (a prompt that ends in a colon gets a blank).
// A line holding only Escape, or the end of input, cancels.
//
// Picking ("Select dimension"): a handle in hexadecimal, or a point "x,y" that
// picks the entity nearest to it (HostSelection.h).
// Selecting ("Select objects"), each answer adding to the selection and
// reporting "N found": ALL, Last, Previous, handles, a point, and Window or
// Crossing with two corners given on the same line or at their own prompts.
// Keywords win over handles of the same spelling ("C" is Crossing).
#pragma once

#include <string>
#include <vector>

#include "host/HostApDocManager.h"
#include "host/HostCommandLine.h"
#include "host/IVxContext.h"

class HostConsoleContext : public IVxContext {
public:
  // The active document of `documents` is the drawing that picks and selects.
  HostConsoleContext(HostCommandLine& cl, HostApDocManager& documents);

  HostResult addCommand(const VxCommandDesc& desc) override;
  void print(const OdString& text) override;
  HostResult getKeyword(const OdString& prompt, const OdString& keywords, OdString& result) override;
  HostResult getString(const OdString& prompt, bool allowSpaces, OdString& result,
                       const OdString& keywords = OdString()) override;
  HostResult getEntity(const OdString& prompt, OdDbObjectId& id) override;
  HostResult selectObjects(const OdString& prompt, OdDbObjectIdArray& ids) override;
  bool askYesNo(const OdString& question) override;

protected:
  // The prompt as shown, with the keyword list in place of "%s".
  static std::string promptText(const OdString& prompt, const HostKeywordList& keywords);
  HostCommandLine& commandLine() { return m_cl; }
  // A word of a "Select objects" answer that the context understands beyond the
  // console's (the window's objects picked in its view); true with what it selects.
  virtual bool selectionWord(const std::string& word, OdDbObjectIdArray& found) {
    (void)word;
    (void)found;
    return false;
  }
  HostApDocManager& documents() { return m_documents; }

private:
  bool corner(const std::string& prompt, const std::vector<std::string>& tokens, size_t& next, OdGePoint2d& p);

  HostCommandLine& m_cl;
  HostApDocManager& m_documents;
};
