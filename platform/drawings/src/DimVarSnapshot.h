// The dimension variables of one dimension as the geometry reads them: the
// dimension's style is looked up once and its overrides listed once, instead of
// both again for every variable (each lookup decodes the style name and the
// extended data of the entity).
#pragma once

#include <array>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

#include "DimOverrides.h"
#include "drawings/DimText.h"
#include "drawings/DimVarDefaults.h"
#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbDimStyleTableRecord.h"
#include "drawings/OdDbDimension.h"

namespace dimgeom {

// A style's values of every variable, read from the style once while neither the
// style nor its drawing's header changes (built-in values depend on the drawing),
// so that the dimensions of one style do not each decode it again.
using StyleValues = std::array<OdDimVarValue, kDimVarDefaults.size()>;
const StyleValues& styleValues(const OdDbDimStyleTableRecord& style);

class DimVarSnapshot : public OdDimVarSource {
public:
  explicit DimVarSnapshot(const OdDbDimension& dim) : m_dim(dim) {
    if (auto style = odOpen<OdDbDimStyleTableRecord>(dim.dimensionStyle())) m_style = &styleValues(*style);
    // The overrides are decoded here once; each lookup would read the extended data again.
    m_overrides = dimoverrides::values(dim);
  }

  OdDimVarValue dimVar(std::size_t row) const override {
    if (const OdDimVarValue* kept = dimVarIfKept(row)) return *kept;
    return m_dim.dimVar(row);  // a drawing without the style: the dimension's own way
  }
  const OdDimVarValue* dimVarIfKept(std::size_t row) const override {
    for (const auto& [r, value] : m_overrides)
      if (r == row) return &value;
    return m_style && row < m_style->size() ? &(*m_style)[row] : nullptr;
  }
  void setDimVar(std::size_t, const OdDimVarValue&) override { throw OdError(eNotApplicable, "read only"); }

private:
  const OdDbDimension& m_dim;
  const StyleValues* m_style = nullptr;
  std::vector<std::pair<std::size_t, OdDimVarValue>> m_overrides;
};

// Whether the dimension lies in a paper space layout, told by its owner's name as
// the file spells it; remembered for the last owner (dimensions come by owner).
inline bool isInPaperSpace(const OdDbDimension& dim) {
  static thread_local OdDbObjectId lastOwner;
  static thread_local uint64_t lastRevision = 0;
  static thread_local bool lastAnswer = false;
  auto owner = odOpen<OdDbBlockTableRecord>(dim.ownerId());
  if (!owner) return false;
  if (owner->objectId() == lastOwner && owner->revision() == lastRevision) return lastAnswer;
  const std::string name = owner->firstValue(2).value_or("");
  lastOwner = owner->objectId();
  lastRevision = owner->revision();
  lastAnswer = dxfEqualNoCase(std::string_view(name).substr(0, 12), "*Paper_Space");
  return lastAnswer;
}

// The measurement text, as odDimensionText() makes it, with the variables read
// from the snapshot.
inline OdString dimensionText(const OdDbDimension& dim, const DimVarSnapshot& vars, double measurement) {
  DimTextInput in;
  in.kind = odDimTextKind(dim);
  in.measurement = measurement;
  in.userText = dim.dimensionText();
  in.vars = &vars;
  if (const OdDbDatabase* db = dim.database()) in.version = db->version();
  in.inPaperSpace = isInPaperSpace(dim);
  return odFormatDimText(in);
}

}  // namespace dimgeom
