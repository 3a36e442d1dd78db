#include "host/HostGeneralProperties.h"

#include <charconv>
#include <cmath>
#include <memory>
#include <optional>
#include <string>

#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbDimension.h"
#include "drawings/OdDbGeometry.h"
#include "drawings/OdDbLeader.h"
#include "drawings/OdDbText.h"
#include "host/HostTranslation.h"

namespace {

const wchar_t* const kContext = L"HostGeneralProperties";

OdString tr(const wchar_t* text) { return Supp_Translate(kContext, text); }

std::wstring trimmed(const OdString& text) {
  std::wstring s = text.str();
  const auto first = s.find_first_not_of(L" \t");
  if (first == std::wstring::npos) return {};
  return s.substr(first, s.find_last_not_of(L" \t") - first + 1);
}

bool sameName(const std::wstring& a, const wchar_t* b) { return OdString(a).iCompare(OdString(b)) == 0; }

// A whole-string number in the "C" spelling, whatever the locale.
std::optional<double> parseNumber(const std::wstring& text) {
  std::string narrow;
  for (wchar_t c : text) {
    if (c > 127) return std::nullopt;
    narrow += static_cast<char>(c == L',' ? '.' : c);
  }
  double v = 0;
  const char* end = narrow.data() + narrow.size();
  auto [p, ec] = std::from_chars(narrow.data(), end, v);
  if (ec != std::errc() || p != end || narrow.empty() || !std::isfinite(v)) return std::nullopt;
  return v;
}

std::optional<int> parseInt(const std::wstring& text) {
  std::string narrow(text.begin(), text.end());
  for (wchar_t c : text)
    if (c > 127) return std::nullopt;
  int v = 0;
  const char* end = narrow.data() + narrow.size();
  auto [p, ec] = std::from_chars(narrow.data(), end, v);
  if (ec != std::errc() || p != end || narrow.empty()) return std::nullopt;
  return v;
}

// The colours with names of their own: index 1 to 7, named as the drawing library names them.
OdCmColor namedColor(int index) {
  OdCmColor c;
  c.setColorIndex(static_cast<int16_t>(index));
  return c;
}

const OdDb::LineWeight kStandardWeights[] = {
    OdDb::kLnWt000, OdDb::kLnWt005, OdDb::kLnWt009, OdDb::kLnWt013, OdDb::kLnWt015, OdDb::kLnWt018,
    OdDb::kLnWt020, OdDb::kLnWt025, OdDb::kLnWt030, OdDb::kLnWt035, OdDb::kLnWt040, OdDb::kLnWt050,
    OdDb::kLnWt053, OdDb::kLnWt060, OdDb::kLnWt070, OdDb::kLnWt080, OdDb::kLnWt090, OdDb::kLnWt100,
    OdDb::kLnWt106, OdDb::kLnWt120, OdDb::kLnWt140, OdDb::kLnWt158, OdDb::kLnWt200, OdDb::kLnWt211};

// The record of `table` named `name` (any case), as the table spells it; empty
// when there is none.
OdString recordName(OdDbObjectId tableId, const std::wstring& name) {
  auto table = odOpen<OdDbSymbolTable>(tableId);
  if (!table) return OdString();
  auto record = odOpen<OdDbSymbolTableRecord>(table->getAt(OdString(name)));
  return record ? record->getName() : OdString();
}

OdString recordList(OdDbObjectId tableId, std::initializer_list<const wchar_t*> first) {
  OdString list;
  for (const wchar_t* f : first) list += OdString(f) + L"\t";
  auto table = odOpen<OdDbSymbolTable>(tableId);
  if (!table) return list;
  for (const OdDbObjectId& id : table->recordIds()) {
    auto record = odOpen<OdDbSymbolTableRecord>(id);
    if (!record) continue;
    const OdString name = record->getName();
    bool listed = false;
    for (const wchar_t* f : first) listed = listed || name.iCompare(OdString(f)) == 0;
    if (!listed) list += name + L"\t";
  }
  return list;
}

// One general property: how it reads, writes, shows and takes its value on one
// entity. Data, so that the five properties are one readable table below.
template <class Value>
struct Accessor {
  const wchar_t* name;
  HostPropEditKind kind;
  Value (*get)(const OdDbEntity&);
  void (*set)(OdDbEntity&, const Value&);
  OdString (*format)(const Value&);
  // False with a message in `message` for text that names no value of `db`.
  bool (*parse)(const std::wstring& text, const OdDbDatabase& db, Value& value, OdString& message);
  OdString (*valueList)(const OdDbDatabase& db);  // null for free text
};

template <class Value>
class GeneralEditable : public IXREditableProperty {
public:
  GeneralEditable(const Accessor<Value>& accessor, OdDbObjectIdArray selection)
      : m_accessor(accessor), m_selection(std::move(selection)) {}

