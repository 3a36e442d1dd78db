#include "drawings/OdDimVarOverrides.h"

#include "DimOverrides.h"
#include "DimVarStorage.h"
#include "drawings/OdDbDimStyleTableRecord.h"

OdDimVarValue OdDimVarOverrides::dimVar(std::size_t row) const {
  if (auto v = dimoverrides::get(overridesHolder(), row)) return *v;
  if (auto style = odOpen<OdDbDimStyleTableRecord>(overridesStyle())) return style->dimVar(row);
  return dimvarstore::builtIn(kDimVarDefaults[row], overridesHolder().database());
}

void OdDimVarOverrides::setDimVar(std::size_t row, const OdDimVarValue& value) {
  overridesHolder().assertWriteEnabled();
  dimoverrides::set(overridesHolder(), row, value);
}

bool OdDimVarOverrides::hasDimVarOverride(std::size_t row) const {
  return dimoverrides::get(overridesHolder(), row).has_value();
}

void OdDimVarOverrides::removeDimVarOverride(std::size_t row) {
  overridesHolder().assertWriteEnabled();
  dimoverrides::remove(overridesHolder(), row);
}

std::vector<std::size_t> OdDimVarOverrides::dimVarOverrides() const { return dimoverrides::rows(overridesHolder()); }
