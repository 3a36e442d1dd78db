// The main window driven as a user drives it: typing at the command line, menus and
// shortcuts, selecting in the view, the palette, closing with unsaved changes.
#include <QAbstractItemModel>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QAbstractButton>
#include <QMessageBox>
#include <QTabBar>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeView>

#include <deque>
#include <functional>
#include <memory>

#include "drawings/OdDbEntity.h"
#include "host/HostFuncPtr.h"
#include "host/HostServices.h"
#include "host/HostSession.h"
#include "hostgui/HostCommandLineWidget.h"
#include "hostgui/HostDocumentTab.h"
#include "hostgui/HostDrawingView.h"
#include "hostgui/HostMainWindow.h"
#include "hostgui/HostPalette.h"
#include "KeyboardCheck.h"

extern "C" void* get_host_funcptr(int which) { return hostFuncPtr(which); }

namespace {

// Types a line into the command line's input and presses Enter, as a user would.
void type(HostMainWindow& w, const QString& line) {
  QLineEdit* input = w.commandLine()->input();
  input->setFocus();
  QTest::keyClicks(input, line);
  QTest::keyClick(input, Qt::Key_Return);
}

// Plays a user's actions one by one, each when the command line can take input
// (a prompt waits, or "Command: " does). A command that asks for input runs its
// own event loop, and the next action arrives from inside it, as keys would.
// Returns once every action was taken and nothing runs any more.
using Step = std::function<void()>;
bool play(HostMainWindow& w, std::vector<Step> steps) {
  auto queue = std::make_shared<std::deque<Step>>(steps.begin(), steps.end());
  HostCommandLineWidget* cl = w.commandLine();
  auto pump = std::make_shared<std::function<void()>>();
  HostSession* session = &w.session();
  *pump = [queue, cl, pump, session] {
    if (queue->empty()) return;
    QTimer::singleShot(5, cl, *pump);
    if (!cl->waiting() && !cl->idle() && !session->quitRequested()) return;
    Step step = queue->front();
    queue->pop_front();
    step();
  };
  QTimer::singleShot(0, cl, *pump);
  QElapsedTimer t;
  t.start();
  while ((!queue->empty() || !(cl->idle() || w.session().quitRequested())) && t.elapsed() < 60000)
    QTest::qWait(5);
  *pump = nullptr;
  return queue->empty();
}

Step typed(HostMainWindow& w, const QString& line) {
  return [&w, line] { type(w, line); };
}

// A window drawn in the view from one corner to the other.
Step dragWindow(HostDrawingView* view, QPoint from, QPoint to) {
  return [view, from, to] {
    QTest::mousePress(view, Qt::LeftButton, {}, from);
    QTest::mouseMove(view, (from + to) / 2);
    QTest::mouseMove(view, to);
    QTest::mouseRelease(view, Qt::LeftButton, {}, to);
  };
}

// Runs `answer` on the next modal dialog that opens (a message box), from the
// event loop that dialog runs.
void onNextModal(std::function<void(QWidget*)> answer) {
  auto* timer = new QTimer;
  timer->setInterval(20);
  QObject::connect(timer, &QTimer::timeout, [timer, answer] {
    if (QWidget* modal = QApplication::activeModalWidget()) {
      timer->stop();
      timer->deleteLater();
      answer(modal);
    }
  });
  timer->start();
}

void clickButton(QWidget* box, QMessageBox::StandardButton which) {
  auto* mb = qobject_cast<QMessageBox*>(box);
  QVERIFY(mb);
  QTest::mouseClick(mb->button(which), Qt::LeftButton);
}

// While it lives, answers Discard to every "Save changes?" box: QUIT in a
// transcript closes the window, which asks as it must.
class DiscardChanges {
public:
  DiscardChanges() {
    m_timer.setInterval(20);
    QObject::connect(&m_timer, &QTimer::timeout, [] {
      if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget()))
        if (QAbstractButton* discard = box->button(QMessageBox::Discard)) discard->click();
    });
    m_timer.start();
  }

private:
  QTimer m_timer;
};

struct Session {
  QString name, args, input, expected;
};

