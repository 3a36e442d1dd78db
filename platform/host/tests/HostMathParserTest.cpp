#include "host/HostMathParser.h"

#include <gtest/gtest.h>

namespace {

TEST(HostMathParser, EvaluatesArithmetic) {
  struct Case { const wchar_t* expr; double want; };
  const Case cases[] = {
      {L"2*3", 6}, {L"(1+2)/4", 0.75}, {L"sqrt(2)", 1.4142135623730951}, {L"pi/4", 0.7853981633974483},
      {L"-3^2", -9},     // power binds tighter than unary minus
      {L"2^3^2", 512},   // and groups to the right
      {L"1+2*3-4/2", 5}, {L" 7 ", 7}, {L"max(1, 5) + min(2, 3)", 7}, {L"1.5e2", 150},
  };
  auto parser = hostMathParser();
  for (const auto& c : cases) {
    double v = -1;
    OdString error;
    EXPECT_TRUE(parser->evaluate(c.expr, v, error)) << OdString(c.expr).toUtf8() << ": " << error.toUtf8();
    EXPECT_DOUBLE_EQ(v, c.want) << OdString(c.expr).toUtf8();
  }
}

TEST(HostMathParser, ReportsErrorsAndKeepsTheResult) {
  // One parser for every row: a failure must not spoil the next evaluation.
  auto parser = hostMathParser();
  for (const wchar_t* expr : {L"2*", L"foo(1)", L"abc", L"", L"1/0", L"sqrt(-1)", L"2,3", L"1'", L"2 3",
                              L"\u0445+1"}) {
    double v = 42;
    OdString error;
    EXPECT_FALSE(parser->evaluate(expr, v, error)) << OdString(expr).toUtf8();
    EXPECT_EQ(v, 42) << OdString(expr).toUtf8();
    EXPECT_FALSE(error.isEmpty()) << OdString(expr).toUtf8();
    double ok = 0;
    EXPECT_TRUE(parser->evaluate(L"1+1", ok, error));
    EXPECT_EQ(ok, 2);
  }
}

}  // namespace
