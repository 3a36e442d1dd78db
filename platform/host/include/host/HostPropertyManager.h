// The properties palette's side of a document: the properties that modules add
// for the palette to show, in the order they were added.
#pragma once

#include <vector>

#include "drawings/OdString.h"
#include "host/HostResult.h"

// A palette property; what it reads and writes is the property's own affair.
class IOdProperty {
public:
  virtual ~IOdProperty() = default;
  virtual OdString name() const = 0;
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
