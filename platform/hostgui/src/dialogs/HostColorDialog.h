// The colour dialog: the 255 index colours as a grid, ByLayer and ByBlock, and
// true colours; a "Color:" field that takes what the user types.
#pragma once

#include <QDialog>
#include <QWidget>
#include <vector>

#include "drawings/OdCmColor.h"

class QColorDialog;
class QLabel;
class QLineEdit;
class QPushButton;
class QTabWidget;

// The index colours in the usual layout: the 10..249 block (hues in columns,
// the five shades of even indices above those of odd ones), then 1..9 and the
// greys 250..255 in rows below. Arrow keys move the selection to the nearest
// cell that way; Enter and a double click accept it.
class HostAciGrid : public QWidget {
  Q_OBJECT

public:
  explicit HostAciGrid(QWidget* parent = nullptr);
  int selected() const { return m_selected; }  // 0 when none
  void setSelected(int aci);
  QRect cellRect(int aci) const;
  int indexAt(const QPoint& pos) const;
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

signals:
  void hovered(int aci);  // 0 when the mouse leaves the cells
  void picked(int aci);
  void accepted(int aci);

protected:
  void paintEvent(QPaintEvent*) override;
  void mouseMoveEvent(QMouseEvent*) override;
  void mousePressEvent(QMouseEvent*) override;
  void mouseDoubleClickEvent(QMouseEvent*) override;
  void keyPressEvent(QKeyEvent*) override;
  void leaveEvent(QEvent*) override;
  void changeEvent(QEvent*) override;

private:
  void layoutCells();
  int cell() const;  // edge of a square cell in pixels, from the font
  std::vector<QRect> m_cells;  // by index, [0] unused
  int m_selected = 0;
  int m_hover = 0;
};

// A colour swatch with no text of its own (accessible name set by its owner).
class HostColorSwatch : public QWidget {
public:
  explicit HostColorSwatch(QWidget* parent = nullptr);
  void setColor(const OdCmColor& c);
  QSize sizeHint() const override;

protected:
  void paintEvent(QPaintEvent*) override;

private:
  OdCmColor m_color;
};

class HostColorDialog : public QDialog {
  Q_OBJECT

public:
  HostColorDialog(const OdCmColor& color, bool allowLogical, QWidget* parent = nullptr);
  OdCmColor color() const { return m_color; }
  void setColor(const OdCmColor& c);

  void accept() override;

private:
  void showIndexInfo(int aci);
  void textEdited();
  HostAciGrid* m_grid;
  QTabWidget* m_tabs;
  QColorDialog* m_trueColor;
  QLabel* m_indexInfo;
  QLabel* m_rgbInfo;
  QLineEdit* m_text;
  QLabel* m_error;
  HostColorSwatch* m_oldSwatch;
  HostColorSwatch* m_newSwatch;
  QPushButton* m_byLayer = nullptr;
  QPushButton* m_byBlock = nullptr;
  OdCmColor m_color;
  bool m_allowLogical;
  bool m_updating = false;
};

// Where the custom colours are kept (QSettings group "colors/custom").
std::vector<OdCmColor> hostReadCustomColors();
