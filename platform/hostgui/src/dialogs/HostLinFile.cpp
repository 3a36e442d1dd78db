#include "HostLinFile.h"

#include <QFile>
#include <QStringList>
#include <cmath>
#include <numbers>
#include <utility>

namespace {

std::optional<double> number(const QString& s) {
  bool ok = false;
  const double v = s.trimmed().toDouble(&ok);
  return ok && std::isfinite(v) ? std::optional<double>(v) : std::nullopt;
}

// Splits at commas outside quotes and brackets, so a complex element stays whole.
QStringList splitElements(const QString& s) {
  QStringList out;
  QString cur;
  bool quoted = false;
  int depth = 0;
  for (QChar c : s) {
    if (c == QLatin1Char('"')) quoted = !quoted;
    else if (!quoted && c == QLatin1Char('[')) ++depth;
    else if (!quoted && c == QLatin1Char(']')) --depth;
    if (c == QLatin1Char(',') && !quoted && depth == 0) {
      out << cur;
      cur.clear();
    } else {
      cur += c;
    }
  }
  out << cur;
  return out;
}

}  // namespace

const HostLinEntry* HostLinFile::find(const QString& name) const {
  for (const HostLinEntry& e : entries)
    if (e.name.compare(name, Qt::CaseInsensitive) == 0) return &e;
  return nullptr;
}

HostLinFile HostLinFile::read(const QString& path) {
  QFile f(path);
  if (!f.open(QIODevice::ReadOnly)) {
    HostLinFile r;
    r.errors.push_back({0, tr("Cannot read %1: %2").arg(path, f.errorString())});
    return r;
  }
  return parse(QString::fromUtf8(f.readAll()));
}

HostLinFile HostLinFile::parse(const QString& text) {
  HostLinFile r;
  const QStringList lines = text.split(QLatin1Char('\n'));
  HostLinEntry pending;
  bool havePending = false;
  bool skipPattern = false;  // the pattern of a definition already reported as broken
  auto fail = [&](int line, const QString& message) { r.errors.push_back({line, message}); };

  // Reads the pattern line of `e`; false (with an error) when it is broken.
  auto readPattern = [&](HostLinEntry& e, const QString& body, int line) -> bool {
    QStringList parts = splitElements(body);
    if (parts.isEmpty() || parts[0].trimmed().compare(QLatin1String("A"), Qt::CaseInsensitive) != 0) {
      fail(line, tr("The pattern of %1 must start with the alignment \"A\".").arg(e.name));
      return false;
    }
    parts.removeFirst();
    if (parts.isEmpty() || (parts.size() == 1 && parts[0].trimmed().isEmpty())) {
      fail(line, tr("The pattern of %1 has no dashes.").arg(e.name));
      return false;
    }
    for (const QString& raw : parts) {
      const QString p = raw.trimmed();
      if (p.startsWith(QLatin1Char('['))) {
        if (!p.endsWith(QLatin1Char(']')) || e.data.dashes.empty()) {
          fail(line, tr("\"%1\" is no complete text or shape element of a dash.").arg(p));
          return false;
        }
        const QStringList f = splitElements(p.mid(1, p.size() - 2));
        if (f.size() < 2) {
          fail(line, tr("\"%1\" needs a text or shape and its style or file.").arg(p));
          return false;
        }
        OdDbLinetypeDash& d = e.data.dashes.back();
        QString first = f[0].trimmed();
        if (first.startsWith(QLatin1Char('"'))) {
          d.complexType = 2;
          d.text = OdString(first.mid(1, first.size() - 2).toStdWString());
        } else {
          d.complexType = 4;
          d.text = OdString(first.toStdWString());  // the shape's name, until its file is loaded
        }
        e.styles.back() = f[1].trimmed();
        for (int k = 2; k < f.size(); ++k) {
          const QString kv = f[k].trimmed();
          const int eq = kv.indexOf(QLatin1Char('='));
          const auto v = eq > 0 ? number(kv.mid(eq + 1)) : std::nullopt;
          const QString key = kv.left(eq).trimmed().toUpper();
          if (!v || !(key == "S" || key == "R" || key == "A" || key == "X" || key == "Y")) {
            fail(line, tr("\"%1\" is none of S=scale, R=rotation, A=absolute rotation, X=offset, Y=offset.").arg(kv));
            return false;
          }
          const double value = v.value_or(0.0);
          if (key == "S") d.scale = value;
          else if (key == "X") d.xOffset = value;
          else if (key == "Y") d.yOffset = value;
          else {
            d.rotation = value * std::numbers::pi / 180.0;
            if (key == "A") d.complexType |= 1;
          }
        }
        continue;
      }
      const auto v = number(p);
      if (!v) {
        fail(line, tr("\"%1\" in the pattern of %2 is no number.").arg(p, e.name));
        return false;
      }
      e.data.dashes.emplace_back().length = *v;
      e.styles.emplace_back();
    }
    if (e.data.dashes.front().length < 0) {
      fail(line, tr("The pattern of %1 must start with a dash or a dot, not a gap.").arg(e.name));
      return false;
    }
    e.data.patternLength = 0;
    for (const auto& d : e.data.dashes) e.data.patternLength += std::abs(d.length);
    return true;
  };

  for (int i = 0; i < lines.size(); ++i) {
    const int lineNo = i + 1;
    QString line = lines[i];
    if (line.endsWith(QLatin1Char('\r'))) line.chop(1);
    const int comment = line.indexOf(QLatin1String(";;"));
    if (comment >= 0) line.truncate(comment);
    if (line.trimmed().isEmpty()) continue;
    if (line.startsWith(QLatin1Char('*'))) {
      if (havePending) fail(pending.line, tr("%1 has no pattern line.").arg(pending.name));
      skipPattern = false;
      pending = HostLinEntry();
      pending.line = lineNo;
      const int comma = line.indexOf(QLatin1Char(','));
      pending.name = (comma < 0 ? line.mid(1) : line.mid(1, comma - 1)).trimmed();
      pending.description = comma < 0 ? QString() : line.mid(comma + 1).trimmed();
      pending.data.description = OdString(pending.description.toStdWString());
      havePending = !pending.name.isEmpty();
      if (!havePending) fail(lineNo, tr("A linetype needs a name after \"*\"."));
      else if (r.find(pending.name)) {
        fail(lineNo, tr("%1 is defined twice; the first definition is kept.").arg(pending.name));
        havePending = false;
        skipPattern = true;
      }
      continue;
    }
    if (std::exchange(skipPattern, false)) continue;
    if (!havePending) {
      fail(lineNo, tr("A pattern line must follow a \"*NAME,description\" line."));
      continue;
    }
    havePending = false;
    if (readPattern(pending, line, lineNo)) r.entries.push_back(pending);
  }
  if (havePending) fail(pending.line, tr("%1 has no pattern line.").arg(pending.name));
  return r;
}