Session readSession(const QString& path, const QString& tmp) {
  QFile f(path);
  f.open(QIODevice::ReadOnly);
  QString text = QString::fromUtf8(f.readAll());
  text.replace("@TMP@", tmp).replace("@CORPUS@", CORPUS_DIR).replace("@SAMPLES@", SAMPLES_DIR);
  Session s;
  s.name = QFileInfo(path).baseName();
  s.args = text.section('\n', 0, 0).mid(QString("args:").size()).trimmed();
  const qsizetype in = text.indexOf("\ninput:\n"), out = text.indexOf("\noutput:\n");
  s.input = text.mid(in + 8, out - in - 8);
  s.expected = text.mid(out + 9);
  return s;
}

}  // namespace

class MainWindowTest : public QObject {
  Q_OBJECT

private slots:
  void init() { hostSetLanguage("en"); }

  // The command line runs the console's sessions with the same texts.
  void consoleSessionsRunUnchanged_data();
  void consoleSessionsRunUnchanged();
  void commandLineKeysAndKeywords();
  void selectInViewAnswersPromptsAndPalette();
  void generalPropertyChangeIsOneUndoStep();
  void closingWithUnsavedChangesAsks();
  void openErrorLeavesWindowAsItWas();
  void menusHaveTextsInBothLanguages();
  void everyControlNamedAndReachable();
  void typingInTheViewGoesToTheCommandLine();
};

void MainWindowTest::consoleSessionsRunUnchanged_data() {
  QTest::addColumn<QString>("path");
  for (const QFileInfo& f : QDir(SESSIONS_DIR).entryInfoList({"*.txt"}, QDir::Files, QDir::Name)) {
    QFile file(f.filePath());
    file.open(QIODevice::ReadOnly);
    const QString first = QString::fromUtf8(file.readLine());
    // Module paths and exit statuses belong to the program's start, not to the command line.
    if (first.contains("--module") || f.baseName() == "file_errors") continue;
    QTest::newRow(qPrintable(f.baseName())) << f.filePath();
  }
}

void MainWindowTest::consoleSessionsRunUnchanged() {
  QFETCH(QString, path);
  QTemporaryDir tmp;
  const Session s = readSession(path, tmp.path());
  const QString before = QDir::currentPath();
  QDir::setCurrent(tmp.path());
  QStringList args = s.args.split(' ', Qt::SkipEmptyParts);
  if (const qsizetype i = args.indexOf("--lang"); i >= 0) {
    hostSetLanguage(args[i + 1].toStdString());
    args.remove(i, 2);
  }
  {
    DiscardChanges discard;
    HostMainWindow w({DDS_MODULE_PATH});
    for (const QString& a : args) w.session().open(a.toStdString());
    std::vector<Step> steps;
    QStringList lines = s.input.split('\n');
    if (!lines.isEmpty() && lines.back().isEmpty()) lines.pop_back();
    for (const QString& line : lines)
      steps.push_back([&w, line] { if (!w.session().quitRequested()) w.commandLine()->submit(line); });
    // A prompt still waiting at the end of the script ends as the console's input does.
    steps.push_back([&w] { if (w.commandLine()->waiting()) w.commandLine()->endInput(); });
    QVERIFY(play(w, steps));
    QString got = w.commandLine()->historyText() + "\n" + w.commandLine()->prompt();
    QString want = s.expected;
    // The console shows an Escape as it was typed; the window shows none.
    want.remove(QChar(0x1b));
    // The console ends at the end of input; the window waits for the next command.
    if (!w.session().quitRequested() && !want.endsWith("Command: ")) want += "Command: ";
    QCOMPARE(got.trimmed(), want.trimmed());
  }
  QDir::setCurrent(before);
}