  // Read afresh on every call: the palette re-reads its rows after any change,
  // undo included, without making its editable properties again.
  HostPropState state() const override { return combine(nullptr); }
  OdString text() const override {
    Value v{};
    return combine(&v) == HostPropState::kSame ? m_accessor.format(v) : OdString();
  }
  HostPropEditKind editKind() const override { return m_accessor.kind; }
  OdString valueList() const override {
    OdDbDatabase* db = database();
    return db && m_accessor.valueList ? m_accessor.valueList(*db) : OdString();
  }

  HostResult setText(const OdString& text) override {
    OdDbDatabase* db = database();
    if (!db) return kHostFail;
    Value value{};
    OdString message;
    if (!m_accessor.parse(trimmed(text), *db, value, message)) {
      notifyRefused(message);
      return kHostInvalidArg;
    }
    {
      HostPropertyChange change(db);
      for (const OdDbObjectId& id : m_selection) {
        auto read = odOpen<OdDbEntity>(id);
        // Entities that have the value already stay untouched, so that they
        // keep their original bytes in the file.
        if (!read || m_accessor.get(*read) == value) continue;
        auto entity = odOpen<OdDbEntity>(id, OdDb::kForWrite);
        m_accessor.set(*entity, value);
      }
    }
    notifyChanged();
    return kHostOk;
  }

private:
  // Visits the selected entities until two differ; `value` receives the first.
  HostPropState combine(Value* value) const {
    HostPropState state = HostPropState::kNone;
    Value first{};
    for (const OdDbObjectId& id : m_selection) {
      auto entity = odOpen<OdDbEntity>(id);
      if (!entity) continue;
      Value v = m_accessor.get(*entity);
      if (state == HostPropState::kNone) {
        first = v;
        state = HostPropState::kSame;
      } else if (!(v == first)) {
        return HostPropState::kVaries;
      }
    }
    if (value) *value = first;
    return state;
  }

  OdDbDatabase* database() const {
    for (const OdDbObjectId& id : m_selection)
      if (auto entity = odOpen<OdDbEntity>(id)) return entity->database();
    return nullptr;
  }

