#include "host/HostEditorReactor.h"

#include <algorithm>
#include <vector>

namespace {
std::vector<HostEditorReactor*>& reactors() {
  static std::vector<HostEditorReactor*> list;
  return list;
}
}  // namespace

HostResult hostAddEditorReactor(HostEditorReactor* reactor) {
  if (!reactor) return kHostInvalidArg;
  auto& list = reactors();
  if (std::find(list.begin(), list.end(), reactor) != list.end()) return kHostNone;
  list.push_back(reactor);
  return kHostOk;
}

HostResult hostRemoveEditorReactor(HostEditorReactor* reactor) {
  if (!reactor) return kHostInvalidArg;
  auto& list = reactors();
  auto it = std::find(list.begin(), list.end(), reactor);
  if (it == list.end()) return kHostNone;
  list.erase(it);
  return kHostOk;
}

// Copies, so that a reactor may remove itself while it is told.
void hostEditorCommandWillStart(const OdString& name) {
  for (auto* r : std::vector<HostEditorReactor*>(reactors())) r->commandWillStart(name);
}
void hostEditorCommandEnded(const OdString& name) {
  for (auto* r : std::vector<HostEditorReactor*>(reactors())) r->commandEnded(name);
}
