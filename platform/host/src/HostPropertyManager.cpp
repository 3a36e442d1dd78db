#include "host/HostPropertyManager.h"

#include <algorithm>

#include "drawings/OdDbDatabase.h"
#include "host/HostEditorReactor.h"
#include "host/HostSysVars.h"

HostResult HostPropertyManager::addProperty(IOdProperty* property) {
  if (!property) return kHostInvalidArg;
  if (std::find(m_properties.begin(), m_properties.end(), property) != m_properties.end()) return kHostNone;
  m_properties.push_back(property);
  return kHostOk;
}

HostResult HostPropertyManager::removeProperty(IOdProperty* property) {
  if (!property) return kHostInvalidArg;
  auto it = std::find(m_properties.begin(), m_properties.end(), property);
  if (it == m_properties.end()) return kHostNone;
  m_properties.erase(it);
  return kHostOk;
}

void IXREditableProperty::advise(IXREditablePropertySink* sink) {
  if (sink && std::find(m_sinks.begin(), m_sinks.end(), sink) == m_sinks.end()) m_sinks.push_back(sink);
}

void IXREditableProperty::unadvise(IXREditablePropertySink* sink) {
  m_sinks.erase(std::remove(m_sinks.begin(), m_sinks.end(), sink), m_sinks.end());
}

// Copies, so that a sink may unadvise while it is told.
void IXREditableProperty::notifyChanged() const {
  for (auto* s : std::vector<IXREditablePropertySink*>(m_sinks)) s->valueChanged();
}
void IXREditableProperty::notifyRefused(const OdString& message) const {
  for (auto* s : std::vector<IXREditablePropertySink*>(m_sinks)) s->valueRefused(message);
}
void IXREditableProperty::notifyRefreshAll() const {
  for (auto* s : std::vector<IXREditablePropertySink*>(m_sinks)) s->refreshAll();
}

static const OdString kChangeCommand = L"OPM_CHGPROP";

HostPropertyChange::HostPropertyChange(OdDbDatabase* db) : m_db(db) {
  hostEditorCommandWillStart(kChangeCommand);
  HostVarValue active = 0;
  m_ownStep = hostGetVar(L"CMDACTIVE", active) == kHostOk && std::get<int>(active) == 0;
  if (m_ownStep) hostCommandStarted();
  // A group inside the running command's group merges into its step.
  if (m_db) m_db->beginUndoGroup(kChangeCommand);
}

HostPropertyChange::~HostPropertyChange() {
  if (m_db) m_db->endUndoGroup();
  if (m_ownStep) hostCommandEnded();
  hostEditorCommandEnded(kChangeCommand);
}