  const Accessor<Value>& m_accessor;
  OdDbObjectIdArray m_selection;
};

template <class Value>
class GeneralProperty : public IOdProperty {
public:
  explicit GeneralProperty(Accessor<Value> accessor) : m_accessor(accessor) {}
  OdString name() const override { return OdString(m_accessor.name); }
  bool appliesTo(const OdDbObject& object) const override { return object.isKindOf(OdDbEntity::desc()); }
  std::unique_ptr<IXREditableProperty> createEditable(const OdDbObjectIdArray& selection) override {
    OdDbObjectIdArray entities;
    for (const OdDbObjectId& id : selection)
      if (auto object = id.openObject(); object && appliesTo(*object)) entities.push_back(id);
    if (entities.empty()) return nullptr;
    return std::make_unique<GeneralEditable<Value>>(m_accessor, std::move(entities));
  }

private:
  Accessor<Value> m_accessor;
};

// ---- the values

bool parseColor(const std::wstring& text, const OdDbDatabase&, OdCmColor& value, OdString& message) {
  if (hostParseColorText(OdString(text), value)) return true;
  message = OdString::format(
      tr(L"\"%ls\" is no colour: give ByLayer, ByBlock, a colour name, an index from 1 to 255 or R,G,B.").c_str(),
      text.c_str());
  return false;
}

bool parseLayer(const std::wstring& text, const OdDbDatabase& db, OdString& value, OdString& message) {
  value = recordName(db.getLayerTableId(), text);
  if (!text.empty() && !value.isEmpty()) return true;
  message = OdString::format(tr(L"The drawing has no layer \"%ls\".").c_str(), text.c_str());
  return false;
}

bool parseLinetype(const std::wstring& text, const OdDbDatabase& db, OdString& value, OdString& message) {
  // Older drawings may lack the records of the two logical linetypes.
  for (const wchar_t* logical : {L"ByLayer", L"ByBlock"})
    if (sameName(text, logical)) {
      value = recordName(db.getLinetypeTableId(), text);
      if (value.isEmpty()) value = logical;
      return true;
    }
  value = recordName(db.getLinetypeTableId(), text);
  if (!text.empty() && !value.isEmpty()) return true;
  message = OdString::format(tr(L"The drawing has no linetype \"%ls\"; load it first.").c_str(), text.c_str());
  return false;
}

bool parseLineWeight(const std::wstring& text, const OdDbDatabase&, OdDb::LineWeight& value, OdString& message) {
  if (hostParseLineWeightText(OdString(text), value)) return true;
  message = OdString::format(tr(L"\"%ls\" is no standard lineweight.").c_str(), text.c_str());
  return false;
}

bool parseScale(const std::wstring& text, const OdDbDatabase&, double& value, OdString& message) {
  if (auto v = parseNumber(text); v && *v > 0) {
    value = *v;
    return true;
  }
  message = OdString::format(tr(L"The linetype scale must be a number greater than 0, not \"%ls\".").c_str(),
                             text.c_str());
  return false;
}

OdString formatScale(const double& v) {
  char buf[32];
  auto [p, ec] = std::to_chars(buf, buf + sizeof buf, v);
  (void)ec;
  return OdString::fromUtf8(std::string_view(buf, static_cast<size_t>(p - buf)));
}

OdString colorList(const OdDbDatabase&) {
  OdString list = L"ByLayer\tByBlock\t";
  for (int i = 1; i <= 7; ++i) list += namedColor(i).colorNameForDisplay() + L"\t";
  return list;
}

OdString lineWeightList(const OdDbDatabase&) {
  OdString list;
  for (auto w : {OdDb::kLnWtByLayer, OdDb::kLnWtByBlock, OdDb::kLnWtByLwDefault}) list += hostLineWeightText(w) + L"\t";
  for (auto w : kStandardWeights) list += hostLineWeightText(w) + L"\t";
  return list;
}

std::vector<std::unique_ptr<IOdProperty>> makeProperties() {
  std::vector<std::unique_ptr<IOdProperty>> all;
  all.push_back(std::make_unique<GeneralProperty<OdCmColor>>(Accessor<OdCmColor>{
      L"General.Color", HostPropEditKind::kList, [](const OdDbEntity& e) { return e.color(); },
      [](OdDbEntity& e, const OdCmColor& v) { e.setColor(v); }, hostColorText, parseColor, colorList}));
  all.push_back(std::make_unique<GeneralProperty<OdString>>(Accessor<OdString>{
      L"General.Layer", HostPropEditKind::kList, [](const OdDbEntity& e) { return e.layer(); },
      [](OdDbEntity& e, const OdString& v) { e.setLayer(v); }, [](const OdString& v) { return v; }, parseLayer,
      [](const OdDbDatabase& db) { return recordList(db.getLayerTableId(), {}); }}));
  all.push_back(std::make_unique<GeneralProperty<OdString>>(Accessor<OdString>{
      L"General.Linetype", HostPropEditKind::kList, [](const OdDbEntity& e) { return e.linetype(); },
      [](OdDbEntity& e, const OdString& v) { e.setLinetype(v); }, [](const OdString& v) { return v; },
      parseLinetype,
      [](const OdDbDatabase& db) { return recordList(db.getLinetypeTableId(), {L"ByLayer", L"ByBlock"}); }}));
  all.push_back(std::make_unique<GeneralProperty<OdDb::LineWeight>>(Accessor<OdDb::LineWeight>{
      L"General.Lineweight", HostPropEditKind::kList, [](const OdDbEntity& e) { return e.lineWeight(); },
      [](OdDbEntity& e, const OdDb::LineWeight& v) { e.setLineWeight(v); },
      [](const OdDb::LineWeight& v) { return hostLineWeightText(v); }, parseLineWeight, lineWeightList}));
  all.push_back(std::make_unique<GeneralProperty<double>>(Accessor<double>{
      L"General.Linetype scale", HostPropEditKind::kText, [](const OdDbEntity& e) { return e.linetypeScale(); },
      [](OdDbEntity& e, const double& v) { e.setLinetypeScale(v); }, formatScale, parseScale, nullptr}));
  return all;
}

}  // namespace

const std::vector<IOdProperty*>& hostGeneralProperties() {
  // Made on first use, never at static initialisation, and kept to the end:
  // documents opened later get the same objects.
  static const std::vector<std::unique_ptr<IOdProperty>> owned = makeProperties();
  static const std::vector<IOdProperty*> all = [] {
    std::vector<IOdProperty*> v;
    for (const auto& p : owned) v.push_back(p.get());
    return v;
  }();
  return all;
}

void hostRegisterGeneralProperties(IOdPropertyManager* manager) {
  if (!manager) return;
  for (IOdProperty* p : hostGeneralProperties()) manager->addProperty(p);
}

