// The colour as the user types it in the colour dialog's "Color:" field and as
// that field shows it: a colour word, an index, "R,G,B", BYLAYER or BYBLOCK.
#pragma once

#include <QCoreApplication>
#include <QString>
#include <optional>

#include "drawings/OdCmColor.h"

class HostColorText {
  Q_DECLARE_TR_FUNCTIONS(HostColorText)

public:
  struct Result {
    std::optional<OdCmColor> color;
    QString error;  // why the text is no colour, when color is empty
  };
  // Accepts the seven colour words (English or in the user-interface language,
  // any case), an index 1..255, "R,G,B" with each part 0..255 and, when
  // `allowLogical`, BYLAYER and BYBLOCK (also spelled "By Layer", or 256 and 0).
  static Result parse(const QString& text, bool allowLogical);
  // What the field shows: BYLAYER, BYBLOCK, the word of ACI 1..7, the index of
  // other index colours, "R,G,B" of a true colour. parse(format(c)) == c.
  static QString format(const OdCmColor& color);
  // The English word of ACI 1..7, empty for other indices.
  static QString colorWord(int aci);
};
