// The engine of morphology for images of whole bytes: it carries rows of the source through the planes of a
// plan and combines them into rows of the destination, strip by strip and a few rows at a time, so that what
// is in use stays in the nearer caches. The interior of a small mask goes from the source to the destination
// at once. Opening, closing and their relatives can run it twice over one spec.
//
// M. van Herk, "A fast algorithm for local minimum and maximum filters on rectangular and octagonal kernels",
// Pattern Recognition Letters 13 (1992); J. Gil and M. Werman, "Computing 2-D min, median, and max filters",
// IEEE Transactions on Pattern Analysis and Machine Intelligence 15 (1993).
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "core/area.h"
#include "core/border.h"
#include "core/image.h"
#include "core/simd.h"
#include "morph/combine.h"
#include "morph/intake.h"
#include "morph/plan.h"
#include "morph/spec.h"

namespace okpcv::morph {

// The sizes of the engine's scratch memory, which depend on the mask's size but not on its elements.
struct Sizes {
    int32_t maskWidth, maskHeight;
    int32_t channels;
    int64_t elementBytes;
    int64_t blockRows;   // rows of output at a time
    int64_t stripWidth;  // columns of output at a time
    Window window;

    Sizes(int32_t maskW, int32_t maskH, int64_t roiWidth, int channelCount, int64_t bytesOfElement)
        : maskWidth(maskW), maskHeight(maskH), channels(channelCount), elementBytes(bytesOfElement) {
        const int64_t pixelBytes = channels * elementBytes;
        const int64_t apron = maskWidth - 1, kept = maskHeight - 1;
        // At least as wide as the mask, so that what a border reflects lies in the strip.
        const int64_t widest =
            std::max({kRowBytes / pixelBytes - apron, kLeastStripBytes / pixelBytes, int64_t{maskWidth}});
        stripWidth = std::min(roiWidth, widest);
        // An odd number of cache lines, so that a column of a plane is spread over the cache's sets.
        const int64_t rowBytes =
            (roundUp((stripWidth + apron) * pixelBytes, kLineBytes) / kLineBytes | 1) * kLineBytes;
        // A plane stays in the nearest cache where it can; but as rows that are kept have to be moved, there
        // should be more others, up to where that hardly matters.
        blockRows = roundUp(
            std::clamp<int64_t>(kPlaneBytes / rowBytes - kept, std::clamp<int64_t>(2 * kept, 8, 64), 64), 4);
        window = {kept + blockRows, rowBytes / elementBytes};
    }

    int64_t terms() const { return 2 * int64_t{maskWidth} * maskHeight; }

  private:
    static constexpr int64_t kRowBytes = 4096;
    static constexpr int64_t kLeastStripBytes = 512;
    static constexpr int64_t kPlaneBytes = 32 * 1024;
    static constexpr int64_t kLineBytes = 64;
};

// The scratch memory.
struct Scratch {
    Term* terms;
    int64_t* weights;
    void* planes;
    void* borderRows;  // source rows around the region's edges, outside rows included
};

inline Scratch layOutScratch(Area& area, const Sizes& sizes) {
    Scratch scratch;
    const int64_t windowBytes = sizes.window.planeElements() * sizes.elementBytes;
    scratch.planes = area.take<char>(Plan::kMaxPlanes * windowBytes, 64);
    scratch.borderRows = area.take<char>(windowBytes, 64);
    scratch.terms = area.take<Term>(sizes.terms());
    scratch.weights = area.take<int64_t>(int64_t{sizes.maskWidth} + 1);
    return scratch;
}

// One operation: the arguments of an export, checked. `value` holds four elements, of which those of the
// channels count.
template <class Pixel>
struct Job {
    Size size;
    Image<const Pixel> src;
    Image<Pixel> dst;
    int channels;
    Border border;
    const Pixel* value;
};

template <class P, class Watch>
class Engine {
  public:
    using Pixel = typename P::Pixel;
    using Cell = typename P::Cell;

    Engine(const Job<Pixel>& job, const Spec& spec, void* buffer)
        : job_(job),
          spec_(spec),
          header_(spec.header()),
          sizes_(header_.maskWidth, header_.maskHeight, header_.roiWidth, job.channels, sizeof(Cell)),
          scratch_(placeScratch(buffer, sizes_)),
          plan_(spec, job.channels, firstRun(job.channels), longestDoubled(job.channels), sizes_.window,
                scratch_.terms, scratch_.weights) {
        for (int c = 0; c < 4; ++c) {
            const Vec<Pixel> value = broadcast(job.value[c]);
            if (job.border.kind() == BorderConstant) watch_.see(value);
            value_[c] = firstLane(P::toCells(value));
        }
    }

