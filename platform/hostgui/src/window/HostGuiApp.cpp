#include "hostgui/HostGuiApp.h"

#include <QApplication>
#include <QDir>
#include <QLibraryInfo>
#include <QLocale>
#include <QSettings>
#include <QTranslator>

#include <memory>
#include <vector>

#include "host/HostServices.h"

QString hostGuiChooseLanguage(const QString& requested) {
  if (requested == "en" || requested == "ru") return requested;
  const QString saved = QSettings().value("language").toString();
  if (saved == "en" || saved == "ru") return saved;
  return QLocale::system().language() == QLocale::Russian ? "ru" : "en";
}

void hostGuiInstallTranslators(QApplication& app, const QString& language) {
  static std::vector<std::unique_ptr<QTranslator>> installed;
  for (auto& t : installed) app.removeTranslator(t.get());
  installed.clear();
  hostSetLanguage(language.toStdString());
  if (language == "en") return;
  auto add = [&](const QString& file, const QString& dir) {
    auto t = std::make_unique<QTranslator>();
    if (t->load(file, dir)) {
      app.installTranslator(t.get());
      installed.push_back(std::move(t));
    }
  };
  add("qtbase_" + language, QLibraryInfo::path(QLibraryInfo::TranslationsPath));
  // Every area of the host ships its own Russian texts.
  for (const QString& qm : QDir(":/i18n").entryList({"*_" + language + ".qm"})) add(qm, ":/i18n");
}
