#include "UndoHistory.h"

#include <algorithm>
#include <cassert>
#include <unordered_set>

// ---- the database's interface ----

UndoHistory& UndoHistory::of(OdDbDatabase& db) {
  if (!db.m_undo) db.m_undo = std::make_unique<UndoHistory>(db);
  return *db.m_undo;
}

void OdDbDatabase::beginUndoGroup(const OdString& name) { UndoHistory::of(*this).begin(name); }
void OdDbDatabase::endUndoGroup() { UndoHistory::of(*this).end(); }
bool OdDbDatabase::hasUndo() const { return m_undo && m_undo->hasUndo(); }
bool OdDbDatabase::hasRedo() const { return m_undo && m_undo->hasRedo(); }
OdString OdDbDatabase::undoGroupName() const { return m_undo ? m_undo->undoName() : OdString(); }
OdString OdDbDatabase::redoGroupName() const { return m_undo ? m_undo->redoName() : OdString(); }
void OdDbDatabase::undo() {
  UndoHistory::of(*this).undo();
  ++m_changes;
}
void OdDbDatabase::redo() {
  UndoHistory::of(*this).redo();
  ++m_changes;
}
void OdDbDatabase::blockUndoRecording(bool block) { UndoHistory::of(*this).setBlocked(block); }
bool OdDbDatabase::isUndoBlocked() const { return m_undo && m_undo->blocked(); }

void OdDbDatabase::recordUndo(OdDbObject* object) {
  ++m_changes;
  // Without a history no group was ever opened: there is nothing to record or forget.
  if (m_undo) m_undo->record(object);
}

// ---- groups ----

void UndoHistory::begin(const OdString& name) {
  if (m_depth++ > 0) return;
  ++m_serial;
  m_openName = name;
  m_open.reset();
  m_lost = false;
}

void UndoHistory::end() {
  if (m_depth == 0 || --m_depth > 0) return;
  if (m_open) {
    // Only the containers that grew need to be kept.
    auto& growth = m_open->growth;
    growth.erase(std::remove_if(growth.begin(), growth.end(),
                                [&](const Growth& g) {
                                  const DxfSection* s = g.ids ? nullptr : m_db.section(g.section);
                                  size_t now = g.ids ? g.ids->size() : s ? s->items.size() : g.size;
                                  assert(now >= g.size && "objects leave containers only by being erased");
                                  return now == g.size;
                                }),
                 growth.end());
    if (m_open->sectionsBefore.size() == m_db.m_sections.size()) m_open->sectionsBefore.clear();
    m_undo.push_back(std::move(*m_open));
    m_open.reset();
  }
  m_lost = false;
}

void UndoHistory::record(OdDbObject* o) {
  if (m_depth == 0 || m_blocked || m_lost) {
    forget();
    return;
  }
  if (o->m_undoGroup == m_serial) return;
  o->m_undoGroup = m_serial;
  if (!m_open) startRecording();
  m_open->changes.push_back(Change{OdDbObjectPtr(o), copyState(*o)});
}

void UndoHistory::recordNew(OdDbObject* o) {
  if (m_depth == 0 || m_blocked || m_lost) {
    forget();
    return;
  }
  o->m_undoGroup = m_serial;
  if (!m_open) startRecording();
  ObjectState before = copyState(*o);
  before.inDatabase = false;
  m_open->changes.push_back(Change{OdDbObjectPtr(o), std::move(before)});
}

void UndoHistory::startRecording() {
  discardRedo();
  m_open.emplace();
  m_open->name = m_openName;
  noteContainers(*m_open);
}

void UndoHistory::noteContainers(Step& step) {
  // Items are only ever added to the first section of a name (what section() finds).
  for (const DxfSection& s : m_db.m_sections) {
    if (std::find(step.sectionsBefore.begin(), step.sectionsBefore.end(), s.name) == step.sectionsBefore.end())
      step.growth.push_back(Growth{OdDbObjectPtr(), nullptr, s.name, s.items.size(), {}, {}});
    step.sectionsBefore.push_back(s.name);
  }
  // The tables by slot (the block table of an R12 drawing is in no section) and
  // those only the TABLES section knows.
  std::vector<OdDbSymbolTable*> tables;
  auto addTable = [&](OdDbObject* o) {
    if (o && o->isKindOf(OdDbSymbolTable::desc()) && std::find(tables.begin(), tables.end(), o) == tables.end())
      tables.push_back(static_cast<OdDbSymbolTable*>(o));
  };
  for (const auto& id : m_db.m_tables) addTable(id.stub() ? id.stub()->object : nullptr);
  if (DxfSection* s = m_db.section("TABLES"))
    for (const auto& item : s->items) addTable(item.get());
  for (OdDbSymbolTable* t : tables) {
    step.growth.push_back(Growth{OdDbObjectPtr(t), &t->records(), {}, t->records().size(), {}, {}});
    if (!t->isKindOf(OdDbBlockTable::desc())) continue;
    for (const auto& id : t->records()) {
      OdDbObject* o = id.stub() ? id.stub()->object : nullptr;
      if (!o || !o->isKindOf(OdDbBlockTableRecord::desc())) continue;
      auto* btr = static_cast<OdDbBlockTableRecord*>(o);
      step.growth.push_back(Growth{OdDbObjectPtr(btr), &btr->entities(), {}, btr->entities().size(), {}, {}});
      step.growth.push_back(
          Growth{OdDbObjectPtr(btr), &btr->sectionEntities(), {}, btr->sectionEntities().size(), {}, {}});
    }
  }
}

