#include "hostgui/HostMainWindow.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDockWidget>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QProgressBar>
#include <QPushButton>
#include <QSettings>
#include <QStatusBar>
#include <QStyle>
#include <QTabWidget>
#include <QThread>
#include <QTimer>
#include <QToolBar>

#include <filesystem>

#include "HostWindowContext.h"
#include "host/HostCommands.h"
#include "host/HostEditorReactor.h"
#include "host/HostGeneralProperties.h"
#include "host/HostModules.h"
#include "host/HostServices.h"
#include "host/HostSession.h"
#include "host/HostUnits.h"
#include "hostgui/HostCommandLineWidget.h"
#include "hostgui/HostDocumentTab.h"
#include "hostgui/HostDrawingView.h"
#include "hostgui/HostGuiApp.h"
#include "hostgui/HostGuiServices.h"
#include "hostgui/HostPalette.h"

namespace {

constexpr int kMaxRecent = 8;

// Versions and formats that Save As offers, newest first.
struct SaveFormat {
  DxfVersion version;
  DxfFormat format;
};
const SaveFormat kSaveFormats[] = {
    {DxfVersion::R2018, DxfFormat::Ascii}, {DxfVersion::R2013, DxfFormat::Ascii}, {DxfVersion::R2010, DxfFormat::Ascii},
    {DxfVersion::R2007, DxfFormat::Ascii}, {DxfVersion::R2004, DxfFormat::Ascii}, {DxfVersion::R2000, DxfFormat::Ascii},
    {DxfVersion::R12, DxfFormat::Ascii},   {DxfVersion::R2018, DxfFormat::Binary}, {DxfVersion::R2000, DxfFormat::Binary},
};

QString saveFilter(const SaveFormat& f) {
  const QString version = QString::fromLatin1(dxfver::keyword(f.version).data(),
                                              static_cast<qsizetype>(dxfver::keyword(f.version).size()));
  return f.format == DxfFormat::Binary ? HostMainWindow::tr("Binary DXF %1 (*.dxf)").arg(version)
                                       : HostMainWindow::tr("DXF %1 (*.dxf)").arg(version);
}

QString fileTitle(const HostApDocument* doc) {
  return doc->path.empty() ? HostMainWindow::tr("Drawing") : QFileInfo(QString::fromStdString(doc->path)).fileName();
}

}  // namespace

// Tabs follow the documents, however they were opened or closed: the menus, the
// command line's OPEN and CLOSE, or a module.
class HostMainWindow::DocReactor : public HostApDocManagerReactor {
public:
  explicit DocReactor(HostMainWindow& w) : m_w(w) {}
  void documentCreated(HostApDocument* doc) override {
    IOdPropertyManager* pm = nullptr;
    if (doc->getPropManager(&pm)) hostRegisterGeneralProperties(pm);
    m_w.documentAdded(doc);
  }
  void documentToBeDestroyed(HostApDocument* doc) override { m_w.documentClosing(doc); }
  void documentActivated(HostApDocument* doc) override { m_w.documentActivated(doc); }

private:
  HostMainWindow& m_w;
};

// What shows the drawing is refreshed once the outermost command (or palette
// change) has ended.
class HostMainWindow::EditorReactor : public HostEditorReactor {
public:
  explicit EditorReactor(HostMainWindow& w) : m_w(w) {}
  void commandWillStart(const OdString&) override { ++m_depth; }
  void commandEnded(const OdString&) override {
    if (--m_depth == 0) m_w.drawingChanged();
  }

private:
  HostMainWindow& m_w;
  int m_depth = 0;
};

