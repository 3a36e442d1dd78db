// Keyword prompts and the console session, driven through streams as a user would.
#include <gtest/gtest.h>

#include <sstream>

#include "host/HostCommandLine.h"
#include "host/HostSession.h"

TEST(HostCommandLine, KeywordsMatchInFullByCapitalsOrGlobally) {
  const std::vector<std::string> kw = {"ANnotative", "Save", "Restore", "STatus", "Variables", "Apply", "?", "R2018"};
  struct Case {
    const char* typed;
    const char* expected;  // nullptr: no keyword
  } cases[] = {
      {"an", "ANnotative"}, {"ANNO", "ANnotative"}, {"annotative", "ANnotative"}, {"a", "Apply"},
      {"s", "Save"},        {"st", "STatus"},       {"stat", "STatus"},           {"_status", "STatus"},
      {"?", "?"},           {"r2018", "R2018"},     {"_r2018", "R2018"},          {"r20", nullptr},
      {"sx", nullptr},      {"", nullptr},          {"annotativex", nullptr},     {"_", nullptr},
  };
  for (const auto& c : cases) {
    auto m = HostCommandLine::matchKeyword(c.typed, kw);
    if (c.expected) {
      ASSERT_TRUE(m.has_value()) << c.typed;
      EXPECT_EQ(*m, c.expected) << c.typed;
    } else {
      EXPECT_FALSE(m.has_value()) << c.typed << " matched " << *m;
    }
  }
}

TEST(HostCommandLine, PromptsRepeatTakeDefaultsAndCancel) {
  std::istringstream in("Feet\nm\n\n\x1b\n");
  std::ostringstream out;
  HostCommandLine cl(in, out, false);
  EXPECT_EQ(cl.getKeywordOrText("Units", {"Imperial", "Metric"}, "Imperial", false), "Metric");
  EXPECT_NE(out.str().find("Units [Imperial/Metric] <Imperial>: "), std::string::npos);
  EXPECT_NE(out.str().find("Invalid option keyword."), std::string::npos);
  EXPECT_TRUE(cl.getYesNo("Continue?", true));  // Enter takes the default
  try {
    cl.getLine("Name: ");
    ADD_FAILURE() << "Escape must cancel";
  } catch (const HostCancel& c) {
    EXPECT_FALSE(c.endOfInput);
  }
  try {
    cl.getLine("Name: ");
    ADD_FAILURE() << "the end of input must cancel";
  } catch (const HostCancel& c) {
    EXPECT_TRUE(c.endOfInput);
  }
}

TEST(HostSession, SaveAsRemembersVersionAndFormatForSave) {
  std::string dir = ::testing::TempDir();
  std::istringstream in("NEW\nR2004\nMetric\nSAVEAS\nBinary\nR2010\n" + dir + "vex_s1.dxf\nSAVE\nQUIT\n");
  std::ostringstream out;
  HostCommandLine cl(in, out, false);
  HostSession session(cl);
  session.run();
  EXPECT_FALSE(session.hadFileError()) << out.str();
  OdDbDatabasePtr db = OdDbDatabase::readDxfFile(dir + "vex_s1.dxf");
  EXPECT_EQ(db->version(), DxfVersion::R2010);
  EXPECT_EQ(db->format(), DxfFormat::Binary);
  EXPECT_EQ(db->getMEASUREMENT(), 1);
  // SAVE wrote the same version and format again (the last line says it saved).
  EXPECT_NE(out.str().rfind("Saved " + dir + "vex_s1.dxf."), out.str().find("Saved " + dir + "vex_s1.dxf."));
}
