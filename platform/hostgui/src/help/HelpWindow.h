// The help window: the program's help pages (shipped in the program, English and
// Russian) in a browser with back, forward and home, and their contents beside it.
// One window serves every request; it does not block the window that asked.
#pragma once

#include <QStringList>
#include <QUrl>
#include <QWidget>

class QListWidget;
class QTextBrowser;
class QToolButton;

namespace help {

// The page file of a key ("VEX_HELP_DIMSTYLE_DLG", "SAVEAS", "-DIMSTYLE",
// "WINDOW", "index"), case-insensitive; empty for an unknown key.
QString pageFile(const QString& key);
// Every key with a page, in the order of the contents.
QStringList keys();
// Where the page of `key` is in `language` ("en", "ru"): that language's page,
// else the English one, else the index in that language (or English).
QUrl pageUrl(const QString& key, const QString& language);
// The page's title (its <title>), empty when the page does not exist.
QString pageTitle(const QUrl& url);

}  // namespace help

class HelpWindow : public QWidget {
  Q_OBJECT

public:
  explicit HelpWindow(QWidget* parent = nullptr);

  // Shows the page of `key` in `language`, with the contents in that language.
  void showKey(const QString& key, const QString& language);
  QTextBrowser* browser() const { return m_browser; }
  QListWidget* contents() const { return m_contents; }

protected:
  void changeEvent(QEvent* event) override;

private:
  void fillContents();
  void sourceChanged(const QUrl& url);
  void retranslate();

  QString m_language = "en";
  QTextBrowser* m_browser = nullptr;
  QListWidget* m_contents = nullptr;
  QToolButton *m_back = nullptr, *m_forward = nullptr, *m_home = nullptr;
};
