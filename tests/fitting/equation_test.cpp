#include <talvo/fitting/least_squares.h>

#include <gtest/gtest.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <locale>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "fitting/private_members.h"
#include "support/random.h"

namespace {

using talvo::test::OpenLeastSquares;
using talvo::test::Random;
using Talvo::Util::LeastSquares;

using Limits = std::numeric_limits<double>;
constexpr double kInfinity = Limits::infinity();
constexpr double kNaN = Limits::quiet_NaN();
constexpr double kLeast = 1e-10;  // a smaller coefficient is left out

OpenLeastSquares polynomial(std::vector<double> const& coefficients) {
  return {LeastSquares::Polynomial, coefficients.size() - 1, coefficients};
}

OpenLeastSquares sine(std::vector<double> const& coefficients) {
  return {LeastSquares::Sine, coefficients.size(), coefficients};
}

std::string polynomial_text(std::vector<double> const& coefficients) {
  return polynomial(coefficients).Equation(false);
}

std::string sine_text(std::vector<double> const& coefficients) { return sine(coefficients).Equation(false); }

template <class... Parts>
std::string joined(Parts const&... parts) {
  std::ostringstream out;
  (out << ... << parts);
  return out.str();
}

// --- Whole equations ---

struct TextCase {
  const char* name;
  std::vector<double> coefficients;
  const char* text;

