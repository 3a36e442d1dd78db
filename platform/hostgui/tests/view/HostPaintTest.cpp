// The primitive painter: colours against the background, the fit transform, and
// ink where the primitives are (arcs turning the right way, lineweights, text at
// its capital height).
#include <QImage>
#include <QPainter>
#include <QTest>
#include <cmath>
#include <numbers>

#include "hostgui/HostPaint.h"

namespace {

constexpr double kPi = std::numbers::pi;
const QColor kDark(33, 40, 48), kLight(255, 255, 255);

// A 200 x 200 picture of world (0,0)-(200,200), y up, one unit a pixel.
QImage paint(const OdGiRecorder& r, const HostPaintOptions& o = {}) {
  QImage img(200, 200, QImage::Format_ARGB32_Premultiplied);
  img.fill(o.background);
  QPainter p(&img);
  hostPaintPrimitives(p, r, QTransform(1, 0, 0, -1, 0, 200), o);
  return img;
}

// Whether the pixel at world (x, y) is near `c`.
bool inkAt(const QImage& img, int x, int y, const QColor& c) {
  QColor got = img.pixelColor(x, 199 - y);
  return std::abs(got.red() - c.red()) < 60 && std::abs(got.green() - c.green()) < 60 &&
         std::abs(got.blue() - c.blue()) < 60;
}

// The rows and columns (world) holding any pixel unlike the background.
QRect inkBounds(const QImage& img, const QColor& background) {
  QRect r;
  for (int y = 0; y < img.height(); ++y)
    for (int x = 0; x < img.width(); ++x)
      if (img.pixelColor(x, y) != background) r |= QRect(x, 199 - y, 1, 1);
  return r;
}

OdGiTraits traits(int aci, int lineWeight = 25) { return {OdGiColor::fromAci(aci), lineWeight}; }

// Lines 3 pixels wide (0.25 mm at 12 px/mm), so that their middle pixels are
// all ink, not shares of it under antialiasing.
HostPaintOptions thick(QColor background = kDark) {
  HostPaintOptions o;
  o.background = background;
  o.lineWeights = true;
  o.pixelsPerMm = 12;
  return o;
}

}  // namespace

class HostPaintTest : public QObject {
  Q_OBJECT

private slots:
  void colours_data();
  void colours();
  void fitTransform();
  void lineInItsColour();
  void foregroundFlipsWithBackground();
  void arcsTurnCounterClockwise();
  void lineweightsWidenLines();
  void filledPolygons();
  void textAtItsCapitalHeight();
  void textWidthFactorRotationAndFit();
  void textMirroredAndSlanted_data();
  void textMirroredAndSlanted();
  void tinyTextIsItsBox();
  void overridePaintsOneColour();
};

void HostPaintTest::colours_data() {
  QTest::addColumn<int>("aci");
  QTest::addColumn<QColor>("background");
  QTest::addColumn<QColor>("expected");
  QTest::newRow("foreground on dark") << 7 << kDark << QColor(Qt::white);
  QTest::newRow("foreground on light") << 7 << kLight << QColor(Qt::black);
  QTest::newRow("foreground on mid grey light") << 7 << QColor(200, 200, 200) << QColor(Qt::black);
  QTest::newRow("white 255 on light") << 255 << kLight << QColor(Qt::black);
  QTest::newRow("red on dark") << 1 << kDark << QColor(255, 0, 0);
  QTest::newRow("red on light") << 1 << kLight << QColor(255, 0, 0);
}

void HostPaintTest::colours() {
  QFETCH(int, aci);
  QFETCH(QColor, background);
  QFETCH(QColor, expected);
  OdGiColor c = OdGiColor::fromAci(aci);
  if (aci == 255) c = {255, 255, 255, false};  // true white, not the foreground
  QCOMPARE(hostPrimitiveColor(c, background), expected);
}

void HostPaintTest::fitTransform() {
  OdGiExtents e;
  e.add(OdGePoint2d{10, 20});
  e.add(OdGePoint2d{30, 30});  // 20 wide, 10 high
  QTransform t = hostFitTransform(e, QRectF(0, 0, 220, 100), 10);
  // Height limits: 80 px for 10 units; centred, y up.
  QCOMPARE(t.map(QPointF(20, 25)), QPointF(110, 50));
  QCOMPARE(t.map(QPointF(20, 30)).y(), 10.0);
  QCOMPARE(t.map(QPointF(20, 20)).y(), 90.0);
  QCOMPARE(t.map(QPointF(30, 25)).x(), 110.0 + 80);
  // A flat line fits by its length; nothing at all is scale 1 about the centre.
  OdGiExtents flat;
  flat.add(OdGePoint2d{0, 5});
  flat.add(OdGePoint2d{100, 5});
  QCOMPARE(hostFitTransform(flat, QRectF(0, 0, 120, 50), 10).map(QPointF(100, 5)), QPointF(110, 25));
  QTransform none = hostFitTransform(OdGiExtents(), QRectF(0, 0, 100, 50), 10);
  QCOMPARE(none.map(QPointF(1, 1)), QPointF(51, 24));
}

