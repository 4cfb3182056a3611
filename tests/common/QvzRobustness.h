#pragma once

#include <cstdint>

#include "common/QvzFixture.h"

namespace ombrelle {
class QVZRead;
}

namespace ombrelle::test {

// What a full read of an open database delivered, to check a read against
// the file it came from.
struct ReadAllTally {
  int rowNames = 0;           // names over every class
  int seriesRead = 0;         // metrics whose column was delivered
  int64_t valuesRead = 0;     // values over every delivered column
  int singleValues = 0;       // metrics that gave a single value
  int64_t longestColumn = 0;  // values in the longest delivered column
  int64_t mostRows = 0;       // names in the class with the most rows
};

// Drives every read an open database serves: the row names of every class,
// the column of every metric of the catalogue and of every stored id (stored
// or derived, aggregates included), single values, values by row name, the
// file of each row and the series headers. Used by the corruption sweep and
// the fuzz target, where every read must end in an answer, never a fault.
// Without `thorough` the reads by row, of a given length and of single values
// are asked for the stored metrics and the project metrics only.
ReadAllTally ReadWholeDatabase(QVZRead& reader, bool thorough);

// Small valid databases for damage tests and fuzz seeds. Version 3: every
// class, every value encoding, unsorted rows, a metric the catalogue does not
// know and an unusable series. Version 2: ANSI text, row records with file
// numbers, series of 76 + 8 x rows bytes.
QvzFixture RobustnessSampleVersion3();
QvzFixture RobustnessSampleVersion2();

}  // namespace ombrelle::test
