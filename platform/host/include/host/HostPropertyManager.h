// The properties palette's side of a document: the properties that modules (and
// the host itself) add for the palette to show, in the order they were added, and
// the interfaces through which the palette reads and edits them.
//
// A property (IOdProperty) applies to objects of some classes. For a selection the
// palette asks it, as its own factory (IOdPropertyFactory), for an editable property
// (IXREditableProperty) bound to that selection: the combined value of every
// selected object the property applies to, its text, the list of values to choose
// from, and the write of a new value to all of them. Sinks (IXREditablePropertySink)
// hear of what the editable property did, so that the palette can re-read its rows.
//
// The palette shows a property's name "Category.Label": the text before the first
// '.' is the category, the rest the row's label.
#pragma once

#include <memory>
#include <vector>

#include "drawings/OdDbObjectId.h"
#include "drawings/OdString.h"
#include "host/HostResult.h"

class OdDbObject;
class QWidget;
class QPainter;
class QRect;

// What the combined value of a selection is: the states of the combiner.
enum class HostPropState {
  kSame = 0,    // every object visited has the value
  kVaries = 1,  // two objects differ: the palette shows the row blank
  kNone = 2,    // no object of the property's class: the property shows no row
};

// How the palette shows and edits a value when the property gives no editor of
// its own.
enum class HostPropEditKind {
  kText,      // free text, committed on Enter
  kList,      // one of valueList()
  kReadOnly,  // shown, not edited
};

class IXREditablePropertySink {
public:
  virtual ~IXREditablePropertySink() = default;
  // A value was written to the drawing: the palette re-reads its rows.
  virtual void valueChanged() = 0;
  // A value was refused; `message` says why in one line (the old value stays).
  virtual void valueRefused(const OdString& message) = 0;
  // The set of rows changed (a property that exists only for some values, such as
  // the annotation scale of annotative objects): the palette rebuilds its list.
  virtual void refreshAll() = 0;
};

// A property bound to one selection. Lives while the palette shows its row.
class IXREditableProperty {
public:
  virtual ~IXREditableProperty() = default;
  virtual HostPropState state() const = 0;
  // The combined value as the row shows it; empty unless state() is kSame.
  virtual OdString text() const = 0;
  virtual HostPropEditKind editKind() const = 0;
  // For kList: the values to choose from, each ending with a tab ("Yes\tNo\t").
  virtual OdString valueList() const { return OdString(); }
  // Writes the value typed or chosen (a text of the value list for kList) to every
  // object of the selection the property applies to, as one undo step. kHostOk when
  // written; otherwise the sinks hear valueRefused and nothing changes.
  virtual HostResult setText(const OdString& text) = 0;

  // An editor of the property's own (a picker) for the row's value cell, or null
  // for the host's editor of editKind(). The editor commits through setText or its
  // own write and tells the sinks.
  virtual QWidget* createEditor(QWidget* parent) { (void)parent; return nullptr; }
  // Paints the value into the cell (a swatch, an arrowhead sample) beside or in
  // place of its text; false to let the palette paint the text alone.
  virtual bool paintValue(QPainter* painter, const QRect& rect) const {
    (void)painter;
    (void)rect;
    return false;
  }

  // Sinks are not owned; each is told until it is removed.
  void advise(IXREditablePropertySink* sink);
  void unadvise(IXREditablePropertySink* sink);

protected:
  void notifyChanged() const;
  void notifyRefused(const OdString& message) const;
  void notifyRefreshAll() const;

private:
  std::vector<IXREditablePropertySink*> m_sinks;
};

class IOdPropertyFactory {
public:
  virtual ~IOdPropertyFactory() = default;
  // The property bound to `selection` (objects of one drawing); null when no
  // selected object is of the property's class.
  virtual std::unique_ptr<IXREditableProperty> createEditable(const OdDbObjectIdArray& selection) = 0;
};

// A palette property; what it reads and writes is the property's own affair. It
// is its own factory.
class IOdProperty : public IOdPropertyFactory {
public:
  virtual OdString name() const = 0;
  // Whether the property applies to `object` (its class or one derived from it).
  virtual bool appliesTo(const OdDbObject& object) const { (void)object; return false; }
  std::unique_ptr<IXREditableProperty> createEditable(const OdDbObjectIdArray& selection) override {
    (void)selection;
    return nullptr;
  }
};

class IOdPropertyManager {
public:
  virtual ~IOdPropertyManager() = default;
  // kHostOk; kHostNone when it is there already; kHostInvalidArg for null.
  virtual HostResult addProperty(IOdProperty* property) = 0;
  // kHostOk; kHostNone when it is not there; kHostInvalidArg for null.
  virtual HostResult removeProperty(IOdProperty* property) = 0;
  virtual const std::vector<IOdProperty*>& properties() const = 0;
};

// The host's manager. It does not own the properties: modules keep them.
class HostPropertyManager : public IOdPropertyManager {
public:
  HostResult addProperty(IOdProperty* property) override;
  HostResult removeProperty(IOdProperty* property) override;
  const std::vector<IOdProperty*>& properties() const override { return m_properties; }

private:
  std::vector<IOdProperty*> m_properties;
};

// One palette change as one undo step: the editor reactors hear "OPM_CHGPROP"
// start and end; when no command is active (CMDACTIVE 0) the change is its own
// undo step named "OPM_CHGPROP", otherwise it joins the running command's. The
// bracket closes however the change ends.
class HostPropertyChange {
public:
  explicit HostPropertyChange(OdDbDatabase* db);
  ~HostPropertyChange();
  HostPropertyChange(const HostPropertyChange&) = delete;
  HostPropertyChange& operator=(const HostPropertyChange&) = delete;
  bool ownsUndoStep() const { return m_ownStep; }

private:
  OdDbDatabase* m_db;
  bool m_ownStep = false;
};