void MainWindowTest::commandLineKeysAndKeywords() {
  DiscardChanges discard;
  HostMainWindow w({DDS_MODULE_PATH});
  w.show();
  HostCommandLineWidget* cl = w.commandLine();
  auto* prompt = cl->findChild<QLabel*>("commandPrompt");
  // The prompt's keywords are links; choosing one enters it.
  QString shown;
  QVERIFY(play(w, {typed(w, "NEW"), [&] {
                     shown = prompt->text();
                     emit prompt->linkActivated("kw:Metric");
                   }}));
  QVERIFY2(shown.contains("href=\"kw:Metric\""), qPrintable(shown));
  QVERIFY(cl->historyText().endsWith("New Metric drawing (R2018)."));
  QCOMPARE(w.session().activeDocument()->database()->getMEASUREMENT(), 1);
  // Enter on an empty line repeats the last command; Escape cancels its prompt.
  bool repeated = false;
  QVERIFY(play(w, {[&] { QTest::keyClick(cl->input(), Qt::Key_Return); },
                   [&] {
                     repeated = cl->waiting() && cl->historyText().endsWith("Command: NEW");
                     QTest::keyClick(cl->input(), Qt::Key_Escape);
                   }}));
  QVERIFY2(repeated, qPrintable(cl->historyText().right(300)));
  QVERIFY(cl->historyText().endsWith("*Cancel*"));
  QCOMPARE(cl->prompt(), QString("Command: "));
  QCOMPARE(w.documentTabs()->count(), 1);
  // Up and Down walk what was entered.
  QTest::keyClick(cl->input(), Qt::Key_Up);
  QCOMPARE(cl->input()->text(), QString("Metric"));
  QTest::keyClick(cl->input(), Qt::Key_Up);
  QCOMPARE(cl->input()->text(), QString("NEW"));
  QTest::keyClick(cl->input(), Qt::Key_Down);
  QCOMPARE(cl->input()->text(), QString("Metric"));
  QTest::keyClick(cl->input(), Qt::Key_Down);
  QCOMPARE(cl->input()->text(), QString());
  // A menu command while a prompt waits cancels the prompt and runs after it.
  QVERIFY(play(w, {typed(w, "DIMASZ"), typed(w, "0.5")}));
  QVERIFY(w.action("actionUndo")->isEnabled());
  QVERIFY(play(w, {typed(w, "NEW"), [&] {
                     w.action("actionZoomExtents")->trigger();
                     w.action("actionUndo")->trigger();
                   }}));
  QVERIFY2(cl->historyText().endsWith("*Cancel*\nCommand: _UNDO\nUNDO: DIMASZ"), qPrintable(cl->historyText().right(200)));
  QCOMPARE(w.session().activeDocument()->database()->dimasz(), 2.5);
  QVERIFY(!w.action("actionUndo")->isEnabled());
  w.close();
}

void MainWindowTest::selectInViewAnswersPromptsAndPalette() {
  HostMainWindow w({DDS_MODULE_PATH});
  w.resize(1200, 800);
  w.show();
  QVERIFY(QTest::qWaitForWindowExposed(&w));
  w.openFiles({SAMPLES_DIR "/dimstyles.dxf"});
  w.waitForOpening();
  QCOMPARE(w.documentTabs()->count(), 1);
  HostDrawingView* view = w.currentTab()->view();
  QVERIFY(w.currentTab()->layoutTabs()->count() >= 1);
  QCOMPARE(w.currentTab()->layoutTabs()->tabText(0), QString("Model"));
  // A left-to-right window over the whole view selects everything inside it.
  dragWindow(view, QPoint(2, 2), QPoint(view->width() - 2, view->height() - 2))();
  const size_t all = view->selection().size();
  QVERIFY(all > 10);
  // The palette shows the selection: the filter counts it, rows show.
  auto* filter = w.palette()->findChild<QComboBox*>();
  QVERIFY(filter);
  QVERIFY2(filter->itemText(0).contains(QString::number(all)), qPrintable(filter->itemText(0)));
  auto* tree = w.palette()->findChild<QTreeView*>();
  QVERIFY(tree && tree->model()->rowCount() > 0);
  // The selection answers "Select objects" of a command started after it.
  QVERIFY(play(w, {typed(w, "DIMREGEN"), typed(w, "S")}));
  QVERIFY2(w.commandLine()->historyText().contains(QString("Select objects: %1 found").arg(all)),
           qPrintable(w.commandLine()->historyText().right(300)));
  QVERIFY(w.commandLine()->historyText().endsWith("recomputed."));
  QVERIFY(view->selection().empty());
  // While "Select objects" waits, a window in the view answers it.
  QString afterWindow;
  const QPoint topLeft(2, 2), bottomRight(view->width() - 2, view->height() - 2);
  QVERIFY(play(w, {typed(w, "DIMREGEN"), typed(w, "S"), dragWindow(view, topLeft, bottomRight),
                   [&] {
                     afterWindow = w.commandLine()->historyText();
                     QTest::keyClick(w.commandLine()->input(), Qt::Key_Return);
                   }}));
  QVERIFY2(afterWindow.endsWith(QString("Select objects: %1 found").arg(all)), qPrintable(afterWindow.right(200)));
  QVERIFY(w.commandLine()->historyText().endsWith("recomputed."));
  onNextModal([](QWidget* box) { clickButton(box, QMessageBox::Discard); });
  w.close();
}

