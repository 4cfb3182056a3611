#pragma once

#include "pictures/MetaRecord.h"

class QPainter;

namespace ombrelle {

// Plays a recorded picture through a QPainter: the picture's frame is mapped
// onto the device rectangle (left, top, right, bottom, inclusive). With the
// painter's antialiasing hint off, shapes and text are drawn aliased, so every
// pixel holds one of the recorded colours. Flood fills are honoured when the
// painter draws into a QImage.
void PlayPicture(QPainter& painter, const MetaPicture& picture, const MetaRect& device);

}  // namespace ombrelle