HostMainWindow::HostMainWindow(const std::vector<std::string>& modules, QWidget* parent) : QMainWindow(parent) {
  setObjectName("mainWindow");
  setAcceptDrops(true);
  setDockOptions(QMainWindow::AnimatedDocks | QMainWindow::AllowTabbedDocks);

  m_commandLine = new HostCommandLineWidget;
  m_session = std::make_unique<HostSession>(*m_commandLine);
  m_session->setDialogsAvailable(true);
  m_context = std::make_unique<HostWindowContext>(*m_commandLine, m_session->docManager());
  gpVxContext = m_context.get();
  m_context->setPreselection(
      [this] {
        HostDocumentTab* tab = currentTab();
        return tab ? tab->view()->selection() : OdDbObjectIdArray();
      },
      [this] {
        if (HostDocumentTab* tab = currentTab()) tab->view()->clearSelection();
      });
  // Before the modules, so that the general properties come first in the palette.
  m_docReactor = std::make_unique<DocReactor>(*this);
  m_session->docManager().addReactor(m_docReactor.get());
  m_editorReactor = std::make_unique<EditorReactor>(*this);
  hostAddEditorReactor(m_editorReactor.get());
  installHostServices();

  m_tabs = new QTabWidget(this);
  m_tabs->setObjectName("documentTabs");
  m_tabs->setDocumentMode(true);
  m_tabs->setTabsClosable(true);
  m_tabs->setMovable(true);
  m_tabs->setAccessibleName(tr("Drawings"));
  setCentralWidget(m_tabs);
  connect(m_tabs, &QTabWidget::currentChanged, this, &HostMainWindow::tabChanged);
  connect(m_tabs, &QTabWidget::tabCloseRequested, this, [this](int i) {
    if (auto* tab = qobject_cast<HostDocumentTab*>(m_tabs->widget(i)))
      whenIdle([this, doc = tab->document()] { fileClose(doc); });
  });

  m_commandDock = new QDockWidget(this);
  m_commandDock->setObjectName("commandLineDock");
  m_commandDock->setWidget(m_commandLine);
  addDockWidget(Qt::BottomDockWidgetArea, m_commandDock);
  connect(m_commandLine, &HostCommandLineWidget::commandEntered, this, &HostMainWindow::execute);

  m_palette = new HostPalette(this);
  m_palette->setObjectName("palette");
  m_paletteDock = new QDockWidget(this);
  m_paletteDock->setObjectName("paletteDock");
  m_paletteDock->setWidget(m_palette);
  addDockWidget(Qt::LeftDockWidgetArea, m_paletteDock);
  // The palette has re-read its own rows; only the views and titles follow.
  connect(m_palette, &HostPalette::drawingChanged, this, [this] { refreshDrawings(false); });

  m_coordinates = new QLabel(this);
  m_coordinates->setObjectName("coordinates");
  m_coordinates->setAccessibleName(tr("Cursor coordinates"));
  m_progress = new QProgressBar(this);
  m_progress->setObjectName("progress");
  m_progress->setMaximumWidth(220);
  m_progress->setTextVisible(true);
  m_progress->hide();
  statusBar()->addPermanentWidget(m_progress);
  statusBar()->addPermanentWidget(m_coordinates);

  buildActions();
  buildMenus();
  retranslate();
  updateActions();
  resize(1280, 800);
  if (QSettings settings; settings.contains("window/state")) {
    restoreGeometry(settings.value("window/geometry").toByteArray());
    restoreState(settings.value("window/state").toByteArray());
  } else {
    // The drawing gets the room; a few lines of history are enough to start with.
    resizeDocks({m_commandDock}, {fontMetrics().height() * 9}, Qt::Vertical);
    resizeDocks({m_paletteDock}, {fontMetrics().averageCharWidth() * 40}, Qt::Horizontal);
  }

  m_modules = std::make_unique<HostModules>([this](const std::string& problem) { m_commandLine->println(problem); });
  std::error_code ec;
  const auto exe = std::filesystem::read_symlink("/proc/self/exe", ec);
  if (!ec) m_modules->loadFolder((exe.parent_path() / "modules").string());
  for (const auto& m : modules) m_modules->load(m);
  updateActions();
  m_commandLine->showCommandPrompt();
  // Commands are typed first thing.
  m_commandLine->setFocus();
}

HostMainWindow::~HostMainWindow() {
  m_commandLine->endInput();
  // Modules hear of every document closing before they go.
  m_session->closeAllDocuments();
  m_modules->unloadAll();
  hostRemoveEditorReactor(m_editorReactor.get());
  m_session->docManager().removeReactor(m_docReactor.get());
  if (gpVxContext == m_context.get()) gpVxContext = nullptr;
  hostSetProgressHandler(nullptr);
  hostSetCommandPoster(nullptr);
  hostSetYesNoHandler(nullptr);
  m_session.reset();
  // The docks own the command line as a widget; the session was its last user.
}

void HostMainWindow::installHostServices() {
  // A command-line command asks on the command line, as on the console; over a
  // dialog the command line cannot be reached, so a message box asks instead.
  hostSetYesNoHandler([this](const std::wstring& question) {
    if (QWidget* modal = QApplication::activeModalWidget())
      return QMessageBox::question(modal, QApplication::applicationDisplayName(), QString::fromStdWString(question),
                                   QMessageBox::Yes | QMessageBox::No, QMessageBox::No) == QMessageBox::Yes;
    try {
      return m_session->askYesNo(question);
    } catch (const HostCancel&) {
      return false;
    }
  });
  hostSetCommandPoster([this](std::function<void()> command) { QTimer::singleShot(0, this, std::move(command)); });
  hostSetProgressHandler([this](const char* what, std::size_t done, std::size_t total) { showProgress(what, done, total); });
  hostRegisterCommandWithParams(L"HOST", L"RefreshProperties", 0, [this](const HostCommandParams&) {
    m_palette->refresh();
  });
  hostGuiRegisterCommands();
}

