// Every host dialog usable without a mouse and nameable by a screen reader.
#include <QTest>

#include <functional>
#include <memory>

#include "DialogsTests.h"
#include "KeyboardCheck.h"
#include "dialogs/HostArrows.h"
#include "dialogs/HostColorDialog.h"
#include "dialogs/HostLinetypeDialog.h"
#include "dialogs/HostTextStyleDialog.h"
#include "hostgui/HostGuiServices.h"

class KeyboardTests : public QObject {
  Q_OBJECT

private slots:
  void everyDialog();
};

void KeyboardTests::everyDialog() {
  OdDbDatabasePtr db = OdDbDatabase::createNew();
  const std::vector<std::pair<const char*, std::function<QDialog*()>>> dialogs = {
      {"color", [] { return new HostColorDialog(OdCmColor(), true); }},
      {"color without logical", [] { return new HostColorDialog(OdCmColor(), false); }},
      {"linetype", [&] { return new HostLinetypeDialog(db.get(), "ByLayer"); }},
      {"linetype load", [&] { return new HostLinetypeLoadDialog(db.get(), hostLinetypeFilePath()); }},
      {"text style", [&] { return new HostTextStyleDialog(db.get(), "Standard"); }},
      {"user arrow", [&] { return new HostUsrArrowDialog(db.get(), OdString()); }},
  };
  for (const auto& [name, make] : dialogs) {
    std::unique_ptr<QDialog> d(make());
    d->show();
    const QStringList problems = keyboard::unnamedControls(d.get()) + keyboard::unreachableByTab(d.get());
    QVERIFY2(problems.isEmpty(), qPrintable(QString(name) + ":\n" + problems.join("\n")));
    // Escape closes a dialog without a change.
    QTest::keyClick(d.get(), Qt::Key_Escape);
    QVERIFY2(!d->isVisible(), name);
  }
}

int runKeyboardTests(int argc, char** argv) {
  KeyboardTests t;
  return QTest::qExec(&t, argc, argv);
}

#include "KeyboardTests.moc"