  friend void PrintTo(TextCase const& c, std::ostream* out) { *out << c.name; }
};

std::string name_of(::testing::TestParamInfo<TextCase> const& info) { return info.param.name; }

class PlainPolynomial : public ::testing::TestWithParam<TextCase> {};
TEST_P(PlainPolynomial, ReadsSo) { EXPECT_EQ(polynomial_text(GetParam().coefficients), GetParam().text); }
INSTANTIATE_TEST_SUITE_P(
    Texts, PlainPolynomial,
    ::testing::Values(TextCase{"quadratic", {1, -2, 3}, "3x^2 + -2x + 1"},
                      TextCase{
                          "small_and_large_terms", {0.5, 0, 1234.5, 0.00001234}, "1.23e-05x^3 + 1.23e+03x^2 + 0.5"},
                      TextCase{"nothing_but_tiny_terms", {0, 1e-11}, ""},  //
                      TextCase{"constant", {2.5}, "2.5"},                  //
                      TextCase{"constant_zero", {0}, ""},                  //
                      TextCase{"negative_first_term", {1, -1}, "-1x + 1"},
                      TextCase{"ones_are_written", {1, 1, 1, 1}, "1x^3 + 1x^2 + 1x + 1"},
                      TextCase{"gap_at_the_end", {0, 0, 7}, "7x^2"},
                      TextCase{"gap_at_the_start", {4, 5, 0, 0}, "5x + 4"}, TextCase{"negative_zero", {-0.0, 2}, "2x"},
                      TextCase{"power_of_two_digits", {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 2}, "2x^11 + 1x^10"},
                      TextCase{"not_finite", {kNaN, kInfinity, -kInfinity}, "-infx^2 + infx + nan"},
                      TextCase{"sign_of_nan", {-kNaN}, "-nan"}),
    name_of);

class HtmlPolynomial : public ::testing::TestWithParam<TextCase> {};
TEST_P(HtmlPolynomial, ReadsSo) { EXPECT_EQ(polynomial(GetParam().coefficients).Equation(true), GetParam().text); }
INSTANTIATE_TEST_SUITE_P(
    Texts, HtmlPolynomial,
    ::testing::Values(TextCase{"quadratic", {1, -2, 3}, "3x<sup>2</sup> + -2x + 1"},
                      TextCase{"line_has_no_power", {1, -2}, "-2x + 1"},
                      TextCase{"only_a_high_power", {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, -1.5}, "-1.5x<sup>10</sup>"},
                      TextCase{"nothing_but_tiny_terms", {0, 1e-11}, ""}),
    name_of);

class SineSeries : public ::testing::TestWithParam<TextCase> {};
TEST_P(SineSeries, ReadsSoWithAndWithoutHtml) {
  EXPECT_EQ(sine(GetParam().coefficients).Equation(false), GetParam().text);
  EXPECT_EQ(sine(GetParam().coefficients).Equation(true), GetParam().text);
}
INSTANTIATE_TEST_SUITE_P(
    Texts, SineSeries,
    ::testing::Values(TextCase{"three_harmonics", {2, 0.5, -1}, "2sin(x) + 0.5sin(2x) + -1sin(3x)"},
                      TextCase{"harmonics_keep_their_numbers", {0, 4}, "4sin(2x)"},
                      TextCase{"ones_are_written", {1, 1}, "1sin(x) + 1sin(2x)"},
                      TextCase{"tiny_terms_anywhere", {1e-11, 3, -1e-11, 5}, "3sin(2x) + 5sin(4x)"},
                      TextCase{"nothing_but_tiny_terms", {1e-11, 0}, ""},
                      TextCase{"not_finite", {kNaN, -kInfinity}, "nansin(x) + -infsin(2x)"}),
    name_of);

TEST(Equation, OfNoCoefficientsIsEmpty) {
  for (const bool html : {false, true}) {
    EXPECT_EQ(LeastSquares().Equation(html), "");
    EXPECT_EQ(OpenLeastSquares(LeastSquares::Polynomial, 5, {}).Equation(html), "");
    EXPECT_EQ(OpenLeastSquares(LeastSquares::Sine, 5, {}).Equation(html), "");
  }
}

TEST(Equation, AfterAFailedFitIsEmpty) {
  LeastSquares fit;
  fit.CalculateCoeff({{0, 1}, {1, 3}, {2, 5}}, LeastSquares::Polynomial, 1);
  EXPECT_EQ(fit.Equation(false), "2x + 1");
  EXPECT_THROW(fit.CalculateCoeff({{1, 0}, {1, 1}}, LeastSquares::Polynomial, 1), std::runtime_error);
  EXPECT_EQ(fit.Equation(false), "");
}

TEST(Equation, OfFitTypeTwoIsEmptyForEitherFlag) {
  constexpr auto kTwo = static_cast<LeastSquares::Fit>(2);
  LeastSquares fit;
  EXPECT_THROW(fit.CalculateCoeff({{0, 1}, {1, 3}, {2, 5}}, kTwo, 1), std::invalid_argument);
  EXPECT_EQ(fit.Equation(false), "");
  EXPECT_EQ(fit.Equation(true), "");
  // Not because the coefficients are gone.
  const OpenLeastSquares unknown(kTwo, 1, {1.0, 2.0});
  EXPECT_EQ(unknown.Equation(false), "");
  EXPECT_EQ(unknown.Equation(true), "");
}

TEST(Equation, GoesByTheCoefficientsNotByTheStoredOrder) {
  EXPECT_EQ(OpenLeastSquares(LeastSquares::Polynomial, 0, {1.0, 2.0, 3.0}).Equation(false), "3x^2 + 2x + 1");
  EXPECT_EQ(OpenLeastSquares(LeastSquares::Polynomial, 9, {1.0, 2.0}).Equation(false), "2x + 1");
  EXPECT_EQ(OpenLeastSquares(LeastSquares::Sine, 1, {1.0, 2.0, 3.0}).Equation(false), "1sin(x) + 2sin(2x) + 3sin(3x)");
}

TEST(Equation, OfEitherKindIsOpenToDerivedClassesWhateverTheStoredType) {
  const OpenLeastSquares fit(LeastSquares::Sine, 2, {1.0, 2.0, 3.0});
  EXPECT_EQ(fit.EquationPoly(false), "3x^2 + 2x + 1");
  EXPECT_EQ(fit.EquationPoly(true), "3x<sup>2</sup> + 2x + 1");
  EXPECT_EQ(polynomial({1.0, 2.0}).EquationSine(), "1sin(x) + 2sin(2x)");
}

TEST(Equation, WritesPowersAndHarmonicsOfThreeDigits) {
  std::vector<double> coefficients(1235, 0.0);
  coefficients.back() = 2.0;
  EXPECT_EQ(polynomial(coefficients).Equation(false), "2x^1234");
  EXPECT_EQ(polynomial(coefficients).Equation(true), "2x<sup>1234</sup>");
  EXPECT_EQ(sine_text(coefficients), "2sin(1235x)");
}

TEST(Equation, LeavesOutWhatIsBelowTheThresholdAndNothingElse) {
  const double below = std::nextafter(kLeast, 0.0);
  for (const double sign : {1.0, -1.0}) {
    const std::string text = sign > 0 ? "1e-10" : "-1e-10";
    EXPECT_EQ(polynomial_text({sign * kLeast}), text);
    EXPECT_EQ(polynomial_text({sign * below}), "");
    EXPECT_EQ(polynomial_text({0.0, sign * kLeast}), text + "x");
    EXPECT_EQ(polynomial_text({0.0, sign * below}), "");
    EXPECT_EQ(polynomial_text({0.0, 0.0, sign * kLeast}), text + "x^2");
    EXPECT_EQ(polynomial_text({0.0, 0.0, sign * below}), "");
    EXPECT_EQ(sine_text({sign * kLeast, sign * kLeast}), joined(text, "sin(x) + ", text, "sin(2x)"));
    EXPECT_EQ(sine_text({sign * below, sign * below}), "");
  }
}

TEST(Equation, DoesNotFollowTheLocale) {
  struct Comma : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\1"; }
  };
  const std::locale before = std::locale::global(std::locale(std::locale::classic(), new Comma));
  const std::string text = polynomial_text({0.5, 123.0});
  std::locale::global(before);
  EXPECT_EQ(text, "123x + 0.5");
}

