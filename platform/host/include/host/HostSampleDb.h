// The sample drawing that previews show: a small drawing, separate from every
// open document, with one dimension of every kind (rotated, aligned, angular from
// lines and from three points, arc length, radius, jogged radius, diameter,
// ordinate) and a leader with text, laid out to fit a small preview.
#pragma once

#include "drawings/OdDbDatabase.h"

// The sample database for `source`: made on the first call for that drawing and
// given again on later calls, refreshed from the source's units settings (LUNITS,
// LUPREC, AUNITS, AUPREC, MEASUREMENT) each time. Null `source`: a sample of its
// own. The host keeps it until the source's document closes (or the program
// ends); callers may change it freely (copy styles in, recompute), but must not
// keep the pointer past a call that closes documents.
OdDbDatabase* UpdateSampleDb(const OdDbDatabase* source);

// The host's side: forgets the sample made for `source`.
void hostDropSampleDb(const OdDbDatabase* source);
