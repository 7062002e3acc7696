// A forest over the runs of an image: which of them belong to one region. Runs are numbered in raster order,
// and every parent precedes its children, so the root of a region is its first run (Wu, Otoo, Suzuki,
// "Optimizing Two-Pass Connected-Component Labeling Algorithms", 2009).
//
// Runs of two rows are joined word by word: bits say where runs begin in either row and at which pixels a
// pair of them is to be joined; counting the begins up to there gives the runs' numbers. So each pair costs a
// few operations, and the branches left to mispredict are those of finding the roots.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

namespace okpcv {

class RunForest {
  public:
    // links[i] is the number of a run before run i in the same region, or, for a root, minus the weight of
    // its region.
    explicit RunForest(int32_t* links) : links_(links) {}

    // Joins two regions; their weights are added.
    void join(int32_t a, int32_t b) {
        a = findRoot(a);
        b = findRoot(b);
        if (a == b) return;
        const int32_t first = std::min(a, b);
        const int32_t second = std::max(a, b);
        links_[first] += links_[second];
        links_[second] = first;
    }

    // Puts a number for its region in the place of every link: for roots, what number(weight, true) returns
    // in their order. Free of branches, for which runs are roots is hard to predict; so number(..., false) is
    // called for the other runs, and its result not used.
    template <class Number>
    void resolve(int32_t runs, Number number) {
        for (int32_t run = 0; run < runs; ++run) {
            const int32_t link = links_[run];
            const int32_t isRoot = link >> 31;  // all ones, or zero
            // A parent precedes its children, so it has its number already.
            const int32_t ofParent = links_[(run & isRoot) | (link & ~isRoot)];
            links_[run] = (number(-int64_t{link}, isRoot != 0) & isRoot) | (ofParent & ~isRoot);
        }
    }

  private:
    // Halves the path to the root on the way.
    int32_t findRoot(int32_t run) {
        for (int32_t parent = links_[run]; parent >= 0; parent = links_[run]) {
            const int32_t next = links_[parent];
            if (next < 0) return parent;
            links_[run] = next;
            run = next;
        }
        return run;
    }

    int32_t* links_;
};

// Joins the runs of a row with runs of the row above.
class RowJoiner {
  public:
    // The numbers of the rows' first runs.
    RowJoiner(RunForest forest, int32_t first, int32_t firstAbove)
        : forest_(forest), before_(first - 1), beforeAbove_(firstAbove - 1) {}

    // The next 64 pixels of both rows. At each of the bits `pairs`, the runs that began last are joined.
    void joinWord(uint64_t pairs, uint64_t begins, uint64_t beginsAbove) {
        for (; pairs != 0; pairs &= pairs - 1) {
            const uint64_t upTo = pairs ^ (pairs - 1);
            forest_.join(before_ + std::popcount(begins & upTo),
                         beforeAbove_ + std::popcount(beginsAbove & upTo));
        }
        before_ += std::popcount(begins);
        beforeAbove_ += std::popcount(beginsAbove);
    }

  private:
    RunForest forest_;
    int32_t before_, beforeAbove_;
};

}  // namespace okpcv
