// The view's scene: which entities a window, a crossing window and a pick box
// find, what stays hidden, and the layouts a drawing lists.
#include <QTest>
#include <algorithm>
#include <filesystem>
#include <map>
#include <numbers>

#include "ViewTestSupport.h"
#include "drawings/OdDbBlockBuilder.h"
#include "drawings/OdResult.h"
#include "hostgui/HostPaint.h"
#include "hostgui/HostViewRenderer.h"
#include "hostgui/HostViewScene.h"
#include <QImage>
#include <QPainter>

using namespace viewtest;

namespace {

constexpr double kPi = std::numbers::pi;

// A drawing with one entity of each kind, apart from each other, by name.
struct Sample {
  OdDbDatabasePtr db = OdDbDatabase::createNew(DxfVersion::R2018, true);
  std::map<QString, OdDbObjectId> ids;
  HostViewScene scene;

  Sample() {
    addLayer(*db, L"Off", -3);
    addLayer(*db, L"Frozen", 1, 1);
    ids["L1"] = addLine(*db, 0, 0, 10, 0);
    ids["L2"] = addLine(*db, 20, 0, 30, 10);
    ids["C"] = addCircle(*db, 50, 50, 10);
    ids["A"] = addArc(*db, 0, 50, 10, 0, kPi / 2);
    ids["T"] = addText(*db, 100, 0, 5, L"ABC");
    ids["S"] = addSolid(*db, 0, 100, 10);
    ids["Hoff"] = addLine(*db, 200, 0, 210, 0, L"Off");
    ids["Hfrozen"] = addLine(*db, 200, 5, 210, 5, L"Frozen");
    // Two lines on top of each other and one just above: the top-most and the nearest.
    ids["U1"] = addLine(*db, 300, 0, 310, 0);
    ids["U2"] = addLine(*db, 300, 0, 310, 0);
    ids["U3"] = addLine(*db, 300, 1, 310, 1);
    scene.build(*db);
  }
  QString nameOf(OdDbObjectId id) const {
    for (const auto& [name, i] : ids)
      if (i == id) return name;
    return id.isNull() ? QString() : QStringLiteral("?");
  }
  QStringList names(const OdDbObjectIdArray& found) const {
    QStringList out;
    for (const auto& id : found) out << nameOf(id);
    out.sort();
    return out;
  }
};

}  // namespace

class HostViewSceneTest : public QObject {
  Q_OBJECT

private slots:
  void windowAndCrossing_data();
  void windowAndCrossing();
  void pick_data();
  void pick();
  void hiddenLayersStayHidden();
  void aReferenceIsOneEntity();
  void primitivesTouchRectangles_data();
  void primitivesTouchRectangles();
  void layoutsByTheirNamesInTabOrder();
  void layoutsOfEveryCorpusFileBuild();
  void paperSpaceEntitiesShowInTheirLayoutOnly();
  void groupedPaintingMatchesThePlainPainter_data();
  void groupedPaintingMatchesThePlainPainter();
};

void HostViewSceneTest::windowAndCrossing_data() {
  QTest::addColumn<bool>("crossing");
  QTest::addColumn<QPointF>("corner1");
  QTest::addColumn<QPointF>("corner2");
  QTest::addColumn<QStringList>("expected");
  QTest::newRow("window around a line") << false << QPointF(-1, -1) << QPointF(11, 1) << QStringList{"L1"};
  QTest::newRow("window on half a line") << false << QPointF(-1, -1) << QPointF(5, 1) << QStringList{};
  QTest::newRow("crossing on half a line") << true << QPointF(-1, -1) << QPointF(5, 1) << QStringList{"L1"};
  QTest::newRow("corners in any order") << true << QPointF(5, 1) << QPointF(-1, -1) << QStringList{"L1"};
  QTest::newRow("crossing over a diagonal's box, not the line") << true << QPointF(21, 6) << QPointF(23, 9)
                                                               << QStringList{};
  QTest::newRow("crossing inside a circle's disc") << true << QPointF(45, 45) << QPointF(55, 55) << QStringList{};
  QTest::newRow("crossing over a circle's edge") << true << QPointF(55, 45) << QPointF(65, 55) << QStringList{"C"};
  QTest::newRow("crossing where the arc is not") << true << QPointF(-15, 35) << QPointF(-5, 45) << QStringList{};
  QTest::newRow("crossing over the arc") << true << QPointF(5, 55) << QPointF(15, 65) << QStringList{"A"};
  QTest::newRow("window around the arc's sweep only") << false << QPointF(-0.5, 49.5) << QPointF(10.5, 60.5)
                                                      << QStringList{"A"};
  QTest::newRow("crossing inside a fill") << true << QPointF(4, 104) << QPointF(6, 106) << QStringList{"S"};
  QTest::newRow("crossing inside a text's box") << true << QPointF(101, 1) << QPointF(102, 2) << QStringList{"T"};
  QTest::newRow("crossing over hidden lines") << true << QPointF(199, -1) << QPointF(211, 6) << QStringList{};
  QTest::newRow("window around everything")
      << false << QPointF(-100, -100) << QPointF(1000, 1000)
      << QStringList{"A", "C", "L1", "L2", "S", "T", "U1", "U2", "U3"};
}

