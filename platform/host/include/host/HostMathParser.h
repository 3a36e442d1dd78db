// The host's arithmetic expression evaluator, for numbers typed into edit fields
// that are not plain distances ("2*3", "(1+2)/4", "sqrt(2)", "pi/4").
//
// Operators, loosest first: "?:", "||", "&&", comparisons, "+ -", "* /", unary
// minus, "^" (right-associative). Power binds tighter than unary minus, so
// "-3^2" is -9 and "2^3^2" is 512. Functions: sin cos tan asin acos atan sinh cosh
// tanh asinh acosh atanh log2 log10 ln (and log, also natural) exp sqrt sign rint
// abs min max sum avg; constants pi (also _pi) and _e. Trigonometric functions take
// radians.
#pragma once

#include <memory>

#include "drawings/OdString.h"

class IHostMathParser {
public:
  virtual ~IHostMathParser() = default;
  // The value of `expr`, or false with a one-line reason in `error` (`result`
  // unchanged). A result that is not a finite number, such as "1/0" or
  // "sqrt(-1)", and a list of several values ("2,3") are errors.
  virtual bool evaluate(const OdString& expr, double& result, OdString& error) = 0;
};

// A new evaluator; each caller owns its own, so no state is shared.
std::unique_ptr<IHostMathParser> hostMathParser();
