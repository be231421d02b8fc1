// The groups of measurements, which are the first parts of their names, and what is measured in them.
#pragma once

namespace bench {

constexpr const char kOperations[] = "operation";  // through the registered function
constexpr const char kFixed[] = "fixed";           // what a call on a tiny picture costs
constexpr const char kGrowth[] = "growth";         // over sizes
constexpr const char kKernels[] = "kernel";        // alone, by instruction set

constexpr const char kMegapixels[] = "MP/s";           // a million pixels (or samples) a second
constexpr const char kCopies[] = "copies";             // time in plain copies of the same bytes
constexpr const char kWordCopies[] = "4-byte copies";  // 3-byte pixels: in copies of as many words
constexpr const char kPeak[] = "KiB";        // most memory that a call holds besides pictures, from the heap
constexpr const char kBlocks[] = "blocks";   // that a call asks the heap for
constexpr const char kNanoseconds[] = "ns";  // a call, without the host's services
constexpr const char kHostNanoseconds[] = "host ns";
constexpr const char kServices[] = "services";  // of the host that a call uses
constexpr const char kLookups[] = "lookups";    // of host entry points, after the first call
constexpr const char kNanosecondsAPixel[] = "ns/pixel";

}  // namespace bench