void HostPaintTest::lineInItsColour() {
  OdGiRecorder r;
  r.line({traits(1), {20, 100}, {180, 100}});
  QImage img = paint(r, thick());
  QVERIFY(inkAt(img, 100, 100, Qt::red));
  QVERIFY(inkAt(img, 100, 110, kDark));
  QVERIFY(inkAt(img, 10, 100, kDark));  // past its end
}

void HostPaintTest::foregroundFlipsWithBackground() {
  OdGiRecorder r;
  r.line({traits(7), {20, 100}, {180, 100}});
  HostPaintOptions dark = thick(), light = thick(kLight);
  QVERIFY(inkAt(paint(r, dark), 100, 100, Qt::white));
  QVERIFY(inkAt(paint(r, light), 100, 100, Qt::black));
}

void HostPaintTest::arcsTurnCounterClockwise() {
  // A quarter from +x to +y: ink up and right of the centre, none below it.
  OdGiRecorder r;
  r.arc({traits(3), {100, 100}, 50, 0, kPi / 2});
  QImage img = paint(r, thick());
  QVERIFY(inkAt(img, 100 + 35, 100 + 35, QColor(0, 255, 0)));
  QVERIFY(inkAt(img, 100, 150, QColor(0, 255, 0)));
  QVERIFY(inkAt(img, 100 + 35, 100 - 35, kDark));
  QVERIFY(inkAt(img, 100 - 35, 100 + 35, kDark));
}

void HostPaintTest::lineweightsWidenLines() {
  OdGiRecorder r;
  r.line({traits(1, 100), {20, 100}, {180, 100}});  // 1 mm
  HostPaintOptions o;
  o.pixelsPerMm = 10;
  QCOMPARE(inkBounds(paint(r, o), kDark).height() >= 1, true);
  QVERIFY(inkBounds(paint(r, o), kDark).height() <= 3);  // hairline while lineweights are off
  o.lineWeights = true;
  int h = inkBounds(paint(r, o), kDark).height();
  QVERIFY2(h >= 9 && h <= 12, qPrintable(QString::number(h)));
}

void HostPaintTest::filledPolygons() {
  OdGiRecorder r;
  r.polygon({traits(5), {{50, 50}, {150, 50}, {100, 150}}});
  QImage img = paint(r);
  QVERIFY(inkAt(img, 100, 80, QColor(0, 0, 255)));
  QVERIFY(inkAt(img, 60, 140, kDark));
}

void HostPaintTest::textAtItsCapitalHeight() {
  OdGiText t;
  t.traits = traits(2);
  t.position = {20, 50};
  t.height = 60;
  t.text = L"HEH";
  OdGiRecorder r;
  r.text(t);
  QRect ink = inkBounds(paint(r), kDark);
  QVERIFY2(std::abs(ink.height() - 60) <= 2, qPrintable(QString::number(ink.height())));
  QVERIFY(std::abs(ink.top() - 50) <= 1);  // on the baseline
  QVERIFY(std::abs(ink.left() - 20) <= 8);
  // Its measured width is what is painted, so boxes and hit tests match the ink.
  double width = hostTextMeasure().lineWidth(t.text, t.height);
  QVERIFY2(std::abs(ink.width() - width) < 0.15 * width, qPrintable(QString::number(ink.width())));
}

void HostPaintTest::textWidthFactorRotationAndFit() {
  OdGiText t;
  t.traits = traits(2);
  t.position = {100, 100};
  t.align = OdGiText::kCenter;
  t.height = 20;
  t.text = L"HH";
  OdGiRecorder plain;
  plain.text(t);
  QRect base = inkBounds(paint(plain), kDark);
  QVERIFY(std::abs(base.center().x() - 100) <= 2);  // centred on its position

  t.widthFactor = 2;
  OdGiRecorder wide;
  wide.text(t);
  QRect w = inkBounds(paint(wide), kDark);
  QVERIFY2(std::abs(w.width() - 2 * base.width()) <= 4, qPrintable(QString::number(w.width())));

  t.widthFactor = 1;
  t.rotation = kPi / 2;
  OdGiRecorder turned;
  turned.text(t);
  QRect r = inkBounds(paint(turned), kDark);
  QVERIFY(std::abs(r.height() - base.width()) <= 3 && std::abs(r.width() - base.height()) <= 3);
  QVERIFY(r.right() <= 101);  // the glyphs' tops point to -x

  // Fitted: the advance is stretched to the length, the ink with it.
  t.rotation = 0;
  t.fitLength = 150;
  OdGiRecorder fitted;
  fitted.text(t);
  QRect f = inkBounds(paint(fitted), kDark);
  double ink = base.width() * 150 / hostTextMeasure().lineWidth(t.text, t.height);
  QVERIFY2(std::abs(f.width() - ink) <= 4, qPrintable(QString::number(f.width())));
  QVERIFY(std::abs(f.center().x() - 100) <= 2);
}

