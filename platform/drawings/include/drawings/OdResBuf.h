// Result buffers: linked chains of typed (code, value) pairs, the form in which
// extended data (XDATA) and header variables are handed out and taken back.
#pragma once

#include <cstdint>
#include <string>

#include "drawings/OdDbObjectId.h"
#include "drawings/OdRxObject.h"

struct OdGePoint3d {
  double x = 0, y = 0, z = 0;
  friend bool operator==(const OdGePoint3d& a, const OdGePoint3d& b) { return a.x == b.x && a.y == b.y && a.z == b.z; }
};

class OdResBuf;
using OdResBufPtr = OdSmartPtr<OdResBuf>;

class OdResBuf : public OdRxObject {
public:
  // Restypes are DXF group codes.
  enum { kDxfRegAppName = 1001, kDxfXdAsciiString = 1000, kDxfXdControlString = 1002, kDxfXdBinaryChunk = 1004,
         kDxfXdHandle = 1005, kDxfXdXCoord = 1010, kDxfXdReal = 1040, kDxfXdDist = 1041, kDxfXdScale = 1042,
         kDxfXdInteger16 = 1070, kDxfXdInteger32 = 1071 };

  static OdResBufPtr newRb(int restype = 0) {
    OdResBufPtr p(new OdResBuf());
    p->m_type = restype;
    return p;
  }
  static OdResBufPtr newRb(int restype, const OdString& s) { auto p = newRb(restype); p->setString(s); return p; }
  static OdResBufPtr newRb(int restype, int32_t i) { auto p = newRb(restype); p->setInt32(i); return p; }
  static OdResBufPtr newRb(int restype, double d) { auto p = newRb(restype); p->setDouble(d); return p; }

  int restype() const { return m_type; }
  void setRestype(int t) { m_type = t; }
  OdResBufPtr next() const { return m_next; }
  // Links `rb` after this one and returns it, so chains can be built as a->setNext(b)->setNext(c).
  OdResBufPtr setNext(const OdResBufPtr& rb) { m_next = rb; return rb; }
  OdResBufPtr last();

  const OdString& getString() const { return m_str; }
  void setString(const OdString& s) { m_str = s; }
  double getDouble() const { return m_d; }
  void setDouble(double d) { m_d = d; }
  int16_t getInt16() const { return static_cast<int16_t>(m_i); }
  void setInt16(int16_t i) { m_i = i; }
  int32_t getInt32() const { return static_cast<int32_t>(m_i); }
  void setInt32(int32_t i) { m_i = i; }
  int64_t getInt64() const { return m_i; }
  void setInt64(int64_t i) { m_i = i; }
  bool getBool() const { return m_i != 0; }
  void setBool(bool b) { m_i = b; }
  OdDbHandle getHandle() const { return OdDbHandle(static_cast<uint64_t>(m_i)); }
  void setHandle(OdDbHandle h) { m_i = static_cast<int64_t>(h.value()); }
  const OdGePoint3d& getPoint3d() const { return m_pt; }
  void setPoint3d(const OdGePoint3d& p) { m_pt = p; }
  const std::string& getBinaryChunk() const { return m_bin; }
  void setBinaryChunk(std::string b) { m_bin = std::move(b); }

private:
  int m_type = 0;
  OdString m_str;
  double m_d = 0;
  int64_t m_i = 0;
  OdGePoint3d m_pt;
  std::string m_bin;
  OdResBufPtr m_next;
};
