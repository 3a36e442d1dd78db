#include "host/HostDimRegen.h"

#include <string>

#include "drawings/DimGeometry.h"
#include "drawings/LeaderGeometry.h"
#include "drawings/OdDbDimension.h"
#include "host/HostServices.h"
#include "host/IVxContext.h"

OdDbObjectIdArray hostAllDimensions(const OdDbDatabase& db) {
  OdDbObjectIdArray out;
  auto table = odOpen<OdDbBlockTable>(db.getBlockTableId());
  if (!table) return out;
  for (const OdDbObjectId& btrId : table->recordIds()) {
    auto btr = odOpen<OdDbBlockTableRecord>(btrId);
    if (!btr) continue;
    for (const OdDbObjectId& id : btr->entityIds())
      if (odOpen<OdDbDimension>(id) || odOpen<OdDbLeader>(id)) out.push_back(id);
  }
  return out;
}

HostDimRegenCount hostRecomputeDimensions(const OdDbObjectIdArray& ids) {
  HostDimRegenCount n;
  std::size_t done = 0;
  for (const OdDbObjectId& id : ids) {
    // Every few hundred, so that reporting costs nothing next to the work.
    if ((done++ & 255) == 0) hostProgress("DIMREGEN", done - 1, ids.size());
    if (auto l = odOpen<OdDbLeader>(id, OdDb::kForWrite)) {
      switch (recomputeLeader(*l)) {
        case eOk: ++n.leaders; break;
        case eNotImplementedYet: ++n.notYet; break;
        default: ++n.failed;
      }
      continue;
    }
    auto d = odOpen<OdDbDimension>(id, OdDb::kForWrite);
    if (!d) continue;
    switch (recomputeDimBlock(*d)) {
      case eOk: ++n.recomputed; break;
      case eNotImplementedYet: ++n.notYet; break;
      default: ++n.failed;
    }
  }
  hostProgress("DIMREGEN", ids.size(), ids.size());
  return n;
}

void hostDimRegenCommand() {
  IVxContext* ctx = gpVxContext;
  OdDbDatabase* db = hostActiveDatabase();
  if (!ctx) return;
  if (!db) {
    ctx->print(L"No drawing is open.");
    return;
  }
  OdString choice;
  const HostResult r = ctx->getKeyword(L"Dimensions to recompute [%s] <ALL>: ", L"ALL Select", choice);
  if (r == kHostAbort) return;
  OdDbObjectIdArray ids;
  if (r == kHostNone || choice.iCompare(L"ALL") == 0) {
    ids = hostAllDimensions(*db);
  } else if (ctx->selectObjects(L"Select objects: ", ids) != kHostOk) {
    return;
  }
  const HostDimRegenCount n = hostRecomputeDimensions(ids);
  std::string line =
      std::to_string(n.recomputed) + " dimension(s) and " + std::to_string(n.leaders) + " leader(s) recomputed";
  if (n.notYet) line += ", " + std::to_string(n.notYet) + " left as they were";
  if (n.failed) line += ", " + std::to_string(n.failed) + " failed";
  ctx->print(OdString::fromUtf8(line + "."));
}
