#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include <QString>

#include "pictures/MetaRecord.h"

class QPainter;
class QPagedPaintDevice;

namespace ombrelle {

class Bitmap;
class TextMeasure;

// The font description a Metafile applies with ApplyFont: made on first use.
struct MetafileFont {
  QString name = QStringLiteral("Verdana");
  float size = 8;  // points, or logical units: ApplyFont says which
  bool bold = false;
  bool italic = false;
  bool underline = false;
  bool strikethrough = false;
  int charset = 0;
  int Weight() const { return bold ? 700 : 400; }
};

// Extents of the old-style clipboard metafile record: mapping mode 8 and the
// picture's size in 0.01 mm, or, when that does not fit 16 bits, negative
// values that give the proportions only.
struct ClipboardExtents {
  int mappingMode = 8;
  int xExt = 0;
  int yExt = 0;
};

// The one drawing surface of the program: records drawing calls as a display
// list (MetaPicture) in the logical units of its map mode, keeps the pen, the
// font, the set of colours used and the monochrome switch, and plays the
// recording into any QPainter, a Bitmap, a printer or the clipboard.
//
// Calling order: Create, drawing calls, Ready, then Play, PrintOut, SaveBMP,
// MakeBitmap, CopyToClipboard, GetSize. Coordinates are floats in logical
// units, each rounded half-to-even when recorded. Colours are 0x00BBGGRR;
// 0x80000005 (window) and 0x80000008 (window text) are system colours.
class Metafile {
 public:
  Metafile();
  ~Metafile();
  Metafile(const Metafile&) = delete;
  Metafile& operator=(const Metafile&) = delete;

  // AppName + " - " + first line of the title + NUL; AppName + NUL when that
  // line is empty.
  QString Description() const;

  void DrawTriangle(float x1, float y1, float x2, float y2, float x3, float y3,
                    std::optional<std::uint32_t> color = {}, bool border = false);
  void DrawDiamond(float x1, float y1, float x2, float y2, std::optional<std::uint32_t> color = {},
                   bool border = false);
  void DrawHexagon(float x1, float y1, float x2, float y2, std::optional<std::uint32_t> color = {},
                   bool border = false);
  void DrawInvHouse(float x1, float y1, float x2, float y2, std::optional<std::uint32_t> color = {},
                    bool border = false);
  void DrawParallelogram(float x1, float y1, float x2, float y2,
                         std::optional<std::uint32_t> color = {}, bool inset = false);
  void DrawPolygon(float x1, float y1, float x2, float y2, int sides,
                   std::optional<std::uint32_t> color = {});

  // Every colour used so far, resolved, in the order of first use; white first.
  const std::vector<std::uint32_t>& GetColors() const { return m_colors; }

  // Shrinks width or height so that the pair has the picture's aspect.
  void GetSizeFit(int& width, int& height) const;

  // Ready, then hands the recording over: afterwards this object has none.
  std::shared_ptr<const MetaPicture> GetStdPicture();

  // Prints one page, centred across and at the top, never enlarged. A null
  // device asks the user-interface service for the default printer.
  bool PrintOut(QPagedPaintDevice* device = nullptr);

  // Picture files; written by the EMF and WMF writers.
  bool SavePlaceableWMF(const QString& file, float scale, int option);
  bool SaveEMF(const QString& file);

  // Points: x and y alternating; 1 + 3k points. ArrowStyle as DrawArrowHead.
  void DrawBezier(const std::vector<float>& points, std::optional<std::uint32_t> color = {},
                  std::optional<int> width = {}, int arrowStyle = 0);
  // Arrow head at (x2, y2) of the line from (x1, y1); styles 1-4.
  void DrawArrowHead(float x1, float y1, float x2, float y2, std::uint32_t color, bool pushForward,
                     int style);
  // Without colour and width: the current pen; else a pen for this call.
  void DrawLine(float x1, float y1, float x2, float y2, std::optional<std::uint32_t> color = {},
                std::optional<int> width = {});
  void DrawBox(float x1, float y1, float x2, float y2, std::optional<std::uint32_t> fillColor = {},
               bool border = false);
  // HAlign 0 left, 1 right, 2 centre; VAlign 0 top, 1 bottom, 2 centre.
  void PrintTextRect(const QString& text, float x1, float y1, float x2, float y2, int hAlign = 0,
                     int vAlign = 0);
  void PrintTextBox(const QString& text, float x1, float y1, float x2, float y2, bool border,
                    std::optional<std::uint32_t> fillColor = {});
  // One line of text with its top left at (x, y), unclipped.
  void PrintText(const QString& text, float x, float y);
  // Widest line / sum of line heights of text cut at CR LF, in logical units.
  float TextWidth(const QString& text) const;
  float TextHeight(const QString& text) const;

  // The font description; made on first use.
  MetafileFont& Font();
  void SetFont(const MetafileFont& font);
  // Makes Font() current: its size read as points or as logical units.
  void ApplyFont(bool sizeInPoints);

