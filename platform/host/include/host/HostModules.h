// Modules: shared libraries that the host loads at start-up (dlopen), starts
// with their VEXInit and ends with VEXUnInit before unloading them at exit.
#pragma once

#include <functional>
#include <string>
#include <vector>

class HostModules {
public:
  // `report` receives one line for each module that cannot be used.
  explicit HostModules(std::function<void(const std::string&)> report);
  HostModules(const HostModules&) = delete;
  HostModules& operator=(const HostModules&) = delete;
  ~HostModules();

  // False, reported, when the file is missing, not a shared library, or has no
  // VEXInit; the host carries on without it. A VEXInit that returns a failure
  // is reported and the module stays loaded, as it may have registered things.
  bool load(const std::string& path);
  // Every "*.so" of the folder in name order; a missing folder holds none.
  void loadFolder(const std::string& folder);
  // Last loaded first: VEXUnInit, then the host drops the module's commands and
  // string table, then unloads it.
  void unloadAll();
  size_t size() const { return m_modules.size(); }

private:
  struct Module {
    std::string path;
    void* handle;
  };
  std::function<void(const std::string&)> m_report;
  std::vector<Module> m_modules;
};

// The dlopen handle of the module whose VEXInit or VEXUnInit is running; what
// it registers then is its own. Null otherwise.
const void* hostLoadingModule();