// ---- history ----

void UndoHistory::forget() {
  if (m_depth > 0) {
    m_lost = true;
    m_open.reset();
  }
  m_undo.clear();
  discardRedo();
}

void UndoHistory::discardRedo() {
  if (m_redo.empty()) return;
  // Objects taken out by undo that only these steps could bring back leave the
  // database for good.
  std::unordered_set<const OdDbObject*> gone;
  for (auto& step : m_redo)
    for (auto& c : step.changes) {
      OdDbObject* o = c.object.get();
      if (o->m_stub && o->m_stub->object != o && gone.insert(o).second) o->attach(nullptr);
    }
  if (!gone.empty()) {
    auto& objs = m_db.m_objects;
    objs.erase(std::remove_if(objs.begin(), objs.end(), [&](const OdDbObjectPtr& p) { return gone.count(p.get()) > 0; }),
               objs.end());
  }
  m_redo.clear();
}

void UndoHistory::undo() {
  if (m_depth > 0) throw OdError(eInvalidOpenState, "cannot undo while an undo group is open");
  if (m_undo.empty()) return;
  Step step = std::move(m_undo.back());
  m_undo.pop_back();
  apply(step, true);
  m_redo.push_back(std::move(step));
}

void UndoHistory::redo() {
  if (m_depth > 0) throw OdError(eInvalidOpenState, "cannot redo while an undo group is open");
  if (m_redo.empty()) return;
  Step step = std::move(m_redo.back());
  m_redo.pop_back();
  apply(step, false);
  m_undo.push_back(std::move(step));
}

void UndoHistory::apply(Step& step, bool undoing) {
  auto move = [&](auto& v, auto& tail, size_t size) {
    if (undoing) {
      size = std::min(size, v.size());
      tail.assign(v.begin() + static_cast<long>(size), v.end());
      v.resize(size);
    } else {
      v.insert(v.end(), tail.begin(), tail.end());
      tail.clear();
    }
  };
  auto& sections = m_db.m_sections;
  if (!undoing) {
    for (auto& [at, s] : step.sectionsTaken) sections.insert(sections.begin() + static_cast<long>(at), std::move(s));
    step.sectionsTaken.clear();
  }
  for (auto& g : step.growth) {
    if (g.ids) move(*g.ids, g.idTail, g.size);
    else if (DxfSection* s = m_db.section(g.section)) move(s->items, g.itemTail, g.size);
  }
  if (undoing && !step.sectionsBefore.empty()) {
    const auto& before = step.sectionsBefore;
    for (size_t i = sections.size(); i-- > 0;)
      if (std::find(before.begin(), before.end(), sections[i].name) == before.end()) {
        step.sectionsTaken.emplace_back(i, std::move(sections[i]));
        sections.erase(sections.begin() + static_cast<long>(i));
      }
    std::reverse(step.sectionsTaken.begin(), step.sectionsTaken.end());  // reinserted front to back
  }
  for (auto& c : step.changes) swapState(*c.object, c.state);
  // Names may have come, gone or changed.
  auto invalidate = [](OdDbObject* o) {
    if (o && o->isKindOf(OdDbSymbolTable::desc())) static_cast<OdDbSymbolTable*>(o)->invalidateIndex();
  };
  for (const auto& id : m_db.m_tables) invalidate(id.stub() ? id.stub()->object : nullptr);
  if (DxfSection* s = m_db.section("TABLES"))
    for (const auto& item : s->items) invalidate(item.get());
}

// ---- object state ----

UndoHistory::ObjectState UndoHistory::copyState(const OdDbObject& o) {
  ObjectState s;
  s.raw = o.m_raw;
  s.ownBytes = o.m_ownBytes;
  s.rawFormat = o.m_rawFormat;
  s.shortCodes = o.m_shortCodes;
  if (o.m_tags) s.tags = std::make_unique<DxfTagList>(*o.m_tags);
  s.dxfName = o.m_dxfName;
  s.owner = o.m_owner;
  s.erased = o.m_erased;
  s.modified = o.m_modified;
  return s;
}

void UndoHistory::swapState(OdDbObject& o, ObjectState& s) {
  ObjectState now;
  now.inDatabase = !o.m_stub || o.m_stub->object == &o;
  now.raw = o.m_raw;
  now.ownBytes = std::move(o.m_ownBytes);
  now.rawFormat = o.m_rawFormat;
  now.shortCodes = o.m_shortCodes;
  now.tags = std::move(o.m_tags);
  now.dxfName = std::move(o.m_dxfName);
  now.owner = o.m_owner;
  now.erased = o.m_erased;
  now.modified = o.m_modified;

  o.m_raw = s.raw;
  o.m_ownBytes = std::move(s.ownBytes);
  o.m_rawFormat = s.rawFormat;
  o.m_shortCodes = s.shortCodes;
  o.m_tags = std::move(s.tags);
  o.m_dxfName = std::move(s.dxfName);
  o.m_owner = s.owner;
  // An object out of the drawing also counts as erased, so that a container that
  // still lists it (or a pointer someone kept) does not bring it back.
  o.m_erased = s.erased || !s.inDatabase;
  o.m_modified = s.modified;
  o.m_revision = OdDbObject::nextRevision();
  if (o.m_stub) {
    if (s.inDatabase) o.m_stub->object = &o;
    else if (o.m_stub->object == &o) o.m_stub->object = nullptr;
  }
  s = std::move(now);
}