void MainWindowTest::generalPropertyChangeIsOneUndoStep() {
  HostMainWindow w({DDS_MODULE_PATH});
  w.show();
  w.openFiles({SAMPLES_DIR "/dimstyles.dxf"});
  w.waitForOpening();
  HostApDocument* doc = w.session().activeDocument();
  QVERIFY(!w.isModified(doc));
  HostDrawingView* view = w.currentTab()->view();
  view->setFocus();
  QTest::keyClick(view, Qt::Key_A, Qt::ControlModifier);
  const OdDbObjectIdArray selected = view->selection();
  QVERIFY(!selected.empty());
  std::vector<int> colorsBefore;
  for (const auto& id : selected) colorsBefore.push_back(odOpen<OdDbEntity>(id)->colorIndex());
  // Through the palette's own write path, as its editor commits.
  IOdPropertyManager* pm = nullptr;
  QVERIFY(doc->getPropManager(&pm));
  IOdProperty* color = nullptr;
  for (IOdProperty* p : pm->properties())
    if (p->name() == OdString(L"General.Color")) color = p;
  QVERIFY(color);
  auto editable = color->createEditable(selected);
  QVERIFY(editable);
  QCOMPARE(editable->setText(L"red"), kHostOk);
  w.drawingChanged();
  for (const auto& id : selected) {
    auto e = odOpen<OdDbEntity>(id);
    QCOMPARE(e->colorIndex(), 1);
  }
  QVERIFY(w.isModified(doc));
  QVERIFY(w.windowTitle().contains("*") || w.isWindowModified());
  // Ctrl+Z takes the whole change back.
  QTest::keyClick(&w, Qt::Key_Z, Qt::ControlModifier);
  QVERIFY(w.commandLine()->historyText().contains("UNDO: OPM_CHGPROP"));
  for (size_t i = 0; i < selected.size(); ++i)
    QCOMPARE(odOpen<OdDbEntity>(selected[i])->colorIndex(), colorsBefore[i]);
  QVERIFY(!doc->database()->hasUndo());
  onNextModal([](QWidget* box) { clickButton(box, QMessageBox::Discard); });
  w.close();
}

void MainWindowTest::closingWithUnsavedChangesAsks() {
  QTemporaryDir tmp;
  const QString copy = tmp.filePath("copy.dxf");
  QVERIFY(QFile::copy(SAMPLES_DIR "/dimstyles.dxf", copy));
  HostMainWindow w({DDS_MODULE_PATH});
  w.show();
  w.openFiles({copy});
  w.waitForOpening();
  QVERIFY(play(w, {typed(w, "DIMREGEN"), typed(w, "ALL")}));
  QVERIFY(w.isModified(w.session().activeDocument()));
  QVERIFY(w.documentTabs()->tabText(0).endsWith("*"));
  // Cancel keeps the window and the drawing.
  onNextModal([](QWidget* box) { clickButton(box, QMessageBox::Cancel); });
  QVERIFY(!w.close());
  QCOMPARE(w.documentTabs()->count(), 1);
  // Save writes the file, and the window closes.
  const QByteArray before = [&] { QFile f(copy); f.open(QIODevice::ReadOnly); return f.readAll(); }();
  onNextModal([](QWidget* box) { clickButton(box, QMessageBox::Save); });
  QVERIFY(w.close());
  QFile f(copy);
  f.open(QIODevice::ReadOnly);
  QVERIFY(f.readAll() != before);
}

