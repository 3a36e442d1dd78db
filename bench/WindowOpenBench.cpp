// Opening a drawing in the window against opening it in the console host, both in
// this process: the console's session reads it on the spot; the window reads it
// off its GUI thread, adds the document, builds the view's scene and paints the
// first frame. The difference is what the window adds to opening.
//
// usage: window_open_bench DRAWING.dxf [ROUNDS]   (QT_QPA_PLATFORM=offscreen without a display)
#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cstdio>
#include <sstream>
#include <vector>

#include "host/HostCommandLine.h"
#include "host/HostFuncPtr.h"
#include "host/HostSession.h"
#include "hostgui/HostDocumentTab.h"
#include "hostgui/HostDrawingView.h"
#include "hostgui/HostMainWindow.h"

extern "C" void* get_host_funcptr(int which) { return hostFuncPtr(which); }

static double median(std::vector<double> v) {
  std::sort(v.begin(), v.end());
  return v[v.size() / 2];
}

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: window_open_bench DRAWING.dxf [ROUNDS]\n");
    return 2;
  }
  QApplication app(argc, argv);
  const std::string path = argv[1];
  const int rounds = argc > 2 ? std::max(1, std::atoi(argv[2])) : 5;
  std::vector<double> console, window, firstPaint;
  for (int r = 0; r < rounds; ++r) {
    {
      std::istringstream in;
      std::ostringstream out;
      HostCommandLine cl(in, out, false);
      HostSession session(cl);
      QElapsedTimer t;
      t.start();
      if (!session.open(path)) {
        std::fprintf(stderr, "%s", out.str().c_str());
        return 1;
      }
      console.push_back(t.nsecsElapsed() / 1e6);
    }
    {
      HostMainWindow w;
      w.resize(1920, 1080);
      QElapsedTimer t;
      t.start();
      w.openFiles({QString::fromStdString(path)});
      w.waitForOpening();
      const double opened = t.nsecsElapsed() / 1e6;
      QImage frame(1920, 1080, QImage::Format_ARGB32_Premultiplied);
      HostDrawingView* view = w.currentTab()->view();
      view->resize(1920, 1080);
      view->zoomExtents();
      view->render(&frame);
      window.push_back(t.nsecsElapsed() / 1e6);
      firstPaint.push_back(window.back() - opened);
    }
  }
  const double c = median(console), w = median(window), p = median(firstPaint);
  std::printf("open %s, median of %d\n", path.c_str(), rounds);
  std::printf("  console host: open                          %8.1f ms\n", c);
  std::printf("  window: open, view built, first frame       %8.1f ms  (first frame %.1f ms)\n", w, p);
  std::printf("  window / console                            %8.2fx\n", w / c);
  return 0;
}
