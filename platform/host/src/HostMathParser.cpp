#include "host/HostMathParser.h"

#include <muParser.h>

#include <cmath>

namespace {

constexpr double kPi = 3.141592653589793;

class MuMathParser : public IHostMathParser {
public:
  MuMathParser() { m_parser.DefineConst("pi", kPi); }

  bool evaluate(const OdString& expr, double& result, OdString& error) override {
    try {
      // The installed library reads narrow text; UTF-8 keeps any stray character
      // visible in the error message instead of failing the conversion.
      m_parser.SetExpr(expr.toUtf8());
      const double v = m_parser.Eval();
      if (m_parser.GetNumResults() != 1) {
        error = L"Expected one value";
        return false;
      }
      if (!std::isfinite(v)) {
        error = L"The result is not a finite number";
        return false;
      }
      result = v;
      return true;
    } catch (const mu::Parser::exception_type& e) {
      error = OdString::fromUtf8(e.GetMsg());
      return false;
    }
  }

private:
  mu::Parser m_parser;
};

}  // namespace

std::unique_ptr<IHostMathParser> hostMathParser() { return std::make_unique<MuMathParser>(); }
