// The host context of the window: the command line's prompts, and picking and
// selecting with the mouse in the drawing view as well as by typing. Objects
// selected before a command ("noun-verb") answer its "Select objects" at once;
// while a prompt waits for objects or an entity, what the user picks in the view
// is entered as the handles of the picked entities.
#pragma once

#include <functional>

#include "host/HostConsoleContext.h"

class HostWindowContext : public HostConsoleContext {
public:
  HostWindowContext(HostCommandLine& cl, HostApDocManager& documents);

  // The view's selection before the command, and how to clear it once taken.
  void setPreselection(std::function<OdDbObjectIdArray()> get, std::function<void()> clear);
  // True while a prompt waits for entities, so that the view's picks answer it.
  bool wantsPicks() const { return m_picking > 0; }
  // True while the prompt is "Select objects", which takes many at once.
  bool wantsMany() const { return m_selecting > 0; }
  // What the view picked, for the word kViewWord of the next answer.
  void setViewPicks(OdDbObjectIdArray ids) { m_viewPicks = std::move(ids); }
  static constexpr const char* kViewWord = "#view";

  HostResult getEntity(const OdString& prompt, OdDbObjectId& id) override;
  HostResult selectObjects(const OdString& prompt, OdDbObjectIdArray& ids) override;

protected:
  bool selectionWord(const std::string& word, OdDbObjectIdArray& found) override;

private:
  std::function<OdDbObjectIdArray()> m_preselection;
  OdDbObjectIdArray m_viewPicks;
  int m_selecting = 0;
  std::function<void()> m_clearPreselection;
  int m_picking = 0;
};
