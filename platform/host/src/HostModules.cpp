#include "host/HostModules.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "host/HostCommands.h"
#include "host/HostTranslation.h"

namespace {

const void* g_loading = nullptr;

// Marks the module whose entry point runs, for as long as it runs.
struct Loading {
  explicit Loading(const void* handle) { g_loading = handle; }
  ~Loading() { g_loading = nullptr; }
};

std::string hex(int32_t status) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "0x%08X", static_cast<unsigned>(status));
  return buf;
}

bool isElf(const std::string& path) {
  std::ifstream f(path, std::ios::binary);
  char magic[4] = {};
  return f.read(magic, 4) && magic[0] == 0x7f && magic[1] == 'E' && magic[2] == 'L' && magic[3] == 'F';
}

}  // namespace

const void* hostLoadingModule() { return g_loading; }

HostModules::HostModules(std::function<void(const std::string&)> report) : m_report(std::move(report)) {}

HostModules::~HostModules() { unloadAll(); }

bool HostModules::load(const std::string& path) {
  auto fail = [&](const std::string& why) {
    if (m_report) m_report("Module " + path + " not loaded: " + why + ".");
    return false;
  };
  std::error_code ec;
  if (!std::filesystem::exists(path, ec)) return fail("no such file");
  // Checked before loading, as the loader's own words for it depend on the system.
  if (!std::filesystem::is_regular_file(path, ec) || !isElf(path)) return fail("not a shared library");
  void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!handle) {
    const char* err = dlerror();
    return fail(err ? err : "the loader refused it");
  }
  if (std::any_of(m_modules.begin(), m_modules.end(), [handle](const Module& m) { return m.handle == handle; })) {
    dlclose(handle);
    return fail("it is loaded already");
  }
  using Init = int32_t (*)();
  auto init = reinterpret_cast<Init>(dlsym(handle, "VEXInit"));
  if (!init) {
    dlclose(handle);
    return fail("it has no VEXInit");
  }
  m_modules.push_back(Module{path, handle});
  int32_t status = 0;
  try {
    Loading loading(handle);
    status = init();
  } catch (...) {
    status = static_cast<int32_t>(0x80004005u);
  }
  if (status < 0 && m_report) m_report("Module " + path + ": VEXInit returned " + hex(status) + ".");
  return true;
}

void HostModules::loadFolder(const std::string& folder) {
  std::error_code ec;
  std::vector<std::string> paths;
  for (const auto& entry : std::filesystem::directory_iterator(folder, ec))
    if (entry.path().extension() == ".so") paths.push_back(entry.path().string());
  std::sort(paths.begin(), paths.end());
  for (const auto& p : paths) load(p);
}

void HostModules::unloadAll() {
  while (!m_modules.empty()) {
    const Module m = m_modules.back();
    m_modules.pop_back();
    using UnInit = void (*)();
    if (auto uninit = reinterpret_cast<UnInit>(dlsym(m.handle, "VEXUnInit"))) {
      Loading loading(m.handle);
      try {
        uninit();
      } catch (...) {
        if (m_report) m_report("Module " + m.path + ": VEXUnInit failed.");
      }
    }
    // Nothing of the module may outlive its code.
    hostDropModuleCommands(m.handle);
    hostDropStringTables(m.handle);
    dlclose(m.handle);
  }
}