// ---------------------------------------------------------------- actions and menus

void HostMainWindow::buildActions() {
  struct Def {
    const char* name;
    QKeySequence key;
    std::function<void()> run;
    bool checkable = false;
  };
  const Def defs[] = {
      {"actionNew", QKeySequence::New, [this] { whenIdle([this] { fileNew(); }); }},
      {"actionOpen", QKeySequence::Open, [this] { whenIdle([this] { fileOpen(); }); }},
      {"actionSave", QKeySequence::Save,
       [this] { whenIdle([this] { if (auto* d = m_session->activeDocument()) fileSave(d); }); }},
      {"actionSaveAs", QKeySequence("Ctrl+Shift+S"),
       [this] { whenIdle([this] { if (auto* d = m_session->activeDocument()) fileSaveAs(d); }); }},
      {"actionClose", QKeySequence("Ctrl+W"),
       [this] { whenIdle([this] { if (auto* d = m_session->activeDocument()) fileClose(d); }); }},
      {"actionExit", QKeySequence("Ctrl+Q"), [this] { close(); }},
      // One step, without asking how many as the typed command does.
      {"actionUndo", QKeySequence::Undo, [this] { runFromMenu("_UNDO", [this] { m_session->undoSteps(1); }); }},
      {"actionRedo", QKeySequence("Ctrl+Y"), [this] { runFromMenu("_REDO", [this] { m_session->runCommand("REDO"); }); }},
      {"actionSelectAll", QKeySequence::SelectAll,
       [this] { if (auto* t = currentTab()) t->view()->selectAll(); }},
      {"actionZoomExtents", QKeySequence("Ctrl+Shift+E"), [this] { if (auto* t = currentTab()) t->view()->zoomExtents(); }},
      {"actionLineweights", QKeySequence(), [this] {
         const bool on = action("actionLineweights")->isChecked();
         QSettings().setValue("view/lineweights", on);
         for (int i = 0; i < m_tabs->count(); ++i)
           static_cast<HostDocumentTab*>(m_tabs->widget(i))->view()->setShowLineweights(on);
       }, true},
      {"actionDarkBackground", QKeySequence(), [this] {
         const bool dark = action("actionDarkBackground")->isChecked();
         QSettings().setValue("view/dark", dark);
         for (int i = 0; i < m_tabs->count(); ++i)
           static_cast<HostDocumentTab*>(m_tabs->widget(i))->view()->setBackgroundDark(dark);
       }, true},
      {"actionDimStyle", QKeySequence(), [this] { runFromMenu("_DIMSTYLE", [this] { m_session->runCommand("DIMSTYLE"); }); }},
      {"actionHelp", QKeySequence::HelpContents, [this] { hostShowHelp("WINDOW", this); }},
      {"actionCommands", QKeySequence(), [this] { hostShowHelp("index", this); }},
      {"actionAbout", QKeySequence(), [this] {
         QMessageBox::about(this, tr("About %1").arg(QApplication::applicationDisplayName()),
                            tr("<p><b>%1</b></p><p>Dimension style tools for CAD drawings in DXF.</p>")
                                .arg(QApplication::applicationDisplayName()));
       }},
      {"actionEnglish", QKeySequence(), [this] { setLanguage("en"); }, true},
      {"actionRussian", QKeySequence(), [this] { setLanguage("ru"); }, true},
  };
  for (const auto& d : defs) {
    auto* a = new QAction(this);
    a->setObjectName(d.name);
    if (!d.key.isEmpty()) a->setShortcut(d.key);
    a->setCheckable(d.checkable);
    connect(a, &QAction::triggered, this, d.run);
    m_actions[d.name] = a;
    addAction(a);
  }
  QSettings settings;
  action("actionLineweights")->setChecked(settings.value("view/lineweights", false).toBool());
  action("actionDarkBackground")->setChecked(settings.value("view/dark", true).toBool());
  action("actionEnglish")->setChecked(hostLanguage() != "ru");
  action("actionRussian")->setChecked(hostLanguage() == "ru");
  // Select All belongs to the view; the command line keeps Ctrl+A for its text.
  action("actionSelectAll")->setShortcutContext(Qt::WidgetWithChildrenShortcut);
  m_tabs->addAction(action("actionSelectAll"));
}

