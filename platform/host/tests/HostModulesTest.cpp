// Loading modules as the program does, the built dimension style module among
// them: it finds the host's services through get_host_funcptr here.
#include <gtest/gtest.h>

#include <fstream>

#include "host/HostApDocManager.h"
#include "host/HostFuncPtr.h"
#include "host/HostModules.h"
#include "host/HostTrace.h"

extern "C" void* get_host_funcptr(int which) { return hostFuncPtr(which); }

namespace {

struct ModulesTest : ::testing::Test {
  void SetUp() override {
    hostTraceSetSink([this](const std::wstring& line) { trace.push_back(line); });
    hostSetDocManager(&docs);
  }
  void TearDown() override {
    hostSetDocManager(nullptr);
    hostTraceSetSink(nullptr);
  }
  size_t traced(const std::wstring& start, const std::wstring& part) const {
    size_t n = 0;
    for (const auto& l : trace) n += l.rfind(start, 0) == 0 && l.find(part) != std::wstring::npos;
    return n;
  }

  HostApDocManager docs;
  std::vector<std::wstring> trace;
  std::vector<std::string> reports;
  std::function<void(const std::string&)> report = [this](const std::string& s) { reports.push_back(s); };
};

}  // namespace

TEST_F(ModulesTest, ModulesThatCannotBeUsedAreReportedAndSkipped) {
  const std::string dir = ::testing::TempDir();
  std::ofstream(dir + "vex_text.so") << "not a library\n";
  HostModules modules(report);
  EXPECT_FALSE(modules.load(dir + "vex_missing.so"));
  EXPECT_FALSE(modules.load(dir + "vex_text.so"));
  EXPECT_FALSE(modules.load(NO_ENTRY_LIBRARY_PATH));
  EXPECT_EQ(modules.size(), 0u);
  EXPECT_EQ(reports, (std::vector<std::string>{
                         "Module " + dir + "vex_missing.so not loaded: no such file.",
                         "Module " + dir + "vex_text.so not loaded: not a shared library.",
                         std::string("Module ") + NO_ENTRY_LIBRARY_PATH + " not loaded: it has no VEXInit.",
                     }));
}

TEST_F(ModulesTest, DimensionStyleModuleAttachesOneReactorForAsLongAsItIsLoaded) {
  const std::wstring noPropManager = L"RETERRIF3VOID marco, expr: !pDoc->getPropManager(&pPM) ";
  for (int round = 0; round < 2; ++round) {
    SCOPED_TRACE(round);
    HostModules modules(report);
    ASSERT_TRUE(modules.load(DDS_MODULE_PATH));
    EXPECT_FALSE(modules.load(DDS_MODULE_PATH));  // once only
    EXPECT_EQ(docs.reactorCount(), 1u);
    // A document opened now reaches the reactor, coming and going: one without a
    // property manager makes it log each time.
    trace.clear();
    HostApDocument* bare = docs.addDocument(std::make_unique<HostApDocument>(OdDbDatabase::createNew(), "", false));
    EXPECT_EQ(traced(L"ERROR(80004005) '", noPropManager + L" [dds:"), 1u);
    docs.closeDocument(bare);
    EXPECT_EQ(traced(L"ERROR(80004005) '", noPropManager + L" [dds:"), 2u);
    HostApDocument* doc = docs.addDocument(std::make_unique<HostApDocument>(OdDbDatabase::createNew()));
    docs.closeDocument(doc);
    EXPECT_EQ(trace.size(), 2u);
    modules.unloadAll();
    EXPECT_EQ(docs.reactorCount(), 0u);
  }
  EXPECT_EQ(reports, (std::vector<std::string>(2, std::string("Module ") + DDS_MODULE_PATH +
                                                      " not loaded: it is loaded already.")));
}

TEST_F(ModulesTest, WithoutADocumentManagerTheModuleLogsAndReportsFailure) {
  hostSetDocManager(nullptr);
  HostModules modules(report);
  EXPECT_TRUE(modules.load(DDS_MODULE_PATH));  // loaded all the same: it may hold registrations
  EXPECT_EQ(reports, (std::vector<std::string>{std::string("Module ") + DDS_MODULE_PATH +
                                               ": VEXInit returned 0x80004005."}));
  EXPECT_EQ(traced(L"ERROR(80004005) 'RETERRIF marco, expr: !pDocManager ", L"[dds:"), 1u);
  modules.unloadAll();
  EXPECT_EQ(traced(L"ERROR(80004005) 'RETERRIF3VOID marco, expr: !pDocManager ", L"[dds:"), 1u);
}
