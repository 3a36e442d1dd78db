// The host services that the module's dialogs and palette cells call, with Qt
// behind them: colour, linetype, arrowhead and text style dialogs, painters of
// linetype and arrowhead samples, help by key, the common icons, message boxes
// and the dialog localiser. Every function runs on the GUI thread.
#pragma once

#include <QIcon>
#include <QRect>
#include <QString>
#include <vector>

#include "drawings/OdCmColor.h"
#include "drawings/OdDbDatabase.h"
#include "drawings/OdString.h"

class QPainter;
class QWidget;

// ---- colours
// Opens the colour dialog on `color` (the 255 index colours as a grid, ByLayer
// and ByBlock when `allowLogical`, and true colours); true with the chosen colour
// in `color`, false (unchanged) when cancelled.
bool hostSetColorDialogTrueColor(OdCmColor& color, bool allowLogical, QWidget* parent);
// The colours the user added, oldest first; kept from one run to the next.
std::vector<OdCmColor> hostGetCustomColors();
// Adds a colour to the end (moving it there when present already).
void hostAddCustomColor(const OdCmColor& color);

// ---- linetypes
// The drawing's linetypes to choose from, with "Load..." from the shipped
// linetype file; true with the chosen name in `name` (in/out). A loaded
// linetype is added to the drawing as one undo step.
bool hostLineTypeDialog(QWidget* parent, OdDbDatabase* db, OdString& name);
// Paints the linetype's dash pattern across the middle of `rect` in the
// painter's pen colour; ByLayer, ByBlock and Continuous paint a solid line.
void DrawLineType(QPainter* painter, const QRect& rect, const OdDbDatabase* db, const OdString& name);
// The shipped linetype file (ISO and imperial patterns).
QString hostLinetypeFilePath();

// ---- arrowheads
// Paints the arrowhead `blockName` (empty: closed filled; one of the 20 standard
// names; or a block of `db`) pointing right, fitted into `rect`, in the painter's
// pen colour.
void DrawArrow(QPainter* painter, const QRect& rect, const OdString& blockName, const OdDbDatabase* db = nullptr);
// Lets the user pick a block of the drawing as a user arrowhead; true with its
// name in `blockName` (in/out).
bool hostUsrArrowDialog(QWidget* parent, const OdDbDatabase* db, OdString& blockName);

// ---- text styles
// The text style dialog over `parent`: name, font, height, width factor,
// oblique angle; new, rename, delete when unused. Every change is one undo step
// of `db`. `selected` (in/out, may be null) is the style shown first and the one
// shown last. The host command "TextPropsCmd" runs it with the parameters "HWND"
// (the parent widget) and "CMDDIA".
void hostTextStyleDialog(QWidget* parent, OdDbDatabase* db, OdString* selected);

// ---- help
// Opens the help window at the page of `key` ("VEX_HELP_DIMSTYLE_DLG", a command
// name...) in the user-interface language; an unknown key opens the index.
void hostShowHelp(const QString& key, QWidget* parent = nullptr);
// The keys that have pages.
QStringList hostHelpKeys();

// ---- the common 16x16 image list
enum class HostImage {
  kStyleCurrent,     // a dimension style that is current
  kStyleAnnotative,  // an annotative dimension style
  kStylePlain,       // any other dimension style
  kStyleOverrides,   // the current settings' overrides
  kWarning,
  kInformation,
};
QIcon hostImage(HostImage image);

// ---- messages
// A question with Yes and No; true for Yes. `title` empty: the program's name.
bool hostYesNoBox(QWidget* parent, const QString& text, const QString& title = QString());
void hostMessageBox(QWidget* parent, const QString& text, const QString& title = QString());

// ---- the dialog localiser
// Puts every text of `dialog` and its children (window title, labels, buttons,
// group boxes, tab captions, combo entries, tooltips) through Supp_Translate, so a
// dialog laid out with English texts reads in the user-interface language.
void hostLocalizeDialog(QWidget* dialog);

// ---- registration
// Registers the host's own dialog commands ("TextPropsCmd"); the window host calls
// it once at start.
void hostGuiRegisterCommands();