void HostViewSceneTest::windowAndCrossing() {
  QFETCH(bool, crossing);
  QFETCH(QPointF, corner1);
  QFETCH(QPointF, corner2);
  QFETCH(QStringList, expected);
  Sample s;
  OdGePoint2d a{corner1.x(), corner1.y()}, b{corner2.x(), corner2.y()};
  QCOMPARE(s.names(crossing ? s.scene.crossing(a, b) : s.scene.window(a, b)), expected);
}

void HostViewSceneTest::pick_data() {
  QTest::addColumn<QPointF>("at");
  QTest::addColumn<double>("tolerance");
  QTest::addColumn<QString>("expected");
  QTest::newRow("beside a line") << QPointF(5, 0.5) << 1.0 << "L1";
  QTest::newRow("too far from it") << QPointF(5, 2) << 1.0 << "";
  QTest::newRow("past a line's end") << QPointF(11.5, 0) << 1.0 << "";
  QTest::newRow("on a circle") << QPointF(60.3, 50) << 0.5 << "C";
  QTest::newRow("a circle's centre") << QPointF(50, 50) << 1.0 << "";
  QTest::newRow("on the arc") << QPointF(0, 59.8) << 0.5 << "A";
  QTest::newRow("on the arc's circle, off its sweep") << QPointF(0, 40) << 0.5 << "";
  QTest::newRow("inside a fill") << QPointF(5, 105) << 0.1 << "S";
  QTest::newRow("inside a text's box") << QPointF(101, 2) << 0.1 << "T";
  QTest::newRow("on a line of a hidden layer") << QPointF(205, 0) << 1.0 << "";
  QTest::newRow("two alike: the top-most") << QPointF(305, 0.1) << 2.0 << "U2";
  QTest::newRow("the nearest before the top-most") << QPointF(305, 0.4) << 2.0 << "U2";
  QTest::newRow("the nearest when it is the top-most") << QPointF(305, 0.9) << 2.0 << "U3";
}

void HostViewSceneTest::pick() {
  QFETCH(QPointF, at);
  QFETCH(double, tolerance);
  QFETCH(QString, expected);
  Sample s;
  QCOMPARE(s.nameOf(s.scene.pick({at.x(), at.y()}, tolerance)), expected);
}

void HostViewSceneTest::hiddenLayersStayHidden() {
  Sample s;
  QCOMPARE(s.scene.indexOf(s.ids["Hoff"]), -1);
  QCOMPARE(s.scene.indexOf(s.ids["Hfrozen"]), -1);
  QVERIFY(s.scene.indexOf(s.ids["L1"]) >= 0);
  QCOMPARE(s.scene.all().size(), s.ids.size() - 2);
  // The hidden lines reach x = 210, past everything shown but the lines at 300.
  QCOMPARE(s.scene.extents().max.x, 310.0);
  QVERIFY(s.scene.stats().hidden >= 2);
}

void HostViewSceneTest::aReferenceIsOneEntity() {
  // A block of two lines placed twice: each reference is one entity, found by
  // any of its lines, and the block's own lines are no entities of model space.
  OdDbDatabasePtr db = OdDbDatabase::createNew(DxfVersion::R2018, true);
  OdDbObjectId block = odCreateBlock(*db, L"Pair");
  for (double y : {0.0, 1.0}) {
    auto l = OdDbLine::createFor(*db);
    l->setStartPoint({0, y, 0});
    l->setEndPoint({1, y, 0});
    odOpen<OdDbBlockTableRecord>(block, OdDb::kForWrite)->appendOdDbEntity(l.get());
  }
  OdDbObjectIdArray refs;
  for (double x : {0.0, 10.0}) {
    auto ref = OdDbBlockReference::createFor(*db);
    ref->setBlockTableRecord(block);
    ref->setPosition({x, 0, 0});
    refs.push_back(modelSpace(*db)->appendOdDbEntity(ref.get()));
  }
  HostViewScene scene;
  scene.build(*db);
  QCOMPARE(scene.all(), refs);
  QCOMPARE(scene.entities()[1].primitives.items().size(), size_t(2));
  QCOMPARE(scene.pick({10.5, 1}, 0.1), refs[1]);
  QCOMPARE(scene.window({9, -1}, {12, 0.5}), OdDbObjectIdArray{});
  QCOMPARE(scene.crossing({9, -1}, {12, 0.5}), OdDbObjectIdArray{refs[1]});
}

