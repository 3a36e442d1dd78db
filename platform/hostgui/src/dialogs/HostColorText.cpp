#include "HostColorText.h"

#include <QStringList>

namespace {
const char* const kWords[] = {QT_TRANSLATE_NOOP("HostColorText", "red"),
                              QT_TRANSLATE_NOOP("HostColorText", "yellow"),
                              QT_TRANSLATE_NOOP("HostColorText", "green"),
                              QT_TRANSLATE_NOOP("HostColorText", "cyan"),
                              QT_TRANSLATE_NOOP("HostColorText", "blue"),
                              QT_TRANSLATE_NOOP("HostColorText", "magenta"),
                              QT_TRANSLATE_NOOP("HostColorText", "white")};

// Integers only: "1.5" or "1e2" are no index.
std::optional<int> wholeNumber(const QString& s) {
  bool ok = false;
  const int v = s.trimmed().toInt(&ok, 10);
  return ok ? std::optional<int>(v) : std::nullopt;
}
}  // namespace

QString HostColorText::colorWord(int aci) {
  return aci >= 1 && aci <= 7 ? QString::fromLatin1(kWords[aci - 1]) : QString();
}

HostColorText::Result HostColorText::parse(const QString& text, bool allowLogical) {
  Result r;
  const QString t = text.trimmed();
  if (t.isEmpty()) {
    r.error = tr("Type a colour: a name, an index from 1 to 255 or red, green, blue values.");
    return r;
  }
  QString squeezed = t;
  squeezed.remove(QLatin1Char(' '));
  const bool byLayer = squeezed.compare(QLatin1String("BYLAYER"), Qt::CaseInsensitive) == 0 || t == QLatin1String("256") ||
                       squeezed.compare(tr("ByLayer").remove(QLatin1Char(' ')), Qt::CaseInsensitive) == 0;
  const bool byBlock = squeezed.compare(QLatin1String("BYBLOCK"), Qt::CaseInsensitive) == 0 || t == QLatin1String("0") ||
                       squeezed.compare(tr("ByBlock").remove(QLatin1Char(' ')), Qt::CaseInsensitive) == 0;
  if (byLayer || byBlock) {
    if (!allowLogical) {
      r.error = tr("%1 cannot be chosen here.").arg(byLayer ? QStringLiteral("BYLAYER") : QStringLiteral("BYBLOCK"));
      return r;
    }
    r.color = OdCmColor(byLayer ? OdCmEntityColor::kByLayer : OdCmEntityColor::kByBlock);
    return r;
  }
  for (int aci = 1; aci <= 7; ++aci)
    if (t.compare(colorWord(aci), Qt::CaseInsensitive) == 0 || t.compare(tr(kWords[aci - 1]), Qt::CaseInsensitive) == 0) {
      r.color.emplace();
      r.color->setColorIndex(static_cast<int16_t>(aci));
      return r;
    }
  if (t.contains(QLatin1Char(','))) {
    const QStringList parts = t.split(QLatin1Char(','));
    if (parts.size() != 3) {
      r.error = tr("A true colour has three values, red, green and blue, such as 255,128,0.");
      return r;
    }
    int v[3];
    for (int i = 0; i < 3; ++i) {
      const auto n = wholeNumber(parts[i]);
      if (!n || *n < 0 || *n > 255) {
        r.error = tr("\"%1\" is no colour value: each of red, green and blue is a whole number from 0 to 255.")
                      .arg(parts[i].trimmed());
        return r;
      }
      v[i] = *n;
    }
    r.color.emplace();
    r.color->setRGB(static_cast<uint8_t>(v[0]), static_cast<uint8_t>(v[1]), static_cast<uint8_t>(v[2]));
    return r;
  }
  if (const auto n = wholeNumber(t)) {
    if (*n < 1 || *n > 255) {
      r.error = tr("Index colours are numbered from 1 to 255; %1 is none of them.").arg(*n);
      return r;
    }
    r.color.emplace();
    r.color->setColorIndex(static_cast<int16_t>(*n));
    return r;
  }
  r.error = tr("\"%1\" is no colour: type a name such as red, an index from 1 to 255 or red, green, blue values.").arg(t);
  return r;
}

QString HostColorText::format(const OdCmColor& color) {
  if (color.isByLayer()) return QStringLiteral("BYLAYER");
  if (color.isByBlock()) return QStringLiteral("BYBLOCK");
  if (color.isByColor())
    return QStringLiteral("%1,%2,%3").arg(color.red()).arg(color.green()).arg(color.blue());
  const int aci = color.colorIndex();
  if (aci >= 1 && aci <= 7) return tr(kWords[aci - 1]);
  return QString::number(aci);
}
