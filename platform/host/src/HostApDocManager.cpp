#include "host/HostApDocManager.h"

#include <algorithm>

#include "host/HostFuncPtr.h"
#include "host/HostSampleDb.h"

namespace {
HostApDocManager* g_manager = nullptr;
}

// ---------------------------------------------------------------- documents

HostApDocument::HostApDocument(OdDbDatabasePtr database, std::string path, bool withPropManager)
    : path(std::move(path)), m_database(std::move(database)) {
  if (withPropManager) m_properties = std::make_unique<HostPropertyManager>();
}

std::string HostApDocument::title() const { return path.empty() ? std::string("Drawing") : path; }

bool HostApDocument::getPropManager(IOdPropertyManager** ppManager) {
  if (!ppManager) return false;
  *ppManager = m_properties.get();
  return m_properties != nullptr;
}

HostApDocManagerReactor::~HostApDocManagerReactor() = default;

// ---------------------------------------------------------------- the manager

HostApDocManager::~HostApDocManager() {
  closeAll();
  if (g_manager == this) g_manager = nullptr;
}

template <class F>
void HostApDocManager::notify(F f) {
  // A copy: a reactor may detach itself, or another, while it is told.
  const std::vector<HostApDocManagerReactor*> reactors = m_reactors;
  for (auto* r : reactors)
    if (std::find(m_reactors.begin(), m_reactors.end(), r) != m_reactors.end()) f(r);
}

HostResult HostApDocManager::addReactor(HostApDocManagerReactor* reactor) {
  if (!reactor) return kHostInvalidArg;
  if (std::find(m_reactors.begin(), m_reactors.end(), reactor) != m_reactors.end()) return kHostNone;
  m_reactors.push_back(reactor);
  return kHostOk;
}

HostResult HostApDocManager::removeReactor(HostApDocManagerReactor* reactor) {
  if (!reactor) return kHostInvalidArg;
  auto it = std::find(m_reactors.begin(), m_reactors.end(), reactor);
  if (it == m_reactors.end()) return kHostNone;
  m_reactors.erase(it);
  return kHostOk;
}

HostApDocument* HostApDocManager::addDocument(std::unique_ptr<HostApDocument> document) {
  HostApDocument* doc = document.get();
  notify([doc](HostApDocManagerReactor* r) { r->documentCreateStarted(doc); });
  m_documents.push_back(std::move(document));
  notify([doc](HostApDocManagerReactor* r) { r->documentCreated(doc); });
  activateDocument(doc);
  return doc;
}

void HostApDocManager::activateDocument(HostApDocument* document) {
  m_active = document;
  if (document) notify([document](HostApDocManagerReactor* r) { r->documentActivated(document); });
}

void HostApDocManager::closeDocument(HostApDocument* document) {
  auto it = std::find_if(m_documents.begin(), m_documents.end(), [document](const auto& d) { return d.get() == document; });
  if (it == m_documents.end()) return;
  notify([document](HostApDocManagerReactor* r) { r->documentToBeDestroyed(document); });
  const bool wasActive = m_active == document;
  // Taken out of the list before it is destroyed, so the list never holds a dying document.
  std::unique_ptr<HostApDocument> closing = std::move(*it);
  m_documents.erase(it);
  hostDropSampleDb(document->database());
  if (wasActive) activateDocument(m_documents.empty() ? nullptr : m_documents.back().get());
}

void HostApDocManager::closeAll() {
  while (!m_documents.empty()) {
    HostApDocument* doc = m_documents.back().get();
    notify([doc](HostApDocManagerReactor* r) { r->documentToBeDestroyed(doc); });
    if (m_active == doc) m_active = nullptr;
    std::unique_ptr<HostApDocument> closing = std::move(m_documents.back());
    m_documents.pop_back();
    hostDropSampleDb(doc->database());
  }
}

HostApDocManager* hostDocManager() { return g_manager; }
void hostSetDocManager(HostApDocManager* manager) { g_manager = manager; }

void* hostFuncPtr(int which) { return which == kHostFuncDocManager ? hostDocManager() : nullptr; }
