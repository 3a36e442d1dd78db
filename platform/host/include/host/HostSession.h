// A command-line session of the host: the documents (through the document
// manager it owns), the file commands (OPEN, NEW, SAVE, SAVEAS, CLOSE, QUIT),
// UNDO / REDO, and the commands that modules add. While it lives, it is the
// host's document manager and context (gpVxContext).
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "drawings/OdDbDatabase.h"
#include "host/HostApDocManager.h"
#include "host/HostCommandLine.h"
#include "host/HostConsoleContext.h"

class HostSession {
public:
  explicit HostSession(HostCommandLine& cl);
  // Closes the documents still open, telling the reactors.
  ~HostSession();

  // Opens a drawing and makes it active; reports a failure and returns false.
  bool open(const std::string& path);
  // Makes a drawing read elsewhere (the window reads large files off its GUI
  // thread) an open document, the active one, reporting it as open() does.
  HostApDocument* adopt(OdDbDatabasePtr db, const std::string& path);
  // A new drawing as the active document, reported as NEW reports it.
  HostApDocument* newDrawing(DxfVersion version, bool metric);
  // Writes the document, reporting on the command line; false when it failed.
  bool save(HostApDocument& doc, const std::string& path, const DxfSaveOptions& options);
  // Undoes up to `count` steps of the active drawing, naming each; false when
  // there was nothing to undo.
  bool undoSteps(long count);
  // The window host runs registered (dialog) commands; the console says they
  // need the window.
  void setDialogsAvailable(bool available) { m_dialogs = available; }
  // Runs "Command: " prompts until QUIT or the end of input.
  void run();
  // Runs one command by name: the session's own, then those of modules; false
  // if there is no such command. A command that can change the drawing runs
  // inside one undo group of the active drawing, named as the command.
  bool runCommand(const std::string& name);

  using Command = std::function<void()>;
  // `undoable` false: the command never changes a drawing (files, undo itself).
  void addCommand(const std::string& name, Command handler, bool undoable = true);

  HostApDocument* activeDocument() { return m_docManager.curDocument(); }
  // Makes `doc` the active document (the window's tab that the user chose).
  void activate(HostApDocument* doc);
  // Closes `doc` without asking, reporting it as CLOSE does.
  void close(HostApDocument* doc);
  // A Yes/No question on the command line: the lines of the text, then a Yes/No
  // prompt on its last line, No by default so that Enter changes nothing. Throws
  // HostCancel as prompts do.
  bool askYesNo(const std::wstring& question);
  // QUIT or EXIT was entered.
  bool quitRequested() const { return m_quit; }
  HostApDocManager& docManager() { return m_docManager; }
  // Every document, each with its documentToBeDestroyed; the program calls it
  // at exit before the modules unload.
  void closeAllDocuments();
  // True once a file could not be read or written: the exit status reports it.
  bool hadFileError() const { return m_fileError; }
  HostCommandLine& commandLine() { return m_cl; }

private:
  void cmdOpen();
  void cmdNew();
  void cmdSave();
  void cmdSaveAs();
  void cmdClose();
  void cmdHelp();
  void cmdUndo();
  void cmdRedo();
  void activeChanged();  // tells the host services which drawing is active
  void runUndoable(const std::string& name, const Command& handler);

  HostCommandLine& m_cl;
  HostApDocManager m_docManager;
  HostConsoleContext m_context;
  struct CommandEntry {
    Command handler;
    bool undoable = true;
  };
  std::map<std::string, CommandEntry> m_commands;  // upper-case names
  bool m_quit = false;
  bool m_fileError = false;
  bool m_dialogs = false;
};