QAction* HostMainWindow::action(const QString& name) const {
  auto it = m_actions.find(name);
  return it == m_actions.end() ? nullptr : it->second;
}

void HostMainWindow::buildMenus() {
  m_fileMenu = menuBar()->addMenu(QString());
  for (const char* a : {"actionNew", "actionOpen", "actionSave", "actionSaveAs"}) m_fileMenu->addAction(action(a));
  m_recentMenu = m_fileMenu->addMenu(QString());
  m_recentMenu->setObjectName("recentMenu");
  m_fileMenu->addSeparator();
  m_fileMenu->addAction(action("actionClose"));
  m_fileMenu->addAction(action("actionExit"));
  m_editMenu = menuBar()->addMenu(QString());
  for (const char* a : {"actionUndo", "actionRedo", "actionSelectAll"}) m_editMenu->addAction(action(a));
  m_viewMenu = menuBar()->addMenu(QString());
  m_viewMenu->addAction(action("actionZoomExtents"));
  m_viewMenu->addSeparator();
  m_viewMenu->addAction(action("actionLineweights"));
  m_viewMenu->addAction(action("actionDarkBackground"));
  m_viewMenu->addSeparator();
  m_viewMenu->addAction(m_commandDock->toggleViewAction());
  m_viewMenu->addAction(m_paletteDock->toggleViewAction());
  m_languageMenu = m_viewMenu->addMenu(QString());
  m_languageMenu->addAction(action("actionEnglish"));
  m_languageMenu->addAction(action("actionRussian"));
  m_formatMenu = menuBar()->addMenu(QString());
  m_formatMenu->addAction(action("actionDimStyle"));
  m_helpMenu = menuBar()->addMenu(QString());
  for (const char* a : {"actionHelp", "actionCommands", "actionAbout"}) m_helpMenu->addAction(action(a));

  auto* tools = addToolBar(QString());
  tools->setObjectName("mainToolBar");
  for (const char* a : {"actionNew", "actionOpen", "actionSave", "actionUndo", "actionRedo", "actionZoomExtents",
                        "actionDimStyle"})
    tools->addAction(action(a));
  const std::pair<const char*, QStyle::StandardPixmap> icons[] = {
      {"actionNew", QStyle::SP_FileIcon},           {"actionOpen", QStyle::SP_DialogOpenButton},
      {"actionSave", QStyle::SP_DialogSaveButton},  {"actionUndo", QStyle::SP_ArrowBack},
      {"actionRedo", QStyle::SP_ArrowForward},      {"actionZoomExtents", QStyle::SP_TitleBarMaxButton},
      {"actionDimStyle", QStyle::SP_FileDialogDetailedView}};
  for (const auto& [a, icon] : icons) action(a)->setIcon(style()->standardIcon(icon));
  rebuildRecentMenu();
}

// Every text of the window, so that switching the language redoes them all.
void HostMainWindow::retranslate() {
  m_fileMenu->setTitle(tr("&File"));
  m_recentMenu->setTitle(tr("Recent &Files"));
  m_editMenu->setTitle(tr("&Edit"));
  m_viewMenu->setTitle(tr("&View"));
  m_languageMenu->setTitle(tr("&Language"));
  m_formatMenu->setTitle(tr("F&ormat"));
  m_helpMenu->setTitle(tr("&Help"));
  const std::pair<const char*, QString> texts[] = {
      {"actionNew", tr("&New...")},
      {"actionOpen", tr("&Open...")},
      {"actionSave", tr("&Save")},
      {"actionSaveAs", tr("Save &As...")},
      {"actionClose", tr("&Close")},
      {"actionExit", tr("E&xit")},
      {"actionUndo", tr("&Undo")},
      {"actionRedo", tr("&Redo")},
      {"actionSelectAll", tr("Select &All")},
      {"actionZoomExtents", tr("Zoom &Extents")},
      {"actionLineweights", tr("Show &Lineweights")},
      {"actionDarkBackground", tr("&Dark Background")},
      {"actionDimStyle", tr("&Dimension Style...")},
      {"actionHelp", tr("&Help")},
      {"actionCommands", tr("&Commands")},
      {"actionAbout", tr("&About")},
      {"actionEnglish", QStringLiteral("English")},
      {"actionRussian", QStringLiteral("Русский")},
  };
  for (const auto& [name, text] : texts) {
    QAction* a = action(name);
    a->setText(text);
    QString tip = QString(text).remove('&').remove("...");
    if (!a->shortcut().isEmpty()) tip += " (" + a->shortcut().toString(QKeySequence::NativeText) + ")";
    a->setToolTip(tip);
  }
  m_commandDock->setWindowTitle(tr("Command Line"));
  m_paletteDock->setWindowTitle(tr("Properties"));
  findChild<QToolBar*>("mainToolBar")->setWindowTitle(tr("Standard"));
  m_tabs->setAccessibleName(tr("Drawings"));
  m_coordinates->setAccessibleName(tr("Cursor coordinates"));
  updateTitles();
}