    // False as soon as a pixel turns up that needs other cells; some of the destination is then written.
    bool run() {
        if constexpr (std::is_same_v<Pixel, Cell>) {
            const Interior interior = findInterior();
            if (interior.vectors >= interior.leastVectors) return runAround(interior);
        }
        if (!spec_.isRectangle() || job_.size.width <= sizes_.stripWidth)
            return runStrips(0, job_.size.height);
        // As rectangles keep no rows, the strips can take turns, which follows the image in memory.
        const int64_t together = kInteriorRows + 4 * int64_t{header_.maskHeight};
        for (int64_t y = 0; y < job_.size.height; y += together) {
            if (!runStrips(y, std::min(y + together, job_.size.height))) return false;
        }
        return true;
    }

  private:
    // Images up to this size may be in a near cache, where fetching the next rows costs more than it saves.
    static constexpr int64_t kNearBytes = int64_t{4} << 20;
    // Rows of output that a rectangle makes at a time.
    static constexpr int64_t kFewRows = 8;
    // So many columns beside the region are made column by column, more row by row.
    static constexpr int64_t kFewColumns = 8;
    // Vectors of a row of a small mask's interior that pay for what has to be done around it; more for the
    // longer runs of rectangles.
    static constexpr int32_t kShortRun = 3;
    static constexpr int64_t kLeastVectors = 32;
    static constexpr int64_t kLeastVectorsLong = 64;
    // Of slanted lines, so few rows are taken one by one, and higher ones want planes, whose rows are close.
    static constexpr int kFewSlanted = 3;
    static constexpr int32_t kLowSlanted = 8;
    // Rows of the interior between two visits of the columns beside it, which have them in a near cache. Each
    // visit takes in the rows that a mask reaches anew, so taller masks are not small.
    static constexpr int64_t kInteriorRows = 64;

    static int32_t firstRun(int channels) { return 7 * channels <= Vec<Cell>::lanes ? 8 : 4; }
    static int32_t longestDoubled(int channels) {
        return channels == 1 ? kLongestDoubled<Cell> : firstRun(channels);
    }

    static Scratch placeScratch(void* buffer, const Sizes& sizes) {
        Area area(buffer);
        return layOutScratch(area, sizes);
    }

    Cell* planeRow(int plane, int64_t row) const {
        return static_cast<Cell*>(scratch_.planes) + plane * sizes_.window.planeElements() +
               row * sizes_.window.step;
    }
    Image<Cell> planeRows(int plane, int64_t row) const {
        return {planeRow(plane, row), sizes_.window.step * int64_t{sizeof(Cell)}};
    }

    // Rows `top` to `bottom` - 1.
    bool runStrips(int64_t top, int64_t bottom) {
        if (top >= bottom) return true;
        // As many strips as it takes, all of one width.
        const int64_t strips = (job_.size.width + sizes_.stripWidth - 1) / sizes_.stripWidth;
        const int64_t strip = (job_.size.width + strips - 1) / strips;
        for (int64_t x = 0; x < job_.size.width; x += strip) {
            // The last strip overlaps the one before.
            if (!runStrip(std::min(x, job_.size.width - strip), strip, top, bottom)) return false;
        }
        return true;
    }

    // Where the pixels under a small mask are all in readable memory, so that they are taken from there:
    // output columns from x on, in whole vectors, and rows `top` to `bottom` - 1.
    struct Interior {
        enum class Kind { Rectangle, Cross, Slanted, Terms } kind = Kind::Rectangle;
        Spec::Place block{};  // what of the mask counts
        Spec::Cross cross{};  // the runs of a cross
        int64_t leastVectors = kLeastVectors;
        int64_t beyond = 0;  // vectors of the source that are read beyond those that are written
        int64_t x = 0, vectors = 0, top = 0, bottom = 0;

