#include "help/HelpWindow.h"

#include <QAction>
#include <QEvent>
#include <QFile>
#include <QHBoxLayout>
#include <QKeySequence>
#include <QListWidget>
#include <QPointer>
#include <QRegularExpression>
#include <QSplitter>
#include <QStyle>
#include <QTextBrowser>
#include <QToolButton>
#include <QVBoxLayout>

#include "host/HostServices.h"
#include "hostgui/HostGuiServices.h"

namespace help {
namespace {

struct Page {
  const char* key;
  const char* file;
};

// Contents order: the start page and the window first, then the dimension style
// dialogs, then the commands in the order users meet them.
constexpr Page kPages[] = {
    {"index", "index.html"},
    {"WINDOW", "window.html"},
    {"VEX_HELP_DIMSTYLE_DLG", "dimstyle_manager.html"},
    {"VEX_HELP_DIMSTYLE_NEW", "dimstyle_new.html"},
    {"VEX_HELP_DIMSTYLE_MODIFY", "dimstyle_modify.html"},
    {"VEX_HELP_DIMSTYLE_DIFF", "dimstyle_compare.html"},
    {"NEW", "cmd_new.html"},
    {"OPEN", "cmd_open.html"},
    {"SAVE", "cmd_save.html"},
    {"SAVEAS", "cmd_saveas.html"},
    {"CLOSE", "cmd_close.html"},
    {"UNDO", "cmd_undo.html"},
    {"REDO", "cmd_redo.html"},
    {"SETVAR", "cmd_setvar.html"},
    {"DIMSTYLE", "cmd_dimstyle.html"},
    {"-DIMSTYLE", "cmd_dimstyle_line.html"},
    {"DIMREGEN", "cmd_dimregen.html"},
    {"RENDER", "cmd_render.html"},
    {"HELP", "cmd_help.html"},
    {"QUIT", "cmd_quit.html"},
};

QUrl urlOf(const QString& language, const QString& file) {
  return QUrl(QStringLiteral("qrc:/help/%1/%2").arg(language, file));
}

bool exists(const QUrl& url) { return QFile::exists(":" + url.path()); }

}  // namespace

QString pageFile(const QString& key) {
  for (const Page& p : kPages)
    if (key.compare(QLatin1String(p.key), Qt::CaseInsensitive) == 0) return QString::fromLatin1(p.file);
  return QString();
}

QStringList keys() {
  QStringList out;
  for (const Page& p : kPages) out << QString::fromLatin1(p.key);
  return out;
}

QUrl pageUrl(const QString& key, const QString& language) {
  const QString file = pageFile(key);
  if (!file.isEmpty()) {
    if (exists(urlOf(language, file))) return urlOf(language, file);
    if (exists(urlOf("en", file))) return urlOf("en", file);
  }
  return exists(urlOf(language, "index.html")) ? urlOf(language, "index.html") : urlOf("en", "index.html");
}

QString pageTitle(const QUrl& url) {
  QFile f(":" + url.path());
  if (!f.open(QIODevice::ReadOnly)) return QString();
  static const QRegularExpression title("<title>(.*?)</title>", QRegularExpression::DotMatchesEverythingOption);
  const QRegularExpressionMatch m = title.match(QString::fromUtf8(f.readAll()));
  return m.hasMatch() ? m.captured(1).simplified() : QString();
}

}  // namespace help

