// vexhost: the host program. For now the command line on a terminal (--console).
// It loads the modules of the folder "modules" beside it, and those named with
// --module, before it opens the drawings named on the command line.
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "host/HostCommandLine.h"
#include "host/HostFuncPtr.h"
#include "host/HostModules.h"
#include "host/HostServices.h"
#include "host/HostSession.h"
#include "host/HostSvg.h"
#include "host/HostTrace.h"

extern "C" void* get_host_funcptr(int which) { return hostFuncPtr(which); }

static int usage() {
  std::cerr << "usage: vexhost --console [--script FILE] [--lang en|ru] [--trace FILE] [--module FILE ...] "
               "[DRAWING ...]\n"
               "       vexhost --render PICTURE.svg DRAWING\n";
  return 2;
}

static std::string modulesFolder() {
  std::error_code ec;
  const std::filesystem::path exe = std::filesystem::read_symlink("/proc/self/exe", ec);
  return ec ? std::string() : (exe.parent_path() / "modules").string();
}

// Writes the picture of a drawing's model space; the exit status says whether it could.
static int render(const std::string& picture, const std::string& drawing) {
  try {
    OdDbDatabasePtr db = OdDbDatabase::readDxfFile(drawing);
    OdGiVectorizeStats stats;
    std::string error;
    if (!hostWriteDrawingSvg(*db, picture, &error, &stats)) {
      std::cerr << error << "\n";
      return 1;
    }
    std::cout << "Wrote " << picture << ": " << hostRenderSummary(stats) << ".\n";
    return 0;
  } catch (const OdError& e) {
    std::cerr << "Cannot render " << drawing << ": " << e.what() << "\n";
    return 1;
  }
}

int main(int argc, char** argv) {
  std::string script, lang = "en", trace, picture;
  std::vector<std::string> drawings, modules;
  for (int i = 1; i < argc; ++i) {
    std::string a = argv[i];
    auto value = [&](std::string& out) {
      if (i + 1 >= argc) return false;
      out = argv[++i];
      return true;
    };
    if (a == "--console") continue;
    if (a == "--script") { if (!value(script)) return usage(); continue; }
    if (a == "--lang") { if (!value(lang) || (lang != "en" && lang != "ru")) return usage(); continue; }
    if (a == "--trace") { if (!value(trace)) return usage(); continue; }
    if (a == "--render") { if (!value(picture)) return usage(); continue; }
    if (a == "--module") { std::string m; if (!value(m)) return usage(); modules.push_back(m); continue; }
    if (a == "-h" || a == "--help") { usage(); return 0; }
    if (a.size() > 1 && a[0] == '-') return usage();
    drawings.push_back(a);
  }
  if (!picture.empty()) return drawings.size() == 1 ? render(picture, drawings.front()) : usage();
  hostSetLanguage(lang);
  if (!trace.empty() && !hostTraceSetFile(trace.c_str())) std::cerr << "cannot write the trace file " << trace << "\n";

  std::ifstream scriptFile;
  if (!script.empty()) {
    scriptFile.open(script);
    if (!scriptFile) {
      std::cerr << "cannot read the script " << script << "\n";
      return 1;
    }
  }
  std::istream& in = script.empty() ? std::cin : scriptFile;
  HostCommandLine cl(in, std::cout, !script.empty() || !isatty(0));
  HostSession session(cl);
  HostModules loaded([&cl](const std::string& problem) { cl.println(problem); });
  if (const std::string folder = modulesFolder(); !folder.empty()) loaded.loadFolder(folder);
  for (const auto& m : modules) loaded.load(m);
  for (const auto& d : drawings) session.open(d);
  session.run();
  // Modules hear of every document closing before they go.
  session.closeAllDocuments();
  loaded.unloadAll();
  return session.hadFileError() ? 1 : 0;
}
