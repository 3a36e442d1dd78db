#include "HostTextStyles.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QHash>
#include <QLocale>
#include <QRawFont>
#include <cmath>
#include <numbers>

#include "drawings/OdDbSymUtil.h"

// ---- values

HostTextStyleValues::Result HostTextStyleValues::parse(Field field, const QString& text) {
  Result r;
  const QString t = text.trimmed();
  bool ok = false;
  double v = t.toDouble(&ok);
  if (!ok) v = QLocale().toDouble(t, &ok);
  if (!ok || !std::isfinite(v)) {
    r.error = tr("\"%1\" is not a number.").arg(t);
    return r;
  }
  switch (field) {
    case Field::Height:
      if (v < 0) {
        r.error = tr("The height cannot be negative; 0 lets each text have its own height.");
        return r;
      }
      break;
    case Field::WidthFactor:
      if (v < 0.01 || v > 100) {
        r.error = tr("The width factor must lie between 0.01 and 100.");
        return r;
      }
      break;
    case Field::ObliqueDegrees:
      if (v < -85 || v > 85) {
        r.error = tr("The oblique angle must lie between -85 and 85 degrees.");
        return r;
      }
      break;
  }
  r.value = v;
  return r;
}

QString HostTextStyleValues::format(Field field, double value) {
  const int decimals = field == Field::ObliqueDegrees ? 2 : 4;
  QString s = QString::number(value, 'f', decimals);
  // Trailing zeros say nothing: 2.5000 reads as 2.5, 1.0000 as 1.
  while (s.contains(QLatin1Char('.')) && (s.endsWith(QLatin1Char('0')) || s.endsWith(QLatin1Char('.')))) s.chop(1);
  return s == QLatin1String("-0") ? QStringLiteral("0") : s;
}

// ---- fonts

namespace {
struct FontIndex {
  QHash<QString, QString> fileOfFamily;  // folded family -> file name of its regular face
  QHash<QString, QString> familyOfFile;  // folded file name -> family
};

const FontIndex& fontIndex() {
  static const FontIndex index = [] {
    FontIndex ix;
    QHash<QString, int> rank;  // how far the face chosen so far is from upright regular
    for (const QString& dir : {QStringLiteral("/usr/share/fonts"), QStringLiteral("/usr/local/share/fonts"),
                               QDir::homePath() + QStringLiteral("/.local/share/fonts")}) {
      QDirIterator it(dir, {"*.ttf", "*.TTF", "*.otf", "*.OTF"}, QDir::Files, QDirIterator::Subdirectories);
      while (it.hasNext()) {
        const QString path = it.next();
        const QRawFont font(path, 12);
        if (!font.isValid()) continue;
        const QString file = QFileInfo(path).fileName();
        ix.familyOfFile.insert(file.toLower(), font.familyName());
        const QString key = font.familyName().toLower();
        const int r = std::abs(font.weight() - 400) + (font.style() == QFont::StyleNormal ? 0 : 1000);
        const auto old = rank.find(key);
        if (old == rank.end() || r < *old || (r == *old && file.size() < ix.fileOfFamily[key].size())) {
          rank[key] = r;
          ix.fileOfFamily[key] = file;
        }
      }
    }
    return ix;
  }();
  return index;
}

OdString od(const QString& s) { return OdString(s.toStdWString()); }
QString qs(const OdString& s) { return QString::fromStdWString(s.str()); }
}  // namespace

QString HostFontFiles::fileForFamily(const QString& family) {
  return fontIndex().fileOfFamily.value(family.toLower());
}

QString HostFontFiles::familyOfFile(const QString& fileName) {
  return fontIndex().familyOfFile.value(fileName.toLower());
}

QString HostFontFiles::displayName(const OdDbTextStyleData& data) {
  if (!data.typeface.isEmpty()) return qs(data.typeface);
  const QString file = qs(data.fontFile);
  const QString family = familyOfFile(file);
  return family.isEmpty() ? file : family;
}

void HostFontFiles::setFont(OdDbTextStyleData& data, const QString& picked, bool canHoldTypeface) {
  if (picked == displayName(data)) return;  // the same font: keep how the style names it
  const QString file = fileForFamily(picked);
  if (file.isEmpty() && picked.contains(QLatin1Char('.'))) {
    // A font file by name (a shape font such as romans.shx).
    data.fontFile = od(picked);
    data.typeface = OdString();
    data.typefaceFlags = 0;
    return;
  }
  // Without a file the typeface alone names the font, where the drawing can hold it.
  data.fontFile = od(file.isEmpty() && !canHoldTypeface ? picked : file);
  data.typeface = canHoldTypeface ? od(picked) : OdString();
  data.typefaceFlags = canHoldTypeface ? 0x22 : 0;  // variable pitch, swiss: what new styles of a family get
  data.flags &= ~1;  // no shape file
}

// ---- styles

QStringList HostTextStyles::names() const {
  QStringList out;
  auto table = odOpen<OdDbTextStyleTable>(m_db->getTextStyleTableId());
  if (!table) return out;
  for (const OdDbObjectId& id : table->recordIds()) {
    auto rec = odOpen<OdDbTextStyleTableRecord>(id);
    // Shape-file records (flag 1) load shapes for linetypes; they are no text styles.
    if (rec && !(rec->flags() & 1) && !rec->getName().isEmpty()) out << qs(rec->getName());
  }
  return out;
}