void MainWindowTest::openErrorLeavesWindowAsItWas() {
  QTemporaryDir tmp;
  const QString bad = tmp.filePath("bad.dxf");
  QFile f(bad);
  f.open(QIODevice::WriteOnly);
  f.write("  0\nSECTION\n  2\nHEADER\n  9\n$ACADVER\n  1\nAC1015\nnot a code\n");
  f.close();
  HostMainWindow w({DDS_MODULE_PATH});
  w.show();
  w.openFiles({SAMPLES_DIR "/dimstyles.dxf"});
  w.waitForOpening();
  QString shown;
  onNextModal([&shown](QWidget* box) {
    shown = qobject_cast<QMessageBox*>(box)->text();
    clickButton(box, QMessageBox::Ok);
  });
  w.openFiles({bad});
  w.waitForOpening();
  QVERIFY2(shown.contains("bad.dxf") && shown.contains("line"), qPrintable(shown));
  QCOMPARE(w.documentTabs()->count(), 1);
  QVERIFY(w.commandLine()->historyText().contains("Cannot open drawing:"));
  w.close();
}

void MainWindowTest::menusHaveTextsInBothLanguages() {
  HostMainWindow w;
  QStringList english;
  for (QAction* a : w.findChildren<QAction*>())
    if (a->objectName().startsWith("action")) english << a->text();
  w.action("actionRussian")->trigger();
  // Qt tells widgets of the new language with an event of its own.
  QTRY_COMPARE(w.action("actionOpen")->text(), QString("&Открыть..."));
  int changed = 0;
  for (QAction* a : w.findChildren<QAction*>()) {
    if (!a->objectName().startsWith("action") || a->objectName() == "actionEnglish" || a->objectName() == "actionRussian")
      continue;
    QVERIFY2(!a->text().isEmpty(), qPrintable(a->objectName()));
    if (!english.contains(a->text())) ++changed;
  }
  QVERIFY2(changed > 10, qPrintable(QString::number(changed)));
  w.action("actionEnglish")->trigger();
  QTRY_COMPARE(w.action("actionOpen")->text(), QString("&Open..."));
}

void MainWindowTest::everyControlNamedAndReachable() {
  HostMainWindow w;
  w.show();
  w.openFiles({SAMPLES_DIR "/dimstyles.dxf"});
  w.waitForOpening();
  w.currentTab()->view()->selectAll();
  QVERIFY2(keyboard::unnamedControls(&w).isEmpty(), qPrintable(keyboard::unnamedControls(&w).join("\n")));
  QVERIFY2(keyboard::unreachableByTab(&w).isEmpty(), qPrintable(keyboard::unreachableByTab(&w).join("\n")));
  // The accelerators of the menus open them.
  QTest::keyClick(&w, Qt::Key_F, Qt::AltModifier);
  QTRY_VERIFY(QApplication::activePopupWidget());
  QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
  // F1 opens the help at the window's page.
  QTest::keyClick(w.commandLine()->input(), Qt::Key_F1);
  QWidget* help = nullptr;
  QTRY_VERIFY((help = [] {
    for (QWidget* t : QApplication::topLevelWidgets())
      if (t->isVisible() && t->objectName().contains("help", Qt::CaseInsensitive)) return t;
    return static_cast<QWidget*>(nullptr);
  }()));
  help->close();
  w.close();
}

void MainWindowTest::typingInTheViewGoesToTheCommandLine() {
  DiscardChanges discard;
  HostMainWindow w({DDS_MODULE_PATH});
  w.show();
  w.openFiles({SAMPLES_DIR "/dimstyles.dxf"});
  w.waitForOpening();
  HostDrawingView* view = w.currentTab()->view();
  QVERIFY(play(w, {[&] {
                     view->setFocus();
                     QTest::keyClicks(view, "DIMREGEN");
                     QCOMPARE(w.commandLine()->input()->text(), QString("DIMREGEN"));
                     QTest::keyClick(w.commandLine()->input(), Qt::Key_Return);
                   },
                   [&] { QTest::keyClick(w.commandLine()->input(), Qt::Key_Return); },
                   // Enter in the view repeats the last command.
                   [&] {
                     view->setFocus();
                     QTest::keyClick(view, Qt::Key_Return);
                   },
                   [&] { QTest::keyClick(w.commandLine()->input(), Qt::Key_Return); }}));
  QCOMPARE(w.commandLine()->historyText().count("recomputed."), 2);
  // The view's own keys stay the view's.
  view->setFocus();
  QTest::keyClick(view, Qt::Key_Minus);
  QVERIFY(w.commandLine()->input()->text().isEmpty());
  w.close();
}

QTEST_MAIN(MainWindowTest)
#include "MainWindowTest.moc"
