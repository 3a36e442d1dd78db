#include "drawings/OdDbText.h"

#include <cmath>

#include "EntityTags.h"
#include "drawings/OdDbDatabase.h"

ODRX_DEFINE_MEMBERS(OdDbText, OdDbEntity, L"TEXT")
ODRX_DEFINE_MEMBERS(OdDbMText, OdDbEntity, L"MTEXT")

using namespace entitytags;

namespace {

constexpr int kTextOrder[] = {39, 10, 20, 30, 40, 1, 50, 41, 51, 7, 71, 72, 11, 21, 31, 210, 220, 230, 73};
constexpr int kMTextOrder[] = {10, 20, 30, 40, 41, 46, 71, 72, 3, 1, 7, 210, 220, 230, 11, 21, 31,
                               42, 43, 50, 73, 44, 90, 63, 421, 431, 45, 441};
// TEXT has two AcDbText sections; the first holds everything but the vertical alignment.
const DxfSubclass kText{"AcDbText", kTextOrder};
const DxfSubclass kMText{"AcDbMText", kMTextOrder};

// The longest piece of MTEXT contents one tag holds.
constexpr size_t kChunk = 250;

}  // namespace

std::vector<std::string> entitytags::mtextPieces(const DxfCodec& codec, const OdString& text) {
  // Pieces end between characters, so that readers that decode each piece alone
  // see whole characters and whole \U+ escapes.
  std::vector<std::string> pieces(1);
  std::wstring_view s = text.view();
  for (size_t i = 0; i < s.size();) {
    size_t n = (sizeof(wchar_t) == 2 && i + 1 < s.size() && s[i] >= 0xD800 && s[i] < 0xDC00 && s[i + 1] >= 0xDC00 &&
                s[i + 1] < 0xE000)
                   ? 2
                   : 1;
    std::string c = codec.encode(s.substr(i, n));
    if (pieces.back().size() + c.size() > kChunk) pieces.emplace_back();
    pieces.back() += c;
    i += n;
  }
  return pieces;
}

namespace {

DxfTag defaultHeight(const OdDbDatabase& db) { return DxfTag(40, dxfFormatDouble(db.headerDouble("$TEXTSIZE", 0.2))); }

OdDbObjectId styleOf(const OdDbObject& e, const DxfSubclass& s) {
  std::string name = getText(e, s, 7).value_or("Standard");
  return recordId(e, &OdDbDatabase::getTextStyleTableId, name);
}

}  // namespace

// ---- TEXT ----

OdDbTextPtr OdDbText::createFor(const OdDbDatabase& db) {
  OdDbTextPtr e = createObject();
  DxfTagList first = pointTags(10, OdGePoint3d());
  first.push_back(defaultHeight(db));
  first.emplace_back(1, "");
  frame(*e, db, "TEXT", DxfVersion::R12, {{&kText, first}, {&kText, {}}});
  e->m_madeFor = db.codec();
  return e;
}

OdGePoint3d OdDbText::position() const { return getPoint(*this, kText, 10); }
void OdDbText::setPosition(const OdGePoint3d& p) {
  assertWriteEnabled();
  setPoint(*this, kText, 10, p);
}

double OdDbText::height() const { return getDouble(*this, kText, 40, 0.0); }
void OdDbText::setHeight(double h) {
  assertWriteEnabled();
  setDouble(*this, kText, 40, h);
}

OdString OdDbText::textString() const {
  return codecOf(*this, m_madeFor).decode(getText(*this, kText, 1).value_or(std::string()));
}
void OdDbText::setTextString(const OdString& text) {
  assertWriteEnabled();
  if (textString() == text) return;
  setText(*this, kText, 1, codecOf(*this, m_madeFor).encode(text.view()));
}

double OdDbText::rotation() const { return toRadians(getDouble(*this, kText, 50, 0.0)); }
void OdDbText::setRotation(double a) {
  assertWriteEnabled();
  setDouble(*this, kText, 50, toDegrees(a), 0.0);
}

OdDbObjectId OdDbText::textStyle() const { return styleOf(*this, kText); }
void OdDbText::setTextStyle(const OdDbObjectId& styleId) {
  std::string name = recordName(*this, styleId, &OdDbDatabase::getTextStyleTableId);
  assertWriteEnabled();
  setText(*this, kText, 7, std::move(name));
}

// ---- MTEXT ----

OdDbMTextPtr OdDbMText::createFor(const OdDbDatabase& db) {
  OdDbMTextPtr e = createObject();
  DxfTagList tags = pointTags(10, OdGePoint3d());
  tags.push_back(defaultHeight(db));
  tags.insert(tags.end(), {DxfTag(41, "0.0"), DxfTag(71, "1"), DxfTag(72, "1"), DxfTag(1, "")});
  frame(*e, db, "MTEXT", DxfVersion::R13, {{&kMText, tags}});
  e->m_madeFor = db.codec();
  return e;
}

