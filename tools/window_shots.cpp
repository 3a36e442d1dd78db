// Pictures of the main window for looking at what users see: each drawing opened
// in its own window with every dimension and leader selected, so that the palette
// shows their properties, saved as OUTDIR/<name>-<lang>.png.
//
// usage: window_shots OUTDIR en|ru DRAWING.dxf...   (QT_QPA_PLATFORM=offscreen without a display)
#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QTest>

#include <cstdio>

#include "host/HostDimRegen.h"
#include "host/HostFuncPtr.h"
#include "host/HostSession.h"
#include "hostgui/HostDocumentTab.h"
#include "hostgui/HostDrawingView.h"
#include "hostgui/HostGuiApp.h"
#include "hostgui/HostMainWindow.h"

extern "C" void* get_host_funcptr(int which) { return hostFuncPtr(which); }

int main(int argc, char** argv) {
  if (argc < 4) {
    std::fprintf(stderr, "usage: window_shots OUTDIR en|ru DRAWING.dxf...\n");
    return 2;
  }
  QApplication app(argc, argv);
  QApplication::setApplicationDisplayName("vexhost");
  const QString out = QString::fromLocal8Bit(argv[1]), lang = QString::fromLocal8Bit(argv[2]);
  QDir().mkpath(out);
  hostGuiInstallTranslators(app, lang);
  for (int i = 3; i < argc; ++i) {
    HostMainWindow w;
    w.resize(1600, 1000);
    w.show();
    w.openFiles({QString::fromLocal8Bit(argv[i])});
    w.waitForOpening();
    if (!w.currentTab()) return 1;
    HostDrawingView* view = w.currentTab()->view();
    view->setSelection(hostAllDimensions(*view->database()));
    QTest::qWait(200);
    const QString file = out + "/" + QFileInfo(argv[i]).baseName() + "-" + lang + ".png";
    if (!w.grab().save(file)) return 1;
    std::printf("%s\n", qPrintable(file));
    w.session().closeAllDocuments();
  }
  return 0;
}
