#pragma once

#include <cstdint>
#include <vector>

#include <QByteArray>
#include <QList>
#include <QRgb>

namespace ombrelle {

// Encoder of BMP files: file header, 40-byte information header, colour
// table, then the pixels raw (rows bottom first, padded to 4 bytes) or
// run-length encoded (RLE8 for 8 bits, RLE4 for 4 bits).
namespace BmpEncoder {

constexpr int kRaw = 0;
constexpr int kRle8 = 1;
constexpr int kRle4 = 2;

// Bytes of one raw row.
int RowBytes(int width, int depth);

// RLE data of rows given in the raw layout (bottom row first): encoded and
// absolute runs, end of line after each row and end of bitmap at the end.
QByteArray EncodeRle8(const std::vector<std::uint8_t>& raw, int width, int height);
QByteArray EncodeRle4(const std::vector<std::uint8_t>& raw, int width, int height);

// The whole file. `compression` kRaw, kRle8 or kRle4; `pixels` the raw rows
// or the RLE data to match.
QByteArray EncodeFile(int width, int height, int depth, const QList<QRgb>& palette, int compression,
                      const QByteArray& pixels);

}  // namespace BmpEncoder

}  // namespace ombrelle
