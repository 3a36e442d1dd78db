// The palette's view, its one delegate and its list editor. The delegate asks
// each row's property how to show and edit its value: the property's own editor
// when it gives one, else a combo of its value list, a line edit, or nothing for
// read-only values; the property's own painting when it paints.
#pragma once

#include <QComboBox>
#include <QStyledItemDelegate>
#include <QTreeView>

// A combo that says when the user picked an entry from its open list, which
// commits at once; arrow keys on the closed combo only move until Enter.
class HostPaletteCombo : public QComboBox {
  Q_OBJECT

public:
  explicit HostPaletteCombo(QWidget* parent = nullptr);
  void hidePopup() override;

signals:
  void picked();

private:
  bool m_closingPopup = false;
};

class HostPaletteDelegate : public QStyledItemDelegate {
  Q_OBJECT

public:
  using QStyledItemDelegate::QStyledItemDelegate;
  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  void setEditorData(QWidget* editor, const QModelIndex& index) const override;
  void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;
  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};

// F2, Enter, a double click or a click on the selected row edit the row's value,
// from whichever column the row is current in.
class HostPaletteView : public QTreeView {
  Q_OBJECT

public:
  explicit HostPaletteView(QWidget* parent = nullptr);

protected:
  bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void drawRow(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};
