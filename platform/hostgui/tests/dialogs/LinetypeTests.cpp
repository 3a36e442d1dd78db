#include <QFile>
#include <QImage>
#include <QPainter>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>
#include <cmath>

#include "DialogsTests.h"
#include "dialogs/HostLinetypeDialog.h"
#include "hostgui/HostGuiServices.h"

namespace {
OdString od(const QString& s) { return OdString(s.toStdWString()); }

OdDbLinetypeData linetypeOf(const OdDbDatabase& db, const QString& name) {
  auto table = odOpen<OdDbLinetypeTable>(db.getLinetypeTableId());
  auto rec = odOpen<OdDbLinetypeTableRecord>(table->getAt(od(name)));
  return rec ? OdDbLinetypeData::fromRecord(*rec) : OdDbLinetypeData();
}

bool hasLinetype(const OdDbDatabase& db, const QString& name) {
  return odOpen<OdDbLinetypeTable>(db.getLinetypeTableId())->has(od(name));
}

// Inked pixels along the middle row of a sample painted in black on white.
int inkOnMiddleRow(const std::function<void(QPainter&, const QRect&)>& paint) {
  QImage img(120, 16, QImage::Format_RGB32);
  img.fill(Qt::white);
  {
    QPainter p(&img);
    p.setPen(Qt::black);
    paint(p, img.rect());
  }
  int ink = 0;
  for (int x = 0; x < img.width(); ++x) ink += qGray(img.pixel(x, 8)) < 128;
  return ink;
}
}  // namespace

class LinetypeTests : public QObject {
  Q_OBJECT

private slots:
  void shippedFileParsesWithTheRightLengths() {
    const HostLinFile file = HostLinFile::read(hostLinetypeFilePath());
    for (const auto& e : file.errors) qWarning() << e.line << e.message;
    QVERIFY(file.errors.empty());
    QStringList expected;
    for (const char* base : {"BORDER", "CENTER", "DASHDOT", "DASHED", "DIVIDE", "DOT", "HIDDEN", "PHANTOM"})
      expected << base << QString(base) + "2" << QString(base) + "X2";
    for (int i = 2; i <= 15; ++i) expected << QString("ACAD_ISO%1W100").arg(i, 2, 10, QChar('0'));
    QCOMPARE(int(file.entries.size()), expected.size());
    for (const QString& name : expected) {
      const HostLinEntry* e = file.find(name);
      QVERIFY2(e, qPrintable(name));
      QVERIFY(!e->description.isEmpty());
      double sum = 0;
      for (const auto& d : e->data.dashes) sum += std::abs(d.length);
      QCOMPARE(e->data.patternLength, sum);
      QVERIFY(e->data.dashes.front().length >= 0);
    }
    // The half and double sizes are the base pattern scaled, element by element.
    for (const char* base : {"BORDER", "CENTER", "DASHDOT", "DASHED", "DIVIDE", "DOT", "HIDDEN", "PHANTOM"}) {
      const auto& one = file.find(base)->data;
      const auto& half = file.find(QString(base) + "2")->data;
      const auto& twice = file.find(QString(base) + "X2")->data;
      QCOMPARE(half.dashes.size(), one.dashes.size());
      QCOMPARE(twice.dashes.size(), one.dashes.size());
      for (size_t i = 0; i < one.dashes.size(); ++i) {
        QCOMPARE(half.dashes[i].length * 2, one.dashes[i].length);
        QCOMPARE(twice.dashes[i].length, one.dashes[i].length * 2);
      }
    }
    QCOMPARE(file.find("dashed")->data.patternLength, 0.75);
    QCOMPARE(file.find("ACAD_ISO02W100")->data.patternLength, 15.0);
    QCOMPARE(file.find("ACAD_ISO15W100")->data.patternLength, 39.0);
  }

