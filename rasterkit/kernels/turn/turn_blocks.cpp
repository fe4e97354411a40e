#include <rasterkit/kernels/turn/turn_blocks.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/turn/turn_blocks.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_SCALAR

void Turn(const int16_t* const* sources, size_t count, BlockTurn turn, int16_t* target) {
  for (size_t i = 0; i < count; ++i, target += kBlockCoefficients) {
    for (size_t y = 0; y < kBlockSide; ++y) {
      for (size_t x = 0; x < kBlockSide; ++x) {
        const int16_t value =
            sources[i][turn.exchangesAxes ? x * kBlockSide + y : y * kBlockSide + x];
        const bool isOdd = ((turn.reversesColumns ? x : 0) ^ (turn.reversesRows ? y : 0)) % 2 != 0;
        target[y * kBlockSide + x] = static_cast<int16_t>(isOdd ? -value : value);
      }
    }
  }
}

#else

using Row = hn::Full128<int16_t>;
using Pairs = hn::Full128<int32_t>;
using Halves = hn::Full128<int64_t>;
using Vector = hn::Vec<Row>;

// -1 where a number changes its sign.
alignas(16) constexpr int16_t kOdd[kBlockSide] = {0, -1, 0, -1, 0, -1, 0, -1};

// Numbers of one of the two halves of a row, in turn from both.
template <class D>
HWY_INLINE void Interleave(D d, Vector& first, Vector& second) {
  const auto a = hn::BitCast(d, first);
  const auto b = hn::BitCast(d, second);
  first = hn::BitCast(Row(), hn::InterleaveLower(d, a, b));
  second = hn::BitCast(Row(), hn::InterleaveUpper(d, a, b));
}

// Rows become columns.
HWY_INLINE void Transpose(Vector& r0, Vector& r1, Vector& r2, Vector& r3, Vector& r4, Vector& r5,
                          Vector& r6, Vector& r7) {
  Interleave(Row(), r0, r1);
  Interleave(Row(), r2, r3);
  Interleave(Row(), r4, r5);
  Interleave(Row(), r6, r7);
  // Each vector has two columns of two rows; then of four rows.
  Interleave(Pairs(), r0, r2);
  Interleave(Pairs(), r1, r3);
  Interleave(Pairs(), r4, r6);
  Interleave(Pairs(), r5, r7);
  Interleave(Halves(), r0, r4);
  Interleave(Halves(), r2, r6);
  Interleave(Halves(), r1, r5);
  Interleave(Halves(), r3, r7);
}

template <bool kExchanges, bool kSigns>
void TurnAs(const int16_t* const* sources, size_t count, BlockTurn turn, int16_t* target) {
  const Row d;
  const Vector even = turn.reversesColumns ? hn::Load(d, kOdd) : hn::Zero(d);
  const Vector odd = turn.reversesRows ? hn::Not(even) : even;
  const auto store = [&](Vector row, Vector sign, int16_t* to) HWY_ATTR {
    // Bits inverted, plus 1.
    if constexpr (kSigns) row = hn::Sub(hn::Xor(row, sign), sign);
    hn::StoreU(row, d, to);
  };
  for (size_t i = 0; i < count; ++i, target += kBlockCoefficients) {
    const int16_t* from = sources[i];
    Vector r0 = hn::LoadU(d, from), r1 = hn::LoadU(d, from + 8), r2 = hn::LoadU(d, from + 16),
           r3 = hn::LoadU(d, from + 24), r4 = hn::LoadU(d, from + 32), r5 = hn::LoadU(d, from + 40),
           r6 = hn::LoadU(d, from + 48), r7 = hn::LoadU(d, from + 56);
    if constexpr (kExchanges) {
      Transpose(r0, r1, r2, r3, r4, r5, r6, r7);
      // The columns stand in the places 0, 4, 2, 6, 1, 5, 3, 7.
      const Vector one = r4, three = r6, four = r1, six = r3;
      r1 = one;
      r3 = three;
      r4 = four;
      r6 = six;
    }
    store(r0, even, target);
    store(r1, odd, target + 8);
    store(r2, even, target + 16);
    store(r3, odd, target + 24);
    store(r4, even, target + 32);
    store(r5, odd, target + 40);
    store(r6, even, target + 48);
    store(r7, odd, target + 56);
  }
}

void Turn(const int16_t* const* sources, size_t count, BlockTurn turn, int16_t* target) {
  const bool signs = turn.reversesColumns || turn.reversesRows;
  if (turn.exchangesAxes) {
    signs ? TurnAs<true, true>(sources, count, turn, target)
          : TurnAs<true, false>(sources, count, turn, target);
  } else {
    signs ? TurnAs<false, true>(sources, count, turn, target)
          : TurnAs<false, false>(sources, count, turn, target);
  }
}

#endif  // HWY_SCALAR

}  // namespace
}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rasterkit::kernels {
namespace {
HWY_EXPORT(Turn);
}  // namespace

void TurnBlocks(const int16_t* const* sources, size_t count, BlockTurn turn, int16_t* target) {
  HWY_DYNAMIC_DISPATCH(Turn)(sources, count, turn, target);
}

}  // namespace rasterkit::kernels
#endif  // HWY_ONCE
