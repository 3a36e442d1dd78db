// The undo and redo history of one database.
//
// A step holds what is needed to swap the drawing between its state before and
// after the step: for each object changed, its persistent state (tags, or the bytes
// it was read from while unparsed; erased flag; owner), and for each container that
// grew (table records, block entities, section items) the length it had. Undo and
// redo exchange the stored states with the current ones, so one step serves both
// directions.
//
// Containers only ever grow inside a step: objects leave a drawing by being erased,
// never by being taken out of their container. That is what lets a step record a
// container by its length instead of copying it.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "drawings/OdDbDatabase.h"

class UndoHistory {
public:
  explicit UndoHistory(OdDbDatabase& db) : m_db(db) {}
  // The database's history, made on first use.
  static UndoHistory& of(OdDbDatabase& db);

  void begin(const OdString& name);
  void end();
  // Before the first change of `o` in the open step.
  void record(OdDbObject* o);
  // `o` has just been given its handle: undo takes it out of the drawing again.
  void recordNew(OdDbObject* o);

  bool isOpen() const { return m_depth > 0; }
  bool hasUndo() const { return !m_undo.empty(); }
  bool hasRedo() const { return !m_redo.empty(); }
  OdString undoName() const { return m_undo.empty() ? OdString() : m_undo.back().name; }
  OdString redoName() const { return m_redo.empty() ? OdString() : m_redo.back().name; }
  void undo();
  void redo();
  void setBlocked(bool b) { m_blocked = b; }
  bool blocked() const { return m_blocked; }

private:
  // What an object looks like to the file: the parts of OdDbObject that are saved.
  struct ObjectState {
    bool inDatabase = true;  // false: the handle finds nothing and the object is not written
    std::string_view raw;
    std::shared_ptr<const std::string> ownBytes;  // what raw points into when the object spelled it
    DxfFormat rawFormat = DxfFormat::Ascii;
    bool shortCodes = false;
    std::unique_ptr<DxfTagList> tags;  // null: not parsed, the raw bytes are the object
    std::string dxfName;
    OdDbObjectId owner;
    bool erased = false;
    bool modified = false;
  };
  struct Change {
    OdDbObjectPtr object;
    ObjectState state;  // the state to go to on the next undo or redo
  };
  // A container's length before the step; what undo cut off waits in the tail for redo.
  struct Growth {
    OdDbObjectPtr owner;  // keeps `ids` alive; null for a section's items
    std::vector<OdDbObjectId>* ids = nullptr;
    std::string section;  // the section whose items these are, when `ids` is null
    size_t size = 0;
    std::vector<OdDbObjectId> idTail;
    std::vector<OdDbObjectPtr> itemTail;
  };
  struct Step {
    OdString name;
    std::vector<Change> changes;
    std::vector<Growth> growth;
    // Sections the step added (a drawing without a BLOCKS section getting a block):
    // the names there were before, and what undo took out, by position.
    std::vector<std::string> sectionsBefore;
    std::vector<std::pair<size_t, DxfSection>> sectionsTaken;
  };

  static ObjectState copyState(const OdDbObject& o);
  static void swapState(OdDbObject& o, ObjectState& s);
  // The first change of a step: the redo history ends and container lengths are noted.
  void startRecording();
  void noteContainers(Step& step);
  void apply(Step& step, bool undoing);
  // A change that is not recorded: no step can be undone or redone across it.
  void forget();
  void discardRedo();

  OdDbDatabase& m_db;
  std::vector<Step> m_undo, m_redo;
  std::optional<Step> m_open;  // the step being recorded, once it has a change
  OdString m_openName;
  int m_depth = 0;
  uint32_t m_serial = 0;  // numbers the outermost groups; see OdDbObject::m_undoGroup
  bool m_blocked = false;
  bool m_lost = false;  // the open group saw an unrecorded change: it records nothing more
};
