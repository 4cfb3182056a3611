#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <QPoint>
#include <QString>

namespace ombrelle {

struct MetaPicture;

// Colours everywhere in pictures are 0x00BBGGRR: red in the lowest byte.
// Colours stored in records are always resolved real colours: system colours
// (top bit set) have been looked up in the application palette and, for a
// monochrome picture, pens and text have been turned black or white already.

// Pen in force for a record. `width` is in logical units; 0 means the thinnest
// line the device can draw (one device pixel), which is the pen a recording
// starts with. Lines end with round caps and meet with round joins.
struct MetaPen {
  enum Style : std::uint8_t { Solid = 0, Null = 5 };  // values as the EMF pen styles
  std::uint32_t color = 0;
  int width = 0;
  Style style = Solid;
  bool operator==(const MetaPen&) const = default;
};

// Brush in force for a record. `Null` is the hollow brush: nothing is filled.
struct MetaBrush {
  enum Style : std::uint8_t { Solid = 0, Null = 1 };  // values as the EMF brush styles
  std::uint32_t color = 0xFFFFFF;
  Style style = Solid;
  bool operator==(const MetaBrush&) const = default;
};

// Font in force for a text record, as a logical font description.
// `height` is in logical units with the usual sign rule: negative = the
// character height (em size, no internal leading), which is what the drawing
// surface always records. `escapement` is in tenths of a degree (always 0 so
// far). `weight` is 400 for normal and 700 for bold.
struct MetaFont {
  QString face;  // the face as asked for ("Verdana"); see TextMeasure for the fallback
  int height = 0;
  int weight = 400;
  bool italic = false;
  bool underline = false;
  bool strikeout = false;
  int escapement = 0;
  int charset = 0;
  bool operator==(const MetaFont&) const = default;
};

// One drawing primitive of a recorded picture.
//
// Coordinates: `points` are integers in the logical units of the picture's
// map mode (MetaPicture::mapMode): mode 1 one device pixel, y downwards;
// mode 2 0.1 mm, mode 3 0.01 mm, both with y upwards, so a page runs from
// y = 0 at its top down to negative y. Every coordinate was rounded
// half-to-even when it was recorded. A record's pen, brush, font and text
// colour are those in force when it was drawn; fields a kind does not use
// keep their defaults and mean nothing.
//
// Per kind (points listed in order; "rectangle" = two corner points as given
// by the caller, not normalised):
//   Line       2 points: from, to. Pen. (move to + line to)
//   Polyline   n >= 2 points, an open chain. Pen.
//   Polygon    n >= 3 points, filled with the brush by the winding (nonzero)
//              rule, no outline. Brush.
//   FillRect   rectangle (x1, y1), (x2, y2); filled with the brush; like the
//              platform's rectangle fill it leaves out the right and bottom
//              edge in device space. Brush.
//   Ellipse    bounding rectangle; filled with the brush (Null = hollow) and
//              outlined with the pen. Pen, brush.
//   Pie        bounding rectangle, then the two radial end points (start, end);
//              the wedge runs counter-clockwise as seen on the page from start
//              to end; equal radial points make a whole ellipse. Filled with
//              the brush, outlined with the pen. Pen, brush.
//   Bezier     1 + 3k points: start, then control, control, end per segment.
//              Pen.
//   DrawText   rectangle (left, top), (right, bottom) in which `text` is laid
//              out; `flags` are text-drawing flags: 0x1 centre, 0x2 right
//              (else left), 0x100 no clipping (else clipped to the
//              rectangle), 0x800 no prefix processing. Lines of `text` are
//              separated by CR LF and stacked downwards on the page from the
//              top edge, each one line height apart. Font, text colour;
//              background transparent.
//   ExtTextOut point (x, y) where one line of `text` is anchored as `align`
//              says (0x6 = centred across, top at y; 0 = left top), then, when
//              `flags` has 0x4 (clipped), the clip rectangle as two points.
//              Font, text colour; background transparent.
//   FloodFill  1 point: the seed; the area around it up to `borderColor` is
//              filled with the brush colour. Only bitmaps honour it.
//   Picture    rectangle (left, top), (right, bottom) in this picture's
//              logical units; `picture` is another recording played into it.
struct MetaRecord {
  enum Kind : std::uint8_t {
    Line,
    Polyline,
    Polygon,
    FillRect,
    Ellipse,
    Pie,
    Bezier,
    DrawText,
    ExtTextOut,
    FloodFill,
    Picture,
  };
  Kind kind = Line;
  std::vector<QPoint> points;
  MetaPen pen;
  MetaBrush brush;
  QString text;
  MetaFont font;
  std::uint32_t textColor = 0;
  std::uint32_t flags = 0;                     // DrawText: text-drawing flags; ExtTextOut: options
  std::uint32_t align = 0;                     // ExtTextOut: text alignment
  std::uint32_t borderColor = 0;               // FloodFill
  std::shared_ptr<const MetaPicture> picture;  // Picture
};

// Four integers left, top, right, bottom.
struct MetaRect {
  int left = 0;
  int top = 0;
  int right = 0;
  int bottom = 0;
  bool operator==(const MetaRect&) const = default;
};

// A finished or open recording: what a picture is once drawn. It can be
// played, measured and saved without the Metafile that made it.
struct MetaPicture {
  int mapMode = 2;
  // Size of the picture in 0.01 mm: (0, 0, width x 100, height x 100).
  MetaRect frameRect;
  // The frame in logical units of the map mode, with the one-pixel
  // corrections of the recording surface (y negated in modes 2 and 3).
  MetaRect playRect;
  // AppName, NUL, title, NUL, NUL: the description text of the recording.
  QString description;
  std::vector<MetaRecord> records;
};

}  // namespace ombrelle