        bool combinesTerms() const { return kind == Kind::Slanted || kind == Kind::Terms; }
    };
    Interior findInterior() const {
        using Kind = typename Interior::Kind;
        constexpr int kLanes = Vec<Pixel>::lanes;
        Interior in;
        // Strips beside it are as wide as the scratch memory only if the region is no wider than promised.
        if (job_.size.width > header_.roiWidth) return in;
        const auto grows = [&](Spec::Place block) {
            return block.height <= RowIntake<P, Watch>::kTallest &&
                   canCombineRectangle<Pixel>(block.length, job_.channels);
        };
        in.cross = spec_.findCross();
        const Spec::Place crossBlock{in.cross.column.row, in.cross.row.column, in.cross.row.length,
                                     in.cross.column.height};
        if (spec_.isRectangle()) {
            in.block = spec_.block(0);
            if (!grows(in.block)) return in;
        } else if (crossBlock.length > 1 && crossBlock.length == crossBlock.height && grows(crossBlock)) {
            in.kind = Kind::Cross;
            in.block = crossBlock;
        } else {
            in.block = {0, 0, header_.maskWidth, header_.maskHeight};
            if (plan_.planeCount() > 1 || in.block.height > kInteriorRows) return in;
            // But for a few single rows, watching the pixels costs more than is saved.
            const bool isSlanted = header_.slope != 0;
            const TermList terms = isSlanted ? plan_.rowByRow() : plan_.terms();
            const bool areFew =
                terms.count() == terms.ofHeight[0] && terms.count() <= (isSlanted ? kFewSlanted : kMostParts);
            if (!areFew && !std::is_same_v<Watch, NoWatch>) return in;
            if (isSlanted && (in.block.height > kLowSlanted || !haveRoomInSource())) return in;
            in.kind = isSlanted && !areFew ? Kind::Slanted : Kind::Terms;
        }
        const Spec::Place& block = in.block;
        if (in.kind == Kind::Rectangle && block.length > kShortRun) in.leastVectors = kLeastVectorsLong;
        in.beyond = in.combinesTerms() ? int64_t{block.length} * job_.channels / kLanes + 2
                                       : vectorsBeyond(block.length);
        const Border& border = job_.border;
        const int64_t left = header_.anchorX - block.column, above = header_.anchorY - block.row;
        const int64_t below = block.height - 1 - above;
        const int64_t readableTo = job_.size.width + (border.rightInMemory() ? header_.rightExtent : 0);
        in.x = border.leftInMemory() ? 0 : std::max<int64_t>(left, 0);
        // The columns of crosses begin where vectors do. The strip beside them watches what only runs reach.
        if (in.kind == Kind::Cross) in.x = roundUp(std::max<int64_t>(in.x, 1), kLanes);
        in.top = border.topInMemory() ? 0 : std::max<int64_t>(above, 0);
        in.bottom = job_.size.height - (border.bottomInMemory() ? 0 : std::max<int64_t>(below, 0));
        const int64_t written = (job_.size.width - in.x) * job_.channels / kLanes;
        const int64_t read = (readableTo - in.x + left) * job_.channels / kLanes;
        if (in.bottom - in.top >= kRectangleRows) in.vectors = std::min(written, read - in.beyond) / 2 * 2;
        return in;
    }
    // A small mask: its interior, and what is around it by way of the planes.
    bool runAround(const Interior& in) {
        const Spec::Place& block = in.block;
        const int64_t x = in.x, vectors = in.vectors, top = in.top, bottom = in.bottom;
        const int64_t aVector = Vec<Pixel>::lanes;
        const int64_t leftWidth = std::min(std::max(x, aVector), job_.size.width);
        // There always is a strip at the right, which watches what is read beyond the interior.
        const int64_t rightX = std::clamp<int64_t>((x * job_.channels + vectors * aVector) / job_.channels, 0,
                                                   job_.size.width - leftWidth);
        const auto from = [&](int64_t y) {
            return Image<const Pixel>{job_.src.row(y - header_.anchorY + block.row) +
                                          (x - header_.anchorX + block.column) * job_.channels,
                                      job_.src.step};
        };
        TermList terms{}, rowByRow{};
        if (in.combinesTerms()) moveToSource(terms, rowByRow);
        if (!runStrips(0, top)) return false;
        watchRows(from(top), (vectors + in.beyond) * aVector, block.height - 1, watch_);
        for (int64_t y = top; y < bottom; y += kInteriorRows) {
            const int64_t end = std::min(y + kInteriorRows, bottom);
            // At least the rows that are combined together: the block may overlap the one before.
            const int64_t begin = std::min(y, bottom - kRectangleRows);
            const Image<const Pixel> rows = from(begin);
            const auto part = [&](int32_t row, int32_t column) {
                return Image<const Pixel>{rows.row(row - block.row) + (column - block.column) * job_.channels,
                                          rows.step};
            };
            const Image<Pixel> to = destination(x, begin);
            switch (in.kind) {
                case Interior::Kind::Rectangle:
                    combineRectangle<P>(rows, to, vectors, end - begin, block.length, job_.channels,
                                        block.height, watch_);
                    break;
                case Interior::Kind::Cross:
                    combineCross<P>(part(in.cross.row.row, block.column),
                                    part(block.row, in.cross.column.column), to, vectors, end - begin,
                                    block.length, job_.channels, watch_);
                    break;
                case Interior::Kind::Slanted:
                    combineSlanted(rows, to, vectors * aVector, end - begin, terms, rowByRow);
                    break;
                case Interior::Kind::Terms:
                    WatchNewRows<Pixel, Watch> beside{{rows.row(block.height - 1), rows.step}, watch_};
                    combineRows<P>(rows, to, vectors * aVector, end - begin,
                                   header_.slope == 0 ? terms : rowByRow, beside);
                    watch_ = beside.watch;
            }
            if (x > 0 && !runStrip(0, leftWidth, y, end)) return false;
            if (!runStrip(rightX, job_.size.width - rightX, y, end)) return false;
            if (watch_.found()) return false;
        }
        return runStrips(bottom, job_.size.height);
    }
    bool haveRoomInSource() const {
        return 2 * (plan_.terms().count() + plan_.rowByRow().count()) <= sizes_.terms();
    }
    // The plan's terms, which combine pixels only, from the source's pixel under the mask's first element on.
    void moveToSource(TermList& terms, TermList& rowByRow) const {
        terms = plan_.terms(), rowByRow = plan_.rowByRow();
        Term* to = scratch_.terms + terms.count() + rowByRow.count();
        const int64_t step = job_.src.step / int64_t{sizeof(Pixel)};
        for (TermList* list : {&terms, &rowByRow}) {
            const Term* const from = list->begin;
            list->begin = to;
            for (int32_t i = 0; i < list->count(); ++i) {
                const int64_t row = from[i].offset / sizes_.window.step;
                *to++ = {from[i].offset + row * (step - sizes_.window.step), from[i].height};
            }
        }
    }

