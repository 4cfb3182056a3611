#pragma once

#include <QString>

namespace ombrelle {

class Metafile;

// A recording as a GIF file: at its own size when width and height are both
// 0, else played into a bitmap of width x height. The palette keeps the
// recording's colours; the comment is its description (each NUL a line
// break). Failures are shown through the user-interface service; the result
// tells whether the file was written. The recording stays as it was.
bool Meta2GIF(Metafile& metafile, const QString& file, int width, int height);

}  // namespace ombrelle
