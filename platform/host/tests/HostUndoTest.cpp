// UNDO and REDO on the command line: each command that may change the drawing is
// one step, named as the command; file commands and commands that change nothing
// leave none.
#include <gtest/gtest.h>

#include <sstream>

#include "host/HostCommandLine.h"
#include "host/HostSession.h"

TEST(HostSession, EachCommandIsOneUndoStep) {
  std::istringstream in("NEW\nIMP\nPAINT\nLOOK\nFAIL\nUNDO\n\nUNDO\nx\n5\nREDO\nREDO\nREDO\nQUIT\n");
  std::ostringstream out;
  HostCommandLine cl(in, out, true);
  HostSession session(cl);
  auto db = [&] { return session.activeDocument()->database(); };
  session.addCommand("PAINT", [&] { db()->setHeaderInt("$USERI1", 70, 1); });
  session.addCommand("LOOK", [&] { db()->headerInt("$USERI1", 0); });
  // A command that fails half-way still leaves one step that undoes what it did.
  session.addCommand("FAIL", [&] {
    db()->setHeaderInt("$USERI1", 70, 99);
    throw OdError(eInvalidInput, "bad");
  });
  session.run();
  const std::string transcript = out.str();
  const std::string after = "New Imperial drawing (R2018).\n";
  ASSERT_NE(transcript.find(after), std::string::npos);
  EXPECT_EQ(transcript.substr(transcript.find(after) + after.size()),
            "Command: PAINT\n"
            "Command: LOOK\n"
            "Command: FAIL\n"
            "Error: bad\n"
            "Command: UNDO\n"
            "Enter the number of operations to undo <1>: \n"
            "UNDO: FAIL\n"
            "Command: UNDO\n"
            "Enter the number of operations to undo <1>: x\n"
            "Requires a positive integer.\n"
            "Enter the number of operations to undo <1>: 5\n"
            "UNDO: PAINT\n"
            "Everything has been undone.\n"
            "Command: REDO\n"
            "REDO: PAINT\n"
            "Command: REDO\n"
            "REDO: FAIL\n"
            "Command: REDO\n"
            "Nothing to redo.\n"
            "Command: QUIT\n");
  EXPECT_EQ(db()->headerInt("$USERI1", 0), 99);
}
