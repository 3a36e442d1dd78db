// Feeds arbitrary bytes to the DXF reader. Bad input must end in OdError, never in
// a crash, a hang or a sanitizer report; and whatever is accepted must write back
// byte for byte, since the reader promises not to lose anything it takes.
#include "drawings/OdDbDatabase.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string bytes(reinterpret_cast<const char*>(data), size);
  OdDbDatabasePtr db;
  try {
    db = OdDbDatabase::readDxf(bytes);
  } catch (const OdError&) {
    return 0;
  }
  std::string out = db->toDxf();
  if (out != bytes) {
    size_t i = 0;
    while (i < out.size() && i < bytes.size() && out[i] == bytes[i]) ++i;
    std::fprintf(stderr, "accepted input of %zu bytes written back as %zu bytes, first difference at byte %zu\n",
                 bytes.size(), out.size(), i);
    std::abort();
  }
  return 0;
}
