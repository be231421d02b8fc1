#include "tests/support.h"

#include <dlfcn.h>
#include <signal.h>

#include <iostream>
#include <map>

void HostTest::begin(const host::Settings& settings, const char* library) {
  plugin_.reset();
  host::start(settings);
  plugin_ = std::make_unique<host::Plugin>(library);
}

void EverySetTest::begin(const host::Settings& settings) {
  HostTest::begin(settings, ZVR_GOVERNED_PLUGIN);
  void* library = dlopen(ZVR_GOVERNED_PLUGIN, RTLD_NOW | RTLD_NOLOAD);
  governed_ = static_cast<GovernedPlugin*>(dlsym(library, "governedPlugin"));
  dlclose(library);
}

void EverySetTest::onEverySet(const std::function<void()>& body) {
  governed_->streams = !governed_->streams;
  for (int set = 0; set < governed_->sets; ++set) {
    SCOPED_TRACE("instruction set " + std::to_string(set) + (governed_->streams ? ", streaming" : ""));
    governed_->set = set;
    body();
  }
}

void expectHeld(const host::Ledger& wanted) {
  EXPECT_FALSE(host::takeException()) << "an exception is still pending";
  EXPECT_EQ(host::held(), wanted) << host::describeHeld();
}

void HostTest::TearDown() {
  expectHeld(leaves);
  plugin_.reset();
}

host::Outcome HostTest::call(const std::string& name, REALobjectStruct* receiver,
                             std::vector<host::Value> arguments) {
  for (const host::Method* method : host::findMethods(name)) {
    const host::Declaration& declaration = method->declaration;
    if (arguments.size() >= declaration.required() && arguments.size() <= declaration.parameters.size()) {
      return host::call(*method, receiver, std::move(arguments));
    }
  }
  ADD_FAILURE() << "no method " << name << " takes " << arguments.size() << " arguments";
  return {};
}

host::PictureRef HostTest::callPicture(const std::string& name, const host::PictureRef& receiver,
                                       std::vector<host::Value> arguments) {
  return std::get<host::PictureRef>(call(name, receiver.get(), std::move(arguments)).result);
}

namespace {

// ---- How failures are told ----

// For handlers of signals.
std::string runningCase;
struct sigaction handlersBefore[NSIG];

void tellSignal(int signal) {
  std::cerr << "signal " << signal << " in " << runningCase << std::endl;
  if (describeRunning) std::cerr << describeRunning() << std::endl;
  sigaction(signal, &handlersBefore[signal], nullptr);  // and on to what would have happened
  if (signal == SIGABRT) raise(signal);                 // which may have been sent
}

// Ends a case at its second failure, or its first that is fatal, wherever that is found. Prints how the first
// failures of all begin.
class FirstFailures : public testing::EmptyTestEventListener {
  void OnTestStart(const testing::TestInfo& test) override {
    runningCase = std::string(test.test_suite_name()) + '.' + test.name();
    failures_ = 0;
  }
  void OnTestPartResult(const testing::TestPartResult& result) override {
    if (!result.failed()) return;
    const char* file = result.file_name() ? result.file_name() : "?";
    if (shown_++ < 2)
      std::cerr << "FAILED " << runningCase << ' ' << file << ':' << result.line_number() << '\n'
                << std::string(result.message()).substr(0, 1500) << '\n';
    // Without a file it is an exception that gtest is about to swallow.
    const bool isLast = ++failures_ == 2 || result.fatally_failed();
    if (isLast && result.file_name()) throw testing::AssertionException(result);
  }

  int shown_ = 0, failures_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const std::map<std::string, host::Road> roads = {{"--road=cairo", host::Road::cairo},
                                                   {"--road=gdk", host::Road::gdk},
                                                   {"--road=console", host::Road::console}};
  for (int i = 1; i < argc; ++i) setRoad(roads.at(argv[i]));
  auto& listeners = testing::UnitTest::GetInstance()->listeners();
  delete listeners.Release(listeners.default_result_printer());
  listeners.Append(new FirstFailures);
  for (const int signal : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT}) {
    struct sigaction action = {};
    action.sa_handler = tellSignal;
    action.sa_flags = static_cast<int>(SA_ONSTACK);
    sigaction(signal, &action, &handlersBefore[signal]);
  }
  const int status = RUN_ALL_TESTS();
  if (testing::UnitTest::GetInstance()->test_to_run_count() > 0) return status;
  std::cerr << "no case was run\n";
  return 1;
}
