// Writes a database as DXF bytes: untouched objects as the bytes they were read
// from, changed ones tag by tag, and all of it re-spelled when the version, format
// or encoding changes.
#pragma once

#include <string>
#include <vector>

#include "drawings/OdDbDatabase.h"

class DxfWriter {
public:
  DxfWriter(const OdDbDatabase& db, const DxfSaveOptions& options, std::vector<std::string>* leftOut);
  std::string write();

private:
  void writeObject(const OdDbObject* o);
  void writeId(const OdDbObjectId& id);
  void writeTables(const DxfSection& s);
  void writeBlocks(const DxfSection& s);
  void writeConverted(const OdDbObject* o);
  bool keepForTarget(const OdDbObject* o);
  void convertTags(const OdDbObject* o, DxfTagList& tags);

  const OdDbDatabase& m_db;
  DxfVersion m_version;
  DxfFormat m_format;
  bool m_same;      // same version, format and encoding: raw bytes can be reused
  bool m_downToR12; // R12 cannot hold much of what later versions write
  DxfStyle m_style;
  DxfCodec m_codec;
  std::vector<std::string>* m_leftOut;
  std::vector<std::string> m_leftOutLocal;
  std::string m_out;
};
