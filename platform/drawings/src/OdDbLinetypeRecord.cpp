#include "drawings/OdDbLinetypeRecord.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

// The record's own tags: after its subclass marker, or all of them in R12 files,
// which have no markers.
OdDbObject::Range ownRange(const OdDbObject& o, std::string_view marker) {
  OdDbObject::Range r = o.subclassRange(marker);
  return r.found ? r : o.commonRange();
}

OdDbObjectId idOfHandle(const OdDbObject& o, const DxfTag& tag) {
  OdDbDatabase* db = o.database();
  return db ? static_cast<const OdDbDatabase*>(db)->getOdDbObjectId(OdDbHandle(tag.toHandle())) : OdDbObjectId();
}

// Makes a record with the head that new records of `table` get, and its name.
template <class Record>
OdSmartPtr<Record> newRecord(OdDbDatabase& db, OdDbObjectId tableId, const char* dxfName, const char* marker,
                             const OdString& name) {
  auto table = odOpen<OdDbSymbolTable>(tableId, OdDb::kForWrite);
  if (!table) throw OdError(eNotInDatabase);
  if (table->has(name)) throw OdError(eDuplicateKey, "\"" + name.toUtf8() + "\" already exists");
  OdSmartPtr<Record> record = Record::createObject();
  record->setDxfName(dxfName);
  db.addOdDbObject(record.get(), tableId);
  DxfTagList& t = record->tagsForWrite();
  if (dxfver::hasObjects(db.version())) {
    t.emplace_back(100, "AcDbSymbolTableRecord");
    t.emplace_back(100, marker);
  }
  t.emplace_back(2, db.codec().encode(name.view()));
  t.emplace_back(70, "0");
  return record;
}

}  // namespace

// ---- linetypes

OdDbLinetypeData OdDbLinetypeData::fromRecord(const OdDbLinetypeTableRecord& record) {
  OdDbLinetypeData d;
  const auto& t = record.tags();
  const OdDbObject::Range r = ownRange(record, "AcDbLinetypeTableRecord");
  bool seen3 = false, seen40 = false;
  OdDbLinetypeDash* dash = nullptr;
  for (size_t i = r.begin; i < r.end && i < t.size(); ++i) {
    const DxfTag& tag = t[i];
    // Dash elements start with 49; the codes after one belong to it.
    if (tag.code == 49) {
      d.dashes.emplace_back().length = tag.toDouble();
      dash = &d.dashes.back();
      continue;
    }
    if (!dash) {
      if (tag.code == 3 && !std::exchange(seen3, true)) d.description = record.decodeText(tag.text);
      else if (tag.code == 40 && !std::exchange(seen40, true)) d.patternLength = tag.toDouble();
      continue;
    }
    switch (tag.code) {
      case 74: dash->complexType = static_cast<int>(tag.toInt()); break;
      case 75: dash->shapeNumber = static_cast<int>(tag.toInt()); break;
      case 340: dash->style = idOfHandle(record, tag); break;
      case 46: dash->scale = tag.toDouble(); break;
      case 50: dash->rotation = tag.toDouble() * std::numbers::pi / 180.0; break;
      case 44: dash->xOffset = tag.toDouble(); break;
      case 45: dash->yOffset = tag.toDouble(); break;
      case 9: dash->text = record.decodeText(tag.text); break;
      default: break;  // other codes stay in the record untouched; they carry nothing a pattern needs
    }
  }
  return d;
}

void OdDbLinetypeData::applyTo(OdDbLinetypeTableRecord& record) const {
  record.assertWriteEnabled();
  const OdDbObject::Range r = ownRange(record, "AcDbLinetypeTableRecord");
  DxfTagList& t = record.tagsForWrite();
  // The pattern's codes are replaced where they stood (at the end of the record's
  // own tags when it had none); the name, flags, handle and anything unknown stay.
  auto isPatternCode = [](int c) {
    return c == 3 || c == 72 || c == 73 || c == 40 || c == 49 || c == 74 || c == 75 || c == 340 || c == 46 ||
           c == 50 || c == 44 || c == 45 || c == 9;
  };
  size_t from = r.end;
  size_t end = r.end;
  for (size_t i = r.begin; i < end;) {
    if (isPatternCode(t[i].code)) {
      from = std::min(from, i);
      t.erase(t.begin() + static_cast<long>(i));
      --end;
    } else {
      ++i;
    }
  }
  from = std::min(from, end);
  const bool modern = record.database() && dxfver::hasObjects(record.database()->version());
  DxfTagList out;
  out.emplace_back(3, record.encodeText(description));
  out.emplace_back(72, "65");  // 'A': the only alignment there is
  out.emplace_back(73, std::to_string(dashes.size()));
  out.emplace_back(40, dxfFormatDouble(patternLength));
  for (const OdDbLinetypeDash& d : dashes) {
    out.emplace_back(49, dxfFormatDouble(d.length));
    if (!modern) continue;  // R12 has plain dashes only
    out.emplace_back(74, std::to_string(d.complexType));
    if (d.complexType == 0) continue;
    out.emplace_back(75, std::to_string(d.shapeNumber));
    out.emplace_back(340, dxfFormatHandle(d.style.isNull() ? 0 : d.style.getHandle().value()));
    out.emplace_back(46, dxfFormatDouble(d.scale));
    out.emplace_back(50, dxfFormatDouble(d.rotation * 180.0 / std::numbers::pi));
    out.emplace_back(44, dxfFormatDouble(d.xOffset));
    out.emplace_back(45, dxfFormatDouble(d.yOffset));
    if (d.complexType & 2) out.emplace_back(9, record.encodeText(d.text));
  }
  t.insert(t.begin() + static_cast<long>(from), out.begin(), out.end());
}

