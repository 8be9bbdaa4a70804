#include <talvo/core/direction.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <ostream>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace {

using Talvo::Direction;
using Talvo::X;
using Talvo::XX;
using Talvo::Y;
using Talvo::YY;
using Talvo::Z;
using Talvo::ZZ;
using ::testing::StrEq;
using ::testing::ThrowsMessage;

TEST(Direction, IsAnUnscopedEnumerationOfThirtyTwoBits) {
  static_assert(std::is_enum_v<Direction>);
  static_assert(std::is_convertible_v<Direction, int>);
  static_assert(std::is_same_v<std::underlying_type_t<Direction>, std::int32_t>);
  EXPECT_EQ(sizeof(Direction), 4U);
}

struct DirectionCase {
  const char* name;
  Direction d;
  int value;
  Direction translation;
  Direction rotation;
  bool is_translation;

  friend void PrintTo(DirectionCase const& c, std::ostream* out) { *out << c.name; }
};

class EveryDirection : public ::testing::TestWithParam<DirectionCase> {};

TEST_P(EveryDirection, HasItsNumber) { EXPECT_EQ(static_cast<int>(GetParam().d), GetParam().value); }
TEST_P(EveryDirection, MapsToItsTranslation) { EXPECT_EQ(Talvo::ToTrans(GetParam().d), GetParam().translation); }
TEST_P(EveryDirection, MapsToItsRotation) { EXPECT_EQ(Talvo::ToRot(GetParam().d), GetParam().rotation); }
TEST_P(EveryDirection, KnowsWhetherItTranslates) { EXPECT_EQ(Talvo::IsTrans(GetParam().d), GetParam().is_translation); }
TEST_P(EveryDirection, KnowsWhetherItRotates) { EXPECT_EQ(Talvo::IsRot(GetParam().d), !GetParam().is_translation); }

TEST_P(EveryDirection, IncrementsByOneAndReturnsItself) {
  Direction d = GetParam().d;
  Direction& result = ++d;
  EXPECT_EQ(&result, &d);
  EXPECT_EQ(static_cast<int>(d), GetParam().value + 1);
}

TEST_P(EveryDirection, IsFoundByArgumentWithoutNamingTheNamespace) {
  EXPECT_EQ(ToTrans(GetParam().d), GetParam().translation);
  EXPECT_EQ(IsRot(GetParam().d), !GetParam().is_translation);
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(AllSix, EveryDirection, ::testing::Values(
    DirectionCase{"X",  X,  1, X, XX, true},
    DirectionCase{"Y",  Y,  2, Y, YY, true},
    DirectionCase{"Z",  Z,  3, Z, ZZ, true},
    DirectionCase{"XX", XX, 4, X, XX, false},
    DirectionCase{"YY", YY, 5, Y, YY, false},
    DirectionCase{"ZZ", ZZ, 6, Z, ZZ, false}),
    [](auto const& i) { return std::string(i.param.name); });
// clang-format on

TEST(Direction, ToRotOfXIsXXAndToTransOfZZIsZ) {
  EXPECT_EQ(Talvo::ToRot(X), XX);
  EXPECT_EQ(Talvo::ToTrans(ZZ), Z);
}

TEST(Direction, EachMappingKeepsAValueOfItsOwnKind) {
  for (Direction d : {X, Y, Z}) EXPECT_EQ(Talvo::ToTrans(d), d);
  for (Direction d : {XX, YY, ZZ}) EXPECT_EQ(Talvo::ToRot(d), d);
}

TEST(Direction, ALoopVisitsAllSixInOrder) {
  std::vector<Direction> visited;
  for (Direction d = X; d <= ZZ; ++d) visited.push_back(d);
  EXPECT_THAT(visited, ::testing::ElementsAre(X, Y, Z, XX, YY, ZZ));
}

TEST(Direction, DifferenceIsASignedInt) {
  static_assert(std::is_same_v<decltype(ZZ - X), int>);
  EXPECT_EQ(ZZ - X, 5);
  EXPECT_EQ(X - ZZ, -5);
}

TEST(Direction, DifferenceOfAnyTwoIsTheDifferenceOfTheirNumbers) {
  for (int a = 0; a <= 7; ++a) {
    for (int b = 0; b <= 7; ++b) {
      EXPECT_EQ(static_cast<Direction>(a) - static_cast<Direction>(b), a - b) << a << " - " << b;
    }
  }
}

TEST(Direction, IncrementPassesZZWithoutWrappingAround) {
  Direction d = ZZ;
  ++d;
  EXPECT_EQ(static_cast<int>(d), 7);
  ++d;
  EXPECT_EQ(static_cast<int>(d), 8);
}

TEST(Direction, IncrementDoesNotCheckWhereItStarts) {
  Direction d = static_cast<Direction>(-1);
  EXPECT_EQ(static_cast<int>(++d), 0);
  EXPECT_EQ(++d, X);
}

void expect_every_mapping_to_refuse(Direction d) {
  EXPECT_THAT([d] { Talvo::ToTrans(d); }, ThrowsMessage<std::runtime_error>(StrEq("Unknown axis")));
  EXPECT_THAT([d] { Talvo::ToRot(d); }, ThrowsMessage<std::runtime_error>(StrEq("Unknown axis")));
  EXPECT_THAT([d] { Talvo::IsTrans(d); }, ThrowsMessage<std::runtime_error>(StrEq("Unknown axis")));
  EXPECT_THAT([d] { Talvo::IsRot(d); }, ThrowsMessage<std::runtime_error>(StrEq("Unknown axis")));
}

class NotADirection : public ::testing::TestWithParam<std::int32_t> {};

TEST_P(NotADirection, IsRefusedByEveryMapping) { expect_every_mapping_to_refuse(static_cast<Direction>(GetParam())); }

// Beside the neighbours of the range: values whose low bits, or whose sum or difference with 3, is a direction.
INSTANTIATE_TEST_SUITE_P(OutsideOneToSix, NotADirection,
                         ::testing::Values(0, 7, -1, -2, -3, -4, 8, 9, 10, 257, 65537, -255,
                                           std::numeric_limits<std::int32_t>::max(),
                                           std::numeric_limits<std::int32_t>::min()));

TEST(Direction, ZZIncrementedIsRefusedByEveryMapping) {
  Direction d = ZZ;
  ++d;
  expect_every_mapping_to_refuse(d);
}

}  // namespace
