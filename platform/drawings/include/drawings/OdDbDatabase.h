// The drawing database: objects by handle, the symbol tables, the named objects
// dictionary, the header variables and the layout of the DXF file it came from.
#pragma once

#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "drawings/DxfCodec.h"
#include "drawings/DxfVersion.h"
#include "drawings/OdDbDictionary.h"
#include "drawings/OdDbSymbolTable.h"
#include "drawings/OdDimVarSource.h"

class OdDbDatabase;
class UndoHistory;
using OdDbDatabasePtr = OdSmartPtr<OdDbDatabase>;

// A section of the file as read: its SECTION and ENDSEC tags and what lies between.
struct DxfSection {
  std::string name;                 // HEADER, CLASSES, TABLES, BLOCKS, ENTITIES, OBJECTS, ...
  OdDbObjectPtr head;               // "0 SECTION / 2 name" (with the variables, for HEADER)
  std::vector<OdDbObjectPtr> items; // tables, block records, entities, objects or plain chunks
  OdDbObjectPtr endsec;
};

struct DxfSaveOptions {
  std::optional<DxfVersion> version;  // default: the version read
  std::optional<DxfFormat> format;    // default: the format read
};

class OdDbDatabase : public OdRxObject, public OdDimVarSource {
public:
  static const OdRxClass* desc();
  const OdRxClass* isA() const override { return desc(); }
  ~OdDbDatabase() override;

  // A new drawing with everything a valid drawing needs.
  static OdDbDatabasePtr createNew(DxfVersion version = DxfVersion::R2018, bool metric = false);
  // Reads a DXF file or its bytes. Throws OdError(eCantOpenFile / eBadDxfFile) with a
  // message naming the line, group code and what was expected; nothing is returned
  // half-loaded.
  static OdDbDatabasePtr readDxfFile(const std::string& path);
  static OdDbDatabasePtr readDxf(std::string bytes);

  // The file bytes. `leftOut` receives one line per thing the target version cannot hold.
  std::string toDxf(const DxfSaveOptions& options = {}, std::vector<std::string>* leftOut = nullptr) const;
  // Writes beside the target and renames, so a failure leaves the old file intact.
  // Throws OdError(eFileWriteError) saying why.
  void writeDxfFile(const std::string& path, const DxfSaveOptions& options = {},
                    std::vector<std::string>* leftOut = nullptr) const;

  DxfVersion version() const { return m_version; }
  DxfFormat format() const { return m_format; }
  // Problems found and repaired or tolerated while reading (duplicate handles, dangling owners).
  const std::vector<std::string>& loadWarnings() const { return m_warnings; }
  const DxfCodec& codec() const { return m_codec; }

  // Objects and handles.
  OdDbObjectId getOdDbObjectId(OdDbHandle h, bool createIfNotFound = false);
  OdDbObjectId getOdDbObjectId(OdDbHandle h) const;
  // Gives the object a new handle and owner; it is not placed in any container.
  OdDbObjectId addOdDbObject(OdDbObject* object, OdDbObjectId ownerId = OdDbObjectId(), OdDbHandle handle = OdDbHandle());
  // The same for an object whose bytes are spelled in full right after
  // (OdDbObject::replaceBytes): its tags are not touched.
  OdDbObjectId addSpelledObject(OdDbObject* object, OdDbObjectId ownerId);
  OdDbHandle handseed() const { return OdDbHandle(m_nextHandle); }
  size_t numObjects() const { return m_stubs.size(); }

  OdDbObjectId getBlockTableId() const { return m_tables[0]; }
  OdDbObjectId getLayerTableId() const { return m_tables[1]; }
  OdDbObjectId getLinetypeTableId() const { return m_tables[2]; }
  OdDbObjectId getTextStyleTableId() const { return m_tables[3]; }
  OdDbObjectId getDimStyleTableId() const { return m_tables[4]; }
  OdDbObjectId getRegAppTableId() const { return m_tables[5]; }
  OdDbObjectId getViewTableId() const { return m_tables[6]; }
  OdDbObjectId getUCSTableId() const { return m_tables[7]; }
  OdDbObjectId getViewportTableId() const { return m_tables[8]; }
  OdDbObjectId getNamedObjectsDictionaryId() const { return m_namedObjects; }
  OdDbObjectId getModelSpaceId() const;
  OdDbObjectId getPaperSpaceId() const;
  // Adds a registered application name if missing; returns its record.
  OdDbObjectId registerApp(const OdString& name);

  // Header variables ("$LUNITS"). The chain holds the variable's value tags.
  OdResBufPtr getHeaderVar(const OdString& name) const;
  void setHeaderVar(const OdString& name, const OdResBuf* values);
  bool hasHeaderVar(const OdString& name) const { return !getHeaderVar(name).isNull(); }
  double headerDouble(const char* name, double dflt) const;
  int headerInt(const char* name, int dflt) const;
  OdString headerString(const char* name, const OdString& dflt = OdString()) const;
  void setHeaderDouble(const char* name, int code, double v);
  void setHeaderInt(const char* name, int code, int v);
  void setHeaderString(const char* name, int code, const OdString& v);

