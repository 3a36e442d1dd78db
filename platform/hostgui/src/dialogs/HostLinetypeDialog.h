// The linetype dialog and the loader of linetypes from the shipped file.
#pragma once

#include <QCoreApplication>
#include <QDialog>
#include <QStyledItemDelegate>
#include <functional>
#include <vector>

#include "HostLinFile.h"
#include "drawings/OdDbDatabase.h"

class QTreeWidget;
class QLabel;

// Adds the chosen definitions that the drawing does not have yet, as one undo
// step; returns how many were added.
int hostLoadLinetypes(OdDbDatabase& db, const std::vector<HostLinEntry>& entries);

// Paints a dash pattern (dashes > 0, gaps < 0, dots 0) across the middle of
// `rect` in the pen's colour, a period over a third of its width; solid when empty.
void hostDrawDashPattern(QPainter* painter, const QRect& rect, const std::vector<double>& pattern);

// Paints the linetype named by the item's Qt::UserRole, or the pattern of
// kPatternRole (a list of lengths) when set, in the item's text colour.
inline constexpr int kPatternRole = Qt::UserRole + 1;
class HostLinetypeDelegate : public QStyledItemDelegate {
public:
  HostLinetypeDelegate(const OdDbDatabase* db, QObject* parent) : QStyledItemDelegate(parent), m_db(db) {}
  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
  const OdDbDatabase* m_db;
};

// The definitions of a linetype file to choose from; those the drawing has
// already cannot be chosen again.
class HostLinetypeLoadDialog : public QDialog {
  Q_OBJECT

public:
  HostLinetypeLoadDialog(const OdDbDatabase* db, const QString& path, QWidget* parent = nullptr);
  std::vector<HostLinEntry> chosen() const;
  QTreeWidget* list() const { return m_list; }

private:
  void loadFile(const QString& path);
  const OdDbDatabase* m_db;
  HostLinFile m_file;
  QLabel* m_path;
  QLabel* m_errors;
  QTreeWidget* m_list;
};

class HostLinetypeDialog : public QDialog {
  Q_OBJECT

public:
  HostLinetypeDialog(OdDbDatabase* db, const QString& current, QWidget* parent = nullptr);
  QString selectedName() const;
  QTreeWidget* list() const { return m_list; }
  // Loads from the file as "Load..." does, choosing with `choose` (the load
  // dialog when null); tests choose without a window.
  void load(const std::function<std::vector<HostLinEntry>(HostLinetypeLoadDialog&)>& choose = nullptr);

private:
  void fill(const QString& select);
  OdDbDatabase* m_db;
  QTreeWidget* m_list;
};
