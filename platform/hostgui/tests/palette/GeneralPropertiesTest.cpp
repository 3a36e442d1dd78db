// The host's general properties, without widgets: each one read, written, read
// back and undone over a selection; the texts of colours and lineweights; the
// kinds of entities the filter names.
#include <QTest>

#include "drawings/OdDbDimension.h"
#include "drawings/OdDbGeometry.h"
#include "drawings/OdDbLeader.h"
#include "host/HostGeneralProperties.h"
#include "palette/PaletteTests.h"

namespace {

IOdProperty* generalProperty(const QString& name) {
  for (IOdProperty* p : hostGeneralProperties())
    if (QString::fromStdWString(p->name().str()) == name) return p;
  return nullptr;
}

QString qs(const OdString& s) { return QString::fromStdWString(s.str()); }
OdString od(const QString& s) { return OdString(s.toStdWString()); }

// The property's text for one entity alone.
QString textOf(IOdProperty* property, const OdDbObjectId& id) {
  auto bound = property->createEditable({id});
  return bound ? qs(bound->text()) : QStringLiteral("<none>");
}

struct RecordingSink : IXREditablePropertySink {
  int changed = 0;
  QStringList refused;
  void valueChanged() override { ++changed; }
  void valueRefused(const OdString& message) override { refused << qs(message); }
  void refreshAll() override {}
};

}  // namespace

OdDbDatabasePtr loadSample() { return OdDbDatabase::readDxfFile(SAMPLES_DIR "/dimstyles.dxf"); }

OdDbObjectIdArray sampleEntities(OdDbDatabase& db, const OdRxClass* cls, size_t count) {
  OdDbObjectIdArray ids;
  auto space = odOpen<OdDbBlockTableRecord>(db.getModelSpaceId());
  for (const OdDbObjectId& id : space->entityIds()) {
    auto e = id.openObject();
    if (e && e->isA() == cls && ids.size() < count) ids.push_back(id);
  }
  return ids;
}

