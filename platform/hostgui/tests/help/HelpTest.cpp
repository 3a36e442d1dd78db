// The help pages and the help window, driven as a user does: by key from a
// dialog's Help button, through links, the contents and back/forward.
#include <QApplication>
#include <QDirIterator>
#include <QFile>
#include <QListWidget>
#include <QRegularExpression>
#include <QSet>
#include <QTest>
#include <QTextBrowser>
#include <QToolButton>

#include "help/HelpWindow.h"
#include "host/HostServices.h"
#include "hostgui/HostGuiServices.h"

namespace {

HelpWindow* helpWindow() {
  for (QWidget* w : QApplication::topLevelWidgets())
    if (auto* h = qobject_cast<HelpWindow*>(w); h && h->isVisible()) return h;
  return nullptr;
}

QString read(const QString& path) {
  QFile f(path);
  return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
}

QStringList pagesOf(const QString& language) {
  QStringList out;
  QDirIterator it(":/help/" + language);
  while (it.hasNext()) out << it.next().section('/', -1);
  out.sort();
  return out;
}

}  // namespace

class HelpTest : public QObject {
  Q_OBJECT

private slots:
  void init() { hostSetLanguage("en"); }
  void cleanup() {
    if (HelpWindow* w = helpWindow()) w->close();
    QApplication::processEvents();
  }

  void everyKeyHasAnEnglishAndARussianPage_data() {
    QTest::addColumn<QString>("key");
    // What the dialogs, the commands and the window ask for.
    for (const char* key : {"index", "WINDOW", "VEX_HELP_DIMSTYLE_DLG", "VEX_HELP_DIMSTYLE_NEW",
                            "VEX_HELP_DIMSTYLE_MODIFY", "VEX_HELP_DIMSTYLE_DIFF", "OPEN", "NEW", "SAVE", "SAVEAS",
                            "CLOSE", "UNDO", "REDO", "SETVAR", "DIMREGEN", "RENDER", "HELP", "QUIT", "DIMSTYLE",
                            "-DIMSTYLE"})
      QTest::newRow(key) << QString(key);
  }
  void everyKeyHasAnEnglishAndARussianPage() {
    QFETCH(QString, key);
    QVERIFY2(hostHelpKeys().contains(key), qPrintable(key));
    const QString file = help::pageFile(key);
    QVERIFY(!file.isEmpty());
    const QString en = read(":/help/en/" + file), ru = read(":/help/ru/" + file);
    QVERIFY2(!en.isEmpty() && !ru.isEmpty(), qPrintable(file));
    QVERIFY(!help::pageTitle(QUrl("qrc:/help/en/" + file)).isEmpty());
    QVERIFY(!help::pageTitle(QUrl("qrc:/help/ru/" + file)).isEmpty());
    // A Russian page is written in Russian, not a copy of the English one.
    QVERIFY2(ru.contains(QRegularExpression("[а-яА-Я]{4,}")), qPrintable(file));
    QVERIFY(en != ru);
  }

  // Every key's page exists in both languages and no page is left out of the
  // contents: a page that no key names could never be found.
  void bothLanguagesHoldTheSamePagesAndAllAreKeyed() {
    const QStringList en = pagesOf("en");
    QCOMPARE(pagesOf("ru"), en);
    QSet<QString> keyed;
    for (const QString& key : hostHelpKeys()) keyed << help::pageFile(key);
    for (const QString& page : en) QVERIFY2(keyed.contains(page), qPrintable(page));
  }

  void everyLinkResolvesToAPage() {
    static const QRegularExpression href("href=\"([^\"]*)\"");
    int links = 0;
    for (const QString& language : {QString("en"), QString("ru")})
      for (const QString& page : pagesOf(language)) {
        const QString text = read(":/help/" + language + "/" + page);
        for (auto m = href.globalMatch(text); m.hasNext();) {
          const QString target = m.next().captured(1).section('#', 0, 0);
          ++links;
          QVERIFY2(!target.contains(':') && !target.contains('/'),
                   qPrintable(language + "/" + page + " links outside the help: " + target));
          QVERIFY2(QFile::exists(":/help/" + language + "/" + target),
                   qPrintable(language + "/" + page + " links to a missing page: " + target));
        }
      }
    QVERIFY(links > 40);
  }

  void fallsBackToEnglishThenToTheIndex_data() {
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("language");
    QTest::addColumn<QString>("url");
    QTest::newRow("russian page") << "SAVEAS" << "ru" << "qrc:/help/ru/cmd_saveas.html";
    QTest::newRow("key in any case") << "saveas" << "en" << "qrc:/help/en/cmd_saveas.html";
    QTest::newRow("language without pages") << "UNDO" << "de" << "qrc:/help/en/cmd_undo.html";
    QTest::newRow("unknown key") << "NO_SUCH_KEY" << "ru" << "qrc:/help/ru/index.html";
    QTest::newRow("unknown key and language") << "" << "de" << "qrc:/help/en/index.html";
  }
  void fallsBackToEnglishThenToTheIndex() {
    QFETCH(QString, key);
    QFETCH(QString, language);
    QFETCH(QString, url);
    QCOMPARE(help::pageUrl(key, language).toString(), url);
  }

