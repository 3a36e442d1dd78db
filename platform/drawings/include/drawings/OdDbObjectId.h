// Handles and object ids.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "drawings/OdString.h"

class OdDbDatabase;
class OdDbObject;

// A persistent handle: the hexadecimal number a DXF file stores.
class OdDbHandle {
public:
  OdDbHandle() = default;
  OdDbHandle(uint64_t v) : m_v(v) {}
  bool isNull() const { return m_v == 0; }
  uint64_t value() const { return m_v; }
  OdString ascii() const;  // upper-case hex, as DXF writes it
  friend bool operator==(OdDbHandle a, OdDbHandle b) { return a.m_v == b.m_v; }
  friend bool operator<(OdDbHandle a, OdDbHandle b) { return a.m_v < b.m_v; }

private:
  uint64_t m_v = 0;
};

// One per handle in a database: the id's target. Stubs live as long as the database,
// so an id stays valid (and comparable) after its object is erased or was never there.
struct OdDbStub {
  OdDbHandle handle;
  OdDbDatabase* database = nullptr;
  OdDbObject* object = nullptr;  // owned by the database; null for a dangling reference
};

namespace OdDb {
enum OpenMode { kNotOpen = -1, kForRead = 0, kForWrite = 1, kForNotify = 2 };
enum ReferenceType { kSoftPointerRef = 0, kHardPointerRef = 1, kSoftOwnershipRef = 2, kHardOwnershipRef = 3 };
}  // namespace OdDb

template <class T>
class OdSmartPtr;

class OdDbObjectId {
public:
  OdDbObjectId() = default;
  explicit OdDbObjectId(OdDbStub* s) : m_stub(s) {}
  static const OdDbObjectId kNull;

  bool isNull() const { return m_stub == nullptr; }
  bool isValid() const { return m_stub && m_stub->object; }
  bool isErased() const;
  OdDbHandle getHandle() const { return m_stub ? m_stub->handle : OdDbHandle(); }
  OdDbDatabase* database() const { return m_stub ? m_stub->database : nullptr; }
  OdDbStub* stub() const { return m_stub; }
  // Null when the id is null, dangling or erased (unless openErased).
  OdSmartPtr<OdDbObject> openObject(OdDb::OpenMode mode = OdDb::kForRead, bool openErased = false) const;
  OdSmartPtr<OdDbObject> safeOpenObject(OdDb::OpenMode mode = OdDb::kForRead, bool openErased = false) const;

  friend bool operator==(const OdDbObjectId& a, const OdDbObjectId& b) { return a.m_stub == b.m_stub; }
  friend bool operator!=(const OdDbObjectId& a, const OdDbObjectId& b) { return a.m_stub != b.m_stub; }
  friend bool operator<(const OdDbObjectId& a, const OdDbObjectId& b) {
    return a.getHandle() < b.getHandle();
  }

private:
  OdDbStub* m_stub = nullptr;
};

// The reference kinds carry what a reference means for purge, copying and ownership.
class OdDbSoftPointerId : public OdDbObjectId {
public:
  using OdDbObjectId::OdDbObjectId;
  OdDbSoftPointerId(const OdDbObjectId& id) : OdDbObjectId(id) {}
};
class OdDbHardPointerId : public OdDbObjectId {
public:
  using OdDbObjectId::OdDbObjectId;
  OdDbHardPointerId(const OdDbObjectId& id) : OdDbObjectId(id) {}
};
class OdDbSoftOwnershipId : public OdDbObjectId {
public:
  using OdDbObjectId::OdDbObjectId;
  OdDbSoftOwnershipId(const OdDbObjectId& id) : OdDbObjectId(id) {}
};
class OdDbHardOwnershipId : public OdDbObjectId {
public:
  using OdDbObjectId::OdDbObjectId;
  OdDbHardOwnershipId(const OdDbObjectId& id) : OdDbObjectId(id) {}
};

using OdDbObjectIdArray = std::vector<OdDbObjectId>;

template <>
struct std::hash<OdDbObjectId> {
  size_t operator()(const OdDbObjectId& id) const noexcept { return std::hash<const void*>()(id.stub()); }
};