void HostViewSceneTest::primitivesTouchRectangles_data() {
  QTest::addColumn<int>("kind");  // 0 line, 1 arc, 2 circle, 3 closed polyline, 4 polygon, 5 point
  QTest::addColumn<QRectF>("rect");
  QTest::addColumn<bool>("touches");
  QTest::addColumn<double>("distanceFromOrigin");
  // Every primitive sits in the square (0,0)-(10,10), the circle and arc with
  // their centre at (5,5) and radius 5.
  QTest::newRow("line through") << 0 << QRectF(4, 4, 2, 2) << true << 0.0;
  QTest::newRow("line beside") << 0 << QRectF(6, 1, 2, 2) << false << 0.0;
  // The arc is the upper half: the origin is nearest its end at (0, 5).
  QTest::newRow("arc's top quarter") << 1 << QRectF(4, 9, 2, 2) << true << 5.0;
  QTest::newRow("arc's missing bottom") << 1 << QRectF(4, -1, 2, 2) << false << 5.0;
  QTest::newRow("circle edge") << 2 << QRectF(4, -1, 2, 2) << true << std::hypot(5.0, 5.0) - 5;
  QTest::newRow("circle's inside") << 2 << QRectF(4, 4, 2, 2) << false << std::hypot(5.0, 5.0) - 5;
  QTest::newRow("closed outline's inside") << 3 << QRectF(4, 4, 2, 2) << false << 0.0;
  QTest::newRow("closed outline's closing edge") << 3 << QRectF(-1, 4, 2, 2) << true << 0.0;
  QTest::newRow("fill's inside") << 4 << QRectF(4, 4, 2, 2) << true << 0.0;
  QTest::newRow("fill around") << 4 << QRectF(-5, -5, 20, 20) << true << 0.0;
  QTest::newRow("point in") << 5 << QRectF(9, 9, 2, 2) << true << std::hypot(10.0, 10.0);
  QTest::newRow("point out") << 5 << QRectF(4, 4, 2, 2) << false << std::hypot(10.0, 10.0);
}

void HostViewSceneTest::primitivesTouchRectangles() {
  QFETCH(int, kind);
  QFETCH(QRectF, rect);
  QFETCH(bool, touches);
  QFETCH(double, distanceFromOrigin);
  OdGiTraits t;
  std::vector<OdGePoint2d> square{{0, 0}, {10, 0}, {10, 10}, {0, 10}};
  OdGiRecorder::Primitive p;
  switch (kind) {
    case 0: p = OdGiLine{t, {0, 0}, {10, 10}}; break;
    case 1: p = OdGiArc{t, {5, 5}, 5, 0, kPi}; break;
    case 2: p = OdGiCircle{t, {5, 5}, 5}; break;
    case 3: p = OdGiPolyline{t, square, true}; break;
    case 4: p = OdGiPolygon{t, square}; break;
    default: p = OdGiPoint{t, {10, 10}}; break;
  }
  OdGiExtents r;
  r.add(OdGePoint2d{rect.left(), rect.top()});
  r.add(OdGePoint2d{rect.right(), rect.bottom()});
  QCOMPARE(hostPrimitiveTouches(p, r), touches);
  QVERIFY(std::abs(hostPrimitiveDistance(p, {0, 0}) - distanceFromOrigin) < 1e-9);
}

void HostViewSceneTest::layoutsByTheirNamesInTabOrder() {
  // Its *Paper_Space is the last tab, "MyLayout"; *Paper_Space0 and 1 come first.
  const std::string path = corpus("DomCR__ACadSharp__sample_AC1018_ascii.dxf");
  if (!std::filesystem::exists(path)) QSKIP("corpus file missing");
  OdDbDatabasePtr db = OdDbDatabase::readDxfFile(path);
  QStringList names, blocks;
  for (const auto& l : hostViewLayouts(*db)) {
    names << QString::fromStdWString(l.name.str());
    blocks << QString::fromStdWString(odOpen<OdDbBlockTableRecord>(l.block)->getName().str());
  }
  QCOMPARE(names, (QStringList{"Model", "Layout1", "Layout2", "MyLayout"}));
  QCOMPARE(blocks, (QStringList{"*Model_Space", "*Paper_Space0", "*Paper_Space1", "*Paper_Space"}));

  // Without LAYOUT objects (R12), paper space is "Layout1".
  OdDbDatabasePtr r12 = OdDbDatabase::createNew(DxfVersion::R12, true);
  QStringList r12names;
  for (const auto& l : hostViewLayouts(*r12)) r12names << QString::fromStdWString(l.name.str());
  QCOMPARE(r12names.value(0), QStringLiteral("Model"));
  for (int i = 1; i < r12names.size(); ++i) QCOMPARE(r12names[i], QStringLiteral("Layout%1").arg(i));
}