  void showsTheKeysPageInTheUserInterfaceLanguage_data() {
    QTest::addColumn<QString>("language");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("url");
    QTest::newRow("en manager") << "en" << "VEX_HELP_DIMSTYLE_DLG" << "qrc:/help/en/dimstyle_manager.html";
    QTest::newRow("ru new style") << "ru" << "VEX_HELP_DIMSTYLE_NEW" << "qrc:/help/ru/dimstyle_new.html";
    QTest::newRow("ru command line style") << "ru" << "-DIMSTYLE" << "qrc:/help/ru/cmd_dimstyle_line.html";
    QTest::newRow("ru unknown") << "ru" << "VEX_HELP_NOTHING" << "qrc:/help/ru/index.html";
    QTest::newRow("en unknown") << "en" << "VEX_HELP_NOTHING" << "qrc:/help/en/index.html";
  }
  void showsTheKeysPageInTheUserInterfaceLanguage() {
    QFETCH(QString, language);
    QFETCH(QString, key);
    QFETCH(QString, url);
    hostSetLanguage(language.toStdString());
    QWidget dialog;
    dialog.show();
    hostShowHelp(key, &dialog);
    HelpWindow* w = helpWindow();
    QVERIFY(w);
    QVERIFY(!w->isModal());
    QCOMPARE(w->browser()->source().toString(), url);
    // The contents are in the same language and follow the page shown.
    QVERIFY(w->contents()->currentItem());
    QCOMPARE(w->contents()->currentItem()->text(), help::pageTitle(QUrl(url)));
    QCOMPARE(w->contents()->count(), hostHelpKeys().size());
    hostSetLanguage("en");
  }

  // Another request while the window is open shows its page in the same window.
  void oneWindowServesEveryRequest() {
    hostShowHelp("UNDO");
    HelpWindow* first = helpWindow();
    QVERIFY(first);
    QCOMPARE(first->windowTitle(), QString("Help"));
    hostShowHelp("REDO");
    QCOMPARE(helpWindow(), first);
    QCOMPARE(first->browser()->source().toString(), QString("qrc:/help/en/cmd_redo.html"));
  }

  void linksContentsAndHistoryStayInTheWindow() {
    hostShowHelp("index");
    HelpWindow* w = helpWindow();
    QVERIFY(w);
    auto* back = w->findChild<QToolButton*>("helpBack");
    auto* forward = w->findChild<QToolButton*>("helpForward");
    auto* home = w->findChild<QToolButton*>("helpHome");
    QVERIFY(back && forward && home);
    for (QToolButton* b : {back, forward, home}) {
      QVERIFY(!b->accessibleName().isEmpty());
      QVERIFY(b->focusPolicy() & Qt::TabFocus);
    }
    QVERIFY(!back->isEnabled());

    // A link of the page, reached and followed by keyboard, opens inside the
    // browser, relative to the page: the index's first link is the window's page.
    w->activateWindow();
    w->browser()->setFocus();
    QTest::keyClick(w->browser(), Qt::Key_Tab);
    QTest::keyClick(w->browser(), Qt::Key_Return);
    QCOMPARE(w->browser()->source().toString(), QString("qrc:/help/en/window.html"));
    hostShowHelp("SETVAR");
    QCOMPARE(w->browser()->source().toString(), QString("qrc:/help/en/cmd_setvar.html"));
    QVERIFY(back->isEnabled());
    // A contents entry shows its page.
    const int row = hostHelpKeys().indexOf("VEX_HELP_DIMSTYLE_DIFF");
    w->contents()->setCurrentRow(row);
    QCOMPARE(w->browser()->source().toString(), QString("qrc:/help/en/dimstyle_compare.html"));
    QTest::mouseClick(back, Qt::LeftButton);
    QCOMPARE(w->browser()->source().toString(), QString("qrc:/help/en/cmd_setvar.html"));
    QCOMPARE(w->contents()->currentItem()->text(), help::pageTitle(QUrl("qrc:/help/en/cmd_setvar.html")));
    QTest::mouseClick(forward, Qt::LeftButton);
    QCOMPARE(w->browser()->source().toString(), QString("qrc:/help/en/dimstyle_compare.html"));
    QTest::mouseClick(home, Qt::LeftButton);
    QCOMPARE(w->browser()->source().toString(), QString("qrc:/help/en/index.html"));
    QVERIFY(!w->browser()->openExternalLinks());
  }
};

QTEST_MAIN(HelpTest)
#include "HelpTest.moc"
