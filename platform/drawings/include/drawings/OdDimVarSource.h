// Holders of a full set of dimension variables (a dimension style record, the
// drawing's current settings, a dimension with its overrides) share one generic
// access by catalogue row; the typed members (dimasz(), setDimasz(), ...) are
// generated over it from the one list of variables.
#pragma once

#include <cstddef>
#include <cstdint>

#include "drawings/DimVarDefaults.h"
#include "drawings/OdCmColor.h"
#include "drawings/OdDbDimVars.h"
#include "drawings/OdDbEntity.h"
#include "drawings/OdDbObjectId.h"

// A value of any dimension variable; the member that counts follows the row's kind.
struct OdDimVarValue {
  double number = 0.0;  // Bool, integers, Double, LineWeight
  OdString text;        // String
  OdCmColor color;      // Color
  OdDbObjectId id;      // Block, Linetype, TextStyle (null: closed filled arrow / ByBlock linetype / none)

  // Equal as the variable's kind compares them (doubles exactly).
  static bool same(DimVarKind kind, const OdDimVarValue& a, const OdDimVarValue& b);
};

template <class T>
T odDimVarAs(const OdDimVarValue& v) {
  if constexpr (std::is_same_v<T, OdString>) return v.text;
  else if constexpr (std::is_same_v<T, OdCmColor>) return v.color;
  else if constexpr (std::is_same_v<T, OdDbObjectId>) return v.id;
  else if constexpr (std::is_same_v<T, bool>) return v.number != 0.0;
  else return static_cast<T>(v.number);
}

template <class T>
OdDimVarValue odDimVarFrom(const T& x) {
  OdDimVarValue v;
  if constexpr (std::is_same_v<T, OdString>) v.text = x;
  else if constexpr (std::is_same_v<T, OdCmColor>) v.color = x;
  else if constexpr (std::is_same_v<T, OdDbObjectId>) v.id = x;
  else v.number = static_cast<double>(x);
  return v;
}

class OdDimVarSource {
public:
  virtual ~OdDimVarSource() = default;
  // `row` indexes kDimVarDefaults (the first 78 rows are the catalogue).
  virtual OdDimVarValue dimVar(std::size_t row) const = 0;
  virtual void setDimVar(std::size_t row, const OdDimVarValue& value) = 0;
  // The value where the source keeps it ready (null: ask dimVar): read without a
  // copy by the named getters, which geometry calls many times per dimension.
  virtual const OdDimVarValue* dimVarIfKept(std::size_t) const { return nullptr; }

#define OD_DIMVAR_MEMBER(index, get, set, T)                                          \
  T get() const {                                                                     \
    if (const OdDimVarValue* kept = dimVarIfKept(index)) return odDimVarAs<T>(*kept); \
    return odDimVarAs<T>(dimVar(index));                                              \
  }                                                                                   \
  void set(const T& v) { setDimVar(index, odDimVarFrom<T>(v)); }
  OD_DIMVARS(OD_DIMVAR_MEMBER)
#undef OD_DIMVAR_MEMBER
};
