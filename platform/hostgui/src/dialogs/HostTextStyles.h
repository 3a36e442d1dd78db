// The text styles of a drawing as the text style dialog changes them: names
// checked, values validated, every change one undo step. No widgets here.
#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringList>
#include <optional>

#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbLinetypeRecord.h"

// The numbers of a text style as typed.
class HostTextStyleValues {
  Q_DECLARE_TR_FUNCTIONS(HostTextStyleValues)

public:
  enum class Field { Height, WidthFactor, ObliqueDegrees };
  struct Result {
    std::optional<double> value;
    QString error;  // why the text was refused, when value is empty
  };
  // Height 0 (each text its own) or more; width factor 0.01 to 100; oblique
  // angle -85 to 85 degrees. A decimal point or the locale's comma.
  static Result parse(Field field, const QString& text);
  static QString format(Field field, double value);
};

// Font files of the installed TrueType fonts, by family, found by reading them.
class HostFontFiles {
public:
  // The file name ("DejaVuSans.ttf") of the family's upright regular face, empty when none.
  static QString fileForFamily(const QString& family);
  // The family of an installed font file name (any letter case), empty when none.
  static QString familyOfFile(const QString& fileName);
  // What the dialog shows as a style's font: its typeface, the family of its font
  // file, or the file name itself (shape fonts).
  static QString displayName(const OdDbTextStyleData& data);
  // Sets the font of `data` from what the user picked in the list.
  static void setFont(OdDbTextStyleData& data, const QString& picked, bool canHoldTypeface);
};

class HostTextStyles {
  Q_DECLARE_TR_FUNCTIONS(HostTextStyles)

public:
  explicit HostTextStyles(OdDbDatabase* db) : m_db(db) {}

  QStringList names() const;
  OdDbObjectId idOf(const QString& name) const;
  OdDbTextStyleData data(const QString& name) const;

  // Each returns an empty text on success, else why nothing was done.
  QString create(const QString& name, const QString& copyOf);
  QString rename(const QString& from, const QString& to);
  QString remove(const QString& name);
  QString apply(const QString& name, const OdDbTextStyleData& data);
  // Why the style cannot be deleted; empty when it can.
  QString whyNotDelete(const QString& name) const;
  // Why a new name cannot be taken; empty when it can. `self`: the style being renamed.
  QString whyNotName(const QString& name, const QString& self = QString()) const;

private:
  OdDbDatabase* m_db;
};
