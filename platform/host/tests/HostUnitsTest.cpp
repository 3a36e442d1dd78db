#include "host/HostUnits.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <tuple>
#include <vector>

#include "host/HostServices.h"

namespace {

constexpr double kPi = 3.141592653589793;
double rad(double deg) { return deg * kPi / 180.0; }

struct ToText { double value; int unit, prec; const wchar_t* want; };

TEST(HostUnits, DistanceToTextInEveryUnit) {
  const ToText cases[] = {
      // scientific: mantissa rounded half away from zero, carry into the exponent
      {15.5, 1, 4, L"1.5500E+01"}, {15.5, 1, 0, L"2E+01"}, {-0.00123, 1, 2, L"-1.23E-03"}, {9.996, 1, 2, L"1.00E+01"},
      {123456, 1, 1, L"1.2E+05"}, {0, 1, 3, L"0.000E+00"},
      // decimal: trailing zeros kept, no "-0"
      {15.5, 2, 4, L"15.5000"}, {15.5, 2, 0, L"16"}, {-15.5, 2, 0, L"-16"}, {-0.00004, 2, 4, L"0.0000"},
      {1.005, 2, 2, L"1.01"},  // 1.005 * 100 is 100.49999999999999; rounds as written
      {0.9999996, 2, 6, L"1.000000"}, {1234.5678, 2, 8, L"1234.56780000"},
      // engineering: zero feet and zero inches written out
      {15.5, 3, 2, L"1'-3.50\""}, {6, 3, 0, L"0'-6\""}, {12, 3, 2, L"1'-0.00\""}, {11.999, 3, 2, L"1'-0.00\""},
      {-15.5, 3, 1, L"-1'-3.5\""}, {150.25, 3, 2, L"12'-6.25\""}, {0, 3, 2, L"0'-0.00\""},
      // architectural: fraction of 2^prec reduced
      {15.5, 4, 2, L"1'-3 1/2\""}, {15.5, 4, 0, L"1'-4\""}, {11.999, 4, 2, L"1'-0\""}, {6, 4, 4, L"0'-6\""},
      {0.5, 4, 3, L"0'-0 1/2\""}, {0.0625, 4, 4, L"0'-0 1/16\""}, {0.0625, 4, 3, L"0'-0 1/8\""},
      {-27.75, 4, 2, L"-2'-3 3/4\""}, {12.375, 4, 8, L"1'-0 3/8\""}, {0, 4, 2, L"0'-0\""},
      // fractional
      {15.5, 5, 2, L"15 1/2"}, {0.5, 5, 2, L"1/2"}, {-0.75, 5, 2, L"-3/4"}, {15, 5, 3, L"15"}, {2.999, 5, 3, L"3"},
      {-0.01, 5, 2, L"0"}, {1.0 / 3.0, 5, 4, L"5/16"},
      // precision past 8 is held at 8
      {0.1, 2, 12, L"0.10000000"},
  };
  for (const auto& c : cases) {
    OdString out;
    ASSERT_TRUE(hostdbRToS(nullptr, c.value, c.unit, c.prec, out)) << c.value;
    EXPECT_EQ(out.toUtf8(), OdString(c.want).toUtf8()) << c.value << " unit " << c.unit << " prec " << c.prec;
  }
}

TEST(HostUnits, AngleToTextInEveryUnit) {
  const double dms = 45.0 + 30.0 / 60 + 15.0 / 3600;  // 45d30'15"
  const ToText cases[] = {
      // decimal degrees, wrapped into [0, 360)
      {45, 0, 0, L"45"}, {45.5, 0, 2, L"45.50"}, {-90, 0, 0, L"270"}, {730, 0, 1, L"10.0"},
      {359.9999, 0, 2, L"0.00"},  // rounds to the full turn
      // degrees/minutes/seconds; the precision picks the smallest part
      {dms, 1, 0, L"46d"}, {dms, 1, 2, L"45d30'"}, {dms, 1, 4, L"45d30'15\""}, {dms, 1, 6, L"45d30'15.00\""},
      {10 + 15.0 / 60 + 7.5 / 3600, 1, 5, L"10d15'7.5\""}, {59 + 59.0 / 60 + 59.9 / 3600, 1, 4, L"60d0'0\""},
      {45, 1, 4, L"45d0'0\""}, {-45, 1, 2, L"315d0'"},
      // grads and radians
      {45, 2, 4, L"50.0000g"}, {90, 2, 0, L"100g"}, {-45, 2, 1, L"350.0g"}, {45, 3, 4, L"0.7854r"},
      {180, 3, 2, L"3.14r"}, {-1e-7, 3, 3, L"0.000r"}, {360, 3, 0, L"0r"},
      // surveyor's units: bearings from north or south toward east or west
      {45, 4, 4, L"N 45d0'0\" E"}, {45, 4, 0, L"N 45d E"}, {0, 4, 2, L"E"}, {90, 4, 2, L"N"}, {180, 4, 2, L"W"},
      {270, 4, 2, L"S"}, {120, 4, 2, L"N 30d0' W"}, {200, 4, 0, L"S 70d W"}, {300, 4, 3, L"S 30d0'0\" E"},
      {30.5, 4, 2, L"N 59d30' E"}, {89.9999, 4, 2, L"N"}, {-45, 4, 0, L"S 45d E"},
  };
  for (const auto& c : cases) {
    OdString out;
    ASSERT_TRUE(hostdbAngToS(nullptr, rad(c.value), c.unit, c.prec, out)) << c.value;
    EXPECT_EQ(out.toUtf8(), OdString(c.want).toUtf8()) << c.value << " unit " << c.unit << " prec " << c.prec;
  }
}

TEST(HostUnits, RejectsUnknownUnitsAndNonFiniteValues) {
  OdString out = L"kept";
  EXPECT_FALSE(hostdbRToS(nullptr, 1.0, 0, 2, out));
  EXPECT_FALSE(hostdbRToS(nullptr, 1.0, 6, 2, out));
  EXPECT_FALSE(hostdbRToS(nullptr, NAN, 2, 2, out));
  EXPECT_FALSE(hostdbAngToS(nullptr, 1.0, 5, 2, out));
  EXPECT_FALSE(hostdbAngToS(nullptr, INFINITY, 0, 2, out));
  EXPECT_EQ(out, L"kept");
  double v = 42;
  EXPECT_FALSE(hostdbDisToF(nullptr, L"1", 0, v));
  EXPECT_FALSE(hostdbAngToF(nullptr, L"1", 5, v));
  EXPECT_EQ(v, 42);
}

TEST(HostUnits, ReadsTypedDistances) {
  struct Case { const wchar_t* text; double want; };
  const Case cases[] = {
      {L"15.5", 15.5},       {L"1.55E+01", 15.5},      {L"1.5500e+01", 15.5},   {L"-1.5500E-01", -0.155},
      {L"1E3", 1000},        {L"1'3.5\"", 15.5},       {L"1'-3.50\"", 15.5},    {L"1'-3 1/2\"", 15.5},
      {L"1'-3-1/2\"", 15.5}, {L"1' 3 1/2\"", 15.5},    {L"-1'-3 1/2\"", -15.5}, {L"1'3", 15},
      {L"1'-1/2\"", 12.5},   {L"1'-0\"", 12},          {L"0'-6\"", 6},          {L"15 1/2", 15.5},
      {L"15-1/2", 15.5},     {L"3/4", 0.75},           {L"-2'", -24},           {L"1'", 12},
      {L"1.5'", 18},         {L"6\"", 6},              {L"3 1/2\"", 3.5},       {L"1/2\"", 0.5},
      {L"0'-0 1/16\"", 0.0625}, {L"  7  ", 7},         {L"+2", 2},              {L".5", 0.5},
      {L"5.", 5},
  };
  for (const auto& c : cases) {
    double v = -1;
    EXPECT_TRUE(hostdbDisToF(nullptr, c.text, 2, v)) << OdString(c.text).toUtf8();
    EXPECT_DOUBLE_EQ(v, c.want) << OdString(c.text).toUtf8();
  }
  // The unit argument does not change how a form is read.
  for (int unit : {-1, 1, 3, 4, 5}) {
    double v = 0;
    EXPECT_TRUE(hostdbDisToF(nullptr, L"1'-3 1/2\"", unit, v));
    EXPECT_DOUBLE_EQ(v, 15.5);
  }
}

// Rejected text leaves the value alone.
TEST(HostUnits, RejectsBadDistanceAndAngleText) {
  using Reader = bool (*)(const OdDbDatabase*, const OdString&, int, double&);
  // Decimal distances and decimal degrees: the units that read most forms.
  const std::tuple<Reader, int, std::vector<const wchar_t*>> readers[] = {
      {hostdbDisToF, 2, {L"", L"   ", L"abc", L"2*3", L"1e", L"1.2.3", L"--1", L"+-1", L"- 5", L"1/0", L"1/", L"/2",
                         L"1'2'", L"1'-", L"\"", L"'", L"1 1", L"1/2/3", L"1.5/2", L"3 1/2 1/4", L"1\"2", L"1,5",
                         L"1'-3\"\"", L"N 45d E", L"15-2", L"1e400"}},
      {hostdbAngToF, 0, {L"", L"abc", L"45x", L"45d30", L"45'", L"1e", L"2*3", L"N 95d E", L"N 45d", L"N 45d X",
                         L"N -45 E", L"-N 45d E", L"45d30'15\"x", L"EW", L"N E", L"45g30'"}},
  };
  for (const auto& [read, unit, bad] : readers)
    for (const wchar_t* text : bad) {
      double v = 42;
      EXPECT_FALSE(read(nullptr, text, unit, v)) << OdString(text).toUtf8();
      EXPECT_EQ(v, 42) << OdString(text).toUtf8();
    }
}

TEST(HostUnits, ReadsTypedAngles) {
  struct Case { const wchar_t* text; int unit; double wantDeg; };
  const double dms = 45.0 + 30.0 / 60 + 15.0 / 3600;
  const Case cases[] = {
      {L"45", 0, 45},           {L"45.5", 0, 45.5},       {L"-10", 0, -10},          {L"400", 0, 400},
      {L"45d30'15\"", 0, dms},  {L"45D30'15", 0, dms},    {L"45d 30' 15\"", 0, dms}, {L"45d30'", 0, 45.5},
      {L"45d", 0, 45},          {L"45\u00B030'", 0, 45.5}, {L"-45d30'", 0, -45.5},   {L"50g", 0, 45},
      {L"0.7854r", 0, 0.7854 * 180 / kPi},                {L"N 45d E", 0, 45},       {L"N45dE", 0, 45},
      {L"N 45 E", 0, 45},       {L"n 45d30' w", 0, 135.5}, {L"S 45d W", 0, 225},     {L"S 45d E", 0, 315},
      {L"S 0d E", 0, 270},      {L"N 90d W", 0, 180},     {L"N", 0, 90},             {L"S", 0, 270},
      {L"E", 0, 0},             {L"W", 0, 180},
      // a number without a mark is in the unit's own measure
      {L"50", 2, 45},           {L"1.5", 3, 1.5 * 180 / kPi}, {L"45", 1, 45},        {L"45", 4, 45},
      {L"45d", 3, 45},
  };
  for (const auto& c : cases) {
    double v = -1;
    EXPECT_TRUE(hostdbAngToF(nullptr, c.text, c.unit, v)) << OdString(c.text).toUtf8();
    EXPECT_NEAR(v, rad(c.wantDeg), 1e-12) << OdString(c.text).toUtf8();
  }
}

TEST(HostUnits, DistanceTextReadsBackWithinItsPrecision) {
  const double values[] = {0, 0.001, 0.5, 1, 2.675, 11.999, 12, 15.5, 100.0 / 3, 1234.5678, 98765.4321};
  for (int unit = 1; unit <= 5; ++unit) {
    for (int prec = 0; prec <= 8; ++prec) {
      for (double mag : values) {
        for (double v : {mag, -mag}) {
          OdString text;
          ASSERT_TRUE(hostdbRToS(nullptr, v, unit, prec, text));
          double back = 0;
          ASSERT_TRUE(hostdbDisToF(nullptr, text, unit, back)) << text.toUtf8();
          double half = unit == 4 || unit == 5 ? std::ldexp(0.5, -prec) : 0.5 * std::pow(10.0, -prec);
          if (unit == 1) half *= std::fabs(v);
          EXPECT_LE(std::fabs(back - v), half * (1 + 1e-9) + 1e-12)
              << v << " unit " << unit << " prec " << prec << " -> " << text.toUtf8();
        }
      }
    }
  }
}

TEST(HostUnits, AngleTextReadsBackWithinItsPrecision) {
  const double values[] = {0, 0.1, kPi / 4, 1, 2, kPi, 4, 5.5, 6.2, 6.283, -1};
  for (int unit = 0; unit <= 4; ++unit) {
    for (int prec = 0; prec <= 8; ++prec) {
      double halfDeg;  // half the smallest step the text shows, in degrees
      if (unit == 1 || unit == 4)
        halfDeg = prec == 0 ? 0.5 : prec <= 2 ? 0.5 / 60 : 0.5 / 3600 * std::pow(10.0, -std::max(0, prec - 4));
      else
        halfDeg = 0.5 * std::pow(10.0, -prec) * (unit == 2 ? 0.9 : unit == 3 ? 180 / kPi : 1.0);
      for (double v : values) {
        OdString text;
        ASSERT_TRUE(hostdbAngToS(nullptr, v, unit, prec, text));
        double back = 0;
        ASSERT_TRUE(hostdbAngToF(nullptr, text, unit, back)) << text.toUtf8();
        EXPECT_LE(std::fabs(std::remainder(back - v, 2 * kPi)), rad(halfDeg) * (1 + 1e-9) + 1e-12)
            << v << " unit " << unit << " prec " << prec << " -> " << text.toUtf8();
      }
    }
  }
}

class HostUnitsDrawing : public ::testing::Test {
protected:
  void SetUp() override { hostSetActiveDatabase(db.get()); }
  void TearDown() override { hostSetActiveDatabase(nullptr); }
  void set(int lunits, int luprec, int aunits, int auprec) {
    db->setHeaderInt("$LUNITS", 70, lunits);
    db->setHeaderInt("$LUPREC", 70, luprec);
    db->setHeaderInt("$AUNITS", 70, aunits);
    db->setHeaderInt("$AUPREC", 70, auprec);
  }
  OdDbDatabasePtr db = OdDbDatabase::createNew(DxfVersion::R2018, false);
};

TEST_F(HostUnitsDrawing, FixedArgumentsFollowTheDrawingsSettings) {
  struct Case { int lunits, luprec, aunits, auprec; double length, degrees; const wchar_t *wantLin, *wantAng; };
  const Case cases[] = {
      {4, 2, 1, 4, 15.5, 45.5, L"1'-3 1/2\"", L"45d30'0\""},
      {5, 3, 0, 2, 15.5, 45.5, L"15 1/2", L"45.50"},
      {2, 2, 2, 1, 15.5, 45, L"15.50", L"50.0g"},
      {3, 1, 4, 0, 6, 135, L"0'-6.0\"", L"N 45d W"},
      {1, 2, 3, 3, 15.5, 180, L"1.55E+01", L"3.142r"},
      {9, 2, 7, 0, 15.5, 45.25, L"15.50", L"45"},  // unknown units fall back to decimal
  };
  for (const auto& c : cases) {
    set(c.lunits, c.luprec, c.aunits, c.auprec);
    OdString lin, ang;
    ASSERT_TRUE(VxLin2Str(c.length, lin, 255, 255, -1, -1, -1, -1));
    ASSERT_TRUE(VxAng2Str(c.degrees, ang, -777.7777, -1, -1, 31, -1, -1, -1));
    EXPECT_EQ(lin.toUtf8(), OdString(c.wantLin).toUtf8()) << "LUNITS " << c.lunits;
    EXPECT_EQ(ang.toUtf8(), OdString(c.wantAng).toUtf8()) << "AUNITS " << c.aunits;
    // The overloads without a drawing use the active one, as -1 does.
    OdString viaHost;
    ASSERT_TRUE(hostdbRToS(c.length, -1, -1, viaHost));
    EXPECT_EQ(viaHost.toUtf8(), OdString(c.wantLin).toUtf8());
  }
}

TEST_F(HostUnitsDrawing, ExplicitArgumentsOverrideTheDrawing) {
  set(4, 2, 1, 4);
  OdString out;
  ASSERT_TRUE(VxLin2Str(15.5, out, 2, 3));
  EXPECT_EQ(out, L"15.500");
  ASSERT_TRUE(VxLin2Str(15.5, out, 255, 0));
  EXPECT_EQ(out, L"1'-4\"");
  ASSERT_TRUE(VxAng2Str(45, out, -777.7777, 0, 1));
  EXPECT_EQ(out, L"45.0");
  ASSERT_TRUE(VxAng2Str(45, out, 10.0, 0, 0));  // measured from a 10-degree base
  EXPECT_EQ(out, L"35");
  // A bare number typed into an angle field is read in the drawing's measure.
  set(4, 2, 3, 4);
  double v = 0;
  ASSERT_TRUE(hostdbAngToF(L"1", -1, v));
  EXPECT_DOUBLE_EQ(v, 1.0);
}

TEST(HostUnits, NoDrawingUsesDecimalDefaults) {
  hostSetActiveDatabase(nullptr);
  OdString lin, ang;
  ASSERT_TRUE(VxLin2Str(15.5, lin));
  ASSERT_TRUE(VxAng2Str(0.7853981633974483 * 180.0 / 3.141592653589793, ang));
  EXPECT_EQ(lin, L"15.5000");
  EXPECT_EQ(ang, L"45");
}

}  // namespace
