// Entities whose dimension variables are their style's values unless the entity
// overrides them ("ACAD" "DSTYLE" extended data): dimensions and leaders.
#pragma once

#include <vector>

#include "drawings/OdDimVarSource.h"

class OdDbObject;

class OdDimVarOverrides : public OdDimVarSource {
public:
  // The override if there is one, else the style's value.
  OdDimVarValue dimVar(std::size_t row) const override;
  // Sets the override.
  void setDimVar(std::size_t row, const OdDimVarValue& value) override;
  bool hasDimVarOverride(std::size_t row) const;
  void removeDimVarOverride(std::size_t row);
  // Rows with an override, in the order the entity stores them.
  std::vector<std::size_t> dimVarOverrides() const;

protected:
  // The entity that holds the overrides, and its style.
  virtual const OdDbObject& overridesHolder() const = 0;
  virtual OdDbObject& overridesHolder() = 0;
  virtual OdDbObjectId overridesStyle() const = 0;
};
