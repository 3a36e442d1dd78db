#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QTest>

#include "DialogsTests.h"
#include "dialogs/HostColorDialog.h"
#include "dialogs/HostColorText.h"
#include "hostgui/HostGuiServices.h"

Q_DECLARE_METATYPE(OdCmColor)

namespace {
OdCmColor aci(int i) {
  OdCmColor c;
  c.setColorIndex(static_cast<int16_t>(i));
  return c;
}
OdCmColor rgb(int r, int g, int b) {
  OdCmColor c;
  c.setRGB(static_cast<uint8_t>(r), static_cast<uint8_t>(g), static_cast<uint8_t>(b));
  return c;
}
}  // namespace

class ColorTests : public QObject {
  Q_OBJECT

private slots:
  void parse_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("logical");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<OdCmColor>("color");
    QTest::addColumn<QString>("errorMentions");
    QTest::newRow("word") << "red" << false << true << aci(1) << "";
    QTest::newRow("word any case, spaces") << "  Magenta " << false << true << aci(6) << "";
    QTest::newRow("index") << "1" << false << true << aci(1) << "";
    QTest::newRow("index 255") << "255" << false << true << aci(255) << "";
    QTest::newRow("rgb") << "255,0,0" << false << true << rgb(255, 0, 0) << "";
    QTest::newRow("rgb spaced") << " 12 , 34 ,56" << false << true << rgb(12, 34, 56) << "";
    QTest::newRow("bylayer") << "BYLAYER" << true << true << OdCmColor(OdCmEntityColor::kByLayer) << "";
    QTest::newRow("by layer spelled") << "By Layer" << true << true << OdCmColor(OdCmEntityColor::kByLayer) << "";
    QTest::newRow("byblock lower") << "byblock" << true << true << OdCmColor(OdCmEntityColor::kByBlock) << "";
    QTest::newRow("bylayer refused") << "BYLAYER" << false << false << OdCmColor() << "BYLAYER";
    QTest::newRow("index 0 refused") << "0" << false << false << OdCmColor() << "BYBLOCK";
    QTest::newRow("index 256 refused") << "256" << false << false << OdCmColor() << "BYLAYER";
    QTest::newRow("index too big") << "300" << true << false << OdCmColor() << "300";
    QTest::newRow("rgb part too big") << "255,256,0" << false << false << OdCmColor() << "256";
    QTest::newRow("rgb two parts") << "255,0" << false << false << OdCmColor() << "three";
    QTest::newRow("rgb not a number") << "1,x,3" << false << false << OdCmColor() << "\"x\"";
    QTest::newRow("decimal index") << "1.5" << false << false << OdCmColor() << "1.5";
    QTest::newRow("unknown word") << "purple" << false << false << OdCmColor() << "purple";
    QTest::newRow("empty") << "" << true << false << OdCmColor() << "";
  }
  void parse() {
    QFETCH(QString, text);
    QFETCH(bool, logical);
    QFETCH(bool, ok);
    QFETCH(OdCmColor, color);
    QFETCH(QString, errorMentions);
    const HostColorText::Result r = HostColorText::parse(text, logical);
    QCOMPARE(r.color.has_value(), ok);
    if (ok) {
      QVERIFY(*r.color == color);
      // What the field shows reads back as the same colour.
      const auto back = HostColorText::parse(HostColorText::format(color), true);
      QVERIFY(back.color && *back.color == color);
    } else {
      QVERIFY(!r.error.isEmpty());
      QVERIFY2(r.error.contains(errorMentions), qPrintable(r.error));
    }
  }

  void clickingACellGivesThatIndex_data() {
    QTest::addColumn<int>("index");
    for (int i : {1, 7, 9, 10, 11, 18, 19, 120, 249, 250, 255}) QTest::newRow(qPrintable(QString::number(i))) << i;
  }
  void clickingACellGivesThatIndex() {
    QFETCH(int, index);
    OdCmColor color(OdCmEntityColor::kByLayer);
    whenOpen<HostColorDialog>([index](HostColorDialog* d) {
      auto* grid = d->findChild<HostAciGrid*>();
      QTest::mouseClick(grid, Qt::LeftButton, {}, grid->cellRect(index).center());
      d->accept();
    });
    QVERIFY(hostSetColorDialogTrueColor(color, true, nullptr));
    QCOMPARE(color.colorIndex(), index);
    QVERIFY(color.isByACI());
  }

  void everyIndexHasOneCellAndCellsDoNotOverlap() {
    HostAciGrid grid;
    for (int a = 1; a <= 255; ++a) {
      QVERIFY(grid.cellRect(a).isValid());
      QCOMPARE(grid.indexAt(grid.cellRect(a).center()), a);
    }
  }

  void arrowKeysMoveThroughTheGrid() {
    HostAciGrid grid;
    grid.setSelected(10);
    QTest::keyClick(&grid, Qt::Key_Right);
    QCOMPARE(grid.selected(), 20);  // the next hue
    QTest::keyClick(&grid, Qt::Key_Down);
    QCOMPARE(grid.selected(), 22);  // the next even shade
    QTest::keyClick(&grid, Qt::Key_Left);
    QCOMPARE(grid.selected(), 12);
    QTest::keyClick(&grid, Qt::Key_Up);
    QCOMPARE(grid.selected(), 10);
    QTest::keyClick(&grid, Qt::Key_Up);
    QCOMPARE(grid.selected(), 10);  // nothing above the top row
    grid.setSelected(19);
    QTest::keyClick(&grid, Qt::Key_Down);
    QVERIFY(grid.selected() >= 1 && grid.selected() <= 9);  // from the block down to the standard colours
  }

  void logicalButtons_data() {
    QTest::addColumn<QString>("button");
    QTest::addColumn<OdCmColor>("expected");
    QTest::newRow("ByLayer") << "ByLayer" << OdCmColor(OdCmEntityColor::kByLayer);
    QTest::newRow("ByBlock") << "ByBlock" << OdCmColor(OdCmEntityColor::kByBlock);
  }
  void logicalButtons() {
    QFETCH(QString, button);
    QFETCH(OdCmColor, expected);
    OdCmColor color = aci(3);
    whenOpen<HostColorDialog>([button](HostColorDialog* d) {
      for (auto* b : d->findChildren<QPushButton*>())
        if (b->text().remove('&') == button) b->click();
      d->accept();
    });
    QVERIFY(hostSetColorDialogTrueColor(color, true, nullptr));
    QVERIFY(color == expected);
  }

  void noLogicalButtonsWhenNotAllowed() {
    HostColorDialog d(aci(3), false);
    for (auto* b : d.findChildren<QPushButton*>()) QVERIFY(!b->text().remove('&').startsWith("By"));
  }

  void cancelLeavesTheColour() {
    OdCmColor color = rgb(1, 2, 3);
    whenOpen<HostColorDialog>([](HostColorDialog* d) {
      auto* grid = d->findChild<HostAciGrid*>();
      QTest::mouseClick(grid, Qt::LeftButton, {}, grid->cellRect(5).center());
      d->reject();
    });
    QVERIFY(!hostSetColorDialogTrueColor(color, true, nullptr));
    QVERIFY(color == rgb(1, 2, 3));
  }

  void typedColourIsTheResult() {
    HostColorDialog d(aci(3), true);
    auto* edit = d.findChild<QLineEdit*>();
    edit->setText("10,20,30");
    d.accept();
    QCOMPARE(d.result(), int(QDialog::Accepted));
    QVERIFY(d.color() == rgb(10, 20, 30));
    // A bad text keeps the dialog open and the colour as it was.
    HostColorDialog bad(aci(3), true);
    bad.findChild<QLineEdit*>()->setText("10,20");
    bad.show();
    bad.accept();
    QVERIFY(bad.isVisible());
    QVERIFY(bad.color() == aci(3));
  }

  void customColoursSurviveARestart() {
    QSettings().remove("colors/custom");
    hostAddCustomColor(aci(30));
    hostAddCustomColor(rgb(1, 2, 3));
    hostAddCustomColor(aci(30));  // moves to the end
    // What is on disk, read as a new run of the program reads it: a copy of the
    // file, so that no settings cache of this process answers instead.
    const QString copy = QDir::temp().filePath("hostgui_dialogs_custom_colors.ini");
    QFile::remove(copy);
    QVERIFY(QFile::copy(QSettings().fileName(), copy));
    {
      QSettings disk(copy, QSettings::IniFormat);
      QCOMPARE(disk.beginReadArray("colors/custom"), 2);
      disk.setArrayIndex(0);
      QCOMPARE(disk.value("raw").toUInt(), rgb(1, 2, 3).color());
      disk.setArrayIndex(1);
      QCOMPARE(disk.value("raw").toUInt(), aci(30).color());
      disk.endArray();
    }
    QFile::remove(copy);
    std::vector<OdCmColor> got = hostGetCustomColors();
    QCOMPARE(got.size(), size_t(2));
    QVERIFY(got[0] == rgb(1, 2, 3));
    QVERIFY(got[1] == aci(30));
    for (int i = 1; i <= 20; ++i) hostAddCustomColor(aci(100 + i));
    got = hostGetCustomColors();
    QCOMPARE(got.size(), size_t(16));
    QVERIFY(got.front() == aci(105));  // the oldest went first
    QVERIFY(got.back() == aci(120));
  }
};

int runColorTests(int argc, char** argv) {
  ColorTests t;
  return QTest::qExec(&t, argc, argv);
}

#include "ColorTests.moc"