// Typing while a drawing has the focus goes to the command line, as CAD users
// expect: a command's name, or Enter to repeat the last one. The view keeps its
// own keys (arrows, + and -, Escape, Ctrl+A).
bool HostMainWindow::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::KeyPress || !qobject_cast<HostDrawingView*>(watched))
    return QMainWindow::eventFilter(watched, event);
  auto* key = static_cast<QKeyEvent*>(event);
  const QString text = key->text();
  if (key->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) return false;
  if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
    m_commandLine->submit(m_commandLine->input()->text());
    return true;
  }
  if (text.size() == 1 && (text[0].isLetterOrNumber() || text[0] == '_')) {
    m_commandLine->input()->setFocus();
    m_commandLine->input()->insert(text);
    return true;
  }
  return false;
}

void HostMainWindow::changeEvent(QEvent* event) {
  if (event->type() == QEvent::LanguageChange) retranslate();
  QMainWindow::changeEvent(event);
}

void HostMainWindow::setLanguage(const QString& language) {
  action("actionEnglish")->setChecked(language == "en");
  action("actionRussian")->setChecked(language == "ru");
  QSettings().setValue("language", language);
  hostGuiInstallTranslators(*qApp, language);
  // The module's texts switch with the next dialog it builds; its command-line
  // texts were chosen when it loaded.
  statusBar()->showMessage(tr("The module's command-line texts change language at the next start."), 8000);
}

void HostMainWindow::updateActions() {
  const bool doc = m_session && m_session->activeDocument();
  for (const char* a : {"actionSave", "actionSaveAs", "actionClose", "actionSelectAll", "actionZoomExtents"})
    action(a)->setEnabled(doc);
  OdDbDatabase* db = doc ? m_session->activeDocument()->database() : nullptr;
  action("actionUndo")->setEnabled(db && db->hasUndo());
  action("actionRedo")->setEnabled(db && db->hasRedo());
  action("actionDimStyle")->setEnabled(hostFindCommand("DIMSTYLE") != nullptr);
}

// ---------------------------------------------------------------- commands

void HostMainWindow::whenIdle(std::function<void()> action) {
  if (!m_running) {
    action();
    return;
  }
  m_afterCommand.push_back(std::move(action));
  m_commandLine->cancel();
}

void HostMainWindow::execute(const QString& command) {
  run([this, name = command.toStdString()] {
    if (!m_session->runCommand(name)) m_commandLine->println("Unknown command \"" + name + "\".");
  });
}

void HostMainWindow::runFromMenu(const QString& command, std::function<void()> work) {
  whenIdle([this, command, work = std::move(work)] {
    // Shown as if typed, so that the history tells what the menu did.
    m_commandLine->println("Command: " + command.toStdString());
    run(work);
  });
}

void HostMainWindow::run(const std::function<void()>& work) {
  m_running = true;
  try {
    work();
  } catch (const HostCancel&) {
  } catch (const OdError& e) {
    m_commandLine->println(std::string("Error: ") + e.what());
  } catch (const std::exception& e) {
    m_commandLine->println(std::string("Error: ") + e.what());
  }
  m_running = false;
  drawingChanged();
  if (m_session->quitRequested() && !m_closing) {
    QTimer::singleShot(0, this, &QWidget::close);
    return;
  }
  m_commandLine->showCommandPrompt();
  auto pending = std::move(m_afterCommand);
  m_afterCommand.clear();
  for (auto& a : pending) a();
}

void HostMainWindow::drawingChanged() { refreshDrawings(true); }

void HostMainWindow::refreshDrawings(bool palette) {
  bool activeChanged = false;
  for (int i = 0; i < m_tabs->count(); ++i) {
    auto* tab = static_cast<HostDocumentTab*>(m_tabs->widget(i));
    if (tab->refreshIfChanged() && tab == currentTab()) activeChanged = true;
  }
  if (activeChanged && palette) m_palette->refresh();
  updateTitles();
  updateActions();
}

// ---------------------------------------------------------------- files