OdDbObjectId HostTextStyles::idOf(const QString& name) const {
  auto table = odOpen<OdDbTextStyleTable>(m_db->getTextStyleTableId());
  return table ? table->getAt(od(name)) : OdDbObjectId();
}

OdDbTextStyleData HostTextStyles::data(const QString& name) const {
  auto rec = odOpen<OdDbTextStyleTableRecord>(idOf(name));
  return rec ? OdDbTextStyleData::fromRecord(*rec) : OdDbTextStyleData();
}

QString HostTextStyles::whyNotName(const QString& name, const QString& self) const {
  if (name.trimmed().isEmpty()) return tr("A text style needs a name.");
  if (OdDbSymUtil::validateSymbolName(od(name), false, m_db) != eOk)
    return m_db->extendedNames()
               ? tr("\"%1\" cannot name a text style: it may not start or end with a space nor hold any of < > / \\ \" : ; ? * | , = `.").arg(name)
               : tr("\"%1\" cannot name a text style in this drawing: up to 31 letters, digits, $, _ and -.").arg(name);
  if (!idOf(name).isNull() && name.compare(self, Qt::CaseInsensitive) != 0)
    return tr("A text style named \"%1\" exists already.").arg(name);
  return QString();
}

namespace {
// One undo step around `change`, which returns what went wrong.
template <class F>
QString undoStep(OdDbDatabase* db, const wchar_t* name, F change) {
  db->beginUndoGroup(name);
  // Closed however the change ends, so that no later change joins this step.
  struct Close {
    OdDbDatabase* db;
    ~Close() { db->endUndoGroup(); }
  } close{db};
  try {
    return change();
  } catch (const OdError& e) {
    return QString::fromStdString(e.what());
  }
}
}  // namespace

QString HostTextStyles::create(const QString& name, const QString& copyOf) {
  if (QString why = whyNotName(name); !why.isEmpty()) return why;
  OdDbTextStyleData d = copyOf.isEmpty() ? OdDbTextStyleData() : data(copyOf);
  if (copyOf.isEmpty()) d.fontFile = L"txt";
  const QString stored = m_db->extendedNames() ? name : name.toUpper();
  return undoStep(m_db, L"STYLE", [&] {
    d.addTo(*m_db, od(stored));
    return QString();
  });
}

QString HostTextStyles::rename(const QString& from, const QString& to) {
  const OdDbObjectId id = idOf(from);
  if (id.isNull()) return tr("There is no text style named \"%1\".").arg(from);
  if (from.compare(QLatin1String("Standard"), Qt::CaseInsensitive) == 0)
    return tr("The Standard text style cannot be renamed.");
  if (QString why = whyNotName(to, from); !why.isEmpty()) return why;
  if (from == to) return QString();
  const QString stored = m_db->extendedNames() ? to : to.toUpper();
  return undoStep(m_db, L"RENAME", [&] {
    odOpen<OdDbTextStyleTableRecord>(id, OdDb::kForWrite)->setName(od(stored));
    // The current style is named in the header, which follows the record.
    if (m_db->headerString("$TEXTSTYLE").iCompare(od(from)) == 0) m_db->setHeaderString("$TEXTSTYLE", 7, od(stored));
    return QString();
  });
}

QString HostTextStyles::whyNotDelete(const QString& name) const {
  const OdDbObjectId id = idOf(name);
  if (id.isNull()) return tr("There is no text style named \"%1\".").arg(name);
  if (name.compare(QLatin1String("Standard"), Qt::CaseInsensitive) == 0)
    return tr("The Standard text style cannot be deleted.");
  if (m_db->headerString("$TEXTSTYLE").iCompare(od(name)) == 0)
    return tr("\"%1\" is the current text style and cannot be deleted.").arg(name);
  OdDbObjectIdArray ids{id};
  m_db->purge(ids);
  if (ids.empty()) return tr("\"%1\" is used by texts, dimensions or dimension styles and cannot be deleted.").arg(name);
  return QString();
}

QString HostTextStyles::remove(const QString& name) {
  if (QString why = whyNotDelete(name); !why.isEmpty()) return why;
  const OdDbObjectId id = idOf(name);
  return undoStep(m_db, L"PURGE", [&] {
    odOpen<OdDbTextStyleTableRecord>(id, OdDb::kForWrite)->erase();
    odOpen<OdDbTextStyleTable>(m_db->getTextStyleTableId())->invalidateIndex();
    return QString();
  });
}

QString HostTextStyles::apply(const QString& name, const OdDbTextStyleData& d) {
  const OdDbObjectId id = idOf(name);
  if (id.isNull()) return tr("There is no text style named \"%1\".").arg(name);
  if (data(name) == d) return QString();
  return undoStep(m_db, L"STYLE", [&] {
    d.applyTo(*odOpen<OdDbTextStyleTableRecord>(id, OdDb::kForWrite));
    return QString();
  });
}
