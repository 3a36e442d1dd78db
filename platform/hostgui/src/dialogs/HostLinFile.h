// Linetype definition files (.lin): "*NAME,description" followed by the pattern
// line "A,dash,gap,..."; ";;" starts a comment. Dashes are positive, gaps
// negative, dots 0; an element in brackets puts a text or a shape at the start
// of the element before it: ["text",STYLE,S=1,R=0,X=0,Y=0] or [SHAPE,file.shx,...].
#pragma once

#include <QCoreApplication>
#include <QString>
#include <vector>

#include "drawings/OdDbLinetypeRecord.h"

struct HostLinEntry {
  QString name;
  QString description;
  OdDbLinetypeData data;  // pattern length and dashes; shapes and texts name their style in `styles`
  std::vector<QString> styles;  // per dash: the text style or shape file a complex element names, or empty
  int line = 0;  // of the "*NAME" line
};

struct HostLinError {
  int line = 0;
  QString message;
};

class HostLinFile {
  Q_DECLARE_TR_FUNCTIONS(HostLinFile)

public:
  // Reads every definition it can; a broken definition is left out with one
  // error naming its line, and reading goes on with the next "*" line.
  static HostLinFile parse(const QString& text);
  static HostLinFile read(const QString& path);

  std::vector<HostLinEntry> entries;
  std::vector<HostLinError> errors;

  const HostLinEntry* find(const QString& name) const;
};