    // A strip of rows `top` to `bottom` - 1.
    bool runStrip(int64_t x, int64_t width, int64_t top, int64_t bottom) {
        // The strip's columns with those around it that the mask reaches; of these the first to the last that
        // lie in readable memory.
        const Border& border = job_.border;
        from_ = x - header_.anchorX;
        to_ = x + width + header_.rightExtent;
        readableFrom_ = border.leftInMemory() ? from_ : std::max<int64_t>(from_, 0);
        readableTo_ = border.rightInMemory() ? to_ : std::min(to_, job_.size.width);
        const int64_t readable = (readableFrom_ - from_) * job_.channels;
        RowIntake<P, Watch> intake({job_.src.row(0) + readableFrom_ * job_.channels, job_.src.step},
                                   {(readableTo_ - readableFrom_) * job_.channels, job_.size.height}, border,
                                   job_.value, job_.channels,
                                   {planeRow(0, 0) + readable, planeRows(0, 0).step},
                                   {static_cast<Pixel*>(scratch_.borderRows), planeRows(0, 0).step}, watch_);
        return spec_.isRectangle() ? runRectangle(intake, x, width, top, bottom)
                                   : runRuns(intake, x, width, top, bottom);
    }

    // A rectangle: the maxima of the columns, then those along the rows, which need no other rows.
    bool runRectangle(RowIntake<P, Watch>& intake, int64_t x, int64_t width, int64_t top, int64_t bottom) {
        const Spec::Place block = spec_.block(0);
        const int64_t fewRows = 8 * width < sizes_.stripWidth ? sizes_.blockRows : kFewRows;
        const int64_t blockRows = block.height > RowIntake<P, Watch>::kTallest ? sizes_.blockRows : fewRows;
        for (int64_t y = top; y < bottom; y += blockRows) {
            const int64_t rows = std::min(blockRows, bottom - y);
            intake.takeMaxima(y + block.row - header_.anchorY, rows, block.height);
            extendRows(0, rows);
            if (watch_.found()) return false;
            // The other planes have a few rows only, which stay in the nearest cache.
            for (int64_t i = 0; i < rows; i += fewRows) {
                const int64_t few = std::min(fewRows, rows - i);
                for (int p = 1; p < plan_.planeCount(); ++p)
                    makePlane(p, planeRows(plan_.plane(p).source, plan_.plane(p).source == 0 ? i : 0), 0,
                              few);
                combine(planeRows(0, plan_.planeCount() == 1 ? i : 0), destination(x, y + i),
                        width * job_.channels, few, plan_.terms());
            }
        }
        return true;
    }

