// The drawing view's costs on a large drawing: building the scene, a full
// repaint at zoom extents into a 1920 x 1080 picture, and a repaint from the
// view's cached image, against the 16 ms of one frame at 60 Hz.
//
//   view_bench [DRAWING.dxf]   (default /tmp/x.dxf, made with
//                               make_drawings bench-dims /tmp/x.dxf)
// Run with QT_QPA_PLATFORM=offscreen where there is no display.
#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "drawings/OdDbDatabase.h"
#include "hostgui/HostDrawingView.h"
#include "hostgui/HostPaint.h"
#include "hostgui/HostViewRenderer.h"
#include "hostgui/HostViewScene.h"

namespace {

constexpr double kFrameMs = 16;

template <class F>
double medianMs(int runs, F f) {
  std::vector<double> ms;
  for (int i = 0; i < runs; ++i) {
    QElapsedTimer t;
    t.start();
    f();
    ms.push_back(t.nsecsElapsed() / 1e6);
  }
  std::sort(ms.begin(), ms.end());
  return ms[ms.size() / 2];
}

void report(const char* what, double ms, bool againstFrame = true) {
  if (againstFrame)
    std::printf("%-44s %9.2f ms  (%.2f x the %g ms goal)\n", what, ms, ms / kFrameMs, kFrameMs);
  else
    std::printf("%-44s %9.2f ms\n", what, ms);
}

}  // namespace

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  const std::string path = argc > 1 ? argv[1] : "/tmp/x.dxf";
  OdDbDatabasePtr db;
  try {
    db = OdDbDatabase::readDxfFile(path);
  } catch (const std::exception& e) {
    std::fprintf(stderr, "view_bench: cannot read %s: %s\n(make one with: make_drawings bench-dims %s)\n", path.c_str(),
                 e.what(), path.c_str());
    return 1;
  }
  const QSize size(1920, 1080);
  const int runs = 7;

  HostViewScene scene;
  double sceneMs = medianMs(3, [&] { scene.build(*db); });
  size_t primitives = 0;
  for (const auto& e : scene.entities()) primitives += e.primitives.items().size();
  std::printf("%s: %zu entities shown, %zu primitives\n", path.c_str(), scene.entities().size(), primitives);
  report("scene build (vectorize, per entity)", sceneMs, false);

  HostViewRenderer renderer;
  report("grouping into paths", medianMs(3, [&] { renderer.build(scene); }), false);

  const QTransform fit = hostFitTransform(scene.extents(), QRectF(QPointF(0, 0), QSizeF(size)), 12);
  const HostPaintOptions options;
  QImage image(size, QImage::Format_ARGB32_Premultiplied);

  // The plain painter, primitive by primitive: what the grouping saves.
  OdGiRecorder all;
  for (const auto& e : scene.entities()) e.primitives.replay(all);
  report("full repaint, primitive by primitive", medianMs(3, [&] {
           image.fill(options.background);
           QPainter p(&image);
           hostPaintPrimitives(p, all, fit, options);
         }));
  report("full repaint, grouped", medianMs(runs, [&] {
           image.fill(options.background);
           QPainter p(&image);
           renderer.paint(p, fit, QRectF(QPointF(0, 0), QSizeF(size)), options);
         }));
  HostPaintOptions thick = options;
  thick.lineWeights = true;
  report("full repaint, grouped, lineweights", medianMs(runs, [&] {
           image.fill(options.background);
           QPainter p(&image);
           renderer.paint(p, fit, QRectF(QPointF(0, 0), QSizeF(size)), thick);
         }));
  // Zoomed in 20 times about the middle: texts readable, most outside the view.
  QTransform zoomed = fit * QTransform::fromTranslate(-960, -540) * QTransform::fromScale(20, 20) *
                      QTransform::fromTranslate(960, 540);
  report("full repaint, grouped, zoomed in 20x", medianMs(runs, [&] {
           image.fill(options.background);
           QPainter p(&image);
           renderer.paint(p, zoomed, QRectF(QPointF(0, 0), QSizeF(size)), options);
         }));

  // The selection's look over it: every entity selected, dashed and solid.
  // Qt's fast path for lines takes cosmetic pens up to a pixel wide only.
  for (int width : {1, 2}) {
    QPen pen(QColor(90, 170, 255), width, Qt::DashLine);
    pen.setCosmetic(true);
    report(width == 1 ? "all selected: highlight, dashed, 1 px" : "all selected: highlight, dashed, 2 px",
           medianMs(3, [&] {
             QPainter p(&image);
             renderer.paint(p, fit, QRectF(QPointF(0, 0), QSizeF(size)), options, &pen);
           }));
  }

  // The widget: the first paint renders its image, the next ones copy it.
  HostDrawingView view;
  view.resize(size);
  view.setDatabase(db.get());
  view.zoomExtents();
  QPixmap target(size);
  report("view: first paint (renders)", medianMs(1, [&] { view.render(&target); }));
  report("view: cached repaint", medianMs(runs, [&] { view.render(&target); }));
  view.selectAll();
  report("view: select all, then paint", medianMs(1, [&] { view.render(&target); }));
  report("view: cached repaint with all selected", medianMs(runs, [&] { view.render(&target); }));
  report("view: drawing changed (scene again)", medianMs(1, [&] { view.drawingChanged(); }), false);
  return 0;
}
