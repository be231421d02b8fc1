// The groups of measurements, the first parts of their names, and the values measured in them.
#pragma once

namespace bench {

constexpr const char kOperations[] = "operation";  // through the registered function
constexpr const char kFixed[] = "fixed";           // cost of a call on a tiny picture
constexpr const char kGrowth[] = "growth";         // over sizes
constexpr const char kKernels[] = "kernel";        // one kernel, by instruction set

constexpr const char kMegapixels[] = "MP/s";     // million pixels (or samples) per second
constexpr const char kCopies[] = "copies";       // time in plain copies (of as many words, for RGB24)
constexpr const char kLimit[] = "limit";         // the least that memory allows, in the same unit
constexpr const char kBusy[] = "others busy %";  // if the other processors were
constexpr const char kPeak[] = "KiB";            // peak heap memory of a call, without pictures
constexpr const char kBlocks[] = "blocks";       // allocations of a call
constexpr const char kNanoseconds[] = "ns";      // per call, without the host's services
constexpr const char kHostNanoseconds[] = "host ns";
constexpr const char kServices[] = "services";  // host services that a call uses
constexpr const char kLookups[] = "lookups";    // lookups of host entry points after the first call
constexpr const char kNanosecondsAPixel[] = "ns/pixel";

}  // namespace bench
