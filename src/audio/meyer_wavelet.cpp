// SPDX-License-Identifier: MIT
#include "audio/meyer_wavelet.h"

namespace {

constexpr std::array<float, meyer_taps> rounded(const std::array<double, meyer_taps>& taps) {
    std::array<float, meyer_taps> result{};
    for (std::size_t n = 0; n < meyer_taps; ++n)
        result[n] = static_cast<float>(taps[n]);
    return result;
}

// One constant per filter: compilers limit how much they compute for a single one.
template <int Filter>
constexpr std::array<float, meyer_taps> taps_of = rounded(meyer_filter(Filter));

}  // namespace

constinit const MeyerTable meyer_wavelet_filters = {taps_of<0>, taps_of<1>, taps_of<2>, taps_of<3>,
                                                    taps_of<4>, taps_of<5>, taps_of<6>};
