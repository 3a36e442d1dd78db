// The test classes of the palette program, and what they share.
#pragma once

#include <QObject>
#include <memory>

#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbEntity.h"

QObject* makeGeneralPropertiesTest();
QObject* makePaletteTest();

// The shipped sample drawing: several layers, the CENTER linetype, dimensions
// of every kind, a leader, lines and texts.
OdDbDatabasePtr loadSample();
// The first `count` model-space entities of exactly `cls`, in drawing order.
OdDbObjectIdArray sampleEntities(OdDbDatabase& db, const OdRxClass* cls, size_t count);