void HostPaintTest::textMirroredAndSlanted_data() {
  QTest::addColumn<bool>("backward");
  QTest::addColumn<bool>("upsideDown");
  QTest::addColumn<double>("oblique");
  QTest::addColumn<int>("side");      // where the ink lies from the position: +1 right, -1 left
  QTest::addColumn<int>("above");     // +1 above the baseline, -1 below
  QTest::addColumn<int>("topLeans");  // the top row's ink against the bottom row's: +1 right, 0 upright
  QTest::newRow("plain") << false << false << 0.0 << 1 << 1 << 0;
  QTest::newRow("backward") << true << false << 0.0 << -1 << 1 << 0;
  QTest::newRow("upside down") << false << true << 0.0 << 1 << -1 << 0;
  QTest::newRow("both") << true << true << 0.0 << -1 << -1 << 0;
  QTest::newRow("oblique 30 degrees") << false << false << kPi / 6 << 1 << 1 << 1;
}

void HostPaintTest::textMirroredAndSlanted() {
  QFETCH(bool, backward);
  QFETCH(bool, upsideDown);
  QFETCH(double, oblique);
  QFETCH(int, side);
  QFETCH(int, above);
  QFETCH(int, topLeans);
  OdGiText t;
  t.traits = traits(2);
  t.position = {100, 100};
  t.height = 40;
  t.oblique = oblique;
  t.backward = backward;
  t.upsideDown = upsideDown;
  t.text = L"I";
  OdGiRecorder r;
  r.text(t);
  QImage img = paint(r);
  QRect ink = inkBounds(img, kDark);
  QVERIFY(!ink.isEmpty());
  QCOMPARE(ink.center().x() > 100 ? 1 : -1, side);
  QCOMPARE(ink.center().y() > 100 ? 1 : -1, above);
  // The ink's middle in the glyph's top and bottom rows.
  auto middleOf = [&](int worldY) {
    double sum = 0, n = 0;
    for (int x = 0; x < img.width(); ++x)
      if (img.pixelColor(x, 199 - worldY) != kDark) sum += x, ++n;
    return n ? sum / n : -1.0;
  };
  double lean = middleOf(ink.bottom() - 2) - middleOf(ink.top() + 2);  // world top minus bottom
  int leans = std::abs(lean) < 3 ? 0 : lean > 0 ? 1 : -1;
  QCOMPARE(leans, topLeans);
}

void HostPaintTest::tinyTextIsItsBox() {
  OdGiText t;
  t.traits = traits(2);
  t.position = {10, 10};
  t.height = 1;
  t.text = L"ABCDEFGHIJ";
  t.box[0] = {10, 10}, t.box[1] = {160, 10}, t.box[2] = {160, 11}, t.box[3] = {10, 11};
  OdGiRecorder r;
  r.text(t);
  QRect ink = inkBounds(paint(r), kDark);
  QVERIFY(std::abs(ink.width() - 150) <= 2);  // the box, not ten 0.6 px glyphs
  t.height = 0.1;                            // a speck: left out
  OdGiRecorder speck;
  speck.text(t);
  QVERIFY(inkBounds(paint(speck), kDark).isEmpty());
}

void HostPaintTest::overridePaintsOneColour() {
  OdGiRecorder r;
  r.line({traits(1), {20, 100}, {180, 100}});
  r.polygon({traits(5), {{50, 20}, {150, 20}, {100, 60}}});
  HostPaintOptions o = thick();
  o.override = QColor(255, 255, 0);
  QImage img = paint(r, o);
  QVERIFY(inkAt(img, 100, 100, o.override));
  QVERIFY(inkAt(img, 100, 30, o.override));
}

int runHostPaintTest(int argc, char** argv) {
  HostPaintTest t;
  return QTest::qExec(&t, argc, argv);
}

#include "HostPaintTest.moc"
