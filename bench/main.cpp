// The benchmark: `picturezvr_bench [--json | --tables | --smoke] [FILTER]`.

#include <benchmark/benchmark.h>

#include <iostream>
#include <map>
#include <memory>
#include <regex>
#include <stdexcept>

#include "bench/allocations.h"
#include "bench/kernel_runs.h"
#include "bench/machine.h"
#include "bench/names.h"
#include "bench/operations.h"
#include "bench/report.h"

namespace bench {
namespace {

constexpr Size kLarge{3840, 2160}, kMiddle{1000, 1000}, kSmall{256, 256}, kTiny{16, 16}, kSmoke{70, 40};
constexpr int kGrowingSides[] = {16, 64, 256, 1024, 4096, 8192};
constexpr Effort kUsual{15, 400, 0.3}, kQuick{3, 2000, 0.05}, kManyCalls{500, 2000, 0.02, Clock::wall},
    kOnce{1, 1, 0};

// The measured library; the others are the same with one instruction set only.
const std::string kLibrary = ZVR_PLUGIN;
const std::string kNarrowLibraries[] = {ZVR_PLUGIN_SSE2, ZVR_PLUGIN_AVX2};

// Processors that are busy for a larger share of the time disturb a measurement.
constexpr double kDisturbing = 0.05;

using Body = std::function<void(benchmark::State&)>;

// Measures only matching names. (The benchmark library's own filter matches names with suffixes.)
std::regex wanted(".");

int failures = 0;

void add(const std::string& name, const Body& body) {
  if (!std::regex_search(name, wanted)) return;
  benchmark::RegisterBenchmark(name.c_str(),
                               [body](benchmark::State& state) {
                                 for (auto _ : state) {
                                   const Neighbours neighbours;
                                   try {
                                     body(state);
                                   } catch (const std::exception& e) {
                                     ++failures;
                                     state.SkipWithError(e.what());
                                     return;
                                   }
                                   const double busy = neighbours.busy();
                                   if (busy > kDisturbing) state.counters[kBusy] = busy * 100;
                                 }
                               })
      ->Iterations(1)
      ->UseManualTime()
      ->Unit(benchmark::kMicrosecond);
}

double megapixels(size_t items, double seconds) { return static_cast<double>(items) / seconds / 1e6; }

// Measures the second of two calls: the first one did the lookups and left blocks to reuse.
HeapUse heapUseOf(const Prepared& prepared) {
  prepared.call();
  prepared.after();
  startCounting();
  prepared.call();
  const HeapUse use = stopCounting();
  prepared.after();
  return use;
}

double timePlugin(const Prepared& prepared) {
  const double seconds = timeCall(prepared.call).plugin;
  prepared.after();
  return seconds;
}

void runOperation(benchmark::State& state, const Operation& operation, Pixels pixels,
                  const std::string& library, const Size& size, const Effort& effort) {
  Stage& stage = Stage::of(pixels, library);
  const Prepared prepared = operation.prepare(stage, size);
  const HeapUse use = heapUseOf(prepared);
  PlainCopy copy(prepared.bytes);
  const Medians medians = measure(
      effort, [&] { return timePlugin(prepared); }, &copy);
  state.SetIterationTime(medians.seconds);
  state.counters[kMegapixels] = megapixels(prepared.items, medians.seconds);
  state.counters[kCopies] = medians.inCopies;
  if (operation.limit > 0)
    state.counters[kLimit] = pixels == Pixels::rgb24 ? operation.rgb24Limit : operation.limit;
  state.counters[kPeak] = static_cast<double>(use.peak) / 1024;
}

void runFixed(benchmark::State& state, const Operation& operation, Pixels pixels, const Effort& effort) {
  Stage& stage = Stage::of(pixels, kLibrary);
  const Prepared prepared = operation.prepare(stage, kTiny);
  const HeapUse use = heapUseOf(prepared);
  const int lookups = host::resolverCalls(), services = host::uses();
  prepared.call();
  const int lookedUp = host::resolverCalls() - lookups, used = host::uses() - services;
  prepared.after();
  if (lookedUp > 0) throw std::runtime_error("a call that is not the first looks up entry points");
  double hostSeconds = 0;
  const Medians whole = measure(
      effort,
      [&] {
        const CallTime time = timeCall(prepared.call);
        prepared.after();
        return time.all;
      },
      nullptr);
  const Medians own = measure(
      effort, [&] { return timePlugin(prepared); }, nullptr);
  hostSeconds = whole.seconds - own.seconds;
  state.SetIterationTime(own.seconds);
  state.counters[kNanoseconds] = own.seconds * 1e9;
  state.counters[kHostNanoseconds] = hostSeconds * 1e9;
  state.counters[kServices] = used;
  state.counters[kLookups] = lookedUp;
  state.counters[kBlocks] = use.blocks;
}

void runGrowth(benchmark::State& state, const Operation& operation, const Size& size, const Effort& effort) {
  const Prepared prepared = operation.prepare(Stage::of(Pixels::words, kLibrary), size);
  prepared.call();
  prepared.after();
  const Medians medians = measure(
      effort, [&] { return timePlugin(prepared); }, nullptr);
  state.SetIterationTime(medians.seconds);
  state.counters[kNanosecondsAPixel] = medians.seconds * 1e9 / static_cast<double>(prepared.items);
}

void runKernel(benchmark::State& state, const KernelRun& kernel, const kernels::Table& table,
               const Size& size, const Effort& effort) {
  static std::unique_ptr<Canvas> canvas;
  if (!canvas || !(canvas->size == size)) {
    canvas.reset();
    canvas = std::make_unique<Canvas>(size);
  }
  PlainCopy copy(canvas->photo.size());
  const auto once = [&] {
    const double from = now();
    runRows(kernel, table, *canvas);
    return now() - from;
  };
  once();
  const Medians medians = measure(effort, once, &copy);
  state.SetIterationTime(medians.seconds);
  state.counters[kMegapixels] = megapixels(size.pixels(), medians.seconds);
  state.counters[kCopies] = medians.inCopies;
}

// ---- Measurements ----

void addOperations(Pixels pixels, const std::string& library, const std::string& suffix,
                   const std::vector<Size>& sizes, const Effort& effort) {
  for (const Size& size : sizes) {
    for (const Operation& operation : operations()) {
      const std::string base = std::string(kOperations) + "/" + operation.name + "/" + nameOf(pixels) + "/";
      // An operation with its own size is listed among the large ones.
      if (operation.only.width > 0 && size == kMiddle) continue;
      if (operation.wordsOnly && pixels == Pixels::rgb24) continue;
      const Size own = operation.only.width > 0 && size == kLarge ? operation.only : size;
      add(base + nameOf(own) + suffix, [=, &operation](benchmark::State& state) {
        runOperation(state, operation, pixels, library, own, effort);
      });
    }
  }
}

void addFixed(Pixels pixels, const Effort& effort) {
  for (const Operation& operation : operations()) {
    if (operation.wordsOnly && pixels == Pixels::rgb24) continue;
    add(std::string(kFixed) + "/" + operation.name + "/" + nameOf(pixels) + "/" + nameOf(kTiny),
        [=, &operation](benchmark::State& state) { runFixed(state, operation, pixels, effort); });
  }
}

void addGrowth() {
  for (const int side : kGrowingSides) {
    const Size size{side, side};
    Effort effort = kQuick;
    if (side <= kSmall.width) effort.clock = Clock::wall;
    for (const Operation& operation : operations()) {
      if (!operation.grows) continue;
      add(std::string(kGrowth) + "/" + operation.name + "/" + nameOf(size),
          [=, &operation](benchmark::State& state) { runGrowth(state, operation, size, effort); });
    }
  }
}

void addKernels(const std::vector<Size>& sizes, const Effort& effort) {
  const kernels::Tables tables = kernels::supported();
  for (const Size& size : sizes) {
    for (const KernelRun& kernel : kernelRuns()) {
      for (int i = 0; i < tables.count; ++i) {
        const kernels::Table* table = tables.table[i];
        add(std::string(kKernels) + "/" + kernel.name + "/" + table->name + "/" + nameOf(size),
            [=, &kernel](benchmark::State& state) { runKernel(state, kernel, *table, size, effort); });
      }
    }
  }
}

// With each instruction set that is narrower than this processor's best.
void addNarrowOperations(const Size& size, const Effort& effort) {
  const kernels::Tables tables = kernels::supported();
  for (int i = 0; i < tables.count - 1; ++i) {
    addOperations(Pixels::words, kNarrowLibraries[i], std::string("/") + tables.table[i]->name, {size},
                  effort);
  }
}

// Runs everything once on small pictures, for the tests: checks that it runs and that results are right.
void addSmoke() {
  for (const Pixels pixels : {Pixels::words, Pixels::rows, Pixels::rgb24}) {
    addOperations(pixels, kLibrary, "", {kSmoke}, kOnce);
    addFixed(pixels, kOnce);
  }
  addNarrowOperations(kSmoke, kOnce);
  addKernels({kSmoke}, kOnce);
}

void addAll() {
  addOperations(Pixels::words, kLibrary, "", {kLarge, kMiddle}, kUsual);
  addFixed(Pixels::words, kManyCalls);
  addGrowth();
  addOperations(Pixels::rows, kLibrary, "", {kLarge}, kUsual);
  addOperations(Pixels::rgb24, kLibrary, "", {kLarge, kMiddle}, kUsual);
  addFixed(Pixels::rgb24, kManyCalls);
  addNarrowOperations(kLarge, kUsual);
  addKernels({kLarge, kMiddle, kSmall}, kQuick);
}

struct Arguments {
  bool json = false, tablesOnly = false, smoke = false;
  std::string filter = ".";
};

// Throws std::invalid_argument.
Arguments parse(int argc, char** argv) {
  Arguments arguments;
  const std::map<std::string, bool*> options = {
      {"--json", &arguments.json}, {"--tables", &arguments.tablesOnly}, {"--smoke", &arguments.smoke}};
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    const auto option = options.find(argument);
    if (option != options.end()) {
      *option->second = true;
    } else if (argument.rfind("-", 0) == 0) {
      throw std::invalid_argument("Unknown option " + argument + "; there are --json, --tables and --smoke.");
    } else {
      arguments.filter = argument;
    }
  }
  return arguments;
}

int run(const Arguments& arguments, char* program) {
  steady();
  wanted = std::regex(arguments.filter);
  if (arguments.smoke) {
    addSmoke();
  } else {
    addAll();
  }
  benchmark::AddCustomContext("machine", machineName());
  benchmark::AddCustomContext("compiler", compilerName());
  int count = 1;
  benchmark::Initialize(&count, &program);
  benchmark::JSONReporter json;
  Report report(arguments.tablesOnly ? Report::Style::tablesOnly : Report::Style::lines);
  benchmark::BenchmarkReporter* chosen = &report;
  if (arguments.json) chosen = &json;
  if (benchmark::RunSpecifiedBenchmarks(chosen) > 0) return failures > 0 ? 1 : 0;
  std::cerr << "No measurement matches \"" << arguments.filter << "\".\n";
  return 1;
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) try {
  return bench::run(bench::parse(argc, argv), argv[0]);
} catch (const std::regex_error&) {
  std::cerr << "The filter is not a regular expression.\n";
  return 2;
} catch (const std::invalid_argument& e) {
  std::cerr << e.what() << '\n';
  return 2;
}
