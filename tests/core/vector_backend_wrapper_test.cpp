#include <talvo/core/vector_backend_wrapper.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using talvo::core::source_location;
using talvo::core::string_literal;
using talvo::core::VectorBackendWrapper;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Property;
using ::testing::StrEq;
using ::testing::Throws;
using ::testing::ThrowsMessage;

// An error of the user's own, which takes what the core's takes.
class TrackError : public std::runtime_error {
 public:
  TrackError(std::string const& text, source_location where) : std::runtime_error(text), where_(where) {}
  std::string file() const { return where_.file_name(); }
  std::string function() const { return where_.function_name(); }

 private:
  source_location where_;
};

// Another backend than the library's arrays: the wrapper asks it for its size.
class Track : public VectorBackendWrapper<std::vector<int>, "Track", TrackError, std::uint64_t> {
 public:
  Track() = default;
  explicit Track(std::vector<int> const& stops) : VectorBackendWrapper(stops) {}
};

using Triple = VectorBackendWrapper<std::array<double, 3>, "Triple", TrackError, std::uint64_t>;

TEST(VectorBackendWrapper, IsPolymorphic) {
  static_assert(std::is_polymorphic_v<Triple>);
  static_assert(std::has_virtual_destructor_v<Triple>);
}

TEST(VectorBackendWrapper, TakesItsTypesFromTheBackendAndTheSize) {
  static_assert(std::is_same_v<Track::value_type, int>);
  static_assert(std::is_same_v<Track::size_type, std::uint64_t>);
  static_assert(std::is_same_v<decltype(std::declval<Track const&>().size()), std::uint64_t>);
}

TEST(VectorBackendWrapper, HasTheValueInitialisedBackendWhenDefaultBuilt) {
  EXPECT_EQ(Track().size(), 0U);
  EXPECT_THAT(Triple(), ElementsAre(0.0, 0.0, 0.0));
}

// Built over memory that holds something else, as on a used stack, and without the parentheses that would zero it
// first.
TEST(VectorBackendWrapper, IsValueInitialisedWhateverTheMemoryHeld) {
  alignas(Triple) unsigned char memory[sizeof(Triple)];
  std::memset(memory, 0xA5, sizeof memory);
  Triple* const triple = new (memory) Triple;
  EXPECT_THAT(*triple, ElementsAre(0.0, 0.0, 0.0));
  triple->~Triple();
}

TEST(VectorBackendWrapper, HasTheSizeOfItsBackend) {
  EXPECT_EQ(Triple().size(), 3U);
  EXPECT_EQ(Track({4, 5}).size(), 2U);
}

TEST(VectorBackendWrapper, ReadsAndWritesThroughBothAccesses) {
  Track track({4, 5, 6});
  track[0] = 40;
  track.at(1) = 50;
  Track const& read_only = track;
  EXPECT_EQ(read_only[0], 40);
  EXPECT_EQ(read_only[1], 50);
  EXPECT_EQ(read_only.at(0), 40);
  EXPECT_EQ(read_only.at(2), 6);
}

TEST(VectorBackendWrapper, IteratesInOrderAndInPlace) {
  Track track({4, 5, 6});
  for (int& stop : track) ++stop;
  Track const& read_only = track;
  EXPECT_EQ((std::vector<int>(read_only.begin(), read_only.end())), (std::vector<int>{5, 6, 7}));
}

TEST(VectorBackendWrapper, IsCopiedAndMovedAsAValue) {
  Track track({4, 5});
  const Track copy = track;
  track[0] = 9;
  EXPECT_THAT(copy, ElementsAre(4, 5));
  const Track moved = std::move(track);
  EXPECT_THAT(moved, ElementsAre(9, 5));
  Track assigned;
  assigned = copy;
  EXPECT_THAT(assigned, ElementsAre(4, 5));
}

TEST(VectorBackendWrapper, CheckedAccessAcceptsExactlyItsIndices) {
  Track track({4, 5});
  Track const& read_only = track;
  EXPECT_NO_THROW((void)track.at(0));
  EXPECT_NO_THROW((void)track.at(1));
  EXPECT_THAT([&] { track.at(2) = 1; }, ThrowsMessage<TrackError>(StrEq("Index 2 is invalid for Track of size 2!")));
  EXPECT_THAT([&] { (void)read_only.at(2); },
              ThrowsMessage<TrackError>(StrEq("Index 2 is invalid for Track of size 2!")));
  EXPECT_THAT(track, ElementsAre(4, 5));
}

TEST(VectorBackendWrapper, CheckedAccessRefusesEveryIndexOfAnEmptyBackend) {
  Track track;
  EXPECT_THAT([&] { (void)track.at(0); }, ThrowsMessage<TrackError>(StrEq("Index 0 is invalid for Track of size 0!")));
}

// A 32-bit index would wrap to 0.
TEST(VectorBackendWrapper, CheckedAccessTakesTheWholeRangeOfIndices) {
  Triple triple;
  EXPECT_THAT([&] { (void)triple.at(std::uint64_t{1} << 32U); },
              ThrowsMessage<TrackError>(StrEq("Index 4294967296 is invalid for Triple of size 3!")));
  EXPECT_THAT([&] { (void)triple.at(std::numeric_limits<std::uint64_t>::max()); },
              ThrowsMessage<TrackError>(StrEq("Index 18446744073709551615 is invalid for Triple of size 3!")));
}

TEST(VectorBackendWrapper, LocatesTheFailedCheckInItsOwnHeader) {
  Track track;
  EXPECT_THAT([&] { (void)track.at(0); },
              Throws<TrackError>(AllOf(Property(&TrackError::file, EndsWith("talvo/core/vector_backend_wrapper.h")),
                                       Property(&TrackError::function, HasSubstr("ensure_valid_index")))));
}

// ---------------------------------------------------------------- the name

template <string_literal Name>
constexpr std::string_view text_of() {
  return Name.view();
}

TEST(StringLiteral, IsATemplateArgumentWithItsText) {
  static_assert(text_of<"FixedVector">() == "FixedVector");
  static_assert(text_of<"">().empty());
}

TEST(StringLiteral, DistinguishesTypesByTheText) {
  using A = VectorBackendWrapper<std::array<int, 1>, "A", TrackError, std::uint64_t>;
  using AlsoA = VectorBackendWrapper<std::array<int, 1>, "A", TrackError, std::uint64_t>;
  using B = VectorBackendWrapper<std::array<int, 1>, "B", TrackError, std::uint64_t>;
  static_assert(std::is_same_v<A, AlsoA>);
  static_assert(!std::is_same_v<A, B>);
}

}  // namespace
