#pragma once

/// @file
/// The base of the core vectors: elements in some backend, a name for the messages, an error type for the checks.

#include <talvo/core/error.h>

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace talvo::core {

/// A string literal as a template argument.
template <std::size_t N>
struct string_literal {
  // NOLINTNEXTLINE(google-explicit-constructor): a literal has to convert by itself to be a template argument
  constexpr string_literal(const char (&text)[N]) {
    for (std::size_t i = 0; i < N; ++i) characters[i] = text[i];
  }
  constexpr std::string_view view() const { return {characters, N - 1}; }

  char characters[N]{};
};

/// Element access over a backend that knows its own size.
///
/// @tparam Backend  the container that holds the elements, such as `std::array<double, 3>`.
/// @tparam Name     what the vector calls itself in messages.
/// @tparam Error    thrown by the checked access; built from a message and a source_location.
/// @tparam Size     the unsigned 64-bit type of sizes and indices.
template <class Backend, string_literal Name, class Error, class Size>
class VectorBackendWrapper {
 public:
  using value_type = typename Backend::value_type;
  using size_type = Size;
  using iterator = typename Backend::iterator;
  using const_iterator = typename Backend::const_iterator;

  VectorBackendWrapper() = default;
  VectorBackendWrapper(VectorBackendWrapper const&) = default;
  VectorBackendWrapper(VectorBackendWrapper&&) noexcept = default;
  VectorBackendWrapper& operator=(VectorBackendWrapper const&) = default;
  VectorBackendWrapper& operator=(VectorBackendWrapper&&) noexcept = default;
  virtual ~VectorBackendWrapper() = default;

  Size size() const noexcept { return static_cast<Size>(elements_.size()); }

  /// Unchecked in release builds, as users of such containers expect; a debug build asserts.
  value_type& operator[](Size index) {
    assert(index < size());
    return elements_[static_cast<std::size_t>(index)];
  }
  value_type const& operator[](Size index) const {
    assert(index < size());
    return elements_[static_cast<std::size_t>(index)];
  }

  /// Checked: throws Error "Index 5 is invalid for FixedVector of size 3!".
  value_type& at(Size index) {
    ensure_valid_index(index);
    return elements_[static_cast<std::size_t>(index)];
  }
  value_type const& at(Size index) const {
    ensure_valid_index(index);
    return elements_[static_cast<std::size_t>(index)];
  }

  iterator begin() noexcept { return elements_.begin(); }
  iterator end() noexcept { return elements_.end(); }
  const_iterator begin() const noexcept { return elements_.begin(); }
  const_iterator end() const noexcept { return elements_.end(); }

 protected:
  explicit VectorBackendWrapper(Backend const& elements) : elements_(elements) {}

 private:
  void ensure_valid_index(Size index) const {
    if (index >= size()) throw Error(message::invalid_element(Name.view(), index, size()), source_location::current());
  }

  Backend elements_{};
};

}  // namespace talvo::core
