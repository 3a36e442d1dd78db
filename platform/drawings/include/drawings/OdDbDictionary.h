// Dictionaries and xrecords.
#pragma once

#include <utility>
#include <vector>

#include "drawings/OdDbObject.h"

class OdDbDictionary : public OdDbObject {
  ODRX_DECLARE_MEMBERS(OdDbDictionary)

public:
  // Entries in stored order: (name, id). Names compare case-insensitively.
  std::vector<std::pair<OdString, OdDbObjectId>> entries() const;
  OdDbObjectId getAt(const OdString& name) const;
  bool has(const OdString& name) const { return !getAt(name).isNull(); }
  // Adds or replaces an entry and takes ownership of the object (sets its owner).
  OdDbObjectId setAt(const OdString& name, OdDbObject* object);
  // Removes the entry (the object itself is not erased).
  bool remove(const OdString& name);
  size_t numEntries() const { return entries().size(); }
  // Entries own their objects hard (360) or soft (350, the default).
  bool isHardOwner() const;
};
using OdDbDictionaryPtr = OdSmartPtr<OdDbDictionary>;

class OdDbXrecord : public OdDbObject {
  ODRX_DECLARE_MEMBERS(OdDbXrecord)

public:
  // The data after the AcDbXrecord marker (and its 280 cloning flag) as a chain.
  OdResBufPtr rbChain() const;
  void setFromRbChain(const OdResBuf* chain);
};
using OdDbXrecordPtr = OdSmartPtr<OdDbXrecord>;
