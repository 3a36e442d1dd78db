// The dimension variables of one dimension as the geometry reads them: the
// dimension's style is looked up once and its overrides listed once, instead of
// both again for every variable (each lookup decodes the style name and the
// extended data of the entity).
#pragma once

#include <algorithm>
#include <bitset>
#include <cctype>
#include <cstddef>

#include "drawings/DimText.h"
#include "drawings/DimVarDefaults.h"
#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbDimStyleTableRecord.h"
#include "drawings/OdDbDimension.h"

namespace dimgeom {

// A style's value of variable `row`, read from the style once while neither the
// style nor its drawing's header changes (built-in values depend on the drawing),
// so that the dimensions of one style do not each decode it again.
const OdDimVarValue& styleValue(const OdDbDimStyleTableRecord& style, std::size_t row);

class DimVarSnapshot : public OdDimVarSource {
public:
  explicit DimVarSnapshot(const OdDbDimension& dim)
      : m_dim(dim), m_style(odOpen<OdDbDimStyleTableRecord>(dim.dimensionStyle())) {
    for (std::size_t row : dim.dimVarOverrides())
      if (row < m_overridden.size()) m_overridden.set(row);
  }

  OdDimVarValue dimVar(std::size_t row) const override {
    // An override, or a drawing without the style: the dimension's own way.
    if (!m_style || row >= m_overridden.size() || m_overridden.test(row)) return m_dim.dimVar(row);
    return styleValue(*m_style, row);
  }
  void setDimVar(std::size_t, const OdDimVarValue&) override { throw OdError(eNotApplicable, "read only"); }

private:
  const OdDbDimension& m_dim;
  OdSmartPtr<OdDbDimStyleTableRecord> m_style;
  std::bitset<kDimVarDefaults.size()> m_overridden;
};

// The measurement text, as odDimensionText() makes it, with the variables read
// from the snapshot.
inline OdString dimensionText(const OdDbDimension& dim, const DimVarSnapshot& vars, double measurement) {
  DimTextInput in;
  in.kind = odDimTextKind(dim);
  in.measurement = measurement;
  in.userText = dim.dimensionText();
  in.vars = &vars;
  if (const OdDbDatabase* db = dim.database()) in.version = db->version();
  // The owner's name as the file spells it: enough to tell a paper space layout.
  if (auto owner = odOpen<OdDbBlockTableRecord>(dim.ownerId())) {
    const std::string name = owner->firstValue(2).value_or("");
    in.inPaperSpace = name.size() >= 12 && std::equal(name.begin(), name.begin() + 12, "*PAPER_SPACE",
                                                      [](char a, char b) { return std::toupper(static_cast<unsigned char>(a)) == b; });
  }
  return odFormatDimText(in);
}

}  // namespace dimgeom