    // Any other mask: rows come in as they are, and stay while the mask reaches them.
    bool runRuns(RowIntake<P, Watch>& intake, int64_t x, int64_t width, int64_t top, int64_t bottom) {
        const int64_t kept = header_.maskHeight - 1;
        const bool isFar = job_.src.step * job_.size.height > kNearBytes;
        for (int64_t y = top; y < bottom; y += sizes_.blockRows) {
            const int64_t rows = std::min(sizes_.blockRows, bottom - y);
            const int64_t old = y == top ? 0 : kept;
            intake.takeRows(y - header_.anchorY + old, old, kept + rows);
            extendRows(old, kept + rows);
            if (watch_.found()) return false;
            for (int p = 1; p < plan_.planeCount(); ++p)
                makePlane(p, planeRows(plan_.plane(p).source, old), old, kept + rows - old);
            const int64_t following = y - header_.anchorY + kept + rows;  // the source's row
            const auto write = [&](auto beside) {
                writeRows(destination(x, y), width * job_.channels, rows, beside);
            };
            if (isFar && following + sizes_.blockRows <= job_.size.height) {
                write(
                    FetchNextRows{{reinterpret_cast<const char*>(job_.src.row(following) + x * job_.channels),
                                   job_.src.step}});
            } else {
                write(Nothing{});
            }
            for (int p = 0; p < plan_.planeCount(); ++p) {
                if (!plan_.plane(p).inTerms) continue;
                for (int64_t i = 0; i < kept; ++i) {
                    std::memcpy(planeRow(p, i), planeRow(p, rows + i),
                                static_cast<size_t>(to_ - from_) * job_.channels * sizeof(Cell));
                }
            }
        }
        return true;
    }

    // Rows of a plane from those of its source.
    void makePlane(int p, Image<const Cell> source, int64_t first, int64_t rows) {
        const Plan::Plane& plane = plan_.plane(p);
        const int64_t runs = to_ - from_ - plane.run + 1;
        if (runs <= 0) return;
        const Image<Cell> to = planeRows(p, first);
        // The rows of planes have room for as many vectors as fill a cache line.
        if (plane.parts == 0) return combineDoubled<P>(source, to, evenVectors(runs), rows, plane.run);
        combine(source, to, runs * job_.channels, rows, plane.terms());
    }

    static int64_t evenVectors(int64_t cells) {
        constexpr int64_t kTwo = 2 * Vec<Cell>::lanes;
        return (cells + kTwo - 1) / kTwo * 2;
    }

    Image<Pixel> destination(int64_t x, int64_t y) const {
        return {job_.dst.row(y) + x * job_.channels, job_.dst.step};
    }

    template <class D>
    void combine(Image<const Cell> src, Image<D> dst, int64_t width, int64_t rows, TermList terms) {
        combineRows<P>(src, dst, width, rows, terms);
    }

    template <class Beside>
    void writeRows(Image<Pixel> dst, int64_t width, int64_t rows, Beside beside) {
        const Image<const Cell> src = planeRows(0, 0);
        if (header_.slope == 0) return combineRows<P>(src, dst, width, rows, plan_.terms(), beside);
        combineSlanted(src, dst, width, rows, plan_.terms(), plan_.rowByRow());
    }

    // Along the slope the mask is upright: a step down is a step sideways too. Of four rows together only the
    // columns that all have are done; the ends of the rows follow, as whole vectors, row by row of the mask.
    template <class S>
    OKPCV_INLINE void combineSlanted(Image<const S> src, Image<Pixel> dst, int64_t width, int64_t rows,
                                     TermList terms, TermList rowByRow) {
        const int64_t slope = int64_t{header_.slope} * job_.channels;
        constexpr int64_t kTogether = 4;
        const int64_t shift = (kTogether - 1) * (slope < 0 ? -slope : slope);
        const int64_t end = std::max<int64_t>(shift, Vec<Cell>::lanes);
        int64_t y = 0;
        for (; y + kTogether <= rows && width >= 2 * end; y += kTogether) {
            const int64_t begin = slope < 0 ? shift : 0;
            combine({src.row(y) + begin, src.step + slope * int64_t{sizeof(S)}},
                    Image<Pixel>{dst.row(y) + begin, dst.step + slope * int64_t{sizeof(Pixel)}},
                    width - shift, kTogether, terms);
            combine({src.row(y), src.step}, Image<Pixel>{dst.row(y), dst.step}, end, kTogether, rowByRow);
            combine({src.row(y) + width - end, src.step}, Image<Pixel>{dst.row(y) + width - end, dst.step},
                    end, kTogether, rowByRow);
        }
        combine({src.row(y), src.step}, Image<Pixel>{dst.row(y), dst.step}, width, rows - y, rowByRow);
    }

