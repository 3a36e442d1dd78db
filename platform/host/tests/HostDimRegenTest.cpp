// DIMREGEN: the dimensions it reaches (model space, paper space, block
// definitions; only the chosen ones when selecting), its closing count, and its
// one undo step.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "drawings/OdDbBlockBuilder.h"
#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbDimension.h"
#include "host/HostCommandLine.h"
#include "host/HostSession.h"

namespace {

OdDbObjectId addDim(OdDbDatabase& db, const OdDbObjectId& owner, double x) {
  auto space = odOpen<OdDbBlockTableRecord>(owner, OdDb::kForWrite);
  auto d = OdDbRotatedDimension::createFor(db);
  space->appendOdDbEntity(d.get());
  d->setXLine1Point({x, 0, 0});
  d->setXLine2Point({x + 10, 0, 0});
  d->setDimLinePoint({x, 5, 0});
  return d->objectId();
}

// Whether the dimension shows a block with entities.
char drawn(const OdDbObjectId& dim) {
  auto d = odOpen<OdDbDimension>(dim);
  if (!d) return '?';
  auto b = odOpen<OdDbBlockTableRecord>(d->dimBlockId());
  return b && !b->entityIds().empty() ? 'y' : 'n';
}

}  // namespace

TEST(HostDimRegen, ReachesEveryDimensionOrTheSelectedOnesInOneUndoStep) {
  // ALL by default; undone; then only the last entity of model space (its dimension).
  std::istringstream in(
      "NEW\n\nMAKE\nDIMREGEN\n\nSTATE\nUNDO\n\nSTATE\n"
      "DIMREGEN\nS\nLast\n\nSTATE\nQUIT\n");
  std::ostringstream out;
  HostCommandLine cl(in, out, true);
  HostSession session(cl);
  OdDbObjectId model, paper, inBlock;
  std::vector<std::string> states;
  session.addCommand("MAKE", [&] {
    OdDbDatabase& db = *session.activeDocument()->database();
    auto line = OdDbLine::createFor(db);
    odOpen<OdDbBlockTableRecord>(db.getModelSpaceId(), OdDb::kForWrite)->appendOdDbEntity(line.get());
    paper = addDim(db, db.getPaperSpaceId(), 20);
    inBlock = addDim(db, odCreateBlock(db, L"PART"), 40);
    model = addDim(db, db.getModelSpaceId(), 0);
  });
  session.addCommand("STATE", [&] { states.push_back({drawn(model), drawn(paper), drawn(inBlock)}); });
  session.run();

  const std::string t = out.str();
  EXPECT_NE(t.find("Dimensions to recompute [ALL/Select] <ALL>: \n"
                   "3 dimension(s) and 0 leader(s) recomputed.\n"),
            std::string::npos)
      << t;
  EXPECT_NE(t.find("UNDO: DIMREGEN\n"), std::string::npos) << t;
  EXPECT_NE(t.find("Select objects: Last\n1 found\nSelect objects: \n"
                   "1 dimension(s) and 0 leader(s) recomputed.\n"),
            std::string::npos)
      << t;
  EXPECT_EQ(states, (std::vector<std::string>{"yyy", "nnn", "ynn"}));
}
