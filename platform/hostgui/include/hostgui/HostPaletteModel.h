// The rows of the properties palette: a tree of categories, each with its
// properties' label and value, over the editable properties bound to one
// selection. Everything the palette decides lives here, without widgets: which
// rows there are and in which order, what a cell shows and reads aloud, what a
// write does. The palette's view and delegate only bind it.
#pragma once

#include <QAbstractItemModel>
#include <QString>
#include <QStringList>
#include <memory>
#include <vector>

#include "drawings/OdDbObjectId.h"
#include "host/HostPropertyManager.h"

class OdDbDatabase;

// One kind of object in a selection, as the filter lists it.
struct HostPaletteTypeCount {
  QString key;   // the English kind name (hostEntityTypeName)
  QString name;  // as shown, translated
  int count = 0;
};

class HostPaletteModel : public QAbstractItemModel {
  Q_OBJECT

public:
  enum Column { kLabelColumn = 0, kValueColumn = 1 };
  enum Role {
    kEditKindRole = Qt::UserRole + 1,  // int of HostPropEditKind (value cells)
    kValueListRole,                    // QStringList of the value list (value cells)
    kStateRole,                        // int of HostPropState (value cells)
    kCategoryRole,                     // bool: the row is a category
  };

  explicit HostPaletteModel(QObject* parent = nullptr);
  ~HostPaletteModel() override;

  // Told of every bound property's changes; not owned. Set before rebuild().
  void setSink(IXREditablePropertySink* sink) { m_sink = sink; }
  // Binds each of `properties` (in registration order) to `selection`: a row for
  // each property name whose combined state is not kNone; properties sharing a
  // name (one per entity class) make one row. Categories come in the order of
  // their first property.
  void rebuild(const std::vector<IOdProperty*>& properties, const OdDbObjectIdArray& selection, OdDbDatabase* db);
  void clear();
  // Re-reads every value; the rows stay.
  void reread();
  // True while a value is being written: the bound properties must stay.
  bool isWriting() const { return m_writing > 0; }

  // The editable property behind a value cell (the first of its name), or null.
  IXREditableProperty* property(const QModelIndex& index) const;
  // The cell of `column` in the row with this category and label (as shown), or
  // an invalid index.
  QModelIndex find(const QString& category, const QString& label, int column = kValueColumn) const;
  // Writes `text` to the row's properties, as one undo step; kHostOk when written.
  HostResult setValue(const QModelIndex& index, const QString& text);

  // The kinds in `selection` with their counts, in order of first appearance.
  static std::vector<HostPaletteTypeCount> typeCounts(const OdDbObjectIdArray& selection);
  // The objects of `selection` of kind `key`; all of them for an empty key.
  static OdDbObjectIdArray filtered(const OdDbObjectIdArray& selection, const QString& key);
  // The shown text of an English kind, category or label of the host's own.
  static QString translated(const QString& english);

  QModelIndex index(int row, int column, const QModelIndex& parent = QModelIndex()) const override;
  QModelIndex parent(const QModelIndex& child) const override;
  int rowCount(const QModelIndex& parent = QModelIndex()) const override;
  int columnCount(const QModelIndex& parent = QModelIndex()) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

signals:
  // setValue() is over, whatever its properties did.
  void written();

private:
  struct Row;
  struct Category;
  Row* rowOf(const QModelIndex& index) const;
  void unbind();

  std::vector<std::unique_ptr<Category>> m_categories;
  IXREditablePropertySink* m_sink = nullptr;
  OdDbDatabase* m_db = nullptr;
  int m_writing = 0;
};