void HostMainWindow::fileNew() {
  bool ok = false;
  const QStringList units = {tr("Imperial"), tr("Metric")};
  const QString choice = QInputDialog::getItem(this, tr("New Drawing"), tr("&Units:"), units,
                                               QSettings().value("newDrawing/metric", false).toBool() ? 1 : 0, false, &ok);
  if (!ok) return;
  const bool metric = choice == units[1];
  QSettings().setValue("newDrawing/metric", metric);
  runFromMenu("_NEW", [this, metric] { m_session->newDrawing(DxfVersion::R2018, metric); });
}

void HostMainWindow::fileOpen() {
  const QString dir = QSettings().value("files/lastDir").toString();
  const QStringList paths =
      QFileDialog::getOpenFileNames(this, tr("Open Drawing"), dir, tr("Drawings (*.dxf *.DXF);;All files (*)"));
  if (paths.isEmpty()) return;
  QSettings().setValue("files/lastDir", QFileInfo(paths.front()).absolutePath());
  openFiles(paths);
}

void HostMainWindow::openFiles(const QStringList& paths) {
  for (const QString& path : paths) {
    // A drawing already open is shown rather than opened twice.
    bool shown = false;
    for (int i = 0; i < m_tabs->count() && !shown; ++i) {
      auto* tab = static_cast<HostDocumentTab*>(m_tabs->widget(i));
      if (QFileInfo(QString::fromStdString(tab->document()->path)) == QFileInfo(path)) {
        m_tabs->setCurrentIndex(i);
        shown = true;
      }
    }
    if (shown) continue;
    ++m_opening;
    m_progress->setRange(0, 0);
    m_progress->setFormat(tr("Opening %1").arg(QFileInfo(path).fileName()));
    m_progress->show();
    statusBar()->showMessage(tr("Opening %1 (%2 MB)...").arg(QFileInfo(path).fileName())
                                 .arg(QFileInfo(path).size() / 1048576.0, 0, 'f', 1));
    // The reader touches nothing shared, so the window goes on painting meanwhile.
    auto result = std::make_shared<std::pair<OdDbDatabasePtr, std::string>>();
    QThread* reader = QThread::create([path, result] {
      try {
        result->first = OdDbDatabase::readDxfFile(path.toStdString());
      } catch (const OdError& e) {
        result->second = e.what();
      } catch (const std::exception& e) {
        result->second = e.what();
      }
    });
    connect(reader, &QThread::finished, this, [this, reader, path, result] {
      reader->deleteLater();
      if (--m_opening == 0) m_progress->hide();
      statusBar()->clearMessage();
      if (!result->first) {
        m_commandLine->println("Cannot open drawing: " + result->second);
        QMessageBox::critical(this, tr("Open Drawing"),
                              tr("%1 cannot be opened.").arg(QFileInfo(path).fileName()) + "\n\n" +
                                  QString::fromStdString(result->second));
        return;
      }
      m_session->adopt(result->first, path.toStdString());
      addRecent(QFileInfo(path).absoluteFilePath());
      m_commandLine->showCommandPrompt();
    });
    reader->start();
  }
}

void HostMainWindow::waitForOpening() {
  while (m_opening > 0) QApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 50);
}

bool HostMainWindow::fileSave(HostApDocument* doc) {
  if (doc->path.empty()) return fileSaveAs(doc);
  if (!m_session->save(*doc, doc->path, doc->saveAs)) {
    QMessageBox::critical(this, tr("Save Drawing"), tr("%1 could not be saved; see the command line.").arg(fileTitle(doc)));
    return false;
  }
  m_savedAt[doc] = doc->database()->changeCount();
  updateTitles();
  return true;
}

bool HostMainWindow::fileSaveAs(HostApDocument* doc) {
  QStringList filters;
  for (const auto& f : kSaveFormats) filters << saveFilter(f);
  const DxfVersion version = doc->saveAs.version.value_or(doc->database()->version());
  const DxfFormat format = doc->saveAs.format.value_or(doc->database()->format());
  // The drawing's own version first, so that Save As keeps it unless the user chooses.
  QString selected = saveFilter({version, format});
  if (!filters.contains(selected)) filters.prepend(selected);
  QString path = QFileDialog::getSaveFileName(this, tr("Save Drawing As"),
                                              doc->path.empty() ? QSettings().value("files/lastDir").toString() + "/" + tr("Drawing") + ".dxf"
                                                                : QString::fromStdString(doc->path),
                                              filters.join(";;"), &selected);
  if (path.isEmpty()) return false;
  if (QFileInfo(path).suffix().isEmpty()) path += ".dxf";
  DxfSaveOptions options{version, format};
  for (const auto& f : kSaveFormats)
    if (saveFilter(f) == selected) options = DxfSaveOptions{f.version, f.format};
  if (!m_session->save(*doc, path.toStdString(), options)) {
    QMessageBox::critical(this, tr("Save Drawing"), tr("%1 could not be saved; see the command line.").arg(path));
    return false;
  }
  doc->path = path.toStdString();
  doc->saveAs = options;
  m_savedAt[doc] = doc->database()->changeCount();
  addRecent(QFileInfo(path).absoluteFilePath());
  updateTitles();
  return true;
}

