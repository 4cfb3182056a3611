#pragma once

#include <functional>
#include <memory>

#include <QString>

class QPainter;

namespace ombrelle {

class Metafile;

// What the picture control does with its picture, without widgets: paint it
// into the control's client area, copy, print and save it. The control hands
// in its client size in pixels wherever the picture's output size depends on it.
class MetaViewModel {
 public:
  // Save formats in the order of the save dialog's filters (1-based).
  enum Format { Wmf = 1, Emf = 2, Bmp = 3, Gif = 4, Png = 5, Svg = 6 };
  static constexpr int kFormatCount = 6;

  // The save dialog's filters, in the user-interface service's form.
  static QString SaveFilter();
  // The file extension (without the dot) of a format; empty for none.
  static QString Extension(int format);
  // The format that `file` is saved in when the dialog's filter `filterIndex`
  // was chosen: a file ending in one of the formats' extensions is saved in
  // that format, any other in the filter's.
  static int FormatForFile(const QString& file, int filterIndex);

  // Writes an SVG drawing of the picture at width x height pixels; given by
  // the window library, which holds the SVG generator.
  using SvgWriter = std::function<bool(const Metafile&, const QString&, int, int)>;

  std::shared_ptr<Metafile> GetMetafile() const { return m_metafile; }
  void SetMetafile(std::shared_ptr<Metafile> metafile) { m_metafile = std::move(metafile); }
  bool HasPicture() const;

  int SaveFilterIndex = 1;  // the filter the save dialog starts on
  bool CanZoom = true;      // the popup offers Zoom
  bool Centered = true;     // centred in the control, else at its top left

  // Plays the picture into a control of width x height pixels, its aspect kept.
  void Paint(QPainter& painter, int width, int height) const;
  // The picture to the clipboard as a bitmap of the control's size.
  bool CopyToClipboard(int width, int height);
  // Asks for a printer through the user-interface service and prints one page.
  bool PrintOut();
  // Asks for a file and saves the picture sized from the control; false when
  // the dialog was cancelled or the file could not be written.
  bool Save(int width, int height);
  // Saves the picture in `format`, sized from a control of width x height.
  bool SaveAs(const QString& file, int format, int width, int height);

  void SetSvgWriter(SvgWriter writer) { m_svgWriter = std::move(writer); }

 private:
  std::shared_ptr<Metafile> m_metafile;
  SvgWriter m_svgWriter;
};

}  // namespace ombrelle
