// The comparison harness: a case measures an operation of the library, beside it the same operation of
// another library (its peer) and a memcpy that moves as many bytes, in interleaved rounds on the same thread.
//
// How bytes are counted. A case declares, in bytes per pixel, what the operation cannot avoid moving:
//   reads    sources, each byte once, however often a window looks at it;
//   writes   destinations that are not read before: the store fetches the cache line first, so they count
//            twice;
//   updates  images read and written in place: they count twice, once for each direction.
// So bytes moved = reads + 2 * (writes + updates). A memcpy of N bytes moves 3 N by the same count, so the
// memcpy beside a case copies a third of what the case moves; both rates are bytes moved per second. Stores
// that stream past the caches (in a kernel, or in the C library's memcpy of large blocks) fetch nothing and
// are still counted so: that is a gain of whoever uses them, and shows as one.
#ifndef OKPCV_BENCH_COMPARE_H
#define OKPCV_BENCH_COMPARE_H

#include <functional>
#include <span>
#include <string>
#include <vector>

#include "okpcv.h"
#include "support/image.h"

// A call of the peer, made of any statements, or nothing in a build without OpenCV.
#ifdef OKPCV_BENCH_OPENCV
#define OPENCV(...)         \
    ([=] {                  \
        __VA_ARGS__;        \
        return okpStatusOk; \
    })
#else
#define OPENCV(...) nullptr
#endif

// Adds an export to the family under its own name: BENCH(shape, okpiAbsDiff_8u_C1R), where `shape` makes the
// setup from the function. A list of sizes may follow.
#define BENCH(shape, function, ...) family.add(#function, shape(function) __VA_OPT__(, ) __VA_ARGS__)

// The same at sizes from 64x64 to 8192x8192, by a setup: GROW(okpiAbsDiff_8u_C1R, shape(okpiAbsDiff_8u_C1R)).
#define GROW(function, ...) family.add(#function "/growth", __VA_ARGS__, bench::kGrowth)

namespace bench {

using Call = std::function<okpStatus()>;

// Vector operations that an operation cannot do without, on vectors of 16 bytes: so many for each `elements`
// elements of the destination.
struct Work {
    double elements = 1;
    double multiplications = 0;
    double additions = 0;  // of floats
    double others = 0;     // additions of integers, shifts, moves of lanes
    double loads = 0, stores = 0;

    Work operator+(const Work& other) const;  // on the same elements
    // At least, on a core that starts six operations in a cycle: four of vectors, of which two can be
    // multiplications and two additions of floats, and among the rest two loads and one store.
    double cyclesPerElement() const;
};

struct Case {
    double reads = 0, writes = 0, updates = 0;  // bytes per pixel, see above; all 0: no memcpy beside it
    double pixels = 0;                          // work of one call; 0 stands for width * height
    double cycles = 0;                          // per pixel, at least; 0: not worked out
    Call ours = {};
    const char* peerName = "";
    Call peer = {};
    std::function<std::string()> agree = {};  // after one call of each: empty, or how the results differ
    // Untimed, before every call of either, for operations that use up their input.
    std::function<void()> before = {}, beforePeer = {};
};

using Setup = std::function<Case(RoiSize)>;

inline constexpr RoiSize kSizes[] = {{640, 480}, {1920, 1080}, {4096, 3072}};
inline constexpr RoiSize kSizesAndTiny[] = {{16, 16}, {640, 480}, {1920, 1080}, {4096, 3072}};

// How an operation's time grows with the image: the sizes, and the name, of GROW.
inline constexpr RoiSize kGrowth[] = {{64, 64},     {128, 128},   {256, 256},   {512, 512},
                                      {1024, 1024}, {2048, 2048}, {4096, 4096}, {8192, 8192}};
inline constexpr char kGrowthVariant[] = "/growth";

// The cases of one family. A static object of this class in the family's file registers them.
class Family {
  public:
    Family(const char* name, void (*addCases)(Family&)) : name_(name) { addCases(*this); }

    // One case for every size. The operation is the export's name, with a variant where there are several:
    // "okpiDilate_8u_C1R/k15". The images exist only while a case runs, so a setup makes them.
    void add(const std::string& operation, const Setup& setup, std::span<const RoiSize> sizes = kSizes);

  private:
    std::string name_;
};

double median(std::vector<double> values);

struct Timing {
    double median = 0, fastest = 0;  // seconds per call, over the rounds; 0: not measured
};

struct Result {
    std::string family, operation;
    RoiSize size;
    double pixels = 0, bytesMoved = 0;  // of one call
    double bound = 0;                   // seconds per call, at least; 0: not worked out
    Timing ours, peer, copy;
    int rounds = 0;
    std::string peerName;
    bool compared = false;     // the results of ours and the peer were compared
    std::string disagreement;  // how they differ
    std::string error;         // why the case failed

    std::string sizeText() const { return std::to_string(size.width) + "x" + std::to_string(size.height); }
};

struct Options {
    double budget = 840;  // seconds for all cases that run
    bool smoke = false;   // one call of everything, no figures
};

// Runs the cases that Google Benchmark's flags select, or lists them, printing a line for each.
std::vector<Result> runCases(const Options& options);

}  // namespace bench

#endif  // OKPCV_BENCH_COMPARE_H