bool HostMainWindow::isModified(const HostApDocument* doc) const {
  auto it = m_savedAt.find(doc);
  return it == m_savedAt.end() || it->second != doc->database()->changeCount();
}

bool HostMainWindow::maybeSave(HostApDocument* doc) {
  if (!isModified(doc)) return true;
  if (HostDocumentTab* tab = tabOf(doc)) m_tabs->setCurrentWidget(tab);
  QMessageBox box(QMessageBox::Warning, QApplication::applicationDisplayName(),
                  tr("Save changes to %1?").arg(fileTitle(doc)), QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel,
                  this);
  box.setObjectName("saveChangesBox");
  box.setDefaultButton(QMessageBox::Save);
  switch (box.exec()) {
    case QMessageBox::Save: return fileSave(doc);
    case QMessageBox::Discard: return true;
    default: return false;
  }
}

void HostMainWindow::fileClose(HostApDocument* doc) {
  if (!maybeSave(doc)) return;
  m_session->close(doc);
  drawingChanged();
  m_commandLine->showCommandPrompt();
}

void HostMainWindow::closeEvent(QCloseEvent* event) {
  for (size_t i = m_session->docManager().documentCount(); i-- > 0;) {
    if (!maybeSave(m_session->docManager().document(i))) {
      event->ignore();
      return;
    }
  }
  m_closing = true;
  QSettings settings;
  settings.setValue("window/geometry", saveGeometry());
  settings.setValue("window/state", saveState());
  // A command waiting for input ends as at the end of input.
  m_commandLine->endInput();
  event->accept();
}

void HostMainWindow::addRecent(const QString& path) {
  QSettings settings;
  QStringList recent = settings.value("files/recent").toStringList();
  recent.removeAll(path);
  recent.prepend(path);
  while (recent.size() > kMaxRecent) recent.removeLast();
  settings.setValue("files/recent", recent);
  rebuildRecentMenu();
}

void HostMainWindow::rebuildRecentMenu() {
  m_recentMenu->clear();
  const QStringList recent = QSettings().value("files/recent").toStringList();
  for (int i = 0; i < recent.size(); ++i) {
    QAction* a = m_recentMenu->addAction(QString("&%1 %2").arg(i + 1).arg(QFileInfo(recent[i]).fileName()));
    a->setToolTip(recent[i]);
    connect(a, &QAction::triggered, this, [this, path = recent[i]] { whenIdle([this, path] { openFiles({path}); }); });
  }
  m_recentMenu->setEnabled(!recent.isEmpty());
}

void HostMainWindow::dragEnterEvent(QDragEnterEvent* event) {
  for (const QUrl& url : event->mimeData()->urls())
    if (url.isLocalFile() && url.toLocalFile().endsWith(".dxf", Qt::CaseInsensitive)) {
      event->acceptProposedAction();
      return;
    }
}

void HostMainWindow::dropEvent(QDropEvent* event) {
  QStringList paths;
  for (const QUrl& url : event->mimeData()->urls())
    if (url.isLocalFile() && url.toLocalFile().endsWith(".dxf", Qt::CaseInsensitive)) paths << url.toLocalFile();
  event->acceptProposedAction();
  whenIdle([this, paths] { openFiles(paths); });
}

// ---------------------------------------------------------------- documents and tabs

HostDocumentTab* HostMainWindow::currentTab() const { return qobject_cast<HostDocumentTab*>(m_tabs->currentWidget()); }

HostDocumentTab* HostMainWindow::tabOf(const HostApDocument* doc) const {
  for (int i = 0; i < m_tabs->count(); ++i)
    if (auto* tab = static_cast<HostDocumentTab*>(m_tabs->widget(i)); tab->document() == doc) return tab;
  return nullptr;
}

