#include "DimOverrides.h"

#include <algorithm>

#include "DimVarStorage.h"
#include "drawings/OdDbDatabase.h"

using namespace dimvarstore;

namespace dimoverrides {
namespace {

// Where the group sits in the entity's tags.
struct Group {
  size_t app = 0, appEnd = 0;  // the ACAD application's tags [app, appEnd)
  size_t open = 0, close = 0;  // the 1002 "{" and "}" around the pairs
  bool hasApp = false, hasPairs = false;
};

Group locate(const OdDbObject& o) {
  Group g;
  const auto& t = o.tags();
  size_t i = o.xdataStart();
  for (; i < t.size(); ++i)
    if (t[i].code == 1001 && dxfEqualNoCase(t[i].text, "ACAD")) break;
  if (i >= t.size()) return g;
  g.hasApp = true;
  g.app = i;
  g.appEnd = i + 1;
  while (g.appEnd < t.size() && t[g.appEnd].code != 1001) ++g.appEnd;
  for (size_t k = g.app + 1; k + 1 < g.appEnd; ++k) {
    if (t[k].code == 1000 && t[k].text == "DSTYLE" && t[k + 1].code == 1002 && t[k + 1].text == "{") {
      g.open = k + 1;
      g.close = g.open + 1;
      while (g.close < g.appEnd && !(t[g.close].code == 1002 && t[g.close].text == "}")) ++g.close;
      g.hasPairs = g.close < g.appEnd;
      break;
    }
  }
  return g;
}

DxfVersion versionOf(const OdDbObject& o) { return o.database() ? o.database()->version() : DxfVersion::R2018; }

// The catalogue row a DSTYLE code stands for (the name codes of the arrows count too).
std::optional<std::size_t> rowOfCode(int code) {
  for (std::size_t r = 0; r < kDimVarCatalogueSize; ++r)
    if (kDimVarDefaults[r].styleCode == code || (kDimVarDefaults[r].nameCode && kDimVarDefaults[r].nameCode == code)) return r;
  return std::nullopt;
}

// The code a new pair of `row` is written with in version v.
int codeFor(const DimVarDefault& row, DxfVersion v) {
  int code = row.styleCodeIn(v);
  return code ? code : row.styleCode;
}

int valueCodeFor(const DimVarDefault& row, int code, DxfVersion v) {
  switch (row.kind) {
    case DimVarKind::String: return 1000;
    case DimVarKind::Double: return 1040;
    case DimVarKind::Block:
    case DimVarKind::Linetype:
    case DimVarKind::TextStyle:
      // R12 drawings need not have handles: references go by name there.
      return refFormOf(code) == RefForm::Handle && v > DxfVersion::R12 ? 1005 : 1000;
    default: return 1070;
  }
}

// Index of the code tag of row's pair inside the group; 0 when none. Pairs that
// name the variable by the version's own code win over older spellings.
size_t findPair(const OdDbObject& o, const Group& g, std::size_t row) {
  if (!g.hasPairs) return 0;
  const auto& t = o.tags();
  const int preferred = kDimVarDefaults[row].styleCodeIn(versionOf(o));
  size_t any = 0;
  for (size_t k = g.open + 1; k + 1 < g.close; k += 2) {
    if (t[k].code != 1070) continue;
    int code = static_cast<int>(t[k].toInt());
    auto r = rowOfCode(code);
    if (!r || *r != row) continue;
    if (code == preferred) return k;
    if (!any) any = k;
  }
  return any;
}

}  // namespace

std::optional<OdDimVarValue> get(const OdDbObject& o, std::size_t row) {
  Group g = locate(o);
  size_t k = findPair(o, g, row);
  if (!k) return std::nullopt;
  const DxfTag& value = o.tags()[k + 1];
  return decode(kDimVarDefaults[row], value.code, value.text, o.database(), false);
}

std::vector<std::size_t> rows(const OdDbObject& o) {
  std::vector<std::size_t> out;
  Group g = locate(o);
  if (!g.hasPairs) return out;
  const auto& t = o.tags();
  for (size_t k = g.open + 1; k + 1 < g.close; k += 2)
    if (t[k].code == 1070)
      if (auto r = rowOfCode(static_cast<int>(t[k].toInt()))) out.push_back(*r);
  return out;
}

std::vector<std::pair<std::size_t, OdDimVarValue>> values(const OdDbObject& o) {
  std::vector<std::pair<std::size_t, OdDimVarValue>> out;
  std::vector<bool> preferred;  // whether out[i] came from the version's own code (as findPair picks)
  Group g = locate(o);
  if (!g.hasPairs) return out;
  const auto& t = o.tags();
  const DxfVersion v = versionOf(o);
  for (size_t k = g.open + 1; k + 1 < g.close; k += 2) {
    if (t[k].code != 1070) continue;
    const int code = static_cast<int>(t[k].toInt());
    const auto r = rowOfCode(code);
    if (!r) continue;
    const bool own = code == kDimVarDefaults[*r].styleCodeIn(v);
    auto same = std::find_if(out.begin(), out.end(), [&](const auto& p) { return p.first == *r; });
    if (same != out.end() && (!own || preferred[static_cast<size_t>(same - out.begin())])) continue;
    OdDimVarValue value = decode(kDimVarDefaults[*r], t[k + 1].code, t[k + 1].text, o.database(), false);
    if (same != out.end()) {
      same->second = std::move(value);
      preferred[static_cast<size_t>(same - out.begin())] = true;
    } else {
      out.emplace_back(*r, std::move(value));
      preferred.push_back(own);
    }
  }
  return out;
}

void set(OdDbObject& o, std::size_t row, const OdDimVarValue& value) {
  const DimVarDefault& r = kDimVarDefaults[row];
  Group g = locate(o);
  if (size_t k = findPair(o, g, row)) {
    DxfTag& v = o.tagsForWrite()[k + 1];
    v.set(encode(r, v.code, value, o.database(), false));
    return;
  }
  const int code = codeFor(r, versionOf(o));
  const int valueCode = valueCodeFor(r, code, versionOf(o));
  DxfTagList pair{DxfTag(1070, std::to_string(code)), DxfTag(valueCode, encode(r, valueCode, value, o.database(), false))};
  auto& t = o.tagsForWrite();
  if (g.hasPairs) {
    t.insert(t.begin() + static_cast<long>(g.close), pair.begin(), pair.end());
    return;
  }
  DxfTagList block{DxfTag(1000, "DSTYLE"), DxfTag(1002, "{"), pair[0], pair[1], DxfTag(1002, "}")};
  if (g.hasApp) {
    t.insert(t.begin() + static_cast<long>(g.appEnd), block.begin(), block.end());
    return;
  }
  if (OdDbDatabase* db = o.database()) db->registerApp(L"ACAD");
  t.emplace_back(1001, "ACAD");
  t.insert(t.end(), block.begin(), block.end());
}

void remove(OdDbObject& o, std::size_t row) {
  Group g = locate(o);
  size_t k = findPair(o, g, row);
  if (!k) return;
  auto& t = o.tagsForWrite();
  t.erase(t.begin() + static_cast<long>(k), t.begin() + static_cast<long>(k + 2));
  g = locate(o);
  if (g.close != g.open + 1) return;
  // The last pair went: so does the group, and the application when it held nothing else.
  t.erase(t.begin() + static_cast<long>(g.open - 1), t.begin() + static_cast<long>(g.close + 1));
  g = locate(o);
  if (g.hasApp && g.appEnd == g.app + 1) t.erase(t.begin() + static_cast<long>(g.app));
}

}  // namespace dimoverrides
