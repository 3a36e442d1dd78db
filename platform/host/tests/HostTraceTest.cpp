#include "host/HostTrace.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <vector>

namespace {

class Trace : public ::testing::Test {
protected:
  void SetUp() override { hostTraceSetSink([this](const std::wstring& l) { lines.push_back(l); }); }
  void TearDown() override {
    hostTraceSetSink(nullptr);
    hostTraceSetFile(nullptr);
  }
  std::vector<std::wstring> lines;
};

std::string readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

TEST_F(Trace, WriterFormsAreExact) {
  hostTraceError(L"Unknown exception");
  hostTraceError(0x80004005u, L"Cloning error");
  hostTraceWarning(L"100% done %s");  // a text, never a format
  hostTraceWarning(0x1u, nullptr);
  hostTraceError(0xABCu, L"Стиль");
  const std::vector<std::wstring> want = {
      L"ERROR 'Unknown exception'", L"ERROR(80004005) 'Cloning error'", L"WARNING '100% done %s'",
      L"WARNING(1) ''", L"ERROR(ABC) 'Стиль'",
  };
  EXPECT_EQ(lines, want);
}

TEST_F(Trace, FileGetsAppendedUtf8LinesOnlyWhileOpen) {
  const std::string path = ::testing::TempDir() + "hosttrace_test.log";
  std::remove(path.c_str());
  ASSERT_TRUE(hostTraceSetFile(path.c_str()));
  hostTrace(L"Dimension Style %s", L"Стандарт");
  hostTraceError(0x80070057u, L"Ё");
  ASSERT_TRUE(hostTraceSetFile(path.c_str()));  // reopening keeps what is there
  hostTrace(L"%ls = %.4f", L"DIMASZ", 0.18);
  ASSERT_TRUE(hostTraceSetFile(""));
  hostTrace(L"not in the file");
  EXPECT_EQ(readFile(path), "Dimension Style Стандарт\nERROR(80070057) 'Ё'\nDIMASZ = 0.1800\n");
  EXPECT_EQ(lines.size(), 4u);  // the sink sees every line regardless
  std::remove(path.c_str());
  EXPECT_FALSE(hostTraceSetFile("/nonexistent-dir/trace.log"));
}

// Guards against delivering to the sink under the trace lock (a deadlock).
TEST_F(Trace, SinkMayTraceItself) {
  hostTraceSetSink([this](const std::wstring& l) {
    lines.push_back(l);
    if (lines.size() == 1) hostTrace(L"echo %s", l.c_str());
  });
  hostTraceWarning(L"w");
  EXPECT_EQ(lines, (std::vector<std::wstring>{L"WARNING 'w'", L"echo WARNING 'w'"}));
}

TEST_F(Trace, UnformattableLineFallsBackToItsFormat) {
  // Invalid UTF-8 as a narrow argument cannot be converted in the C locale.
  hostTrace(L"bad %S here", "\xFF\xFE");
  hostTrace(L"lone %-");
  EXPECT_EQ(lines, (std::vector<std::wstring>{L"bad %S here", L"lone %-"}));
}

}  // namespace