OdString hostEntityTypeName(const OdDbObject& object) {
  struct Kind {
    const OdRxClass* cls;
    const wchar_t* name;
  };
  // Exact classes: a rotated dimension is an aligned one to the class tree, not
  // to the user.
  const Kind kinds[] = {
      {OdDbRotatedDimension::desc(), L"Rotated Dimension"},
      {OdDbAlignedDimension::desc(), L"Aligned Dimension"},
      {OdDb2LineAngularDimension::desc(), L"Angular Dimension"},
      {OdDb3PointAngularDimension::desc(), L"3-Point Angular Dimension"},
      {OdDbArcDimension::desc(), L"Arc Dimension"},
      {OdDbRadialDimension::desc(), L"Radial Dimension"},
      {VxHugeRadius::desc(), L"Jogged Radial Dimension"},
      {OdDbDiametricDimension::desc(), L"Diametric Dimension"},
      {OdDbOrdinateDimension::desc(), L"Ordinate Dimension"},
      {OdDbDimension::desc(), L"Dimension"},
      {OdDbLeader::desc(), L"Leader"},
      {OdDbLine::desc(), L"Line"},
      {OdDbCircle::desc(), L"Circle"},
      {OdDbArc::desc(), L"Arc"},
      {OdDbPolyline::desc(), L"Polyline"},
      {OdDbPoint::desc(), L"Point"},
      {OdDbSolid::desc(), L"Solid"},
      {OdDbText::desc(), L"Text"},
      {OdDbMText::desc(), L"MText"},
      {OdDbBlockReference::desc(), L"Block Reference"},
  };
  for (const Kind& k : kinds)
    if (object.isA() == k.cls) return OdString(k.name);
  return OdString::fromUtf8(object.dxfName());
}

OdString hostColorText(const OdCmColor& color) {
  // A bare number would read as an amount; other indices say what they are.
  if (color.isByACI() && (color.colorIndex() < 1 || color.colorIndex() > 7))
    return OdString::format(L"Index %d", int{color.colorIndex()});
  return color.colorNameForDisplay();
}

bool hostParseColorText(const OdString& text, OdCmColor& color) {
  const std::wstring s = trimmed(text);
  OdCmColor c;
  if (sameName(s, L"ByLayer")) {
    color = OdCmColor(OdCmEntityColor::kByLayer);
    return true;
  }
  if (sameName(s, L"ByBlock")) {
    color = OdCmColor(OdCmEntityColor::kByBlock);
    return true;
  }
  for (int i = 1; i <= 7; ++i)
    if (sameName(s, namedColor(i).colorNameForDisplay().c_str())) {
      color = namedColor(i);
      return true;
    }
  std::wstring number = s;
  if (number.size() > 5 && sameName(number.substr(0, 5), L"Index")) number = trimmed(OdString(number.substr(5)));
  if (auto index = parseInt(number)) {
    if (*index < 1 || *index > 255) return false;
    c.setColorIndex(static_cast<int16_t>(*index));
    color = c;
    return true;
  }
  // R,G,B
  int rgb[3];
  size_t start = 0;
  for (int i = 0; i < 3; ++i) {
    const size_t comma = s.find(L',', start);
    if ((i < 2) != (comma != std::wstring::npos)) return false;
    auto v = parseInt(trimmed(OdString(s.substr(start, comma == std::wstring::npos ? std::wstring::npos : comma - start))));
    if (!v || *v < 0 || *v > 255) return false;
    rgb[i] = *v;
    start = comma + 1;
  }
  c.setRGB(static_cast<uint8_t>(rgb[0]), static_cast<uint8_t>(rgb[1]), static_cast<uint8_t>(rgb[2]));
  color = c;
  return true;
}

OdString hostLineWeightText(OdDb::LineWeight weight) {
  switch (weight) {
    case OdDb::kLnWtByLayer: return L"ByLayer";
    case OdDb::kLnWtByBlock: return L"ByBlock";
    case OdDb::kLnWtByLwDefault: return L"Default";
    default: return OdString::format(L"%d.%02d mm", weight / 100, weight % 100);
  }
}

bool hostParseLineWeightText(const OdString& text, OdDb::LineWeight& weight) {
  std::wstring s = trimmed(text);
  for (auto w : {OdDb::kLnWtByLayer, OdDb::kLnWtByBlock, OdDb::kLnWtByLwDefault})
    if (sameName(s, hostLineWeightText(w).c_str())) {
      weight = w;
      return true;
    }
  if (s.size() > 2 && sameName(s.substr(s.size() - 2), L"mm")) s = trimmed(OdString(s.substr(0, s.size() - 2)));
  auto mm = parseNumber(s);
  if (!mm) return false;
  for (auto w : kStandardWeights)
    if (std::abs(*mm * 100 - static_cast<int>(w)) < 1e-6) {
      weight = w;
      return true;
    }
  return false;
}
