#include "effects/neighbourhood/rank_rows_impl.h"

namespace lumiran::neighbourhood {

RankKernel partialSortKernel5(int rank) {
    return rankKernels<2, true>[static_cast<std::size_t>(rank)];
}
RankKernel sortedKernel5(int rank) {
    return rankKernels<2, false>[static_cast<std::size_t>(rank)];
}

} // namespace lumiran::neighbourhood
