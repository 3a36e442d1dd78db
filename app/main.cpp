// vexhost: the host program. For now the command line on a terminal (--console).
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "host/HostCommandLine.h"
#include "host/HostServices.h"
#include "host/HostSession.h"
#include "host/HostTrace.h"

static int usage() {
  std::cerr << "usage: vexhost --console [--script FILE] [--lang en|ru] [--trace FILE] [DRAWING ...]\n";
  return 2;
}

int main(int argc, char** argv) {
  std::string script, lang = "en", trace;
  std::vector<std::string> drawings;
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
    if (a == "-h" || a == "--help") { usage(); return 0; }
    if (a.size() > 1 && a[0] == '-') return usage();
    drawings.push_back(a);
  }
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
  for (const auto& d : drawings) session.open(d);
  session.run();
  return session.hadFileError() ? 1 : 0;
}
