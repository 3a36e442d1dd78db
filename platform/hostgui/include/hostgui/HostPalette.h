// The properties palette: a filter over the kinds of selected objects, then the
// rows of the properties that the document's property manager offers for them,
// by category, each value edited in place. A change is one undo step of the
// drawing; the palette tells its owner through drawingChanged() so that the
// view repaints.
#pragma once

#include <QWidget>

#include "drawings/OdDbObjectId.h"
#include "host/HostPropertyManager.h"

class HostApDocument;
class HostPaletteModel;
class QComboBox;
class QLabel;
class QTreeView;

class HostPalette : public QWidget, public IXREditablePropertySink {
  Q_OBJECT

public:
  explicit HostPalette(QWidget* parent = nullptr);
  ~HostPalette() override;

  // The document whose property manager gives the properties; null shows nothing.
  // The selection is dropped. The owner sets null before the document closes:
  // the rows hold the drawing's objects.
  void setDocument(HostApDocument* document);
  HostApDocument* document() const { return m_document; }
  // Objects of the document's drawing. The filter stays on its kind while the
  // new selection has any.
  void setSelection(const OdDbObjectIdArray& ids);
  const OdDbObjectIdArray& selection() const { return m_selection; }
  // Binds the properties afresh: after undo and redo, when properties come or go.
  void refresh();

  HostPaletteModel* model() const { return m_model; }
  QTreeView* view() const { return m_view; }
  QComboBox* filterCombo() const { return m_filter; }
  // The last refusal, until the next change or selection; empty when none.
  QString message() const;

  // IXREditablePropertySink
  void valueChanged() override;
  void valueRefused(const OdString& message) override;
  void refreshAll() override;

signals:
  // A value was written to the drawing.
  void drawingChanged();

protected:
  void changeEvent(QEvent* event) override;

private:
  void rebuildFilter();
  void rebuildRows();
  void retranslate();
  void showMessage(const QString& text);

  HostApDocument* m_document = nullptr;
  OdDbObjectIdArray m_selection;
  HostPaletteModel* m_model;
  QLabel* m_filterLabel;
  QComboBox* m_filter;
  QTreeView* m_view;
  QLabel* m_message;
  QStringList m_collapsed;  // categories the user closed, kept over rebuilds
  bool m_refreshQueued = false;
  bool m_changedInWrite = false;  // a property wrote during the model's write
};
