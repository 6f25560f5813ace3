#pragma once

namespace zentable {

// row -= f * prow over `count` entries. The rows never overlap, and the body
// is written four entries at a time: at -O2 the compiler packs such groups
// into vector instructions, where a loop of unknown length stays scalar. Each
// entry gets the same one product and one difference either way.
inline void subtract_multiple(double* __restrict row, const double* __restrict prow, double f,
                              long count) {
    long k = 0;
    for (; k + 4 <= count; k += 4) {
        row[k] -= prow[k] * f;
        row[k + 1] -= prow[k + 1] * f;
        row[k + 2] -= prow[k + 2] * f;
        row[k + 3] -= prow[k + 3] * f;
    }
    for (; k < count; ++k)
        row[k] -= prow[k] * f;
}

}  // namespace zentable
