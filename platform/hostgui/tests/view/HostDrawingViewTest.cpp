// The drawing view driven as a user drives it: windows both ways, picks, Shift to
// remove, Ctrl+A and Escape, wheel zoom about the cursor, and what it paints.
#include <QSignalSpy>
#include <QTest>
#include <QTranslator>
#include <QWheelEvent>
#include <cmath>

#include "ViewTestSupport.h"
#include "hostgui/HostDrawingView.h"

using namespace viewtest;

namespace {

// Two lines and a circle, seen 10 pixels a unit with the world origin at widget
// (20, 280), y up.
struct ViewSample {
  OdDbDatabasePtr db = OdDbDatabase::createNew(DxfVersion::R2018, true);
  OdDbObjectId left, right, circle;
  HostDrawingView view;

  ViewSample() {
    left = addLine(*db, 0, 0, 10, 0, L"0", 1);     // widget (20,280)-(120,280)
    right = addLine(*db, 20, 0, 30, 10, L"0", 1);  // widget (220,280)-(320,180)
    circle = addCircle(*db, 10, 20, 5);            // widget centre (120,80), radius 50
    view.resize(400, 300);
    view.setDatabase(db.get());
    view.show();
    view.setViewTransform(QTransform(10, 0, 0, -10, 20, 280));
  }
  QPoint at(double x, double y) const { return view.viewTransform().map(QPointF(x, y)).toPoint(); }
  void drag(QPoint from, QPoint to, Qt::KeyboardModifiers mods = {}) {
    QTest::mousePress(&view, Qt::LeftButton, mods, from);
    QTest::mouseMove(&view, (from + to) / 2);
    QTest::mouseMove(&view, to);
    QTest::mouseRelease(&view, Qt::LeftButton, mods, to);
  }
};

bool sorted(OdDbObjectIdArray& ids) {
  std::sort(ids.begin(), ids.end());
  return true;
}

}  // namespace

class HostDrawingViewTest : public QObject {
  Q_OBJECT

private slots:
  void windowLeftToRightTakesWhatIsInside();
  void crossingRightToLeftTakesWhatItTouches();
  void clickPicksAndShiftRemoves();
  void shiftWindowRemoves();
  void selectAllAndEscape();
  void wheelZoomKeepsThePointUnderTheCursor();
  void keysPanAndZoom();
  void middleDragPansAndDoubleClickZoomsExtents();
  void zoomExtentsShowsEverything();
  void paintsTheDrawingAndItsSelection();
  void drawingChangedDropsErasedSelection();
  void accessibleDescriptionCountsTheSelection();
  void russianTexts();
};

void HostDrawingViewTest::windowLeftToRightTakesWhatIsInside() {
  ViewSample s;
  QSignalSpy windows(&s.view, &HostDrawingView::windowSelected);
  // Around the left line and over half of the right one.
  s.drag(s.at(-1, -1), s.at(25, 2));
  QCOMPARE(s.view.selection(), OdDbObjectIdArray{s.left});
  QCOMPARE(windows.count(), 1);
}

void HostDrawingViewTest::crossingRightToLeftTakesWhatItTouches() {
  ViewSample s;
  QSignalSpy changed(&s.view, &HostDrawingView::selectionChanged);
  s.drag(s.at(25, 2), s.at(-1, -1));
  OdDbObjectIdArray got = s.view.selection(), expected{s.left, s.right};
  sorted(got), sorted(expected);
  QCOMPARE(got, expected);
  QCOMPARE(changed.count(), 1);
}

void HostDrawingViewTest::clickPicksAndShiftRemoves() {
  ViewSample s;
  QSignalSpy picked(&s.view, &HostDrawingView::picked);
  // Three pixels off the line: inside the pick box.
  QTest::mouseClick(&s.view, Qt::LeftButton, {}, s.at(5, 0) + QPoint(0, 3));
  QCOMPARE(s.view.selection(), OdDbObjectIdArray{s.left});
  QCOMPARE(picked.count(), 1);
  QCOMPARE(picked.at(0).at(0).value<OdDbObjectId>(), s.left);
  // The circle's edge is picked, not its inside.
  QTest::mouseClick(&s.view, Qt::LeftButton, {}, s.at(10, 20));
  QCOMPARE(s.view.selection().size(), size_t(1));
  QTest::mouseClick(&s.view, Qt::LeftButton, {}, s.at(15, 20));
  QCOMPARE(s.view.selection(), (OdDbObjectIdArray{s.left, s.circle}));
  // Twenty pixels away: nothing.
  QTest::mouseClick(&s.view, Qt::LeftButton, {}, s.at(5, 2));
  QCOMPARE(s.view.selection().size(), size_t(2));
  QTest::mouseClick(&s.view, Qt::LeftButton, Qt::ShiftModifier, s.at(5, 0));
  QCOMPARE(s.view.selection(), OdDbObjectIdArray{s.circle});
}