  int getLUNITS() const { return headerInt("$LUNITS", 2); }
  int getLUPREC() const { return headerInt("$LUPREC", 4); }
  int getAUNITS() const { return headerInt("$AUNITS", 0); }
  int getAUPREC() const { return headerInt("$AUPREC", 0); }
  double getANGBASE() const { return headerDouble("$ANGBASE", 0.0); }
  bool getANGDIR() const { return headerInt("$ANGDIR", 0) != 0; }
  int getMEASUREMENT() const { return headerInt("$MEASUREMENT", 0); }
  int getINSUNITS() const { return headerInt("$INSUNITS", 0); }
  int getDIMASO() const { return headerInt("$DIMASO", 1); }
  OdString getCLAYER() const { return headerString("$CLAYER", L"0"); }
  bool extendedNames() const { return version() >= DxfVersion::R2000 && headerInt("$EXTNAMES", 1) != 0; }

  // The current dimension settings: the $DIM header variables. Variables the file's
  // version has no header variable for follow the current style.
  OdDimVarValue dimVar(std::size_t row) const override;
  void setDimVar(std::size_t row, const OdDimVarValue& value) override;
  OdDbObjectId dimstyle() const;
  void setDimstyle(const OdDbObjectId& styleId);
  // The style becomes current and its values become the current settings.
  void setDimstyleData(const OdDbObjectId& styleId);
  // Associativity of new dimensions (0, 1, 2): a header variable from R2004, a
  // dictionary variable in R2000.
  int getDIMASSOC() const;
  void setDIMASSOC(int value);
  // The current annotation scale's name, kept in the variable dictionary.
  OdString getCANNOSCALE() const;
  void setCANNOSCALE(const OdString& scaleName);
  // A dictionary variable of the "AcDbVariableDictionary" entry.
  std::optional<OdString> dictionaryVar(const OdString& name) const;
  void setDictionaryVar(const OdString& name, const OdString& value);

  // Leaves in `ids` only the objects that nothing in the drawing references.
  void purge(OdDbObjectIdArray& ids) const;

  // Undo. A group records, before the first change of each object in it, the
  // object's state (tags, erased flag, owner); the objects it adds, which undo takes
  // out of the drawing again; and how far the tables, blocks and sections grew.
  // Groups nest: only the outermost begin/end pair makes a step. A group that
  // changed nothing leaves no step. A change made outside any group, or while
  // recording is blocked, cannot be undone and forgets the whole history, since
  // undoing around it would make up a drawing that never existed.
  void beginUndoGroup(const OdString& name);
  void endUndoGroup();
  bool hasUndo() const;
  bool hasRedo() const;
  // The name of the step that undo() / redo() would take back or bring back.
  OdString undoGroupName() const;
  OdString redoGroupName() const;
  // Both throw OdError(eInvalidOpenState) while a group is open; nothing to do is fine.
  void undo();
  void redo();
  void blockUndoRecording(bool block);
  bool isUndoBlocked() const;
  // Called before an object changes (objects call it themselves).
  void recordUndo(OdDbObject* object);
  // Counts every change, undo and redo since the drawing was read or made; a
  // program remembers it when it saves, to tell whether the drawing has changed since.
  uint64_t changeCount() const { return m_changes; }

  // Loader and writer access to the file's layout.
  std::vector<DxfSection>& sections() { return m_sections; }
  const std::vector<DxfSection>& sections() const { return m_sections; }
  DxfSection* section(std::string_view name);
  const DxfSection* section(std::string_view name) const;
  OdDbObject* header() const { return m_header.get(); }

private:
  friend class DxfLoader;
  friend class DxfWriter;
  friend class UndoHistory;
  OdDbDatabase();
  OdDbObjectId attachNew(OdDbObject* object, OdDbHandle handle);
  // Keeps $HANDSEED past every handle given out (one tag, found once).
  void updateHandseed();

  // The bytes every unchanged object points into.
  std::shared_ptr<const std::string> m_source;
  std::string m_prefix, m_suffix;  // before the first tag (binary sentinel), after EOF
  OdDbObjectPtr m_eof;
  std::vector<DxfSection> m_sections;
  OdDbObjectPtr m_header;
  std::deque<OdDbStub> m_stubArena;  // stable addresses
  std::unordered_map<uint64_t, OdDbStub*> m_stubs;
  std::vector<OdDbObjectPtr> m_objects;  // keeps every object with a handle alive
  OdDbObjectId m_tables[9];
  OdDbObjectId m_namedObjects;
  uint64_t m_nextHandle = 1;
  uint64_t m_fileHandseed = 0;
  size_t m_handseedTag = 0;  // where $HANDSEED's value was last found in the header's tags
  DxfVersion m_version = DxfVersion::R2018;
  DxfFormat m_format = DxfFormat::Ascii;
  DxfStyle m_style;
  DxfCodec m_codec;
  std::vector<std::string> m_warnings;
  std::unique_ptr<UndoHistory> m_undo;
  uint64_t m_changes = 0;
  std::map<std::size_t, OdDimVarValue> m_dimVarsSessionOnly;  // variables the header cannot hold
};

// Where new entities and records go, and where DXF text is written.
DxfStyle dxfStyleOf(const OdDbDatabase& db);
