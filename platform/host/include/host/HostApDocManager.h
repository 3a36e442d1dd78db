// The host's documents: each open drawing with its editor input, selection sets
// and palette properties; the document manager that owns them; and the reactors
// that modules attach to hear of documents coming and going.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "drawings/OdDbDatabase.h"
#include "host/HostPropertyManager.h"
#include "host/HostResult.h"
#include "host/HostSelection.h"
#include "host/IVxContext.h"

class HostApDocument {
public:
  // `withPropManager` false: a document that no palette shows has no property
  // manager to offer.
  explicit HostApDocument(OdDbDatabasePtr database, std::string path = {}, bool withPropManager = true);

  OdDbDatabase* database() const { return m_database.get(); }
  // The command line that talks to the user about this document.
  IVxContext* editorInput() const { return gpVxContext; }
  HostSelectionSetManager* selectionSetManager() { return &m_selection; }
  // True, with the manager in *ppManager, when the document has one.
  bool getPropManager(IOdPropertyManager** ppManager);

  std::string path;       // empty for a new drawing never saved
  DxfSaveOptions saveAs;  // version and format that SAVE writes: as read, or as last chosen
  std::string title() const;

private:
  OdDbDatabasePtr m_database;
  HostSelectionSetManager m_selection;
  std::unique_ptr<HostPropertyManager> m_properties;
};

// Notifications, each given the document concerned. A document is created
// (documentCreateStarted, then documentCreated), made active
// (documentActivated), and at its close told documentToBeDestroyed while it
// is still whole.
class HostApDocManagerReactor {
public:
  virtual ~HostApDocManagerReactor();
  virtual void documentCreateStarted(HostApDocument*) {}
  virtual void documentCreated(HostApDocument*) {}
  virtual void documentToBeDestroyed(HostApDocument*) {}
  virtual void documentActivated(HostApDocument*) {}
};

class HostApDocManager {
public:
  HostApDocManager() = default;
  HostApDocManager(const HostApDocManager&) = delete;
  HostApDocManager& operator=(const HostApDocManager&) = delete;
  // Closes every document still open, with notifications.
  ~HostApDocManager();

  // Null when no document is open.
  HostApDocument* curDocument() const { return m_active; }
  size_t documentCount() const { return m_documents.size(); }
  HostApDocument* document(size_t i) const { return m_documents.at(i).get(); }

  // kHostOk; kHostNone when the reactor is attached already (or, for
  // removeReactor, is not attached); kHostInvalidArg for null.
  HostResult addReactor(HostApDocManagerReactor* reactor);
  HostResult removeReactor(HostApDocManagerReactor* reactor);
  size_t reactorCount() const { return m_reactors.size(); }

  // The host's side. The new document becomes the active one.
  HostApDocument* addDocument(std::unique_ptr<HostApDocument> document);
  // The last document left becomes active when the active one closes.
  void closeDocument(HostApDocument* document);
  void activateDocument(HostApDocument* document);
  // Every document, last first, without activating the others in between.
  void closeAll();

private:
  template <class F>
  void notify(F f);

  std::vector<std::unique_ptr<HostApDocument>> m_documents;
  HostApDocument* m_active = nullptr;
  std::vector<HostApDocManagerReactor*> m_reactors;
};

// The document manager of the running host; null when there is none.
HostApDocManager* hostDocManager();
void hostSetDocManager(HostApDocManager* manager);