void HostDrawingViewTest::shiftWindowRemoves() {
  ViewSample s;
  s.view.selectAll();
  QCOMPARE(s.view.selection().size(), size_t(3));
  s.drag(s.at(-1, -1), s.at(11, 1), Qt::ShiftModifier);
  OdDbObjectIdArray got = s.view.selection(), expected{s.right, s.circle};
  sorted(got), sorted(expected);
  QCOMPARE(got, expected);
}

void HostDrawingViewTest::selectAllAndEscape() {
  ViewSample s;
  s.view.setFocus();
  QTest::keyClick(&s.view, Qt::Key_A, Qt::ControlModifier);
  QCOMPARE(s.view.selection().size(), size_t(3));
  QTest::keyClick(&s.view, Qt::Key_Escape);
  QVERIFY(s.view.selection().empty());
  // Escape during a window drops the window and keeps the selection.
  s.view.setSelection({s.right});
  QTest::mousePress(&s.view, Qt::LeftButton, {}, s.at(-1, -1));
  QTest::mouseMove(&s.view, s.at(12, 3));
  QTest::keyClick(&s.view, Qt::Key_Escape);
  QTest::mouseRelease(&s.view, Qt::LeftButton, {}, s.at(12, 3));
  QCOMPARE(s.view.selection(), OdDbObjectIdArray{s.right});
}

void HostDrawingViewTest::wheelZoomKeepsThePointUnderTheCursor() {
  ViewSample s;
  const QPointF cursor(137, 91);
  const QPointF world = s.view.toWorld(cursor);
  for (int delta : {120, 120, -360, 240}) {
    QWheelEvent wheel(cursor, s.view.mapToGlobal(cursor), QPoint(), QPoint(0, delta), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&s.view, &wheel);
    QPointF now = s.view.viewTransform().map(world);
    QVERIFY(std::abs(now.x() - cursor.x()) < 1e-6 && std::abs(now.y() - cursor.y()) < 1e-6);
  }
  // Two notches in, three out, two in: 1.2 up once.
  QVERIFY(std::abs(s.view.viewTransform().m11() - 10 * 1.2) < 1e-9);
}

void HostDrawingViewTest::keysPanAndZoom() {
  ViewSample s;
  s.view.setFocus();
  QPointF origin = s.view.viewTransform().map(QPointF(0, 0));
  QTest::keyClick(&s.view, Qt::Key_Right);
  QVERIFY(s.view.viewTransform().map(QPointF(0, 0)).x() < origin.x());  // the view moves right over the drawing
  QTest::keyClick(&s.view, Qt::Key_Plus);
  QVERIFY(s.view.viewTransform().m11() > 10);
  QTest::keyClick(&s.view, Qt::Key_Home);
  QVERIFY(s.view.viewTransform().m11() != 10 * 1.25);
}

void HostDrawingViewTest::middleDragPansAndDoubleClickZoomsExtents() {
  ViewSample s;
  const QPointF world = s.view.toWorld(QPointF(100, 100));
  QTest::mousePress(&s.view, Qt::MiddleButton, {}, QPoint(100, 100));
  QTest::mouseMove(&s.view, QPoint(130, 90));
  QTest::mouseMove(&s.view, QPoint(160, 80));
  QTest::mouseRelease(&s.view, Qt::MiddleButton, {}, QPoint(160, 80));
  // The point grabbed went with the mouse; the zoom stayed.
  QPointF now = s.view.viewTransform().map(world);
  QVERIFY(std::abs(now.x() - 160) < 1e-9 && std::abs(now.y() - 80) < 1e-9);
  QCOMPARE(s.view.viewTransform().m11(), 10.0);
  QTest::mouseDClick(&s.view, Qt::MiddleButton, {}, QPoint(160, 80));
  const OdGiExtents& e = s.view.scene().extents();
  QVERIFY(QRectF(s.view.rect()).contains(s.view.viewTransform().map(QPointF(e.max.x, e.max.y))));
  QVERIFY(s.view.viewTransform().m11() != 10.0);
}

