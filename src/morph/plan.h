// The plan of an operation: which passes along rows its mask needs, and what each output pixel combines.
//
// Plane 0 holds the rows as they come in. Every other plane holds the maxima of horizontal runs of one
// length, made from those of a shorter length: a run of n from runs of m in ceil(n / m) loads, the last of
// which overlaps; or from single elements by doubling in the registers. Blocks of the mask whose length no
// plane has take the longest runs that fit.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

#include "morph/combine.h"
#include "morph/spec.h"

namespace okpcv::morph {

// The rows of the planes: `rows` rows of `step` elements each per plane, plane after plane.
struct Window {
    int64_t rows, step;
    int64_t planeElements() const { return rows * step; }
};

class Plan {
  public:
    static constexpr int kMaxPlanes = 16;

    struct Plane {
        int32_t run;     // the length of its runs
        int32_t source;  // the plane that it is made from
        bool inTerms;    // whether output pixels combine its runs
        int32_t parts;   // none when it is made by doubling
        Term steps[kMostParts];

        TermList terms() const { return {steps, {parts, 0, 0}, 0}; }
    };

    // `terms` has room for two terms per element of the mask, `weights` for a number per column and one more.
    // `firstRun` is the length of runs that is cheap to make at once, `longestDoubled` that up to which they
    // are made by doubling.
    Plan(const Spec& spec, int channels, int32_t firstRun, int32_t longestDoubled, Window window, Term* terms,
         int64_t* weights)
        : channels_(channels),
          firstRun_(firstRun),
          longestDoubled_(longestDoubled),
          window_(window),
          terms_{terms, {}, 0} {
        choosePlanes(spec, weights);
        // A rectangle's plane 0 holds its vertical maxima; only its run along the rows is left.
        const bool upright = spec.isRectangle();
        const auto addAll = [&](auto listed, int32_t& count) {
            for (int32_t i = 0; i < spec.header().blockCount; ++i) {
                Spec::Place block = spec.block(i);
                if (upright) block.row = 0, block.height = 1;
                if (listed(block.height)) addTerms(block, terms, count);
            }
        };
        for (int32_t height = 1; height <= 3; ++height)
            addAll([height](int32_t h) { return h == height; }, terms_.ofHeight[height - 1]);
        addAll([](int32_t h) { return h > 3; }, terms_.taller);
        if (spec.header().slope != 0) rowByRow_ = addRowByRow(spec.header().slope, terms);
    }

    int planeCount() const { return planeCount_; }
    const Plane& plane(int i) const { return planes_[i]; }
    // What an output pixel combines, relative to the element of plane 0 under the mask's first element.
    TermList terms() const { return terms_; }
    // The same for a slanted line, row by row.
    TermList rowByRow() const { return rowByRow_; }

  private:
    // Planes that may be the mask's own lengths; the others are for steps, of 4 times the run, to the longest
    // runs, which are 65535 elements.
    static constexpr int kMostOwnPlanes = 7;

    static constexpr int64_t ceilDiv(int64_t a, int64_t b) { return (a + b - 1) / b; }

    // The plane of the longest runs that fit into one of this length.
    int planeFor(int32_t length) const {
        int best = 0;
        for (int i = 1; i < planeCount_; ++i) {
            if (planes_[i].run <= length && planes_[i].run > planes_[best].run) best = i;
        }
        return best;
    }
    int64_t partsOf(int32_t length) const { return ceilDiv(length, planes_[planeFor(length)].run); }

    // The offsets at which runs of the plane cover one of `length`, each given to visit.
    template <class Visit>
    void visitParts(int32_t length, int32_t run, Visit visit) const {
        for (int32_t at = 0;; at += run) {
            const bool last = at + run >= length;
            visit(int64_t{last ? length - run : at} * channels_);
            if (last) return;
        }
    }