void HostMainWindow::documentAdded(HostApDocument* doc) {
  m_savedAt[doc] = doc->database()->changeCount();
  auto* tab = new HostDocumentTab(doc, m_tabs);
  HostDrawingView* view = tab->view();
  view->setBackgroundDark(action("actionDarkBackground")->isChecked());
  view->setShowLineweights(action("actionLineweights")->isChecked());
  view->installEventFilter(this);
  connect(view, &HostDrawingView::selectionChanged, this, &HostMainWindow::selectionChanged);
  connect(view, &HostDrawingView::cursorMoved, this, &HostMainWindow::showCoordinates);
  // While a prompt waits for objects, what is picked in the view answers it.
  auto answer = [this](const OdDbObjectIdArray& ids) {
    if (!m_commandLine->waiting() || !m_context->wantsPicks() || ids.empty()) return false;
    if (m_context->wantsMany()) {
      m_context->setViewPicks(ids);
      m_commandLine->submitUnshown(HostWindowContext::kViewWord);
    } else {
      // One entity: its handle, shown as if typed.
      m_commandLine->submit(QString::fromStdWString(ids.front().getHandle().ascii().str()));
    }
    return true;
  };
  connect(view, &HostDrawingView::picked, this, [answer, view](OdDbObjectId id) {
    // The pick answered a prompt: the prompt's reply says what was taken.
    if (answer({id})) view->clearSelection();
  });
  connect(view, &HostDrawingView::windowSelected, this, [answer, view](const OdDbObjectIdArray& ids) {
    if (answer(ids)) view->clearSelection();
  });
  const int index = m_tabs->addTab(tab, fileTitle(doc));
  m_tabs->setTabToolTip(index, QString::fromStdString(doc->path));
  m_tabs->setCurrentIndex(index);
  view->zoomExtents();
  updateTitles();
  updateActions();
}

void HostMainWindow::documentClosing(HostApDocument* doc) {
  m_savedAt.erase(doc);
  if (HostDocumentTab* tab = tabOf(doc)) {
    m_tabs->removeTab(m_tabs->indexOf(tab));
    tab->deleteLater();
  }
  if (m_palette) m_palette->setDocument(nullptr);
}

void HostMainWindow::documentActivated(HostApDocument* doc) {
  if (HostDocumentTab* tab = tabOf(doc)) m_tabs->setCurrentWidget(tab);
  selectionChanged();
  updateTitles();
  updateActions();
}

void HostMainWindow::tabChanged(int) {
  HostDocumentTab* tab = currentTab();
  if (tab && tab->document() != m_session->activeDocument()) m_session->activate(tab->document());
  selectionChanged();
  updateTitles();
  updateActions();
}

void HostMainWindow::selectionChanged() {
  HostDocumentTab* tab = currentTab();
  HostApDocument* doc = tab ? tab->document() : nullptr;
  if (m_palette->document() != doc) m_palette->setDocument(doc);
  m_palette->setSelection(tab ? tab->view()->selection() : OdDbObjectIdArray());
}

void HostMainWindow::updateTitles() {
  for (int i = 0; i < m_tabs->count(); ++i) {
    auto* tab = static_cast<HostDocumentTab*>(m_tabs->widget(i));
    m_tabs->setTabText(i, fileTitle(tab->document()) + (isModified(tab->document()) ? "*" : ""));
  }
  HostApDocument* doc = m_session ? m_session->activeDocument() : nullptr;
  setWindowTitle(doc ? fileTitle(doc) + "[*] - " + QApplication::applicationDisplayName()
                     : QApplication::applicationDisplayName());
  setWindowModified(doc && isModified(doc));
}

void HostMainWindow::showCoordinates(double x, double y) {
  const OdDbDatabase* db = m_session->activeDocument() ? m_session->activeDocument()->database() : nullptr;
  OdString sx, sy;
  hostdbRToS(db, x, -1, -1, sx);
  hostdbRToS(db, y, -1, -1, sy);
  m_coordinates->setText(QString::fromStdWString(sx.str()) + ", " + QString::fromStdWString(sy.str()));
}

void HostMainWindow::showProgress(const char* what, std::size_t done, std::size_t total) {
  static QElapsedTimer sinceEvents;
  if (done >= total) {
    m_progress->hide();
    return;
  }
  if (done == 0) {
    m_progress->setRange(0, static_cast<int>(std::min<std::size_t>(total, INT_MAX)));
    m_progress->setFormat(QString::fromUtf8(what) + " %p%");
    m_progress->show();
    sinceEvents.start();
  }
  m_progress->setValue(static_cast<int>(done));
  // Paint and keep the window alive, but take no input in the middle of the work.
  if (sinceEvents.elapsed() > 50) {
    QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    sinceEvents.restart();
  }
}