  void brokenLinesAreReportedByLine_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("line");
    QTest::addColumn<QString>("mentions");
    QTest::addColumn<int>("entries");  // definitions still read
    const QString good = "*GOOD,fine\nA,1,-1\n";
    QTest::newRow("not a number") << good + "*BAD,x\nA,1,-x\n" << 4 << "\"-x\"" << 1;
    QTest::newRow("no alignment") << good + "*BAD,x\nB,1,-1\n" << 4 << "\"A\"" << 1;
    QTest::newRow("no dashes") << good + "*BAD,x\nA\n" << 4 << "no dashes" << 1;
    QTest::newRow("starts with a gap") << good + "*BAD,x\nA,-1,1\n" << 4 << "gap" << 1;
    QTest::newRow("no pattern at the end") << good + ";; comment\n*BAD,x\n" << 4 << "BAD" << 1;
    QTest::newRow("header after header") << "*BAD,x\n*GOOD,fine\nA,1,-1\n" << 1 << "BAD" << 1;
    QTest::newRow("pattern without header") << "A,1,-1\n" + good << 1 << "*NAME" << 1;
    QTest::newRow("no name") << good + "*,x\n" << 3 << "name" << 1;
    QTest::newRow("twice") << good + "\n*good,again\nA,2,-2\n" << 4 << "twice" << 1;
    QTest::newRow("complex element before a dash") << good + "*BAD,x\nA,[\"T\",STANDARD],1\n" << 4 << "[" << 1;
    QTest::newRow("complex bad key") << good + "*BAD,x\nA,1,[\"T\",STANDARD,Q=1],-1\n" << 4 << "Q=1" << 1;
    QTest::newRow("windows line ends and comments")
        << "*A,a ;; note\r\nA,1,-1\r\n;;x\r\n*B,b\r\nA,1,-1,x\r\n" << 5 << "\"x\"" << 1;
  }
  void brokenLinesAreReportedByLine() {
    QFETCH(QString, text);
    QFETCH(int, line);
    QFETCH(QString, mentions);
    QFETCH(int, entries);
    const HostLinFile f = HostLinFile::parse(text);
    QCOMPARE(int(f.entries.size()), entries);
    QCOMPARE(int(f.errors.size()), 1);
    QCOMPARE(f.errors[0].line, line);
    QVERIFY2(f.errors[0].message.contains(mentions), qPrintable(f.errors[0].message));
  }

  void complexElementsParse() {
    const HostLinFile f =
        HostLinFile::parse("*GAS,gas\nA,.5,-.2,[\"GAS\",STANDARD,S=.1,R=0.0,X=-0.1,Y=-.05],-.25\n"
                           "*TREE,tree\nA,.3,[TRACK1,ltypeshp.shx,A=90,S=.25],-.3\n");
    QVERIFY(f.errors.empty());
    const auto& gas = f.find("GAS")->data;
    QCOMPARE(gas.dashes.size(), size_t(3));
    QCOMPARE(gas.dashes[1].complexType, 2);
    QCOMPARE(QString::fromStdWString(gas.dashes[1].text.str()), QString("GAS"));
    QCOMPARE(gas.dashes[1].scale, 0.1);
    QCOMPARE(gas.dashes[1].xOffset, -0.1);
    QCOMPARE(f.find("GAS")->styles[1], QString("STANDARD"));
    QCOMPARE(gas.patternLength, 0.95);
    const auto& tree = f.find("TREE")->data;
    QCOMPARE(tree.dashes[0].complexType, 4 | 1);  // a shape, rotated absolutely
    QCOMPARE(tree.dashes[0].rotation, M_PI / 2);
  }

  void loadingAddsRecordsThatReadBackAndUndoRemoves_data() {
    QTest::addColumn<int>("version");
    QTest::newRow("R2018") << int(DxfVersion::R2018);
    QTest::newRow("R2000") << int(DxfVersion::R2000);
    QTest::newRow("R12") << int(DxfVersion::R12);
  }
  void loadingAddsRecordsThatReadBackAndUndoRemoves() {
    QFETCH(int, version);
    const HostLinFile file = HostLinFile::read(hostLinetypeFilePath());
    OdDbDatabasePtr db = OdDbDatabase::createNew(static_cast<DxfVersion>(version));
    const std::vector<HostLinEntry> chosen = {*file.find("DASHDOT"), *file.find("ACAD_ISO10W100")};
    QCOMPARE(hostLoadLinetypes(*db, chosen), 2);
    QCOMPARE(hostLoadLinetypes(*db, chosen), 0);  // present already: nothing added, no second step
    QCOMPARE(QString::fromStdWString(db->undoGroupName().str()), QString("LINETYPE"));

    const OdDbDatabasePtr back = OdDbDatabase::readDxf(db->toDxf());
    for (const HostLinEntry& e : chosen) {
      QVERIFY2(hasLinetype(*back, e.name), qPrintable(e.name));
      const OdDbLinetypeData d = linetypeOf(*back, e.name);
      QCOMPARE(d.description, e.data.description);
      QCOMPARE(d.patternLength, e.data.patternLength);
      QCOMPARE(d.dashes.size(), e.data.dashes.size());
      for (size_t i = 0; i < d.dashes.size(); ++i) QCOMPARE(d.dashes[i].length, e.data.dashes[i].length);
    }
    db->undo();
    for (const HostLinEntry& e : chosen) QVERIFY(!hasLinetype(*db, e.name));
    QVERIFY(hasLinetype(*db, "Continuous"));
  }

  void anIndependentReaderReadsTheLoadedLinetype() {
    const QString python = "/usr/bin/python3";  // Debian's, with its ezdxf
    if (!QFile::exists(python) || QProcess::execute(python, {"-c", "import ezdxf"}) != 0) QSKIP("no ezdxf to read with");
    OdDbDatabasePtr db = OdDbDatabase::createNew();
    hostLoadLinetypes(*db, {*HostLinFile::read(hostLinetypeFilePath()).find("PHANTOM")});
    QTemporaryDir dir;
    const QString path = dir.filePath("lt.dxf");
    db->writeDxfFile(path.toStdString());
    QProcess p;
    p.start(python, {"-c",
                     "import sys, ezdxf\n"
                     "lt = ezdxf.readfile(sys.argv[1]).linetypes.get('PHANTOM')\n"
                     "tags = lt.pattern_tags.tags\n"
                     "print(lt.dxf.description, [t.value for t in tags if t.code == 40][0],"
                     " len([t for t in tags if t.code == 49]))",
                     path});
    QVERIFY(p.waitForFinished());
    const QString out = QString::fromUtf8(p.readAllStandardOutput()).trimmed();
    QVERIFY2(p.exitCode() == 0, qPrintable(QString::fromUtf8(p.readAllStandardError())));
    QVERIFY2(out.endsWith("2.5 6"), qPrintable(out));
  }

  void loadThroughTheDialogsSelectsWhatWasLoaded() {
    OdDbDatabasePtr db = OdDbDatabase::createNew();
    HostLinetypeDialog dialog(db.get(), "ByLayer");
    const int before = dialog.list()->topLevelItemCount();
    dialog.load([](HostLinetypeLoadDialog& load) {
      // The drawing's own Continuous is not in the file; every entry can be chosen.
      for (int i = 0; i < load.list()->topLevelItemCount(); ++i) {
        QTreeWidgetItem* item = load.list()->topLevelItem(i);
        item->setSelected(item->text(0) == "HIDDEN" || item->text(0) == "CENTER2");
      }
      return load.chosen();
    });
    QCOMPARE(dialog.list()->topLevelItemCount(), before + 2);
    QVERIFY(hasLinetype(*db, "HIDDEN"));
    QVERIFY(hasLinetype(*db, "CENTER2"));
    QVERIFY(dialog.selectedName() == "HIDDEN" || dialog.selectedName() == "CENTER2");
    // Loaded ones cannot be chosen a second time.
    HostLinetypeLoadDialog again(db.get(), hostLinetypeFilePath());
    for (int i = 0; i < again.list()->topLevelItemCount(); ++i) {
      QTreeWidgetItem* item = again.list()->topLevelItem(i);
      QCOMPARE(bool(item->flags() & Qt::ItemIsEnabled), item->text(0) != "HIDDEN" && item->text(0) != "CENTER2");
    }
  }

  void samplesShowThePattern() {
    OdDbDatabasePtr db = OdDbDatabase::createNew();
    const HostLinFile file = HostLinFile::read(hostLinetypeFilePath());
    hostLoadLinetypes(*db, {*file.find("DASHED"), *file.find("DOT"), *file.find("HIDDEN2")});
    auto ink = [&](const char* name) {
      return inkOnMiddleRow([&](QPainter& p, const QRect& r) { DrawLineType(&p, r, db.get(), od(name)); });
    };
    const int solid = ink("Continuous");
    QVERIFY(solid >= 110);
    QCOMPARE(ink("ByLayer"), solid);
    QCOMPARE(ink("NO_SUCH"), solid);
    // Dashes of 2/3 of a period fill about 2/3 of the line; dots far less.
    const int dashed = ink("DASHED");
    QVERIFY2(dashed > solid / 2 && dashed < solid * 5 / 6, qPrintable(QString::number(dashed)));
    QVERIFY(ink("DOT") < dashed / 4);
    QVERIFY(ink("DOT") > 0);
    // The sample scales a period to the width, so the half size looks like the full one.
    QVERIFY(std::abs(ink("HIDDEN2") - dashed) <= 4);
  }
};

int runLinetypeTests(int argc, char** argv) {
  LinetypeTests t;
  return QTest::qExec(&t, argc, argv);
}

#include "LinetypeTests.moc"
