#include "host/HostSysVars.h"

#include "drawings/OdDbSymbolTable.h"
#include "host/HostServices.h"

namespace {

int g_commandDepth = 0;
int g_lwunits = 1;

enum class Var { Unknown, DimStyle, CmdActive, CannoScale, LwUnits, Measurement };

Var varOf(const OdString& name) {
  static const struct {
    const wchar_t* name;
    Var var;
  } vars[] = {{L"DIMSTYLE", Var::DimStyle},
              {L"CMDACTIVE", Var::CmdActive},
              {L"CANNOSCALE", Var::CannoScale},
              {L"LWUNITS", Var::LwUnits},
              {L"MEASUREMENT", Var::Measurement}};
  for (const auto& v : vars)
    if (name.iCompare(v.name) == 0) return v.var;
  return Var::Unknown;
}

bool isDrawingVar(Var v) { return v == Var::DimStyle || v == Var::CannoScale || v == Var::Measurement; }

}  // namespace

HostResult hostGetVar(const OdString& name, HostVarValue& value) {
  const Var var = varOf(name);
  if (var == Var::Unknown) return kHostInvalidArg;
  OdDbDatabase* db = hostActiveDatabase();
  if (isDrawingVar(var) && !db) return kHostFail;
  switch (var) {
    case Var::DimStyle: {
      auto style = odOpen<OdDbSymbolTableRecord>(db->dimstyle());
      value = style ? style->getName() : OdString();
      return kHostOk;
    }
    case Var::CmdActive: value = g_commandDepth > 0 ? 1 : 0; return kHostOk;
    case Var::CannoScale: value = db->getCANNOSCALE(); return kHostOk;
    case Var::LwUnits: value = g_lwunits; return kHostOk;
    case Var::Measurement: value = db->getMEASUREMENT(); return kHostOk;
    case Var::Unknown: break;
  }
  return kHostInvalidArg;
}

HostResult hostSetVar(const OdString& name, const HostVarValue& value) {
  const Var var = varOf(name);
  if (var == Var::Unknown) return kHostInvalidArg;
  if (var == Var::CmdActive) return kHostFail;
  const bool isText = var == Var::DimStyle || var == Var::CannoScale;
  if (isText != std::holds_alternative<OdString>(value)) return kHostInvalidArg;
  OdDbDatabase* db = hostActiveDatabase();
  if (isDrawingVar(var) && !db) return kHostFail;
  switch (var) {
    case Var::DimStyle: {
      auto styles = odOpen<OdDbSymbolTable>(db->getDimStyleTableId());
      const OdDbObjectId id = styles ? styles->getAt(std::get<OdString>(value)) : OdDbObjectId();
      if (id.isNull()) return kHostInvalidArg;
      db->setDimstyle(id);
      return kHostOk;
    }
    case Var::CannoScale:
      if (std::get<OdString>(value).isEmpty()) return kHostInvalidArg;
      db->setCANNOSCALE(std::get<OdString>(value));
      return kHostOk;
    case Var::LwUnits:
    case Var::Measurement: {
      const int v = std::get<int>(value);
      if (v != 0 && v != 1) return kHostInvalidArg;
      if (var == Var::LwUnits) g_lwunits = v;
      else db->setHeaderInt("$MEASUREMENT", 70, v);
      return kHostOk;
    }
    case Var::CmdActive:
    case Var::Unknown: break;
  }
  return kHostInvalidArg;
}

void hostCommandStarted() { ++g_commandDepth; }
void hostCommandEnded() {
  if (g_commandDepth > 0) --g_commandDepth;
}
