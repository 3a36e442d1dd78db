// The main window of the host: a tab per open drawing (each with its model and
// layout tabs and its drawing view), the command line and properties palette as
// docks, menus, a toolbar and a status bar with the cursor's coordinates and the
// progress of long work. It runs the same command session as the console.
#pragma once

#include <QMainWindow>
#include <QStringList>
#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "host/HostApDocManager.h"

class QAction;
class QDockWidget;
class QLabel;
class QMenu;
class QProgressBar;
class QTabWidget;
class HostCommandLineWidget;
class HostDocumentTab;
class HostModules;
class HostPalette;
class HostSession;
class HostWindowContext;

class HostMainWindow : public QMainWindow {
  Q_OBJECT

public:
  // `modules`: shared libraries to load besides those of the modules folder.
  explicit HostMainWindow(const std::vector<std::string>& modules = {}, QWidget* parent = nullptr);
  ~HostMainWindow() override;

  // Opens the drawings, one tab each. Large files are read off the GUI thread
  // while the window goes on; a file that cannot be read is reported in a message
  // box with the reader's line-numbered text, and nothing else changes.
  void openFiles(const QStringList& paths);
  // Waits until every file being read is open (tests, and the bench).
  void waitForOpening();

  HostSession& session() { return *m_session; }
  HostCommandLineWidget* commandLine() const { return m_commandLine; }
  HostPalette* palette() const { return m_palette; }
  QTabWidget* documentTabs() const { return m_tabs; }
  HostDocumentTab* currentTab() const;
  // The tab that shows `doc`; null when none does.
  HostDocumentTab* tabOf(const HostApDocument* doc) const;
  QAction* action(const QString& objectName) const;

  // Whether the document has changed since it was opened or saved.
  bool isModified(const HostApDocument* doc) const;
  // Asks Save / Discard / Cancel for a changed document; false when the user
  // cancels (or saving failed).
  bool maybeSave(HostApDocument* doc);

  // Called for each open drawing; the window refreshes its views, palette and titles.
  void drawingChanged();

protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void changeEvent(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  class DocReactor;
  class EditorReactor;
  friend class DocReactor;
  friend class EditorReactor;

  void buildActions();
  void buildMenus();
  void retranslate();
  void installHostServices();

  // Runs a command typed at "Command: " (or started by a menu), then shows
  // "Command: " again and refreshes what shows the drawing.
  void execute(const QString& command);
  // A command that a menu starts, echoed on the command line as if typed.
  void runFromMenu(const QString& command, std::function<void()> work);
  // The bracket of every command: errors reported, the drawing's views refreshed,
  // "Command: " shown again, then what waited for the command to end.
  void run(const std::function<void()>& work);
  // Runs `action` now, or, while a command waits for input, cancels that command
  // and runs it right after.
  void whenIdle(std::function<void()> action);

  void fileNew();
  void fileOpen();
  bool fileSave(HostApDocument* doc);
  bool fileSaveAs(HostApDocument* doc);
  void fileClose(HostApDocument* doc);
  void addRecent(const QString& path);
  void rebuildRecentMenu();

  void documentAdded(HostApDocument* doc);
  void documentClosing(HostApDocument* doc);
  void documentActivated(HostApDocument* doc);
  void tabChanged(int index);
  void selectionChanged();
  // Redraws the drawings that changed, and the palette when `palette` and the
  // active drawing changed; titles and menus always.
  void refreshDrawings(bool palette);
  void updateTitles();
  void updateActions();
  void showCoordinates(double x, double y);
  void showProgress(const char* what, std::size_t done, std::size_t total);
  void setLanguage(const QString& language);

  HostCommandLineWidget* m_commandLine = nullptr;
  std::unique_ptr<HostSession> m_session;
  std::unique_ptr<HostWindowContext> m_context;
  std::unique_ptr<DocReactor> m_docReactor;
  std::unique_ptr<EditorReactor> m_editorReactor;
  std::unique_ptr<HostModules> m_modules;
  QTabWidget* m_tabs = nullptr;
  HostPalette* m_palette = nullptr;
  QDockWidget* m_commandDock = nullptr;
  QDockWidget* m_paletteDock = nullptr;
  QLabel* m_coordinates = nullptr;
  QProgressBar* m_progress = nullptr;
  QMenu *m_fileMenu = nullptr, *m_recentMenu = nullptr, *m_editMenu = nullptr, *m_viewMenu = nullptr,
        *m_formatMenu = nullptr, *m_helpMenu = nullptr, *m_languageMenu = nullptr;
  std::map<QString, QAction*> m_actions;
  std::map<const HostApDocument*, uint64_t> m_savedAt;  // change count when opened or saved
  std::vector<std::function<void()>> m_afterCommand;
  int m_opening = 0;  // files being read
  bool m_running = false;  // a command runs
  bool m_closing = false;
};