// --- Numbers ---

struct NumberCase {
  double value;
  const char* text;
};

TEST(EquationNumber, HasThreeSignificantDigits) {
  const std::array<NumberCase, 20> cases{{
      {1.0, "1"},
      {2.5, "2.5"},
      {3.14159, "3.14"},
      {1234.5, "1.23e+03"},
      {0.00001234, "1.23e-05"},
      {-0.5, "-0.5"},
      {100.0, "100"},
      {999.0, "999"},
      {999.4, "999"},
      {999.6, "1e+03"},
      {1000.0, "1e+03"},
      {0.0001, "0.0001"},
      {0.000123, "0.000123"},
      {0.00009, "9e-05"},
      {0.000099996, "0.0001"},
      {0.000099949, "9.99e-05"},
      {1e100, "1e+100"},
      {-1.5e-9, "-1.5e-09"},
      {1.797e308, "1.8e+308"},
      {20.0, "20"},
  }};
  for (auto const& [value, text] : cases) EXPECT_EQ(polynomial_text({value}), text) << value;
}

TEST(EquationNumber, RoundsATieToTheEvenDigit) {
  // n + 1/2 and (n + 1/2)/8 are exact; the third digit of the first rounds to the even one of n and n + 1.
  for (int n = 100; n < 1000; ++n) {
    const int even = n % 2 == 0 ? n : n + 1;
    const std::string digits = even == 1000 ? "1e+03" : std::to_string(even);
    EXPECT_EQ(polynomial_text({n + 0.5}), digits) << n;
    EXPECT_EQ(polynomial_text({-(n + 0.5)}), "-" + digits) << n;
  }
  EXPECT_EQ(polynomial_text({1.125}), "1.12");
  EXPECT_EQ(polynomial_text({1.375}), "1.38");
  EXPECT_EQ(polynomial_text({10.25}), "10.2");
  EXPECT_EQ(polynomial_text({10.75}), "10.8");
  EXPECT_EQ(polynomial_text({1005.0}), "1e+03");
  EXPECT_EQ(polynomial_text({1015.0}), "1.02e+03");
}

std::string by_to_chars(double value) {
  std::array<char, 64> buffer{};
  auto const end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::general, 3);
  return {buffer.data(), end.ptr};
}

