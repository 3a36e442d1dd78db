// Start-up of the window host's Qt side: the translators of the user-interface
// language, the host services that need the window (questions, posted commands).
#pragma once

#include <QString>

class QApplication;

// "en" or "ru": `requested` when given, else the saved setting, else the
// system locale's language.
QString hostGuiChooseLanguage(const QString& requested);
// Installs Qt's own and the host's translations for `language` and tells the
// host services (hostSetLanguage). Call again to switch.
void hostGuiInstallTranslators(QApplication& app, const QString& language);
