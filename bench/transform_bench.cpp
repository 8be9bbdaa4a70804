/// @file
/// Frames: vectors and tensors between axes, and products of frames. Forms and method are those of compare.h; "limit"
/// is a straight-line kernel on plain arrays.

#include "compare.h"

#include <talvo/talvo.h>
#include <cmath>
#include <random>

namespace {

using namespace talvo::bench;
using Talvo::Util::CDirCos;

struct Item {
  CDirCos frame;
  CDirCos other;
  Vec3<double> v;
  TensSym3<double> t;
};

std::vector<Item> items() {
  std::mt19937_64 engine(20260103);
  std::uniform_real_distribution<double> u(-1, 1);
  const auto vector = [&] { return Vec3<double>{u(engine), u(engine), u(engine)}; };
  std::vector<Item> result;
  for (int i = 0; i < 48; ++i) {
    Item item{{}, {}, vector(), {}};
    item.frame.Create(vector(), vector());
    item.other.Create(vector(), vector());
    for (int r = 0; r < 3; ++r) {
      for (int c = 0; c <= r; ++c) item.t(r, c) = item.t(c, r) = u(engine);
    }
    item.t(3, 3) = 1;
    result.push_back(item);
  }
  return result;
}

Numbers numbers(Vec3<double> const& v) { return {v.x, v.y, v.z, v.w}; }
Numbers numbers(TensSym3<double> const& t) { return {t.components, t.components + 16}; }
Numbers numbers(CDirCos const& f) { return {f.Inner().data(), f.Inner().data() + 16}; }

// --- As it reads ---

using Rows = std::vector<std::vector<double>>;

Rows rows(CDirCos const& f) {
  Rows m(4, std::vector<double>(4));
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 4; ++c) m[static_cast<std::size_t>(r)][static_cast<std::size_t>(c)] = f.Inner()(r, c);
  }
  return m;
}

Rows rows(TensSym3<double> const& t) {
  Rows m(4, std::vector<double>(4));
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 4; ++c) m[static_cast<std::size_t>(r)][static_cast<std::size_t>(c)] = t(r, c);
  }
  return m;
}

Rows transposed(Rows const& m) {
  Rows result = m;
  for (std::size_t r = 0; r < 4; ++r) {
    for (std::size_t c = 0; c < 4; ++c) result[r][c] = m[c][r];
  }
  return result;
}

Rows product(Rows const& a, Rows const& b) {
  Rows c(4, std::vector<double>(4));
  for (std::size_t i = 0; i < 4; ++i) {
    for (std::size_t j = 0; j < 4; ++j) {
      c[i][j] = a[i][0] * b[0][j] + a[i][1] * b[1][j] + a[i][2] * b[2][j] + a[i][3] * b[3][j];
    }
  }
  return c;
}

TensSym3<double> tensor(Rows const& m) {
  TensSym3<double> t;
  for (int i = 0; i < 16; ++i) t.components[i] = m[static_cast<std::size_t>(i / 4)][static_cast<std::size_t>(i % 4)];
  return t;
}

Vec3<double> literal_local(Item const& i) {
  const Rows m = rows(i.frame);
  const auto along = [&](std::size_t j) {
    return i.v.x * m[0][j] + i.v.y * m[1][j] + i.v.z * m[2][j] + i.v.w * m[3][j];
  };
  return {along(0), along(1), along(2), 0};
}

CDirCos literal_transform(Item const& i) {
  const Rows m = product(rows(i.frame), rows(i.other));
  CDirCos result;
  for (int k = 0; k < 16; ++k) {
    result.Inner()(k / 4, k % 4) = m[static_cast<std::size_t>(k / 4)][static_cast<std::size_t>(k % 4)];
  }
  return result;
}

// --- By hand ---

using Two = double __attribute__((vector_size(16)));

inline Two two(const double* p) {
  Two v;
  std::memcpy(&v, p, sizeof v);
  return v;
}

inline void multiply(const double* a, std::size_t next, std::size_t row, const double* b, double* c) {
  for (std::size_t i = 0; i < 4; ++i) {
    const double* f = a + i * row;
    for (std::size_t h = 0; h < 4; h += 2) {
      const Two sum =
          f[0] * two(b + h) + f[next] * two(b + 4 + h) + f[2 * next] * two(b + 8 + h) + f[3 * next] * two(b + 12 + h);
      std::memcpy(c + 4 * i + h, &sum, sizeof sum);
    }
  }
}

Vec3<double> limit_local(Item const& i) {
  const double* m = i.frame.Inner().data();
  const Two xy = i.v.x * two(m) + i.v.y * two(m + 4) + i.v.z * two(m + 8) + i.v.w * two(m + 12);
  return {xy[0], xy[1], i.v.x * m[2] + i.v.y * m[6] + i.v.z * m[10] + i.v.w * m[14], 0};
}

TensSym3<double> limit_local_tensor(Item const& i) {
  const double* m = i.frame.Inner().data();
  double half[16];
  TensSym3<double> result;
  multiply(m, 4, 1, i.t.components, half);
  multiply(half, 1, 4, m, result.components);
  return result;
}

CDirCos limit_transform(Item const& i) {
  CDirCos result;
  multiply(i.frame.Inner().data(), 1, 4, i.other.Inner().data(), result.Inner().data());
  return result;
}

}  // namespace

int main(int argc, char** argv) {
  const auto to_numbers = [](auto const& result) { return numbers(result); };
  compare(
      "GtoL/vector", items(), to_numbers, literal_local, [](Item const& i) { return i.frame.GtoL(i.v); }, limit_local);
  compare(
      "GtoL/tensor", items(), to_numbers,
      [](Item const& i) {
        const Rows m = rows(i.frame);
        return tensor(product(product(transposed(m), rows(i.t)), m));
      },
      [](Item const& i) { return i.frame.GtoL(i.t); }, limit_local_tensor);
  compare(
      "Transform", items(), to_numbers, literal_transform, [](Item const& i) { return i.frame.Transform(i.other); },
      limit_transform);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