    void addPlane(int32_t length) {
        Plane& plane = planes_[planeCount_];
        plane = {length, planeFor(length), false, 0, {}};
        const bool isDoubled = plane.source == 0 && length > firstRun_ && length <= longestDoubled_ &&
                               std::has_single_bit(static_cast<uint32_t>(length));
        if (!isDoubled) {
            visitParts(length, planes_[plane.source].run, [&](int64_t offset) {
                plane.steps[plane.parts++] = {offset, 1};
            });
        }
        ++planeCount_;
    }

    void addTerms(const Spec::Place& block, Term* terms, int32_t& count) {
        const int plane = planeFor(block.length);
        const int64_t base =
            plane * window_.planeElements() + block.row * window_.step + int64_t{block.column} * channels_;
        planes_[plane].inTerms = true;
        visitParts(block.length, planes_[plane].run, [&](int64_t offset) {
            terms[terms_.count()] = {base + offset, block.height};
            ++count;
        });
    }

    // Appends the terms of a slanted line, row by row, to the others.
    TermList addRowByRow(int32_t slope, Term* terms) const {
        TermList rows{terms_.begin + terms_.count(), {}, 0};
        Term* next = terms + terms_.count();
        for (const Term* t = terms_.begin; t != rows.begin; ++t) {
            for (int32_t r = 0; r < t->height; ++r)
                *next++ = {t->offset + r * (window_.step + int64_t{slope} * channels_), 1};
            rows.ofHeight[0] += t->height;
        }
        return rows;
    }

    // From short to long, the mask's own lengths where a plane saves more loads than it costs; then powers of
    // 4 times the longest of them, until the longest run has few parts.
    void choosePlanes(const Spec& spec, int64_t* weights) {
        planes_[0] = {1, 0, false, 0, {}};
        planeCount_ = 1;
        int32_t longest = 1;
        for (int32_t i = 0; i < spec.header().blockCount; ++i) {
            if (const int32_t length = spec.block(i).length; length > longest) longest = length;
        }
        if (spec.header().blockCount > 1) {
            for (int32_t length = 0; length <= longest; ++length) weights[length] = 0;
            for (int32_t i = 0; i < spec.header().blockCount; ++i) {
                const Spec::Place block = spec.block(i);
                weights[block.length] += block.height + 3;  // in quarters of a load, see combine.h
            }
            for (int32_t length = 2; length <= longest; ++length) {
                if (weights[length] != 0 && planeCount_ < kMostOwnPlanes)
                    considerPlane(length, longest, weights);
            }
        }
        while (partsOf(longest) > (planeCount_ == 1 ? firstRun_ : 4)) addPlane(nextRun(longest));
    }

    // The length of runs to make next on the way to a longer one.
    int32_t nextRun(int32_t length) const {
        const int32_t run = planes_[planeFor(length)].run;
        if (run > 1) return 4 * run;
        const int32_t doubled = static_cast<int32_t>(std::bit_floor(static_cast<uint32_t>(length - 1)));
        return std::clamp(doubled, firstRun_, longestDoubled_);
    }

    void considerPlane(int32_t length, int32_t longest, const int64_t* weights) {
        const int64_t parts = partsOf(length);
        if (parts == 1) return;
        if (parts > kMostParts) {
            // Too far from the runs that there are: go there in steps of 4.
            addPlane(nextRun(length));
            return considerPlane(length, longest, weights);
        }
        int64_t saved = 0;
        for (int32_t longer = length; longer <= longest; ++longer) {
            if (weights[longer] == 0) continue;
            const int64_t less = partsOf(longer) - ceilDiv(longer, length);
            if (less > 0) saved += weights[longer] * less;
        }
        // In quarters of a load, with the store; short runs of single elements are made in the registers.
        const int64_t cost = planeFor(length) == 0 && parts <= firstRun_ ? 12 : 4 * (parts + 2);
        if (saved > cost) addPlane(length);
    }

    int channels_;
    int32_t firstRun_, longestDoubled_;
    Window window_;
    int planeCount_ = 0;
    Plane planes_[kMaxPlanes];
    TermList terms_;
    TermList rowByRow_{};
};

}  // namespace okpcv::morph