std::string by_printf(double value) {
  std::array<char, 64> buffer{};
  const int length = std::snprintf(buffer.data(), buffer.size(), "%.3g", value);
  return {buffer.data(), static_cast<std::size_t>(length)};
}

/// The number as it must read in every place where it stands.
void expect_number(double value) {
  SCOPED_TRACE(::testing::Message() << std::hexfloat << value);
  const std::string number = by_to_chars(value);
  ASSERT_EQ(number, by_printf(value));
  const bool left_out = std::abs(value) < kLeast;
  EXPECT_EQ(polynomial_text({value}), left_out ? "" : number);
  EXPECT_EQ(polynomial_text({0.0, value, value}), left_out ? "" : joined(number, "x^2 + ", number, "x"));
  EXPECT_EQ(polynomial({0.0, 0.0, value}).Equation(true), left_out ? "" : number + "x<sup>2</sup>");
  EXPECT_EQ(sine_text({value, value}), left_out ? "" : joined(number, "sin(x) + ", number, "sin(2x)"));
}

TEST(EquationNumber, IsThatOfTheStandardLibraryForAnyDouble) {
  Random random(61);
  for (int i = 0; i < 60000; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 61, case " << i);
    expect_number(random.any_double());
    if (HasFailure()) return;
  }
}

TEST(EquationNumber, IsThatOfTheStandardLibraryInEveryDecade) {
  Random random(62);
  for (int exponent = -12; exponent <= 308; ++exponent) {
    const double decade = std::pow(10.0, exponent);
    for (const double factor : {1.0, 9.994999, 9.995, 9.995001, 1.005, 1.015, 5.555, random.uniform(1.0, 10.0)}) {
      // A half of the third digit is a number of its own, and so are its neighbours.
      expect_number(random.near(decade * factor));
      if (HasFailure()) return;
    }
  }
}

TEST(EquationNumber, IsThatOfTheStandardLibraryOnEveryTie) {
  for (int n = 100; n < 1000; ++n) {
    for (const double scale : {1.0, 0.5, 0.25, 0.125, 0.0625, 10.0, 100.0, 1000.0}) {
      const double tie = (n + 0.5) * scale;
      for (const double value : {std::nextafter(tie, 0.0), tie, std::nextafter(tie, kInfinity)}) {
        expect_number(value);
        expect_number(-value);
      }
      if (HasFailure()) return;
    }
  }
}

TEST(EquationNumber, IsThatOfTheStandardLibraryForWhatIsNoNumber) {
  for (const double value : {kNaN, -kNaN, kInfinity, -kInfinity, Limits::max(), Limits::lowest()}) expect_number(value);
}

TEST(Equation, OfRandomCoefficientsIsItsTermsJoined) {
  Random random(63);
  for (int i = 0; i < 3000; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 63, case " << i);
    std::vector<double> coefficients;
    for (auto n = 1 + random.below(14); n > 0; --n) coefficients.push_back(random.any_double());

    std::string plain;
    std::string html;
    for (std::size_t k = coefficients.size(); k-- > 0;) {
      if (std::abs(coefficients[k]) < kLeast) continue;
      const std::string start = joined(plain.empty() ? "" : " + ", by_to_chars(coefficients[k]));
      plain += joined(start, k == 0 ? "" : k == 1 ? "x" : joined("x^", k));
      html += joined(start, k == 0 ? "" : k == 1 ? "x" : joined("x<sup>", k, "</sup>"));
    }
    EXPECT_EQ(polynomial(coefficients).Equation(false), plain);
    EXPECT_EQ(polynomial(coefficients).Equation(true), html);

    std::string sines;
    for (std::size_t k = 0; k < coefficients.size(); ++k) {
      if (std::abs(coefficients[k]) < kLeast) continue;
      sines += joined(sines.empty() ? "" : " + ", by_to_chars(coefficients[k]),
                      k == 0 ? "sin(x)" : joined("sin(", k + 1, "x)"));
    }
    EXPECT_EQ(sine_text(coefficients), sines);
  }
}

}  // namespace
