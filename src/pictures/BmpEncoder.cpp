#include "pictures/BmpEncoder.h"

namespace ombrelle::BmpEncoder {

namespace {

void Put16(QByteArray& out, std::uint32_t v) {
  out.append(char(v & 0xFF));
  out.append(char((v >> 8) & 0xFF));
}

void Put32(QByteArray& out, std::uint32_t v) {
  Put16(out, v & 0xFFFF);
  Put16(out, v >> 16);
}

// Run-length coder over one row of pixel values (bytes or nibbles). `emit`
// writes the pixel bytes of an absolute run.
template <typename EmitAbsolute>
void EncodeRow(const std::vector<std::uint8_t>& row, int perByte, QByteArray& out,
               EmitAbsolute emitAbsolute) {
  const int width = static_cast<int>(row.size());
  const auto runAt = [&](int i) {
    int n = 1;
    while (i + n < width && n < 255 && row[i + n] == row[i]) ++n;
    return n;
  };
  int i = 0;
  while (i < width) {
    const int run = runAt(i);
    if (run >= 3 || width - i < 3) {
      const int n = run >= 3 ? run : 1;
      out.append(char(n));
      out.append(char(perByte == 1 ? row[i] : (row[i] << 4) | row[i]));
      i += n;
      continue;
    }
    // Gather pixels up to the next run of three or more.
    int j = i;
    while (j < width && j - i < 255 && runAt(j) < 3) ++j;
    const int n = j - i;
    if (n < 3) {
      for (int k = i; k < j; ++k) {
        out.append(char(1));
        out.append(char(perByte == 1 ? row[k] : (row[k] << 4) | row[k]));
      }
    } else {
      out.append(char(0));
      out.append(char(n));
      emitAbsolute(i, n);
    }
    i = j;
  }
}

QByteArray EncodeRle(const std::vector<std::uint8_t>& raw, int width, int height, int depth) {
  QByteArray out;
  out.reserve(static_cast<qsizetype>(raw.size() / 2 + 16));
  const int stride = RowBytes(width, depth);
  std::vector<std::uint8_t> row(width);
  for (int y = 0; y < height; ++y) {
    const std::uint8_t* line = raw.data() + static_cast<size_t>(y) * stride;
    for (int x = 0; x < width; ++x)
      row[x] = depth == 8 ? line[x] : ((x & 1) ? line[x / 2] & 0x0F : line[x / 2] >> 4);
    EncodeRow(row, depth == 8 ? 1 : 2, out, [&](int from, int n) {
      int bytes = 0;
      if (depth == 8) {
        for (int k = 0; k < n; ++k) out.append(char(row[from + k]));
        bytes = n;
      } else {
        for (int k = 0; k < n; k += 2) {
          const int hi = row[from + k], lo = k + 1 < n ? row[from + k + 1] : 0;
          out.append(char((hi << 4) | lo));
          ++bytes;
        }
      }
      if (bytes & 1) out.append(char(0));  // absolute runs end on a 16-bit boundary
    });
    out.append(char(0));
    out.append(char(y + 1 < height ? 0 : 1));  // end of line, or end of bitmap
  }
  if (height == 0) {
    out.append(char(0));
    out.append(char(1));
  }
  return out;
}

}  // namespace

int RowBytes(int width, int depth) { return ((width * depth + 31) / 32) * 4; }

QByteArray EncodeRle8(const std::vector<std::uint8_t>& raw, int width, int height) {
  return EncodeRle(raw, width, height, 8);
}

QByteArray EncodeRle4(const std::vector<std::uint8_t>& raw, int width, int height) {
  return EncodeRle(raw, width, height, 4);
}

QByteArray EncodeFile(int width, int height, int depth, const QList<QRgb>& palette, int compression,
                      const QByteArray& pixels) {
  const int colors = depth <= 8 ? (1 << depth) : 0;
  const std::uint32_t offset = 14 + 40 + 4 * colors;
  QByteArray out;
  out.reserve(static_cast<qsizetype>(offset + pixels.size()));
  Put16(out, 19778);  // "BM"
  Put32(out, offset + static_cast<std::uint32_t>(pixels.size()));
  Put32(out, 0);
  Put32(out, offset);
  Put32(out, 40);
  Put32(out, static_cast<std::uint32_t>(width));
  Put32(out, static_cast<std::uint32_t>(height));
  Put16(out, 1);
  Put16(out, static_cast<std::uint32_t>(depth));
  Put32(out, static_cast<std::uint32_t>(compression));
  Put32(out, static_cast<std::uint32_t>(pixels.size()));
  Put32(out, 0);  // pixels per metre, unknown
  Put32(out, 0);
  Put32(out, 0);  // all colours of the table used
  Put32(out, 0);
  for (int i = 0; i < colors; ++i) {
    const QRgb c = i < palette.size() ? palette[i] : 0;
    out.append(char(qBlue(c)));
    out.append(char(qGreen(c)));
    out.append(char(qRed(c)));
    out.append(char(0));
  }
  out.append(pixels);
  return out;
}

}  // namespace ombrelle::BmpEncoder
