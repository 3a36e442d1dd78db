// Dimension styles: the records of the DIMSTYLE table with their 78 variables typed.
#pragma once

#include <map>

#include "drawings/OdDbSymbolTable.h"
#include "drawings/OdDimVarSource.h"

class OdDbDimStyleTableRecord : public OdDbSymbolTableRecord, public OdDimVarSource {
  ODRX_DECLARE_MEMBERS(OdDbDimStyleTableRecord)

public:
  // Absent codes mean the built-in (imperial) values; variables newer than the file's
  // version live in extended data (R2000/R2004) or, where the version has no place
  // for them at all, only for the session.
  OdDimVarValue dimVar(std::size_t row) const override;
  void setDimVar(std::size_t row, const OdDimVarValue& value) override;

  // Annotative styles carry the AcadAnnotative extended data with its flag on.
  bool isAnnotative() const;
  void setAnnotative(bool annotative);

private:
  long findVarTag(const DimVarDefault& row, int code) const;
  std::optional<std::string> xdataValue(const DimVarDefault& row) const;
  void setXdataValue(const DimVarDefault& row, const std::string& text);

  std::map<std::size_t, OdDimVarValue> m_sessionOnly;
};
using OdDbDimStyleTableRecordPtr = OdSmartPtr<OdDbDimStyleTableRecord>;

class OdDbDimStyleTable : public OdDbSymbolTable {
  ODRX_DECLARE_MEMBERS(OdDbDimStyleTable)
  const OdRxClass* recordClass() const override { return OdDbDimStyleTableRecord::desc(); }
};
using OdDbDimStyleTablePtr = OdSmartPtr<OdDbDimStyleTable>;
