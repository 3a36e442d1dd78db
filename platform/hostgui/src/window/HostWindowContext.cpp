#include "HostWindowContext.h"

#include <unordered_set>

HostWindowContext::HostWindowContext(HostCommandLine& cl, HostApDocManager& documents)
    : HostConsoleContext(cl, documents) {}

void HostWindowContext::setPreselection(std::function<OdDbObjectIdArray()> get, std::function<void()> clear) {
  m_preselection = std::move(get);
  m_clearPreselection = std::move(clear);
}

namespace {
struct Picking {
  int& depth;
  explicit Picking(int& d) : depth(d) { ++depth; }
  ~Picking() { --depth; }
};
}  // namespace

HostResult HostWindowContext::getEntity(const OdString& prompt, OdDbObjectId& id) {
  Picking picking(m_picking);
  return HostConsoleContext::getEntity(prompt, id);
}

HostResult HostWindowContext::selectObjects(const OdString& prompt, OdDbObjectIdArray& ids) {
  HostApDocument* doc = documents().curDocument();
  OdDbObjectIdArray pre = doc && m_preselection ? m_preselection() : OdDbObjectIdArray();
  if (!pre.empty()) {
    // Objects chosen before the command answer its question, as typed objects would.
    ids.clear();
    std::unordered_set<OdDbObjectId> seen;
    for (const auto& id : pre)
      if (!id.isErased() && seen.insert(id).second) ids.push_back(id);
    if (!ids.empty()) {
      commandLine().println(promptText(prompt, HostKeywordList()) + std::to_string(ids.size()) + " found");
      doc->selectionSetManager()->setPrevious(ids);
      if (m_clearPreselection) m_clearPreselection();
      return kHostOk;
    }
  }
  Picking picking(m_picking), selecting(m_selecting);
  return HostConsoleContext::selectObjects(prompt, ids);
}

bool HostWindowContext::selectionWord(const std::string& word, OdDbObjectIdArray& found) {
  if (word != kViewWord) return false;
  found = std::move(m_viewPicks);
  m_viewPicks.clear();
  return true;
}
