#pragma once

#include <QString>
#include <vector>

#include "chart/ZelmChart.h"
#include "pictures/MetaRecord.h"
#include "stats/CStats.h"

namespace ombrelle::charttest {

// A series of the values, statistics computed.
CStats Series(const std::vector<double>& values, int dataType = 0);
// A series in defined order with holes where `defined` is false.
CStats SeriesWithHoles(const std::vector<double>& values, const std::vector<bool>& defined);

// The recording as readable text, one primitive a line.
QString DumpRecords(const std::vector<MetaRecord>& records);
// Records of one kind.
std::vector<const MetaRecord*> RecordsOf(const std::vector<MetaRecord>& records,
                                         MetaRecord::Kind kind);
// Texts drawn, in order.
QStringList TextsOf(const std::vector<MetaRecord>& records);

// Compares the dump with tests/data/chart/<name>.txt (rewritten when OMBRELLE_UPDATE_GOLDEN
// is set) and saves the chart as <build>/test-output/Chart/<name>.png. Returns the
// difference, empty when they agree.
QString CheckGolden(ZelmChart& chart, const QString& name);

}  // namespace ombrelle::charttest
