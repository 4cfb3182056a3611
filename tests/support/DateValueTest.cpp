#include <gtest/gtest.h>

#include "support/DateValue.h"

using namespace ombrelle;

TEST(DateValue, ParseTimestamp14) {
  // 2024-01-31 is day 45322 after 1899-12-30; 23:59:59 is 86399 seconds.
  const struct {
    const char* text;
    double expected;
  } cases[] = {
      {"20240131235959", 45322.0 + 86399.0 / 86400.0},
      {"18991230000000", 0.0},
      {"19000101120000", 2.5},
      {"20240229060000", 45351.25},
      {"2024-01-31 23:5", 0.0},
      {"2024013123595", 0.0},
      {"202401312359590", 0.0},
      {"2024013123595x", 0.0},
      {" 20240131235959", 0.0},
      {"", 0.0},
  };
  for (const auto& c : cases)
    EXPECT_EQ(ParseTimestamp14(QString::fromLatin1(c.text)), c.expected) << c.text;
}

TEST(DateValue, TimestampOutOfRangeFieldsRollOver) {
  EXPECT_EQ(ParseTimestamp14("20231301000000"), DateSerial(2024, 1, 1));
  EXPECT_EQ(ParseTimestamp14("20240100000000"), DateSerial(2023, 12, 31));
  EXPECT_EQ(ParseTimestamp14("20240131240000"), DateSerial(2024, 2, 1));
}

TEST(DateValue, DateSerialCountsDaysFromEpoch) {
  EXPECT_EQ(DateSerial(1899, 12, 30), 0.0);
  EXPECT_EQ(DateSerial(1900, 1, 1), 2.0);
  EXPECT_EQ(DateSerial(2024, 1, 31), 45322.0);
  EXPECT_EQ(DateSerial(2024, 3, 1) - DateSerial(2024, 2, 1), 29.0);  // leap year
  EXPECT_EQ(DateSerial(2100, 3, 1) - DateSerial(2100, 2, 1), 28.0);  // century, no leap
  EXPECT_EQ(DateSerial(1899, 12, 29), -1.0);
  EXPECT_EQ(DateSerial(2024, 14, 1), DateSerial(2025, 2, 1));
  EXPECT_EQ(DateSerial(2024, 0, 1), DateSerial(2023, 12, 1));
  EXPECT_DOUBLE_EQ(TimeSerial(6, 0, 0), 0.25);
}

TEST(DateValue, QDateConversionsBothWays) {
  EXPECT_EQ(DateFromQDate(QDate(2024, 1, 31)), 45322.0);
  EXPECT_EQ(DateToQDate(45322.75), QDate(2024, 1, 31));
  EXPECT_EQ(DateToQDate(-1.25), QDate(1899, 12, 29));
  EXPECT_EQ(DateFromQDate(QDate()), 0.0);
}

TEST(DateValue, QDateTimeInLocalTimeWithTimeAsFraction) {
  const QDateTime noon(QDate(2024, 1, 31), QTime(12, 0, 0));
  EXPECT_EQ(DateFromQDateTime(noon), 45322.5);
  EXPECT_EQ(DateToQDateTime(45322.5), noon);
  // Before the epoch the fraction still counts forward from midnight.
  const QDateTime early(QDate(1899, 12, 29), QTime(6, 0, 0));
  EXPECT_EQ(DateFromQDateTime(early), -1.25);
  EXPECT_EQ(DateToQDateTime(-1.25), early);
  EXPECT_EQ(DateToQDateTime(45322.0 + 86399.0 / 86400.0),
            QDateTime(QDate(2024, 1, 31), QTime(23, 59, 59)));
  EXPECT_FALSE(DateToQDateTime(1e300).isValid());
}