void HostViewSceneTest::layoutsOfEveryCorpusFileBuild() {
  int files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(CORPUS_DIR)) {
    if (entry.path().extension() != ".dxf") continue;
    OdDbDatabasePtr db;
    try {
      db = OdDbDatabase::readDxfFile(entry.path().string());
    } catch (...) {
      continue;  // files the reader refuses are its own tests' business
    }
    ++files;
    auto layouts = hostViewLayouts(*db);
    QVERIFY2(!layouts.empty() && layouts[0].block == db->getModelSpaceId(), entry.path().filename().c_str());
    QStringList names;
    for (const auto& l : layouts) {
      names << QString::fromStdWString(l.name.str()).toLower();
      HostViewScene scene;
      scene.build(*db, l.block);
      for (const auto& e : scene.entities()) QVERIFY(e.extents.isValid());
    }
    names.removeDuplicates();
    QVERIFY2(names.size() == int(layouts.size()), entry.path().filename().c_str());
  }
  if (!files) QSKIP("no corpus");
}

void HostViewSceneTest::paperSpaceEntitiesShowInTheirLayoutOnly() {
  OdDbDatabasePtr db = OdDbDatabase::createNew(DxfVersion::R2018, true);
  OdDbObjectId model = addLine(*db, 0, 0, 1, 1);
  auto layouts = hostViewLayouts(*db);
  QVERIFY(layouts.size() >= 2);
  auto line = OdDbLine::createFor(*db);
  line->setEndPoint({5, 5, 0});
  OdDbObjectId paper = odOpen<OdDbBlockTableRecord>(layouts[1].block, OdDb::kForWrite)->appendOdDbEntity(line.get());
  HostViewScene scene;
  scene.build(*db);
  QCOMPARE(scene.all(), OdDbObjectIdArray{model});
  scene.build(*db, layouts[1].block);
  QCOMPARE(scene.all(), OdDbObjectIdArray{paper});
  // Not a block record: refused, and the scene stays as it was.
  bool refused = false;
  try {
    scene.build(*db, model);
  } catch (const OdError&) {
    refused = true;
  }
  QVERIFY(refused);
  QCOMPARE(scene.all(), OdDbObjectIdArray{paper});
}

void HostViewSceneTest::groupedPaintingMatchesThePlainPainter_data() {
  QTest::addColumn<double>("zoom");
  QTest::addColumn<bool>("lineWeights");
  QTest::newRow("extents") << 1.0 << false;
  QTest::newRow("extents, lineweights") << 1.0 << true;
  QTest::newRow("zoomed in, texts readable") << 6.0 << false;
}

// The view's grouped painting must paint what the plain painter paints: every
// primitive, arcs turning the right way, colours, fills and texts.
void HostViewSceneTest::groupedPaintingMatchesThePlainPainter() {
  QFETCH(double, zoom);
  QFETCH(bool, lineWeights);
  OdDbDatabasePtr db = OdDbDatabase::readDxfFile(SAMPLES_DIR "/dimstyles.dxf");
  HostViewScene scene;
  scene.build(*db);
  HostViewRenderer renderer;
  renderer.build(scene);
  const QSize size(800, 500);
  QTransform t = hostFitTransform(scene.extents(), QRectF(QPointF(0, 0), QSizeF(size)), 10) *
                 QTransform::fromTranslate(-400, -250) * QTransform::fromScale(zoom, zoom) *
                 QTransform::fromTranslate(400, 250);
  HostPaintOptions o;
  o.lineWeights = lineWeights;
  QImage plain(size, QImage::Format_ARGB32_Premultiplied), grouped = plain;
  plain.fill(o.background);
  grouped.fill(o.background);
  {
    QPainter p(&plain);
    for (const auto& e : scene.entities()) hostPaintPrimitives(p, e.primitives, t, o);
  }
  {
    QPainter p(&grouped);
    renderer.paint(p, t, QRectF(QPointF(0, 0), QSizeF(size)), o);
  }
  int ink = 0, differ = 0;
  for (int y = 0; y < size.height(); ++y)
    for (int x = 0; x < size.width(); ++x) {
      QColor a = plain.pixelColor(x, y), b = grouped.pixelColor(x, y);
      if (a != o.background) ++ink;
      if (std::abs(a.red() - b.red()) + std::abs(a.green() - b.green()) + std::abs(a.blue() - b.blue()) > 96) ++differ;
    }
  QVERIFY(ink > 2000);
  // Overlaps paint in another order (fills go first): a few pixels may differ.
  QVERIFY2(differ < ink / 50, qPrintable(QStringLiteral("%1 of %2 pixels differ").arg(differ).arg(ink)));
}

int runHostViewSceneTest(int argc, char** argv) {
  HostViewSceneTest t;
  return QTest::qExec(&t, argc, argv);
}

#include "HostViewSceneTest.moc"
