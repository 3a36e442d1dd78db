// The host dialogs' tests: one QtTest class per dialog, run in turn.
#include <QApplication>
#include <QDir>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>

#include "DialogsTests.h"

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  // Settings of a run of their own, so custom colours start empty and the user's stay untouched.
  QTemporaryDir settingsDir;
  QSettings::setDefaultFormat(QSettings::IniFormat);
  QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settingsDir.path());
  QCoreApplication::setOrganizationName(QStringLiteral("vex-dialogs-tests"));
  QCoreApplication::setApplicationName(QStringLiteral("hostgui_dialogs_tests"));
  int failed = 0;
  failed += runColorTests(argc, argv);
  failed += runLinetypeTests(argc, argv);
  failed += runArrowTests(argc, argv);
  failed += runTextStyleTests(argc, argv);
  failed += runKeyboardTests(argc, argv);
  return failed;
}
