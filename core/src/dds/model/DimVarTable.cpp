#define VEX_SRCFILE "dds"
#include "model/DimVarTable.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "drawings/OdDbSymbolTable.h"
#include "drawings/OdDmUtil.h"
#include "host/HostUnits.h"
#include "model/DimArrows.h"
#include "res/DdsStrings.h"

namespace dds {

namespace {

// Narrowing as a conversion to the typed member's integer type does it
// (modulo its width), without the undefined cases of a double out of range.
template <class T>
double narrowed(double v) {
  if (!std::isfinite(v)) return 0.0;
  const double lim = 9.2e18;  // inside the range of int64_t
  const auto wide = static_cast<int64_t>(std::clamp(v, -lim, lim));
  return static_cast<double>(static_cast<T>(wide));
}

OdDimVarValue normalized(DimVarKind kind, OdDimVarValue v) {
  switch (kind) {
    case DimVarKind::Bool: v.number = v.number != 0.0 ? 1.0 : 0.0; break;
    case DimVarKind::Int16:
    case DimVarKind::LineWeight: v.number = narrowed<int16_t>(v.number); break;
    case DimVarKind::UInt16: v.number = narrowed<uint16_t>(v.number); break;
    case DimVarKind::UInt8: v.number = narrowed<uint8_t>(v.number); break;
    default: break;
  }
  return v;
}

bool isShortName(const wchar_t* shortName, const wchar_t* name) {
  return CXStringW(shortName).CompareNoCase(name) == 0;
}

bool isArrowVariable(const wchar_t* shortName) {
  for (const wchar_t* n : {L"BLK", L"BLK1", L"BLK2", L"LDRBLK"}) {
    if (isShortName(shortName, n)) return true;
  }
  return false;
}

bool isLinetypeVariable(const wchar_t* shortName) {
  for (const wchar_t* n : {L"LTYPE", L"LTEX1", L"LTEX2"}) {
    if (isShortName(shortName, n)) return true;
  }
  return false;
}

}  // namespace

// ---------------------------------------------------------------- rows

CXStringW DimVarInfo::foldedName() const { return CXStringW(fullName).MakeUpper(); }

CXStringW DimVarInfo::description() const { return ddsString(descriptionId); }

OdDimVarValue DimVarInfo::get(const OdDimVarSource& holder) const {
  return normalized(kind, holder.dimVar(row));
}

void DimVarInfo::set(OdDimVarSource& holder, const OdDimVarValue& value) const {
  holder.setDimVar(row, normalized(kind, value));
}

bool DimVarInfo::differ(const OdDimVarValue& a, const OdDimVarValue& b) const {
  switch (kind) {
    case DimVarKind::String: return a.text != b.text;
    case DimVarKind::Color: return a.color != b.color;
    case DimVarKind::Block:
    case DimVarKind::Linetype:
    case DimVarKind::TextStyle: return a.id != b.id;
    default: {
      // Compared as the holders hand the values out, so that a stored 2 and a
      // stored 1 of a boolean are the same value.
      const OdDimVarValue x = normalized(kind, a), y = normalized(kind, b);
      return x.number != y.number;  // true for a NaN on either side
    }
  }
}

CXStringW DimVarInfo::format(const OdDimVarValue& value) const {
  const OdDimVarValue v = normalized(kind, value);
  switch (kind) {
    case DimVarKind::Bool: return DimVarFormatBool(v.number != 0.0);
    case DimVarKind::Int16:
    case DimVarKind::UInt16:
    case DimVarKind::UInt8:
    case DimVarKind::LineWeight: return DimVarFormatInteger(static_cast<int>(v.number), shortName());
    case DimVarKind::Double: return DimVarFormatDouble(v.number, shortName());
    case DimVarKind::String: return DimVarFormatString(v.text);
    case DimVarKind::Color: return DimVarFormatColor(v.color);
    case DimVarKind::Block:
    case DimVarKind::Linetype:
    case DimVarKind::TextStyle: return DimVarFormatId(v.id, shortName());
  }
  return CXStringW();
}

const DimVarInfo* FindDimVarInfo(const wchar_t* fullName) {
  for (const DimVarInfo& v : DimVarTable) {
    if (CXStringW(v.fullName).CompareNoCase(fullName) == 0) return &v;
  }
  return nullptr;
}

// ---------------------------------------------------------------- sorted positions

const VexMap<CXStringW, int>& DimVarSortedPositions() {
  // A function-local static: built on the first call, not at load time.
  static const VexMap<CXStringW, int> positions = [] {
    VexArray<CXStringW> names;
    names.reserve(kDimVarCount);
    for (const DimVarInfo& v : DimVarTable) names.push_back(v.foldedName());
    std::sort(names.begin(), names.end());  // ordinal order of the code units
    VexMap<CXStringW, int> map(10);
    for (std::size_t i = 0; i < names.size(); ++i) map.emplace(names[i], static_cast<int>(i));
    return map;
  }();
  return positions;
}

int DimVarSortedPosition(const CXStringW& foldedName) {
  const auto& map = DimVarSortedPositions();
  auto it = map.find(foldedName);
  return it == map.end() ? -1 : it->second;
}

// ---------------------------------------------------------------- formatters

CXStringW DimVarFormatBool(bool value) { return ddsString(value ? IDS_YES : IDS_NO); }

CXStringW DimVarFormatInteger(int value, const wchar_t* shortName) {
  if (isShortName(shortName, L"DSEP")) {
    // The low byte as a signed character, widened as a 16-bit wide character
    // would be: 46 is ".", 44 is ",". A zero byte shows nothing rather than a
    // NUL that would cut the cell short wherever it is passed on as text.
    const auto c = static_cast<signed char>(value & 0xFF);
    if (c == 0) return CXStringW();
    return CXStringW(static_cast<wchar_t>(static_cast<uint16_t>(c)), 1);
  }
  CXStringW s;
  s.Format(L"%i", value);
  return s;
}

CXStringW DimVarFormatDouble(double value, const wchar_t* shortName) {
  OdString text;
  bool ok;
  if (isShortName(shortName, L"JOGANG")) {
    ok = VxAng2Str(value * 180.0 / 3.141592653589793, text, -777.7777, -1, -1, 31, -1, -1, -1);
  } else {
    ok = VxLin2Str(value, text, 255, 255, -1, -1, -1, -1);
  }
  // The host has no text for a value that is not finite; show the number anyway.
  if (!ok) text = OdString::format(L"%g", value);
  return CXStringW(text);
}

CXStringW DimVarFormatString(const OdString& value) { return CXStringW(value); }

CXStringW DimVarFormatId(const OdDbObjectId& id, const wchar_t* shortName) {
  const bool arrow = isArrowVariable(shortName);
  if (id.isNull()) {
    if (arrow) return ArrowDisplayName(OdString());  // the default arrowhead
    // A null dimension linetype draws as by-block; say so instead of nothing.
    if (isLinetypeVariable(shortName)) return ddsString(IDS_BYBLOCK);
    return ddsString(IDS_DEFAULT);
  }
  OdDbObjectPtr obj = id.openObject();
  if (auto rec = OdDbSymbolTableRecord::cast(obj.get())) {
    if (!arrow) return CXStringW(rec->getName());
    // The arrow's canonical spelling: R12 files keep "_ARCHTICK" for "_ArchTick".
    OdString name = OdDmUtil::arrowName(id);
    return ArrowDisplayName(name.isEmpty() ? rec->getName() : name);
  }
  // Not a record (or nothing there any more): the handle and what the object is.
  CXStringW s;
  s.Format(L"0x%I64X (%s)", static_cast<unsigned long long>(id.getHandle().value()),
           obj ? obj->isA()->name().c_str() : ddsString(IDS_NULL).c_str());
  return s;
}

CXStringW DimVarFormatColor(const OdCmColor& value) {
  if (value.isByBlock()) return ddsString(IDS_BYBLOCK);
  if (value.isByLayer()) return ddsString(IDS_BYLAYER);
  // Only the six named index colours; 7 shows its RGB, since it draws black or
  // white by background. A true colour is shown by its RGB even when it equals
  // one of the six.
  const int index = value.colorIndex();
  if (value.isByACI() && index >= 1 && index <= 6) return ddsString(IDS_COLOR_RED - 1 + index);
  CXStringW s;
  s.Format(L"#%02X%02X%02X", value.red(), value.green(), value.blue());
  return s;
}

}  // namespace dds
