#pragma once

/// @file
/// One operation in three forms: as it reads ("literal"), through the shared library ("talvo") and as a hand-written
/// straight-line kernel ("limit"). Each form takes an item and returns a result; the three results must have equal
/// bits, which is checked before anything is timed.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace talvo::bench {

/// The numbers of a result, so that results of different types compare.
using Numbers = std::vector<double>;

inline bool same_bits(Numbers const& a, Numbers const& b) {
  return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) == 0;
}

template <class Item, class Operation>
void time_over(benchmark::State& state, std::vector<Item> const& items, Operation operation) {
  for (auto _ : state) {
    for (Item const& item : items) {
      auto result = operation(item);
      benchmark::DoNotOptimize(result);
    }
  }
  const auto count = static_cast<double>(state.iterations()) * static_cast<double>(items.size());
  state.counters["ns_per_item"] =
      benchmark::Counter(count * 1e-9, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

/// The kernel as a function that is called: what any program with more than one such place in it would have.
template <class Operation, class Item>
__attribute__((noinline)) auto called(Operation operation, Item const& item) {
  return operation(item);
}

/// Stops the program when two forms of an operation differ in any bit.
template <class Item, class ToNumbers, class Literal, class Form>
void ensure_equal_bits(std::string const& name, std::vector<Item> const& items, ToNumbers numbers, Literal literal,
                       Form form) {
  for (Item const& item : items) {
    if (same_bits(numbers(form(item)), numbers(literal(item)))) continue;
    std::fprintf(stderr, "%s differs from the literal form\n", name.c_str());
    std::exit(1);
  }
}

template <class Item, class Operation>
void add_form(std::string const& name, std::vector<Item> const& items, Operation operation) {
  benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) { time_over(state, items, operation); });
}

/// Registers one operation in two forms, having checked that they agree.
///
/// @param numbers  gives the Numbers of each form's result.
template <class Item, class ToNumbers, class Literal, class Library>
void compare(std::string const& name, std::vector<Item> const& items, ToNumbers numbers, Literal literal,
             Library library) {
  ensure_equal_bits(name + "/talvo", items, numbers, literal, library);
  add_form(name + "/literal", items, literal);
  add_form(name + "/talvo", items, library);
}

/// The same with a hand-written form beside them.
template <class Item, class ToNumbers, class Literal, class Library, class Limit>
void compare(std::string const& name, std::vector<Item> const& items, ToNumbers numbers, Literal literal,
             Library library, Limit limit) {
  ensure_equal_bits(name + "/limit", items, numbers, literal, limit);
  compare(name, items, numbers, literal, library);
  add_form(name + "/limit", items, [=](Item const& item) { return called(limit, item); });
}

}  // namespace talvo::bench