OdDbObjectId OdDbLinetypeData::addTo(OdDbDatabase& db, const OdString& name) const {
  auto record = newRecord<OdDbLinetypeTableRecord>(db, db.getLinetypeTableId(), "LTYPE", "AcDbLinetypeTableRecord", name);
  applyTo(*record);
  return odOpen<OdDbSymbolTable>(db.getLinetypeTableId(), OdDb::kForWrite)->add(record.get());
}

// ---- text styles

OdDbTextStyleData OdDbTextStyleData::fromRecord(const OdDbTextStyleTableRecord& record) {
  OdDbTextStyleData d;
  const auto& t = record.tags();
  const OdDbObject::Range r = ownRange(record, "AcDbTextStyleTableRecord");
  auto value = [&](int code) -> const DxfTag* {
    long i = record.findTag(code, r);
    return i < 0 ? nullptr : &t[static_cast<size_t>(i)];
  };
  if (auto v = value(3)) d.fontFile = record.decodeText(v->text);
  if (auto v = value(4)) d.bigFontFile = record.decodeText(v->text);
  if (auto v = value(40)) d.textSize = v->toDouble();
  if (auto v = value(41)) d.widthFactor = v->toDouble();
  if (auto v = value(50)) d.oblique = v->toDouble() * std::numbers::pi / 180.0;
  if (auto v = value(42)) d.priorSize = v->toDouble();
  if (auto v = value(71)) d.generation = static_cast<int>(v->toInt());
  if (auto v = value(70)) d.flags = static_cast<int>(v->toInt());
  if (OdResBufPtr rb = record.xData(L"ACAD")) {
    bool haveName = false, haveFlags = false;
    for (OdResBufPtr p = rb->next(); p; p = p->next()) {
      if (p->restype() == OdResBuf::kDxfXdAsciiString && !std::exchange(haveName, true)) d.typeface = p->getString();
      else if (p->restype() == OdResBuf::kDxfXdInteger32 && !std::exchange(haveFlags, true))
        d.typefaceFlags = p->getInt32();
    }
  }
  return d;
}

void OdDbTextStyleData::applyTo(OdDbTextStyleTableRecord& record) const {
  record.assertWriteEnabled();
  // The order in which CAD programs write a style's codes.
  const std::initializer_list<int> order = {2, 70, 40, 41, 50, 71, 42, 3, 4};
  auto set = [&](int code, std::string text) {
    record.setTagText(code, std::move(text), ownRange(record, "AcDbTextStyleTableRecord"), order);
  };
  const int keptFlags = record.flags() & ~0x05;
  set(70, std::to_string(keptFlags | (flags & 0x05)));
  set(40, dxfFormatDouble(textSize));
  set(41, dxfFormatDouble(widthFactor));
  set(50, dxfFormatDouble(oblique * 180.0 / std::numbers::pi));
  set(71, std::to_string(generation));
  set(42, dxfFormatDouble(priorSize));
  set(3, record.encodeText(fontFile));
  set(4, record.encodeText(bigFontFile));
  OdDbDatabase* db = record.database();
  if (!db || !dxfver::hasObjects(db->version()) || db->version() < DxfVersion::R2000) return;
  const bool hadFace = !record.xData(L"ACAD").isNull();
  if (typeface.isEmpty() && !hadFace) return;
  db->registerApp(L"ACAD");
  OdResBufPtr head = OdResBuf::newRb(OdResBuf::kDxfRegAppName, OdString(L"ACAD"));
  if (!typeface.isEmpty())
    head->setNext(OdResBuf::newRb(OdResBuf::kDxfXdAsciiString, typeface))
        ->setNext(OdResBuf::newRb(OdResBuf::kDxfXdInteger32, typefaceFlags));
  record.setXData(head.get());
}

OdDbObjectId OdDbTextStyleData::addTo(OdDbDatabase& db, const OdString& name) const {
  auto record =
      newRecord<OdDbTextStyleTableRecord>(db, db.getTextStyleTableId(), "STYLE", "AcDbTextStyleTableRecord", name);
  applyTo(*record);
  return odOpen<OdDbSymbolTable>(db.getTextStyleTableId(), OdDb::kForWrite)->add(record.get());
}
