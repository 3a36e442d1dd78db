// A command-line session of the host: open drawings, the active one, the file
// commands (OPEN, NEW, SAVE, SAVEAS, CLOSE, QUIT) and UNDO / REDO.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "drawings/OdDbDatabase.h"
#include "host/HostCommandLine.h"

struct HostDocument {
  OdDbDatabasePtr database;
  std::string path;  // empty for a new drawing never saved
  DxfSaveOptions saveAs;  // version and format that SAVE writes: as read, or as last chosen
  std::string title() const;
};

class HostSession {
public:
  explicit HostSession(HostCommandLine& cl);
  ~HostSession();

  // Opens a drawing and makes it active; reports a failure and returns false.
  bool open(const std::string& path);
  // Runs "Command: " prompts until QUIT or the end of input.
  void run();
  // Runs one command by name; false if there is no such command. A command that can
  // change the drawing runs inside one undo group of the active drawing, named as
  // the command.
  bool runCommand(const std::string& name);

  using Command = std::function<void()>;
  // `undoable` false: the command never changes a drawing (files, undo itself).
  void addCommand(const std::string& name, Command handler, bool undoable = true);

  HostDocument* activeDocument();
  const std::vector<std::unique_ptr<HostDocument>>& documents() const { return m_docs; }
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
  bool save(HostDocument& doc, const std::string& path, const DxfSaveOptions& options);

  HostCommandLine& m_cl;
  struct CommandEntry {
    Command handler;
    bool undoable = true;
  };
  std::map<std::string, CommandEntry> m_commands;  // upper-case names
  std::vector<std::unique_ptr<HostDocument>> m_docs;
  size_t m_active = 0;
  bool m_quit = false;
  bool m_fileError = false;
};
