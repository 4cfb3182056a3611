#pragma once

#include <memory>

#include <QByteArray>
#include <QString>

#include "pictures/MetaRecord.h"

namespace ombrelle {

// Conversions of a recorded picture into the two standard metafile forms,
// and back from the 16-bit form.
//
// The enhanced form keeps the logical units of the recording: map mode 8
// with a window over the frame in logical units and a viewport over the
// frame in pixels of the reference device (96 per inch), so every reader
// maps it alike. The 16-bit form carries coordinates in units of the
// placeable header (1440 per inch, halved until the frame fits 16 bits),
// y downwards from the frame's top left, map mode 8 with a window over the
// bounding box.

constexpr int kReferenceDpi = 96;

// The whole enhanced metafile of `picture`.
QByteArray EmfBytes(const MetaPicture& picture);

// The description stored in an enhanced metafile, with a final pair of NUL
// characters cut off; "" when there is none or the bytes are no metafile.
QString EMFDescription(const QByteArray& emf);

// The 16-bit metafile of `picture` without the placeable header, in units of
// `unitsPerInch` (as `FitUnits` gives them for the frame).
QByteArray RegularMetafileBytes(const MetaPicture& picture, int unitsPerInch);

// The 16-bit copy of a recording (map mode 8) in the units its frame fits:
// what the placeable file holds behind its header.
QByteArray CloneRegularMetafile(const MetaPicture& picture);

// Units per inch of the 16-bit form of `picture`: FitUnits over the frame's
// left, top, right and bottom in turn, from 1440.
int PictureUnitsPerInch(const MetaPicture& picture);

// The placeable header and the 16-bit metafile; the header states the units
// per inch over `scale` (at least 1), so a scale of 2 doubles the size a
// reader shows.
QByteArray PlaceableWmfBytes(const MetaPicture& picture, float scale);

// Reads a 16-bit metafile as this program writes it (with or without the
// placeable header) back into a recording in map mode 3. Null when the bytes
// are not such a metafile.
std::shared_ptr<MetaPicture> WMF2EMF(const QByteArray& wmf);

// Files, each written to a temporary name and renamed into place after the
// overwrite check of the drawing surface ("Cannot overwrite file " + file for
// a folder or a read-only file); every failure is one exclamation message and
// a false result.
bool SaveEMF(const MetaPicture* picture, const QString& file);
bool SavePlaceableWMF(const MetaPicture* picture, const QString& file, float scale);

}  // namespace ombrelle
