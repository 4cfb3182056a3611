// Every chart kind saved as an enhanced and a placeable metafile: both are
// accepted by outside readers, and what those draw is compared with the
// bitmap the program plays from the same recording.
#include <gtest/gtest.h>

#include <cstdio>
#include <functional>

#include <QDir>

#include "ChartTestSupport.h"
#include "pictures/Bitmap.h"
#include "pictures/Metafile.h"
#include "pictures/MetafileConversions.h"
#include "pictures/MetafileRendering.h"
#include "support/DateValue.h"

using namespace ombrelle;
using namespace ombrelle::charttest;

namespace {

void TimeData(ZelmChart& chart) {
  std::vector<double> dates;
  for (int m = 0; m < 9; ++m) dates.push_back(DateSerial(2022, 1 + 3 * m, 10));
  chart.SetData({Series(dates), Series({120, 150, 170, 190, 210, 260, 250, 300, 330}),
                 Series({40, 60, 55, 90, 100, 95, 130, 150, 160})});
  chart.SetNumberFormat(0, 2);
  chart.SetLegendData({"Date", "Lines", "Comments"});
}

std::vector<double> Values(int n) {
  std::vector<double> v;
  for (int i = 0; i < n; ++i) v.push_back((i * 37 % 23) * (i % 5 + 1));
  return v;
}

}  // namespace

TEST(ChartMetafiles, TenKindsReadAndDrawnAlike) {
  const QString dir = QStringLiteral(OMBRELLE_BUILD_DIR "/test-output/ChartMetafiles");
  QDir().mkpath(dir);
  struct Kind {
    const char* name;
    std::function<void(ZelmChart&)> setup;
  };
  const std::vector<Kind> kinds = {
      {"0_bars",
       [](ZelmChart& c) {
         c.SetData({Series({3, 7, 12, 5, 9, 0, 4})});
         c.SetDataLabels({"main.cpp", "io.cpp", "ui.cpp", "net.cpp", "db.cpp", "x.cpp", "y.cpp"});
         c.SetLegendData({"Lines"});
       }},
      {"1_histogram", [](ZelmChart& c) { c.SetData({Series(Values(60))}); }},
      {"2_distribution", [](ZelmChart& c) { c.SetData({Series(Values(60), 1)}); }},
      {"3_distribution_pie", [](ZelmChart& c) { c.SetData({Series(Values(60), 1)}); }},
      {"4_time_lines", TimeData},
      {"5_time_steps", TimeData},
      {"6_scatter",
       [](ZelmChart& c) {
         c.SetData(
             {Series({10, 20, 25, 40, 55, 60, 80, 95}), Series({3, 5, 4, 9, 12, 11, 18, 20})});
         c.SetLegendData({"Lines", "Procedures"});
       }},
      {"7_dot_plot",
       [](ZelmChart& c) {
         std::vector<double> v = Values(40);
         v.push_back(400);
         c.SetData({Series(v)});
         c.SeedSpread(42);
       }},
      {"8_kiviat",
       [](ZelmChart& c) {
         c.SetDataKiviat({Series({0.8, 0.5, 0.9, 0.3, 0.6}), Series({0.4, 0.7, 0.5, 0.6, 0.2})},
                         {"Comments", "Cohesion", "Size", "Nesting", "Coupling"}, true);
         c.SetLegendData({"Release 1", "Release 2"});
       }},
      {"9_pie",
       [](ZelmChart& c) {
         c.SetData({Series({40, 25, 0, 20, 15})});
         c.SetDataLabels({"C++", "C", "Java", "Python", "Other"});
       }},
  };
  for (size_t k = 0; k < kinds.size(); ++k) {
    SCOPED_TRACE(kinds[k].name);
    ZelmChart chart;
    chart.SetChartType(static_cast<int>(k));
    kinds[k].setup(chart);
    chart.Title = QString::fromUtf8("Chart \u00e9t\u00e9 ") + kinds[k].name;
    chart.Draw(false);
    Metafile& m = chart.GetMetafile();
    if (!m.IsReady()) m.Ready();
    const MetaPicture* picture = m.Picture();
    ASSERT_NE(picture, nullptr);
    int width = 0, height = 0;
    ASSERT_TRUE(m.GetSize(width, height));
    const auto shared = std::make_shared<MetaPicture>(*picture);
    Bitmap bitmap;
    ASSERT_TRUE(bitmap.CreateFromStdPicture(shared, width, height, 24));
    const QImage own = bitmap.ToRgb32();
    const QString base = dir + "/" + kinds[k].name;
    const test::ReaderImages images = test::RenderThroughReaders(*picture, base, width, height);
    ASSERT_FALSE(images.emf.isNull());
    ASSERT_FALSE(images.wmf.isNull());
    const double emf = test::DifferingShare(own, images.emf);
    const double wmf = test::DifferingShare(own, images.wmf);
    test::SideBySide({own, images.emf, images.wmf}).save(base + "-compare.png");
    std::printf("%s: differing share emf %.4f wmf %.4f\n", kinds[k].name, emf, wmf);
    // Measured: enhanced 0.005 to 0.039 (its reader draws pen widths
    // unscaled, so lines come out wider); 16-bit 0.008 to 0.019. Two cases of
    // the 16-bit reader are left out of the comparison and only need to be
    // accepted: its SVG output draws pie wedges from wrong arc ends (0.43 and
    // 0.69 here; a hand-made file with one plain pie shows the same), and it
    // sizes a picture by what is drawn, so the histogram's lines that reach
    // past the top of the frame shrink the whole picture (0.15).
    EXPECT_LT(emf, 0.06);
    const bool wmfComparable = k != 1 && k != 3 && k != 9;
    if (wmfComparable) {
      EXPECT_LT(wmf, 0.04);
    }
    // A WMF read back and saved again gives the same bytes.
    const QByteArray wmfBytes = PlaceableWmfBytes(*picture, 1);
    const auto back = WMF2EMF(wmfBytes);
    ASSERT_TRUE(back);
    EXPECT_EQ(PlaceableWmfBytes(*back, 1), wmfBytes);
  }
}