void HostDrawingViewTest::zoomExtentsShowsEverything() {
  ViewSample s;
  s.view.zoomExtents();
  const OdGiExtents& e = s.view.scene().extents();
  QRectF shown = QRectF(s.view.rect());
  for (QPointF corner : {QPointF(e.min.x, e.min.y), QPointF(e.max.x, e.max.y)})
    QVERIFY(shown.contains(s.view.viewTransform().map(corner)));
  // It fills the view in one direction: not far inside on both.
  QPointF a = s.view.viewTransform().map(QPointF(e.min.x, e.min.y)), b = s.view.viewTransform().map(QPointF(e.max.x, e.max.y));
  QVERIFY(std::abs(b.x() - a.x()) > 350 || std::abs(a.y() - b.y()) > 250);
}

void HostDrawingViewTest::paintsTheDrawingAndItsSelection() {
  ViewSample s;
  // Half a pixel over, so that the line runs through the middle of a pixel row.
  s.view.setViewTransform(QTransform(10, 0, 0, -10, 20.5, 280.5));
  auto pixel = [&](double x, double y) {
    QPointF p = s.view.viewTransform().map(QPointF(x, y));
    return QPoint(int(std::floor(p.x())), int(std::floor(p.y())));
  };
  const QPoint onLine = pixel(5, 0), empty = pixel(5, 10);
  QImage img = s.view.grab().toImage();
  QCOMPARE(img.pixelColor(empty), QColor(33, 40, 48));
  QColor line = img.pixelColor(onLine);
  QVERIFY(line.red() > 200 && line.green() < 80);
  s.view.setBackgroundDark(false);
  QCOMPARE(s.view.grab().toImage().pixelColor(empty), QColor(Qt::white));
  // Selected: the highlight goes over the line somewhere along it.
  s.view.setSelection({s.left});
  img = s.view.grab().toImage();
  int highlighted = 0;
  for (int x = pixel(0, 0).x() + 2; x < pixel(10, 0).x() - 2; ++x) {
    QColor c = img.pixelColor(x, onLine.y());
    if (c.blue() > 150 && c.red() < 100) ++highlighted;
  }
  QVERIFY2(highlighted > 20, qPrintable(QString::number(highlighted)));
}

void HostDrawingViewTest::drawingChangedDropsErasedSelection() {
  ViewSample s;
  s.view.setSelection({s.left, s.right});
  QSignalSpy changed(&s.view, &HostDrawingView::selectionChanged);
  odOpen<OdDbEntity>(s.left, OdDb::kForWrite)->erase();
  s.view.drawingChanged();
  QCOMPARE(s.view.selection(), OdDbObjectIdArray{s.right});
  QCOMPARE(changed.count(), 1);
  QCOMPARE(s.view.scene().indexOf(s.left), -1);
}

void HostDrawingViewTest::accessibleDescriptionCountsTheSelection() {
  ViewSample s;
  QVERIFY(!s.view.accessibleName().isEmpty());
  s.view.setSelection({s.left, s.right});
  QVERIFY2(s.view.accessibleDescription().contains("2"), qPrintable(s.view.accessibleDescription()));
}

void HostDrawingViewTest::russianTexts() {
  QTranslator ru;
  QVERIFY(ru.load(QStringLiteral(":/i18n/view_ru.qm")));
  QCoreApplication::installTranslator(&ru);
  ViewSample s;
  s.view.setSelection({s.left});
  QCoreApplication::removeTranslator(&ru);
  QCOMPARE(s.view.accessibleName(), QString::fromUtf8("Чертёж"));
  QCOMPARE(s.view.accessibleDescription(), QString::fromUtf8("Выбрано объектов: 1"));
}

int runHostDrawingViewTest(int argc, char** argv) {
  HostDrawingViewTest t;
  return QTest::qExec(&t, argc, argv);
}

#include "HostDrawingViewTest.moc"