OdGePoint3d OdDbMText::location() const { return getPoint(*this, kMText, 10); }
void OdDbMText::setLocation(const OdGePoint3d& p) {
  assertWriteEnabled();
  setPoint(*this, kMText, 10, p);
}

double OdDbMText::textHeight() const { return getDouble(*this, kMText, 40, 0.0); }
void OdDbMText::setTextHeight(double h) {
  assertWriteEnabled();
  setDouble(*this, kMText, 40, h);
}

double OdDbMText::width() const { return getDouble(*this, kMText, 41, 0.0); }
void OdDbMText::setWidth(double w) {
  assertWriteEnabled();
  setDouble(*this, kMText, 41, w, 0.0);
}

OdDbMText::AttachmentPoint OdDbMText::attachment() const {
  int64_t a = getInt(*this, kMText, 71, kTopLeft);
  return a >= kTopLeft && a <= kBottomRight ? static_cast<AttachmentPoint>(a) : kTopLeft;
}
void OdDbMText::setAttachment(AttachmentPoint a) {
  if (a < kTopLeft || a > kBottomRight) throw OdError(eInvalidInput, "attachment point " + std::to_string(a));
  assertWriteEnabled();
  setInt(*this, kMText, 71, a);
}

OdString OdDbMText::contents() const {
  // The 3 pieces come first and the 1 last; joined before decoding, since a piece
  // may end inside a character of a double-byte code page.
  Range r = range(*this, kMText);
  if (!r.found) return OdString();
  const auto& t = tags();
  std::string bytes, last;
  for (size_t i = r.begin; i < r.end; ++i) {
    if (t[i].code == 3) bytes += t[i].text;
    if (t[i].code == 1) {
      last = t[i].text;
      break;
    }
  }
  return codecOf(*this, m_madeFor).decode(bytes + last);
}

void OdDbMText::setContents(const OdString& text) {
  assertWriteEnabled();
  if (contents() == text) return;
  std::vector<std::string> pieces = mtextPieces(codecOf(*this, m_madeFor), text);
  Range r = writableRange(*this, kMText);
  auto& t = tagsForWrite();
  size_t pos = r.end;
  bool any = false;
  for (size_t i = r.end; i-- > r.begin;) {
    if (t[i].code != 3 && t[i].code != 1) continue;
    t.erase(t.begin() + static_cast<long>(i));
    pos = i;
    any = true;
  }
  if (!any) pos = insertPosition(*this, range(*this, kMText), kMText, 1);
  DxfTagList tagsOut;
  for (size_t i = 0; i < pieces.size(); ++i) tagsOut.emplace_back(i + 1 < pieces.size() ? 3 : 1, std::move(pieces[i]));
  t.insert(t.begin() + static_cast<long>(pos), tagsOut.begin(), tagsOut.end());
}

OdDbObjectId OdDbMText::textStyle() const { return styleOf(*this, kMText); }
void OdDbMText::setTextStyle(const OdDbObjectId& styleId) {
  std::string name = recordName(*this, styleId, &OdDbDatabase::getTextStyleTableId);
  assertWriteEnabled();
  setText(*this, kMText, 7, std::move(name));
}

OdGeVector3d OdDbMText::direction() const {
  if (find(*this, kMText, 11) >= 0) {
    OdGePoint3d d = getPoint(*this, kMText, 11);
    return OdGeVector3d{d.x, d.y, d.z};
  }
  double a = rotation();
  return OdGeVector3d{std::cos(a), std::sin(a), 0.0};
}

void OdDbMText::setDirection(const OdGeVector3d& v) {
  assertWriteEnabled();
  setPoint(*this, kMText, 11, OdGePoint3d{v.x, v.y, v.z});
  if (find(*this, kMText, 50) >= 0) setDouble(*this, kMText, 50, toDegrees(std::atan2(v.y, v.x)));
}

double OdDbMText::rotation() const {
  if (find(*this, kMText, 11) >= 0) {
    OdGePoint3d d = getPoint(*this, kMText, 11);
    return std::atan2(d.y, d.x);
  }
  return toRadians(getDouble(*this, kMText, 50, 0.0));
}

void OdDbMText::setRotation(double a) {
  assertWriteEnabled();
  bool hasDirection = find(*this, kMText, 11) >= 0;
  if (hasDirection) setPoint(*this, kMText, 11, OdGePoint3d{std::cos(a), std::sin(a), 0.0});
  if (!hasDirection || find(*this, kMText, 50) >= 0) setDouble(*this, kMText, 50, toDegrees(a), 0.0);
}
