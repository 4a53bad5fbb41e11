#include "effects/neighbourhood/rank_rows_impl.h"

namespace lumiran::neighbourhood {

RankKernel partialSortKernel3(int rank) {
    return rankKernels<1, true>[static_cast<std::size_t>(rank)];
}
RankKernel sortedKernel3(int rank) {
    return rankKernels<1, false>[static_cast<std::size_t>(rank)];
}

} // namespace lumiran::neighbourhood
