#include "DxfWriter.h"

#include <algorithm>
#include <map>


DxfWriter::DxfWriter(const OdDbDatabase& db, const DxfSaveOptions& options, std::vector<std::string>* leftOut)
    : m_db(db),
      m_version(options.version.value_or(db.version())),
      m_format(options.format.value_or(db.format())),
      m_codec(DxfCodec::make(db.codec().codePageName(), m_version)),
      m_leftOut(leftOut ? leftOut : &m_leftOutLocal) {
  m_same = m_version == db.version() && m_format == db.format();
  m_downToR12 = m_version <= DxfVersion::R12 && db.version() > DxfVersion::R12;
  m_style = dxfStyleOf(db);
  m_style.format = m_format;
  m_style.shortCodes = m_format == DxfFormat::Binary && dxfver::binaryShortCodes(m_version);
  // Saved as read: group codes as wide as the file had them, whatever its version says.
  if (m_same && m_format == DxfFormat::Binary) m_style.shortCodes = db.m_style.shortCodes;
  // Keep the file's own line endings and code padding when we can.
  if (m_format == db.format() && db.format() == DxfFormat::Ascii) {
    const std::string_view src = db.m_source ? std::string_view(*db.m_source) : std::string_view();
    size_t nl = src.find('\n');
    m_style.eol = (nl != std::string_view::npos && nl > 0 && src[nl - 1] == '\r') ? "\r\n" : "\n";
    m_style.padCodes = db.m_style.padCodes;
  }
}

std::string DxfWriter::write() {
  if (m_db.m_source) m_out.reserve(m_db.m_source->size() + m_db.m_source->size() / 16);
  if (m_same) {
    m_out += m_db.m_prefix;
  } else if (m_format == DxfFormat::Binary) {
    m_out += kDxfBinarySentinel;
  } else if (m_db.m_format == DxfFormat::Ascii) {
    m_out += m_db.m_prefix;  // comments stay
  }
  for (const DxfSection& s : m_db.m_sections) {
    if (m_downToR12 && (s.name == "CLASSES" || s.name == "OBJECTS" || s.name == "ACDSDATA" || s.name == "THUMBNAILIMAGE")) {
      m_leftOut->push_back("section " + s.name);
      continue;
    }
    writeObject(s.head.get());
    if (s.name == "TABLES") {
      writeTables(s);
    } else if (s.name == "BLOCKS") {
      writeBlocks(s);
    } else {
      for (const auto& item : s.items)
        if (!item->isErased()) writeObject(item.get());
    }
    writeObject(s.endsec.get());
  }
  if (m_db.m_eof) writeObject(m_db.m_eof.get());
  if (m_same) m_out += m_db.m_suffix;
  if (m_downToR12) {
    // Say what was left out once per kind, with a count.
    std::map<std::string, int> counts;
    for (auto& s : *m_leftOut) ++counts[s];
    m_leftOut->clear();
    for (auto& [what, n] : counts) m_leftOut->push_back(n > 1 ? what + " (" + std::to_string(n) + ")" : what);
  }
  return std::move(m_out);
}

void DxfWriter::writeId(const OdDbObjectId& id) {
  const OdDbObject* o = id.stub() ? id.stub()->object : nullptr;
  if (o && !o->isErased()) writeObject(o);
}

void DxfWriter::writeTables(const DxfSection& s) {
  for (const auto& item : s.items) {
    auto* table = static_cast<OdDbSymbolTable*>(item.get());
    if (table->isErased()) continue;
    if (m_downToR12 && table->tableName() == L"BLOCK_RECORD") continue;
    writeObject(table);
    const bool blocks = table->isKindOf(OdDbBlockTable::desc());
    for (auto& id : table->records()) {
      // Records made up for blocks that had none in the file are not written.
      if (blocks && id.stub() && id.stub()->object &&
          static_cast<const OdDbBlockTableRecord*>(id.stub()->object)->synthetic)
        continue;
      writeId(id);
    }
    if (table->endTab) writeObject(table->endTab.get());
  }
}

void DxfWriter::writeBlocks(const DxfSection& s) {
  for (const auto& item : s.items) {
    auto* btr = static_cast<OdDbBlockTableRecord*>(item.get());
    if (btr->isErased()) continue;
    writeId(btr->blockBegin);
    for (auto& id : btr->entities()) writeId(id);
    writeId(btr->blockEnd);
  }
}

void DxfWriter::writeObject(const OdDbObject* o) {
  if (!o) return;
  if (m_same) {
    std::string_view raw = o->rawBytes();
    if (!raw.empty() && o->rawFormat() == m_format && o->rawShortCodes() == m_style.shortCodes) {
      m_out += raw;
      return;
    }
    if (!raw.empty()) {  // spelled in another format: respelled tag by tag, without keeping the tags
      o->forEachTag([&](int code, std::string_view value) { dxfWriteNewTag(m_out, code, value, m_style); });
      return;
    }
    for (const DxfTag& t : o->tags()) dxfWriteTag(m_out, t, m_style);
    return;
  }
  writeConverted(o);
}