class GeneralPropertiesTest : public QObject {
  Q_OBJECT

private slots:
  void readWriteReadBackUndo_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("typed");     // what the user gives
    QTest::addColumn<QString>("expected");  // what every entity then shows
    QTest::addColumn<QString>("refused");   // a value that must change nothing
    QTest::addColumn<bool>("listed");       // the value list offers it
    QTest::newRow("colour") << "General.Color" << "Blue" << "blue" << "purple" << true;
    QTest::newRow("colour index") << "General.Color" << "Index 34" << "Index 34" << "256" << false;
    QTest::newRow("true colour") << "General.Color" << "10, 20,30" << "10,20,30" << "10,20,300" << false;
    QTest::newRow("layer, any case") << "General.Layer" << "notes" << "Notes" << "NoSuchLayer" << true;
    QTest::newRow("linetype") << "General.Linetype" << "center" << "CENTER" << "DASHDOT" << true;
    QTest::newRow("linetype ByBlock") << "General.Linetype" << "byblock" << "ByBlock" << "" << true;
    QTest::newRow("lineweight") << "General.Lineweight" << "0.35" << "0.35 mm" << "0.33 mm" << true;
    QTest::newRow("lineweight default") << "General.Lineweight" << "default" << "Default" << "thick" << true;
    QTest::newRow("linetype scale") << "General.Linetype scale" << "2.5" << "2.5" << "-1" << false;
  }

  void readWriteReadBackUndo() {
    QFETCH(QString, name);
    QFETCH(QString, typed);
    QFETCH(QString, expected);
    QFETCH(QString, refused);
    QFETCH(bool, listed);
    OdDbDatabasePtr db = loadSample();
    IOdProperty* property = generalProperty(name);
    QVERIFY(property);
    // Entities of three classes, so that the write cannot depend on one class.
    OdDbObjectIdArray selection = sampleEntities(*db, OdDbRotatedDimension::desc(), 2);
    for (auto cls : {OdDbLine::desc(), OdDbLeader::desc()}) {
      const auto more = sampleEntities(*db, cls, 1);
      selection.insert(selection.end(), more.begin(), more.end());
    }
    QCOMPARE(selection.size(), size_t(4));
    QStringList before;
    for (const auto& id : selection) before << textOf(property, id);

    auto bound = property->createEditable(selection);
    QVERIFY(bound);
    RecordingSink sink;
    bound->advise(&sink);

    const uint64_t changes = db->changeCount();
    QVERIFY(bound->setText(od(refused)) != kHostOk);
    QCOMPARE(sink.refused.size(), 1);
    QVERIFY2(sink.refused.front().contains(refused), qPrintable(sink.refused.front()));
    QCOMPARE(db->changeCount(), changes);

    QCOMPARE(bound->setText(od(typed)), kHostOk);
    QCOMPARE(sink.changed, 1);
    QCOMPARE(bound->state(), HostPropState::kSame);
    QCOMPARE(qs(bound->text()), expected);
    for (const auto& id : selection) QCOMPARE(textOf(property, id), expected);
    QCOMPARE(qs(bound->valueList()).split('\t').contains(expected), listed);

    // One step takes every entity back.
    QCOMPARE(qs(db->undoGroupName()), QString("OPM_CHGPROP"));
    db->undo();
    QVERIFY(!db->hasUndo());
    for (size_t i = 0; i < selection.size(); ++i) QCOMPARE(textOf(property, selection[i]), before[int(i)]);

    // One entity changed alone: the selection's values now differ.
    QCOMPARE(property->createEditable({selection[1]})->setText(od(typed)), kHostOk);
    if (before[0] != expected) {
      QCOMPARE(bound->state(), HostPropState::kVaries);
      QCOMPARE(qs(bound->text()), QString());
    }
    bound->unadvise(&sink);
  }

  void colorTexts_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<QString>("shown");  // the text of the colour read back
    QTest::newRow("ByLayer") << "BYLAYER" << true << "ByLayer";
    QTest::newRow("ByBlock") << "byblock" << true << "ByBlock";
    QTest::newRow("name") << " magenta " << true << "magenta";
    QTest::newRow("index of a name") << "3" << true << "green";
    QTest::newRow("index") << "index 250" << true << "Index 250";
    QTest::newRow("white is 7") << "Index 7" << true << "white";
    QTest::newRow("rgb") << "0,128,255" << true << "0,128,255";
    QTest::newRow("index 0") << "0" << false << "";
    QTest::newRow("index 256") << "Index 256" << false << "";
    QTest::newRow("two parts") << "1,2" << false << "";
    QTest::newRow("four parts") << "1,2,3,4" << false << "";
    QTest::newRow("part too big") << "1,2,256" << false << "";
    QTest::newRow("empty part") << "1,,3" << false << "";
    QTest::newRow("unknown name") << "purple" << false << "";
    QTest::newRow("empty") << "" << false << "";
  }

  void colorTexts() {
    QFETCH(QString, text);
    QFETCH(bool, valid);
    QFETCH(QString, shown);
    OdCmColor color;
    color.setRGB(1, 2, 3);
    const OdCmColor untouched = color;
    QCOMPARE(hostParseColorText(od(text), color), valid);
    if (!valid) {
      QVERIFY(color == untouched);
      return;
    }
    QCOMPARE(qs(hostColorText(color)), shown);
    OdCmColor again;
    QVERIFY(hostParseColorText(hostColorText(color), again));
    QVERIFY(again == color);
  }

  void lineWeightTexts_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("weight");  // -100: refused
    QTest::newRow("ByLayer") << "bylayer" << int(OdDb::kLnWtByLayer);
    QTest::newRow("ByBlock") << "ByBlock" << int(OdDb::kLnWtByBlock);
    QTest::newRow("Default") << "DEFAULT" << int(OdDb::kLnWtByLwDefault);
    QTest::newRow("zero") << "0.00 mm" << 0;
    QTest::newRow("no unit") << "0.3" << 30;
    QTest::newRow("comma") << "0,5 mm" << 50;
    QTest::newRow("thickest") << "2.11mm" << 211;
    QTest::newRow("not standard") << "0.33 mm" << -100;
    QTest::newRow("negative") << "-0.25" << -100;
    QTest::newRow("word") << "thin" << -100;
  }

  void lineWeightTexts() {
    QFETCH(QString, text);
    QFETCH(int, weight);
    OdDb::LineWeight w = OdDb::kLnWt140;
    QCOMPARE(hostParseLineWeightText(od(text), w), weight != -100);
    if (weight == -100) return;
    QCOMPARE(int(w), weight);
    OdDb::LineWeight again = OdDb::kLnWt140;
    QVERIFY(hostParseLineWeightText(hostLineWeightText(w), again));
    QCOMPARE(again, w);
  }

  void typeNames_data() {
    QTest::addColumn<QString>("expected");
    QTest::addColumn<void*>("make");  // OdDbEntityPtr (*)(const OdDbDatabase&)
    using Make = OdDbEntityPtr (*)(const OdDbDatabase&);
    auto row = [](const char* name, Make m) { QTest::newRow(name) << name << reinterpret_cast<void*>(m); };
    row("Rotated Dimension", [](const OdDbDatabase& db) -> OdDbEntityPtr { return OdDbRotatedDimension::createFor(db); });
    row("Aligned Dimension", [](const OdDbDatabase& db) -> OdDbEntityPtr { return OdDbAlignedDimension::createFor(db); });
    row("Angular Dimension",
        [](const OdDbDatabase& db) -> OdDbEntityPtr { return OdDb2LineAngularDimension::createFor(db); });
    row("3-Point Angular Dimension",
        [](const OdDbDatabase& db) -> OdDbEntityPtr { return OdDb3PointAngularDimension::createFor(db); });
    row("Arc Dimension", [](const OdDbDatabase& db) -> OdDbEntityPtr { return OdDbArcDimension::createFor(db); });
    row("Radial Dimension", [](const OdDbDatabase& db) -> OdDbEntityPtr { return OdDbRadialDimension::createFor(db); });
    row("Diametric Dimension",
        [](const OdDbDatabase& db) -> OdDbEntityPtr { return OdDbDiametricDimension::createFor(db); });
    row("Ordinate Dimension", [](const OdDbDatabase& db) -> OdDbEntityPtr { return OdDbOrdinateDimension::createFor(db); });
    row("Line", [](const OdDbDatabase& db) -> OdDbEntityPtr { return OdDbLine::createFor(db); });
  }

  void typeNames() {
    QFETCH(QString, expected);
    QFETCH(void*, make);
    OdDbDatabasePtr db = OdDbDatabase::createNew();
    OdDbEntityPtr entity = reinterpret_cast<OdDbEntityPtr (*)(const OdDbDatabase&)>(make)(*db);
    QCOMPARE(qs(hostEntityTypeName(*entity)), expected);
  }

  // The jogged radius exists only as read from a file.
  void typeNameOfJoggedRadius() {
    OdDbDatabasePtr db = OdDbDatabase::readDxfFile(CORPUS_DIR "/mozman__ezdxf__examples_dxf-uncommon.dxf");
    const auto ids = sampleEntities(*db, VxHugeRadius::desc(), 1);
    QCOMPARE(ids.size(), size_t(1));
    QCOMPARE(qs(hostEntityTypeName(*ids.front().openObject())), QString("Jogged Radial Dimension"));
  }

  // A second document gets the same objects, and registering twice adds nothing.
  void registrationSharesObjects() {
    HostPropertyManager first, second;
    hostRegisterGeneralProperties(&first);
    hostRegisterGeneralProperties(&first);
    hostRegisterGeneralProperties(&second);
    QCOMPARE(first.properties().size(), size_t(5));
    QVERIFY(first.properties() == second.properties());
    hostRegisterGeneralProperties(nullptr);
  }
};

QObject* makeGeneralPropertiesTest() { return new GeneralPropertiesTest; }

#include "GeneralPropertiesTest.moc"
