// Result buffer chains to and from tags: how extended data, xrecords and header
// variables are handed out and taken back.
#pragma once

#include "drawings/DxfCodec.h"
#include "drawings/DxfTags.h"
#include "drawings/OdResBuf.h"

// The chain for tags [begin, end) of `tags`, strings decoded with `codec`.
// Point coordinates (10/20/30, 1010/1020/1030, ...) become one point buffer.
OdResBufPtr resBufChain(const DxfCodec& codec, const DxfTagList& tags, size_t begin, size_t end);
// The tags for a chain, strings encoded with `codec`.
DxfTagList tagsOfChain(const DxfCodec& codec, const OdResBuf* chain);