HelpWindow::HelpWindow(QWidget* parent) : QWidget(parent, Qt::Window) {
  setObjectName("HelpWindow");
  setAttribute(Qt::WA_DeleteOnClose);

  m_back = new QToolButton(this);
  m_back->setObjectName("helpBack");
  m_back->setIcon(style()->standardIcon(QStyle::SP_ArrowBack));
  m_back->setShortcut(QKeySequence::Back);
  m_forward = new QToolButton(this);
  m_forward->setObjectName("helpForward");
  m_forward->setIcon(style()->standardIcon(QStyle::SP_ArrowForward));
  m_forward->setShortcut(QKeySequence::Forward);
  m_home = new QToolButton(this);
  m_home->setObjectName("helpHome");
  m_home->setIcon(style()->standardIcon(QStyle::SP_DirHomeIcon));
  m_home->setShortcut(QKeySequence("Alt+Home"));
  for (QToolButton* b : {m_back, m_forward, m_home}) {
    b->setFocusPolicy(Qt::StrongFocus);
    b->setAutoRaise(true);
  }

  m_contents = new QListWidget(this);
  m_contents->setObjectName("helpContents");
  m_browser = new QTextBrowser(this);
  m_browser->setObjectName("helpBrowser");
  // Links between pages are followed here; nothing leaves for an outside browser.
  m_browser->setOpenExternalLinks(false);
  m_browser->setOpenLinks(true);

  auto* split = new QSplitter(this);
  split->addWidget(m_contents);
  split->addWidget(m_browser);
  split->setStretchFactor(1, 1);
  split->setSizes({250, 590});

  auto* buttons = new QHBoxLayout;
  buttons->addWidget(m_back);
  buttons->addWidget(m_forward);
  buttons->addWidget(m_home);
  buttons->addStretch(1);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(buttons);
  layout->addWidget(split, 1);

  connect(m_back, &QToolButton::clicked, m_browser, &QTextBrowser::backward);
  connect(m_forward, &QToolButton::clicked, m_browser, &QTextBrowser::forward);
  connect(m_home, &QToolButton::clicked, this, [this] { m_browser->setSource(help::pageUrl("index", m_language)); });
  connect(m_browser, &QTextBrowser::backwardAvailable, m_back, &QToolButton::setEnabled);
  connect(m_browser, &QTextBrowser::forwardAvailable, m_forward, &QToolButton::setEnabled);
  connect(m_browser, &QTextBrowser::sourceChanged, this, &HelpWindow::sourceChanged);
  connect(m_contents, &QListWidget::currentRowChanged, this, [this](int row) {
    if (row < 0) return;
    const QUrl url = m_contents->item(row)->data(Qt::UserRole).toUrl();
    if (url != m_browser->source()) m_browser->setSource(url);
  });
  m_back->setEnabled(false);
  m_forward->setEnabled(false);

  resize(860, 580);
  retranslate();
}

void HelpWindow::showKey(const QString& key, const QString& language) {
  if (language != m_language || m_contents->count() == 0) {
    m_language = language;
    fillContents();
  }
  m_browser->setSource(help::pageUrl(key, language));
}

void HelpWindow::fillContents() {
  const QSignalBlocker block(m_contents);
  m_contents->clear();
  QStringList seen;
  for (const QString& key : help::keys()) {
    const QUrl url = help::pageUrl(key, m_language);
    if (seen.contains(url.toString())) continue;
    seen << url.toString();
    auto* item = new QListWidgetItem(help::pageTitle(url), m_contents);
    item->setData(Qt::UserRole, url);
    item->setToolTip(item->text());
  }
}

void HelpWindow::sourceChanged(const QUrl& url) {
  // The contents follow the page shown, whichever way it was reached.
  const QSignalBlocker block(m_contents);
  for (int i = 0; i < m_contents->count(); ++i)
    if (m_contents->item(i)->data(Qt::UserRole).toUrl() == url) {
      m_contents->setCurrentRow(i);
      return;
    }
  m_contents->clearSelection();
}

void HelpWindow::changeEvent(QEvent* event) {
  if (event->type() == QEvent::LanguageChange) retranslate();
  QWidget::changeEvent(event);
}

void HelpWindow::retranslate() {
  setWindowTitle(tr("Help"));
  m_back->setToolTip(tr("Back"));
  m_back->setAccessibleName(tr("Back"));
  m_forward->setToolTip(tr("Forward"));
  m_forward->setAccessibleName(tr("Forward"));
  m_home->setToolTip(tr("Home"));
  m_home->setAccessibleName(tr("Home"));
  m_contents->setAccessibleName(tr("Contents"));
  m_browser->setAccessibleName(tr("Help page"));
}

// ---- the host's help service ----------------------------------------------------

void hostShowHelp(const QString& key, QWidget* parent) {
  static QPointer<HelpWindow> window;
  // Over a modal dialog the help must be the dialog's own window to take input;
  // it goes where the request came from.
  QWidget* owner = parent ? parent->window() : nullptr;
  if (!window) window = new HelpWindow(owner);
  else if (window->parentWidget() != owner) {
    const QRect at = window->geometry();
    window->setParent(owner, Qt::Window);
    window->setGeometry(at);
  }
  window->showKey(key, QString::fromStdString(hostLanguage()));
  window->show();
  window->raise();
  window->activateWindow();
}

QStringList hostHelpKeys() { return help::keys(); }
