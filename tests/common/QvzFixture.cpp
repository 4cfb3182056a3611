#include "common/QvzFixture.h"

#include <algorithm>
#include <bit>

#include <QCryptographicHash>
#include <QFile>

#include "support/Codepage.h"

namespace ombrelle::test {

namespace {
template <typename U>
void AppendLittle(QByteArray& out, U value) {
  for (size_t i = 0; i < sizeof(U); ++i) out.append(static_cast<char>((value >> (8 * i)) & 0xFF));
}

constexpr int kChecksumOffset = 230;
}  // namespace

void AppendInt16(QByteArray& out, int16_t value) {
  AppendLittle(out, static_cast<uint16_t>(value));
}
void AppendInt32(QByteArray& out, int32_t value) {
  AppendLittle(out, static_cast<uint32_t>(value));
}
void AppendFloat(QByteArray& out, float value) {
  AppendLittle(out, std::bit_cast<uint32_t>(value));
}
void AppendDouble(QByteArray& out, double value) {
  AppendLittle(out, std::bit_cast<uint64_t>(value));
}

QByteArray Padded(const QByteArray& text, int size, char pad) {
  return text.left(size).leftJustified(size, pad);
}

SeriesSpec SeriesSpec::Stored(int32_t metricId, uint8_t kind, const std::vector<double>& values) {
  SeriesSpec s;
  s.metricId = metricId;
  s.count = static_cast<int32_t>(values.size());
  s.valueKind = kind;
  s.valueSize = kind == 0 ? 8 : kind == 1 ? 4 : kind == 2 ? 2 : 1;
  double sum = 0;
  for (double v : values) {
    sum += v;
    switch (kind) {
      case 0:
        AppendDouble(s.values, v);
        break;
      case 1:
        AppendInt32(s.values, static_cast<int32_t>(v));
        break;
      case 2:
        AppendInt16(s.values, static_cast<int16_t>(v));
        break;
      default:
        s.values.append(static_cast<char>(static_cast<uint8_t>(v)));
        break;
    }
  }
  if (!values.empty()) {
    s.mean = sum / values.size();
    s.min = *std::min_element(values.begin(), values.end());
    s.max = *std::max_element(values.begin(), values.end());
  }
  return s;
}

SeriesSpec SeriesSpec::Constant(int32_t metricId, int32_t count, double value) {
  SeriesSpec s;
  s.metricId = metricId;
  s.count = count;
  s.mean = s.min = s.max = s.median = s.q5 = s.q95 = value;
  s.valueKind = 4;
  return s;
}

ClassSpec& QvzFixture::AddClass(int32_t classNr, int32_t itemCount) {
  ClassSpec c;
  c.classNr = classNr;
  c.itemCount = itemCount;
  classes.push_back(c);
  return classes.back();
}

QByteArray QvzFixture::Build(FixtureLayout* layout) const {
  FixtureLayout where;
  const bool utf8 = flags & 2;
  const bool version3 = version >= 3.0f;
  const auto textField = [&](const std::optional<QByteArray>& raw, const QString& text, int size) {
    if (raw) return Padded(*raw, size, '\0');
    return utf8 ? Padded(text.toUtf8(), size, '\0')
                : Padded(TextToMultiByte(text, kCodepageAnsi), size, ' ');
  };

  QByteArray out;
  out += Padded(magic, 8, '\0');
  AppendFloat(out, version);
  AppendInt32(out, flags);
  out += textField(titleBytes, title, 214);
  out += QByteArray(32, '0');  // checksum, filled in at the end
  out += QByteArray(10, '\0');
  out += textField(projectBytes, projectFilename, 214);
  out += Padded(savedBy, 32, ' ');
  out += Padded(savedDate, 10, ' ');
  out += Padded(analysisDate, 10, ' ');
  out += Padded(analysisStamp, 14, ' ');
  AppendInt16(out, classCount.value_or(static_cast<int16_t>(classes.size())));

  where.classTable = out.size();
  for (const ClassSpec& c : classes) {
    AppendInt32(out, c.classNr);
    AppendInt32(out, c.seriesCount.value_or(static_cast<int32_t>(c.series.size())));
    AppendInt32(out, c.itemCount);
  }
  where.metricIds = out.size();
  for (const ClassSpec& c : classes)
    for (const SeriesSpec& s : c.series) AppendInt32(out, s.metricId);

  where.rowNames = out.size();
  for (const ClassSpec& c : classes) {
    if (version3) {
      const int encoding = c.rowEncoding;
      QByteArray text;
      for (int i = 0; i < c.rowNames.size(); ++i) {
        if (i > 0) text.append('\0');
        text +=
            (encoding & 2) ? c.rowNames[i].toUtf8() : TextToMultiByte(c.rowNames[i], kCodepageAnsi);
      }
      if (c.rowText) text = *c.rowText;
      AppendInt32(out, c.rowBlockLength.value_or(static_cast<int32_t>(text.size())));
      AppendInt32(out, text.isEmpty() ? 0 : encoding);
      AppendInt32(out, 0);
      out += text;
    } else {
      for (int row = 0; row < c.rowRecords.value_or(c.itemCount); ++row) {
        AppendInt16(out, row < static_cast<int>(c.fileNrs.size()) ? c.fileNrs[row] : 0);
        const QString name = row < c.rowNames.size() ? c.rowNames[row] : QString();
        out += utf8 ? Padded(name.toUtf8(), 128, '\0')
                    : Padded(TextToMultiByte(name, kCodepageAnsi), 128, ' ');
      }
    }
  }

  where.series = out.size();
  for (const ClassSpec& c : classes) {
    for (const SeriesSpec& s : c.series) {
      where.seriesHeaders.push_back(out.size());
      AppendInt32(out, s.count);
      for (double v : {s.mean, s.stdDev, s.min, s.max, s.median, s.q5, s.q95}) AppendDouble(out, v);
      out.append(static_cast<char>(s.valueSize));
      out.append(static_cast<char>(s.valueKind));
      out += QByteArray(14, '\0');
      out += s.values;
    }
  }
  out += trailing;
  where.length = out.size();

  out.replace(kChecksumOffset, 32, checksum ? Padded(*checksum, 32, ' ') : ChecksumOf(out));
  if (layout) *layout = where;
  return out;
}

QString QvzFixture::Write(const QString& path, FixtureLayout* layout) const {
  WriteBytes(path, Build(layout));
  return path;
}

QByteArray QvzFixture::ChecksumOf(const QByteArray& file) {
  QByteArray guarded = file.mid(538, 14) + file.mid(486, 32) + file.mid(518, 10) + "731946052" +
                       QByteArray::number(file.size(), 16).toUpper();
  return QCryptographicHash::hash(guarded, QCryptographicHash::Md5).toHex().toUpper();
}

void QvzFixture::WriteBytes(const QString& path, const QByteArray& bytes) {
  QFile file(path);
  if (file.open(QIODevice::WriteOnly | QIODevice::Truncate)) file.write(bytes);
}

QByteArray QvzFixture::ReadBytes(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QvzFixture QvzFixture::SmallestVersion3() {
  QvzFixture f;
  ClassSpec& c = f.AddClass(0, 0);
  SeriesSpec zero;
  zero.metricId = 1001;
  c.series.push_back(zero);
  return f;
}

QvzFixture QvzFixture::WithRowNames(float version, int32_t flags, int32_t itemCount,
                                    const QStringList& names,
                                    const std::optional<QByteArray>& rowText, int32_t encoding) {
  QvzFixture f;
  f.version = version;
  f.flags = flags;
  ClassSpec& cls = f.AddClass(1, itemCount);
  cls.rowNames = names;
  cls.rowText = rowText;
  cls.rowEncoding = encoding;
  // Older files store every value as a double.
  cls.series.push_back(version >= 3.0f
                           ? SeriesSpec::Constant(2001, itemCount, 1)
                           : SeriesSpec::Stored(2001, 0, std::vector<double>(itemCount, 1.0)));
  return f;
}

}  // namespace ombrelle::test