    // Makes the columns of plane 0 that are not in readable memory, in rows `first` to `end` - 1.
    void extendRows(int64_t first, int64_t end) const {
        extendSide(from_, readableFrom_, first, end);
        extendSide(readableTo_, to_, first, end);
    }
    // The same for columns `from` to `to` - 1.
    void extendSide(int64_t from, int64_t to, int64_t first, int64_t end) const {
        if (from >= to || first >= end) return;
        switch (job_.channels) {
            case 1:
                return extendSide<1>(from, to, first, end);
            case 3:
                return extendSide<3>(from, to, first, end);
            default:
                return extendSide<4>(from, to, first, end);
        }
    }
    template <int kChannels>
    OKPCV_INLINE void extendSide(int64_t from, int64_t to, int64_t first, int64_t end) const {
        if (to - from <= kFewColumns) {
            for (int64_t x = from; x < to; ++x) extendColumn<kChannels>(x, first, end);
            return;
        }
        for (int64_t i = first; i < end; ++i) {
            Cell* const columnZero = planeRow(0, i) - from_ * kChannels;
            Cell* const out = columnZero + from * kChannels;
            if (job_.border.kind() == BorderMirror) {
                produceColumns<kChannels>(out, columnZero, job_.size.width, from, to, job_.border, value_);
            } else {
                const int64_t source = job_.border.column(from, job_.size.width);
                repeat<kChannels>(out, source == Border::kValue ? value_ : columnZero + source * kChannels,
                                  to - from);
            }
        }
    }
    template <int kChannels>
    static OKPCV_INLINE void repeat(Cell* to, const Cell* pixel, int64_t count) {
        Cell value[kChannels];
        for (int c = 0; c < kChannels; ++c) value[c] = pixel[c];
        for (int64_t x = 0; x < count; ++x) {
            for (int c = 0; c < kChannels; ++c) to[x * kChannels + c] = value[c];
        }
    }
    // A column, without anything to be found out row by row.
    template <int kChannels>
    OKPCV_INLINE void extendColumn(int64_t x, int64_t first, int64_t end) const {
        const int64_t source = job_.border.column(x, job_.size.width);
        Cell* to = planeRow(0, first) + (x - from_) * kChannels;
        const bool isValue = source == Border::kValue;
        const Cell* pixel = isValue ? value_ : to + (source - x) * kChannels;
        const int64_t step = isValue ? 0 : sizes_.window.step;
        for (int64_t i = first; i < end; ++i, to += sizes_.window.step, pixel += step)
            std::memcpy(to, pixel, sizeof(Cell) * kChannels);
    }

    Job<Pixel> job_;
    const Spec& spec_;
    const SpecHeader& header_;
    Sizes sizes_;
    Scratch scratch_;
    Plan plan_;
    Watch watch_;
    Cell value_[4];
    int64_t from_ = 0, to_ = 0, readableFrom_ = 0, readableTo_ = 0;
};

// Runs the operation on images whose rows are whole bytes.
template <class Op, class Pixel>
void applyMask(const Job<Pixel>& job, const Spec& spec, void* buffer) {
    if (spec.isIdentity()) {
        const auto rowBytes = static_cast<size_t>(job.size.width) * job.channels * sizeof(Pixel);
        for (int64_t y = 0; y < job.size.height; ++y) std::memcpy(job.dst.row(y), job.src.row(y), rowBytes);
    } else if constexpr (kIsFloat<Pixel>) {
        if (Engine<PlainFloats<Op>, FloatWatch>(job, spec, buffer).run()) return;
        Engine<OrderedFloats<Op>, NoWatch>(job, spec, buffer).run();
    } else {
        Engine<Integers<Pixel, Op>, NoWatch>(job, spec, buffer).run();
    }
}

}  // namespace okpcv::morph
