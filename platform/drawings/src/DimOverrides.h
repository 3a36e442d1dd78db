// Per-entity dimension variable overrides: the pairs of the "ACAD" "DSTYLE" group of
// extended data on dimensions and leaders, edited in place so that the pairs we
// do not touch (and their order) stay as other programs wrote them.
#pragma once

#include <optional>
#include <utility>
#include <vector>

#include "drawings/OdDimVarSource.h"

namespace dimoverrides {

// The override of catalogue row `row`, if the entity has one.
std::optional<OdDimVarValue> get(const OdDbObject& entity, std::size_t row);
// Sets (adds or changes) the override.
void set(OdDbObject& entity, std::size_t row, const OdDimVarValue& value);
// Removes the override; the group goes away with its last pair.
void remove(OdDbObject& entity, std::size_t row);
// Rows that have an override, in the order of the pairs.
std::vector<std::size_t> rows(const OdDbObject& entity);
// The overrides with their values, read in one pass (each row once, as get() reads it).
std::vector<std::pair<std::size_t, OdDimVarValue>> values(const OdDbObject& entity);

}  // namespace dimoverrides
