// The cases of the dialogs' ...Processing routines served by Class_Edge.
#include "catalogue/dispatch_values.h"
#include "catalogue/effect_dispatch.h"
#include "catalogue/family_registration.h"
#include "effects/neighbourhood/class_edge.h"

#include <array>

namespace lumiran {
namespace {

using V = const ControlValues&;
using R = ProcessRect;
using dispatch::row;
using dispatch::slider;

template <typename Call>
EffectPlanner withTrans(Call call) {
    return dispatch::withTrans<Class_Edge>(call);
}
// For calls that read only ImageBits and make TransBits themselves when it
// is left unfetched (fetchTransOnCores): the source is lent, not copied.
template <typename Call>
EffectPlanner onSource(Call call) {
    return dispatch::onSourceWithOwnTrans<Class_Edge>(call);
}

template <typename T, std::size_t N>
const T& byRow(const std::array<T, N>& table, int listRow) {
    if (listRow < 0 || listRow >= static_cast<int>(N)) throw EffectError::overflow();
    return table[static_cast<std::size_t>(listRow)];
}

// "Edge Extraction 2x2" rows 上, 下, 左, 右, 左下がり, 右下がり: weights of the
// pixel, its right, lower and lower right neighbours, in units of the
// slider's weight. Each row weights the named side +1 against the other.
constexpr std::array<std::array<int, 4>, 6> Matrix4Rows{{
    {1, 1, -1, -1},
    {-1, -1, 1, 1},
    {1, -1, 1, -1},
    {-1, 1, -1, 1},
    {0, -1, 1, 0},
    {-1, 0, 0, 1},
}};

// "Prewitt Filter": the compass kernels with the centre -2, ring in
// reading order, for the rows 上, 下, 左, 右, 左上, 右上, 左下, 右下.
constexpr std::array<std::array<std::int16_t, 8>, 8> PrewittRings{{
    {1, 1, 1, 1, 1, -1, -1, -1},
    {-1, -1, -1, 1, 1, 1, 1, 1},
    {1, 1, -1, 1, -1, 1, 1, -1},
    {-1, 1, 1, -1, 1, -1, 1, 1},
    {1, 1, 1, 1, -1, 1, -1, -1},
    {1, 1, 1, -1, 1, -1, -1, 1},
    {1, -1, -1, 1, -1, 1, 1, 1},
    {-1, -1, 1, -1, 1, 1, 1, 1},
}};

// "Laplacian Filter": the centre weight of "ﾀｲﾌﾟ 1" (four neighbours) and
// "ﾀｲﾌﾟ 2" (eight).
constexpr std::array<std::int16_t, 2> LaplacianCentres{-4, -8};

} // namespace

void registerEdgeEffects(EffectDispatch& d) {
    // "Differential Filter" and "Outlining" make the same call.
    for (const int code : {29, 33}) {
        d.add(DialogKind::Monotone, code, withTrans([](Class_Edge& e, V v, R r) {
                  e.DifferentalFilter(row(v.color), r.left, r.top, r.right, r.bottom);
              }));
    }
    d.add(DialogKind::Negative, 22, onSource([](Class_Edge& e, V v, R r) {
              const auto& w = byRow(Matrix4Rows, v.color);
              const int weight = slider(v, 1);
              e.Edge_Matrix4(wrap16(w[0] * weight), wrap16(w[1] * weight), wrap16(w[2] * weight),
                             wrap16(w[3] * weight), r.left, r.top, r.right, r.bottom);
          }));
    d.add(DialogKind::Negative, 23, withTrans([](Class_Edge& e, V v, R r) {
              e.Edge_Extraction(row(v.color), r.left, r.top, r.right, r.bottom, slider(v, 1));
          }));
    d.add(DialogKind::Emboss, 66, withTrans([](Class_Edge& e, V v, R r) {
              e.Edge_Sobel(row(v.eType), r.left, r.top, r.right, r.bottom, row(v.color));
          }));
    d.add(DialogKind::Monotone, 31, withTrans([](Class_Edge& e, V v, R r) {
              const auto& w = byRow(PrewittRings, v.color);
              e.Edge_Matrix9(-2, w[0], w[1], w[2], w[3], w[4], w[5], w[6], w[7], r.left, r.top,
                             r.right, r.bottom);
          }));
    d.add(DialogKind::Negative, 24, onSource([](Class_Edge& e, V v, R r) {
              e.Edge_Robarts(row(v.color), slider(v, 1), r.left, r.top, r.right, r.bottom);
          }));
    d.add(DialogKind::Monotone, 32, withTrans([](Class_Edge& e, V v, R r) {
              const std::int16_t c = row(v.color);
              e.Edge_Matrix9(byRow(LaplacianCentres, v.color), c, 1, c, 1, 1, c, 1, c, r.left,
                             r.top, r.right, r.bottom);
          }));
    d.add(DialogKind::Sepia, 21, withTrans([](Class_Edge& e, V v, R r) {
              e.Edge_Kirsch(slider(v, 1), r.left, r.top, r.right, r.bottom);
          }));
}

} // namespace lumiran
