// Writing to another version, format or encoding than the drawing was read in.
#include <unordered_set>

#include "DxfWriter.h"
#include "drawings/DimVarDefaults.h"
#include "drawings/OdDbDimStyleTableRecord.h"

namespace {
// Entities an R12 file can hold; everything else is left out there. Paper space
// viewports are left out too: R12 keeps their settings in extended data that
// later versions no longer write.
bool isR12Entity(std::string_view n) {
  static const std::unordered_set<std::string_view> names = {
      "LINE", "POINT", "CIRCLE", "ARC", "TRACE", "SOLID", "TEXT", "SHAPE", "BLOCK", "ENDBLK", "INSERT",
      "ATTDEF", "ATTRIB", "POLYLINE", "VERTEX", "SEQEND", "3DFACE", "DIMENSION"};
  return names.count(n) != 0;
}

// Group codes that only exist from R13 on: ownership, subclass data, lineweights,
// true colours, transparency and the like.
bool isPostR12Code(int c) {
  return c == 100 || c == 102 || (c >= 300 && c <= 369) || (c >= 370 && c <= 479) || (c >= 480 && c <= 481) ||
         (c >= 90 && c <= 99) || (c >= 160 && c <= 169) || (c >= 290 && c <= 299) || c == 105;
}
}  // namespace

bool DxfWriter::keepForTarget(const OdDbObject* o) {
  if (!m_downToR12) return true;
  if (o->isKindOf(OdDbEntity::desc()) && !isR12Entity(o->dxfName())) {
    m_leftOut->push_back("entity " + std::string(o->dxfName()));
    return false;
  }
  return true;
}

void DxfWriter::convertTags(const OdDbObject* o, DxfTagList& tags) {
  const DxfCodec& from = m_db.codec();
  const bool reencode = from.isUtf8() != m_codec.isUtf8() || from.codePageName() != m_codec.codePageName();
  DxfTagList out;
  out.reserve(tags.size());
  std::string var;  // current header variable
  bool inGroup = false;
  const bool isHeader = o == m_db.header();
  for (DxfTag& t : tags) {
    DxfTag n;
    n.code = t.code;
    n.changed = true;
    n.text = t.text;
    if (reencode && (dxfTypeOf(t.code) == DxfType::String) && t.code != 0 && t.code != 100)
      n.text = m_codec.encode(from.decode(t.text).view());
    if (isHeader && t.code == 9) var = t.text;
    if (isHeader && var == "$ACADVER" && t.code == 1) n.text = std::string(dxfver::acadVer(m_version));
    if (isHeader && var == "$ACADMAINTVER" && (t.code == 70 || t.code == 90))
      n.code = m_version >= DxfVersion::R2018 ? 90 : 70;
    if (m_downToR12) {
      if (t.code == 102) {
        inGroup = !t.text.empty() && t.text[0] == '{';
        continue;
      }
      if (inGroup) continue;
      if (isHeader) {
        if (t.code == 9 && (var == "$ACADMAINTVER" || var == "$HANDSEED" ? false : false)) {}
        if (isPostR12Code(t.code) && t.code != 9) continue;
      } else if (t.code < 1000 && isPostR12Code(t.code)) {
        continue;
      }
    }
    out.push_back(std::move(n));
  }
  if (isHeader && m_downToR12) {
    // Drop header variables left without a value.
    DxfTagList kept;
    for (size_t i = 0; i < out.size(); ++i) {
      if (out[i].code == 9 && (i + 1 == out.size() || out[i + 1].code == 9 || out[i + 1].code == 0)) continue;
      kept.push_back(std::move(out[i]));
    }
    out.swap(kept);
  }
  tags.swap(out);
}

// R12 dimension styles name their arrow blocks (5, 6, 7) where later versions
// point at them (342, 343, 344), and hold none of the variables added since.
static void dimStyleToR12(const OdDbObject& style, DxfTagList& tags) {
  DxfTagList out;
  for (DxfTag& t : tags) {
    const DimVarDefault* row = nullptr;
    for (const auto& r : kDimVarDefaults)
      if (r.styleCode == t.code && t.code != 70 && t.code != 2) row = &r;
    if (row && row->nameCode && t.code == row->styleCode) {
      auto rec = odOpen<OdDbSymbolTableRecord>(style.database()->getOdDbObjectId(OdDbHandle(t.toHandle())));
      out.emplace_back(row->nameCode, rec ? style.encodeText(rec->getName()) : std::string());
      continue;
    }
    if (row && row->styleSince > DxfVersion::R12) continue;
    out.push_back(std::move(t));
  }
  tags.swap(out);
}

void DxfWriter::writeConverted(const OdDbObject* o) {
  if (!keepForTarget(o)) return;
  DxfTagList tags = o->tags();
  if (m_downToR12 && o->isKindOf(OdDbDimStyleTableRecord::desc())) dimStyleToR12(*o, tags);
  convertTags(o, tags);
  for (const DxfTag& t : tags) dxfWriteTag(m_out, t, m_style);
}
