// vexhost: the host program. A window with the drawings, the command line and the
// properties palette when there is a display; the command line on a terminal with
// --console, or when there is no display. Either way it loads the modules of the
// folder "modules" beside it, and those named with --module, before it opens the
// drawings named on the command line.
#include <unistd.h>

#include <QApplication>
#include <QStringList>

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
#include "hostgui/HostGuiApp.h"
#include "hostgui/HostMainWindow.h"

extern "C" void* get_host_funcptr(int which) { return hostFuncPtr(which); }

static int usage() {
  std::cerr << "usage: vexhost [--lang en|ru] [--trace FILE] [--module FILE ...] [DRAWING ...]\n"
               "       vexhost --console [--script FILE] [--lang en|ru] [--trace FILE] [--module FILE ...] "
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

// Whether a window can be shown: a display, or a platform chosen on purpose
// (offscreen for screenshots).
static bool haveDisplay() {
  return std::getenv("DISPLAY") || std::getenv("WAYLAND_DISPLAY") || std::getenv("QT_QPA_PLATFORM");
}

static int runWindow(int argc, char** argv, const std::string& lang, const std::vector<std::string>& modules,
                     const std::vector<std::string>& drawings) {
  QApplication app(argc, argv);
  QApplication::setOrganizationName("vexhost");
  QApplication::setApplicationName("vexhost");
  QApplication::setApplicationDisplayName("vexhost");
  hostGuiInstallTranslators(app, hostGuiChooseLanguage(QString::fromStdString(lang)));
  HostMainWindow window(modules);
  window.show();
  QStringList paths;
  for (const auto& d : drawings) paths << QString::fromStdString(d);
  window.openFiles(paths);
  return app.exec();
}

int main(int argc, char** argv) {
  std::string script, lang, trace, picture;
  bool console = false;
  std::vector<std::string> drawings, modules;
  for (int i = 1; i < argc; ++i) {
    std::string a = argv[i];
    auto value = [&](std::string& out) {
      if (i + 1 >= argc) return false;
      out = argv[++i];
      return true;
    };
    if (a == "--console") { console = true; continue; }
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
  if (!trace.empty() && !hostTraceSetFile(trace.c_str())) std::cerr << "cannot write the trace file " << trace << "\n";

  if (!console && script.empty() && haveDisplay()) return runWindow(argc, argv, lang, modules, drawings);
  hostSetLanguage(lang.empty() ? "en" : lang);

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