  // The picture to the clipboard (image, and the EMF bytes when available),
  // the bitmap of the size given or, with 0, of GetSize.
  bool CopyToClipboard(int bitmapWidth = 0, int bitmapHeight = 0);
  ClipboardExtents GetClipboardExtents() const;

  // Plays the recording into the device rectangle; without stretch the
  // rectangle shrinks to the picture's aspect with its top left fixed.
  void Play(QPainter& painter, float x1, float y1, float x2, float y2, bool stretch) const;
  // Plays it centred in the rectangle, aspect kept.
  void PlayCentered(QPainter& painter, float x1, float y1, float x2, float y2) const;
  // The device rectangles (left, top, right, bottom, inclusive) that Play and
  // PlayCentered use.
  MetaRect PlayArea(float x1, float y1, float x2, float y2, bool stretch) const;
  MetaRect CenteredArea(float x1, float y1, float x2, float y2) const;

  // Closes the recording; needed before anything plays or saves it.
  void Ready();

  // Opens a new recording of width x height millimetres in map mode 1, 2 or
  // 3; an empty appName takes the application title.
  bool Create(double width, double height, bool blackWhite = false, const QString& appName = {},
              const QString& title = {}, int mapMode = 2);

  void SetLineProperties(int width, std::uint32_t color);
  void SetTextColor(std::uint32_t color);

  bool SaveBMP(const QString& file, int width, int height, int depth, bool compress);
  int MapMode() const { return m_picture ? m_picture->mapMode : m_mode; }
  // Depth 0 picks it from the number of colours; width 0 takes GetSize,
  // height 0 keeps the aspect. Null when no bitmap came out (a message said why).
  std::unique_ptr<Bitmap> MakeBitmap(int width, int height, int depth, bool compress);

  void DrawPieAngle(int x, int y, int radius, float angle1, float angle2, std::uint32_t color);
  void DrawPie(float x1, float y1, float x2, float y2, float x3, float y3, float x4, float y4,
               std::uint32_t color);
  void DrawCircle(int x, int y, int radius, int penWidth,
                  std::optional<std::uint32_t> fillColor = {});
  void DrawEllipse(int x1, int y1, int x2, int y2, int penWidth,
                   std::optional<std::uint32_t> fillColor = {});
  // Flood fill from (x, y) up to borderColor (honoured when played into a bitmap).
  void Fill(float x, float y, std::uint32_t color, std::uint32_t borderColor);

  QString Title() const { return m_title; }
  // Size of the finished picture in screen pixels (96 per inch).
  bool GetSize(int& width, int& height) const;
  // Plays another recording into PlayRect of this one.
  void DrawEMF(std::shared_ptr<const MetaPicture> picture);

  // True when `file` can be replaced; else the message "Cannot overwrite file " + file.
  static bool CanOverwrite(const QString& file);

  // Direction from a line's end back towards its start, in radians.
  static double GetLineAngle(double dx, double dy);
  // Map mode 2: points x 3.5277777777777777, mode 3: x 35.27777777777778, else 0; rounded.
  static int PointsToLogical(double points, int mapMode);

  // The recording for encoders: the open one while drawing, the finished one
  // after Ready, null when there is none.
  const MetaPicture* Picture() const { return m_picture.get(); }
  const std::vector<MetaRecord>& Records() const;
  MetaRect FrameRect() const { return m_picture ? m_picture->frameRect : MetaRect{}; }
  MetaRect PlayRect() const { return m_picture ? m_picture->playRect : MetaRect{}; }
  bool IsReady() const { return m_picture && !m_recording; }
  bool BlackWhite() const { return m_blackWhite; }
  int PenWidth() const { return m_penWidth; }
  std::uint32_t PenColor() const { return m_penColor; }
  std::uint32_t TextColor() const { return m_textColor; }

  // Resolves a system colour and, in monochrome, makes it black or white.
  std::uint32_t MapColor(std::uint32_t color) const;

 private:
  void Reset();
  void RememberColor(std::uint32_t color);
  int ColorCount() const { return static_cast<int>(m_colors.size()); }
  MetaRecord& Add(MetaRecord::Kind kind);
  void DrawPoly(const std::vector<QPoint>& points, std::optional<std::uint32_t> color, bool border);
  MetaPen CallPen(std::optional<std::uint32_t> color, std::optional<int> width);
  MetaBrush BrushFor(std::uint32_t color);
  double Aspect() const;
  const TextMeasure& Measure() const;

  std::shared_ptr<MetaPicture> m_picture;  // open while m_recording, then finished
  bool m_recording = false;
  int m_mode = 2;
  QString m_appName;
  QString m_title;
  MetaPen m_pen;  // the pen selected now (the thinnest black one after Create)
  int m_penWidth = 1;
  std::uint32_t m_penColor = 0;
  std::uint32_t m_textColor = 0;
  bool m_blackWhite = false;
  std::optional<MetafileFont> m_fontObject;
  MetaFont m_font;  // the font selected now
  std::vector<std::uint32_t> m_colors;
  mutable std::shared_ptr<TextMeasure> m_measure;  // for m_font in m_mode
};

}  // namespace ombrelle
