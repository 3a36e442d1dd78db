#include <QImage>
#include <QListWidget>
#include <QPainter>
#include <QTest>

#include "DialogsTests.h"
#include "dialogs/HostArrows.h"
#include "drawings/OdDbBlockBuilder.h"
#include "drawings/OdDbGeometry.h"
#include "hostgui/HostGuiServices.h"

namespace {
QImage paintArrow(const OdString& name, const OdDbDatabase* db, QColor pen = QColor(200, 0, 0)) {
  QImage img(64, 32, QImage::Format_RGB32);
  img.fill(Qt::white);
  QPainter p(&img);
  p.setPen(pen);
  DrawArrow(&p, img.rect(), name, db);
  return img;
}

// Pixels that are not the white background; `foreign` counts those that are not
// a shade of the pen's red either.
int ink(const QImage& img, int* foreign = nullptr) {
  int n = 0;
  if (foreign) *foreign = 0;
  for (int y = 0; y < img.height(); ++y)
    for (int x = 0; x < img.width(); ++x) {
      const QRgb c = img.pixel(x, y);
      if (c == qRgb(255, 255, 255)) continue;
      ++n;
      if (foreign && !(qRed(c) > qGreen(c) && qGreen(c) == qBlue(c))) {
        if (*foreign == 0) qWarning("foreign pixel %d,%d: %d %d %d", x, y, qRed(c), qGreen(c), qBlue(c));
        ++*foreign;
      }
    }
  return n;
}

// The middle of the ink, left to right: where the mass of the arrow is.
double inkCentreX(const QImage& img) {
  double sum = 0;
  int n = 0;
  for (int y = 0; y < img.height(); ++y)
    for (int x = 0; x < img.width(); ++x)
      if (img.pixel(x, y) != qRgb(255, 255, 255)) {
        sum += x;
        ++n;
      }
  return n ? sum / n : -1;
}
}  // namespace

class ArrowTests : public QObject {
  Q_OBJECT

private slots:
  void everyStandardArrowPaintsItsOwnSampleInThePenColour() {
    const auto& names = hostStandardArrowNames();
    QCOMPARE(names.size(), size_t(20));
    std::vector<QImage> images;
    for (const OdString& name : names) {
      const QImage img = paintArrow(name, nullptr);
      int foreign = 0;
      const int n = ink(img, &foreign);
      if (name == L"_None") {
        QCOMPARE(n, 0);
        continue;
      }
      QVERIFY2(n > 10, qPrintable(QString::fromStdWString(name.str())));
      QVERIFY2(foreign == 0, qPrintable(QString::fromStdWString(name.str())));
      for (size_t k = 0; k < images.size(); ++k)
        QVERIFY2(images[k] != img, qPrintable(QString::fromStdWString(name.str()) + " looks like an earlier arrow"));
      images.push_back(img);
    }
  }

  void samplesPointRightAndFilledOnesHaveMoreInk() {
    // The closed arrows' mass lies left of their tip: the tip points right.
    for (const wchar_t* name : {L"", L"_Closed", L"_DatumFilled"}) {
      const QImage img = paintArrow(name, nullptr);
      int rightmost = 0;
      for (int y = 0; y < img.height(); ++y)
        for (int x = 0; x < img.width(); ++x)
          if (img.pixel(x, y) != qRgb(255, 255, 255)) rightmost = std::max(rightmost, x);
      QVERIFY(inkCentreX(img) < rightmost - 4);
    }
    QVERIFY(ink(paintArrow(L"", nullptr)) > ink(paintArrow(L"_ClosedBlank", nullptr)));
    QVERIFY(ink(paintArrow(L"_BoxFilled", nullptr)) > ink(paintArrow(L"_BoxBlank", nullptr)));
    // A common window: the small dot stays smaller than the big one.
    QVERIFY(ink(paintArrow(L"_DotSmall", nullptr)) < ink(paintArrow(L"_Dot", nullptr)));
  }

  void userBlocksPaintFromTheDrawingAndUnknownNamesPaintNothing() {
    OdDbDatabasePtr db = OdDbDatabase::createNew();
    const OdDbObjectId block = odCreateBlock(*db, L"MyTick");
    auto line = OdDbLine::createFor(*db);
    line->setStartPoint({-1, -1, 0});
    line->setEndPoint({1, 1, 0});
    odOpen<OdDbBlockTableRecord>(block, OdDb::kForWrite)->appendOdDbEntity(line.get());
    QVERIFY(ink(paintArrow(L"MyTick", db.get())) > 10);
    QCOMPARE(ink(paintArrow(L"MyTick", nullptr)), 0);
    QCOMPARE(ink(paintArrow(L"NoSuchBlock", db.get())), 0);
    // Drawing samples adds nothing to the user's drawing.
    QVERIFY(!odOpen<OdDbBlockTable>(db->getBlockTableId())->has(L"_Closed"));
    paintArrow(L"_Closed", db.get());
    QVERIFY(!odOpen<OdDbBlockTable>(db->getBlockTableId())->has(L"_Closed"));
  }

  void userArrowDialogListsPlainBlocksOnly() {
    OdDbDatabasePtr db = OdDbDatabase::createNew();
    odCreateBlock(*db, L"Beta");
    odCreateBlock(*db, L"Alpha");
    odCreateBlock(*db, L"*U");
    HostUsrArrowDialog d(db.get(), L"Beta");
    QStringList names;
    for (int i = 0; i < d.list()->count(); ++i) names << d.list()->item(i)->text();
    QCOMPARE(names, QStringList({"Alpha", "Beta"}));
    QCOMPARE(d.blockName(), OdString(L"Beta"));
    OdString chosen = L"Beta";
    whenOpen<HostUsrArrowDialog>([](HostUsrArrowDialog* dlg) {
      dlg->list()->setCurrentRow(0);
      dlg->accept();
    });
    QVERIFY(hostUsrArrowDialog(nullptr, db.get(), chosen));
    QCOMPARE(chosen, OdString(L"Alpha"));
    whenOpen<HostUsrArrowDialog>([](HostUsrArrowDialog* dlg) { dlg->reject(); });
    QVERIFY(!hostUsrArrowDialog(nullptr, db.get(), chosen));
    QCOMPARE(chosen, OdString(L"Alpha"));
  }
};

int runArrowTests(int argc, char** argv) {
  ArrowTests t;
  return QTest::qExec(&t, argc, argv);
}

#include "ArrowTests.moc"
