// The base of every database object. An object is kept as the DXF tags it was read
// from: untouched objects are written back as their original bytes, and typed
// accessors read and change single tags, so whatever we do not model stays in place.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "drawings/DxfCodec.h"
#include "drawings/DxfTags.h"
#include "drawings/OdDbObjectId.h"
#include "drawings/OdResBuf.h"
#include "drawings/OdResult.h"
#include "drawings/OdRxObject.h"

class OdDbObject;
using OdDbObjectPtr = OdSmartPtr<OdDbObject>;

class OdDbObject : public OdRxObject {
  ODRX_DECLARE_MEMBERS(OdDbObject)

public:
  ~OdDbObject() override;

  OdDbObjectId objectId() const { return OdDbObjectId(m_stub); }
  OdDbHandle getDbHandle() const { return m_stub ? m_stub->handle : OdDbHandle(); }
  OdDbDatabase* database() const { return m_stub ? m_stub->database : nullptr; }
  OdDbObjectId ownerId() const { return m_owner; }
  void setOwnerId(OdDbObjectId owner);
  // Sets the owner without touching the tags (the loader, which read it from them).
  void setOwnerIdRaw(OdDbObjectId owner) { m_owner = owner; }

  bool isErased() const { return m_erased; }
  // Erasing keeps the object (undo and unerase need it) but it is no longer saved or found.
  OdResult erase(bool erasing = true);

  bool isWriteEnabled() const { return m_openMode == OdDb::kForWrite; }
  bool isModified() const { return m_modified; }
  // Changes with every change of the object, and is never the same for two states
  // of any objects: what is derived from an object can be kept while it holds.
  uint64_t revision() const { return m_revision; }
  // Throws eNotOpenForWrite unless opened for write; marks the object as changed.
  void assertWriteEnabled();
  void assertReadEnabled() const {}
  void setOpenMode(OdDb::OpenMode m) { m_openMode = m; }

  // The DXF name of the object as read ("LINE", "ACDBPLACEHOLDER", ...).
  std::string_view dxfName() const { return m_dxfName; }
  void setDxfName(std::string name) { m_dxfName = std::move(name); }

  // Extended data: the whole chain, or the group of one application (starting with
  // its 1001 entry). Null when there is none.
  OdResBufPtr xData(const OdString& regappName = OdString()) const;
  // Replaces the groups of the applications named in `xdata`; a group with only its
  // 1001 entry removes that application's data.
  void setXData(const OdResBuf* xdata);

  OdDbObjectId extensionDictionary() const;
  // Creates the extension dictionary if missing; returns false if there was one.
  bool createExtensionDictionary();
  OdDbObjectIdArray getPersistentReactors() const;
  void addPersistentReactor(OdDbObjectId id);

  // The object's tags. Parsed on first use from the bytes the object was read from.
  const DxfTagList& tags() const;
  DxfTagList& tagsForWrite();
  // The original bytes while the object has not been changed since it was read.
  std::string_view rawBytes() const { return m_tags ? std::string_view() : m_raw; }
  // Sets where the object came from (loader only).
  void setSource(std::string_view raw, DxfFormat format, uint32_t line, bool shortCodes = false) {
    m_raw = raw;
    m_rawFormat = format;
    m_shortCodes = shortCodes;
    m_line = line;
    m_tags.reset();
    m_revision = nextRevision();
  }
  uint32_t sourceLine() const { return m_line; }
  // Replaces the whole object with `bytes`: its tags, name and handle included, in
  // `format` (binary with two-byte group codes). Objects made in bulk are cheaper
  // spelled in one pass than set tag by tag, and binary values are written to the
  // file's own spelling only when it is saved. Returns false, changing nothing,
  // when the object already is these bytes. Throws eNotOpenForWrite unless open
  // for write.
  bool replaceBytes(std::string_view bytes, DxfFormat format);
  DxfFormat rawFormat() const { return m_rawFormat; }
  bool rawShortCodes() const { return m_shortCodes; }
  // Whether the object still is the bytes replaceBytes gave it.
  bool isSpelled() const { return m_ownBytes && !m_tags; }
  void attach(OdDbStub* stub) { m_stub = stub; }

  // Tag helpers for typed access. Indices are into tags(). A "section" is the run of
  // tags after a subclass marker (100) up to the next marker or the extended data.
  struct Range {
    size_t begin = 0, end = 0;
    bool found = false;
  };
  Range subclassRange(std::string_view marker) const;
  // The tags before the first subclass marker, without the 102 groups.
  Range commonRange() const;
  size_t xdataStart() const;
  // First tag with `code` inside `r`; -1 if none.
  long findTag(int code, Range r) const;
  // Sets the value of the first tag with `code` inside `r`, inserting it after the
  // last tag whose code comes earlier in `order` when it is missing.
  void setTagText(int code, std::string text, Range r, std::initializer_list<int> order = {});
  void removeTag(int code, Range r);

  // The value of the first tag with `code`, read from the original bytes without
  // parsing the whole object (falls back to the parsed tags once there are any).
  std::optional<std::string> firstValue(int code) const;
  // Calls f(code, value in ASCII spelling) for every tag, from the original bytes
  // when the object was never parsed, so that looking through a whole drawing
  // does not keep every object's tags in memory.
  void forEachTag(const std::function<void(int, std::string_view)>& f) const;

  // Decoding and encoding of string values for this object's database.
  const DxfCodec& codec() const;
  OdString decodeText(std::string_view fileBytes) const;
  std::string encodeText(const OdString& s) const;

protected:
  OdDbObject() = default;

private:
  friend class UndoHistory;  // snapshots and restores the persistent state below
  void parseTags() const;
  static uint64_t nextRevision();
  // Lets the database's undo history snapshot the object before it changes.
  void noteChange();

  OdDbStub* m_stub = nullptr;
  OdDbObjectId m_owner;
  std::string_view m_raw;  // into the database's file buffer, or into m_ownBytes
  std::shared_ptr<const std::string> m_ownBytes;  // shared with undo steps that hold them
  mutable std::unique_ptr<DxfTagList> m_tags;
  std::string m_dxfName;
  uint32_t m_line = 0;
  DxfFormat m_rawFormat = DxfFormat::Ascii;
  bool m_shortCodes = false;  // binary with the one-byte group codes of R12 and older
  OdDb::OpenMode m_openMode = OdDb::kNotOpen;
  bool m_erased = false;
  bool m_modified = false;
  uint32_t m_undoGroup = 0;  // the undo group that already holds a snapshot of this object
  uint64_t m_revision = nextRevision();
};

// Object kept as its tags only: every class we do not model.
class OdDbProxyObject : public OdDbObject {
  ODRX_DECLARE_MEMBERS(OdDbProxyObject)
};

template <class T>
OdSmartPtr<T> odOpen(const OdDbObjectId& id, OdDb::OpenMode mode = OdDb::kForRead) {
  return OdSmartPtr<T>::cast(id.openObject(mode));
}
