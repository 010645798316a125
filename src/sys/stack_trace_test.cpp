#include "sys/stack_trace.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <boost/exception/diagnostic_information.hpp>
#include <boost/exception/get_error_info.hpp>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "sys/throw.h"

namespace lumo {
namespace diag {
namespace {

// Three frames that survive optimisation: not inlined, no tail calls.
std::atomic<int> sideEffect{0};
__attribute__((noinline)) void throwingLevelThree(int code) {
  ++sideEffect;
  LUMO_THROW(std::invalid_argument("level three failed: " + std::to_string(code)));
}
__attribute__((noinline)) void throwingLevelTwo(int code) {
  throwingLevelThree(code + 1);
  ++sideEffect;
}
__attribute__((noinline)) void throwingLevelOne(int code) {
  throwingLevelTwo(code + 1);
  ++sideEffect;
}

StackTrace traceOf(const boost::exception& e) {
  const StackTrace* trace = boost::get_error_info<StackTraceInfo>(e);
  return trace ? *trace : StackTrace();
}

// Index of the first frame mentioning `what`, or -1.
int frameIndex(const StackTrace& trace, const std::string& what) {
  const std::vector<std::string>& frames = trace.frames();
  for (std::size_t i = 0; i < frames.size(); ++i) {
    if (frames[i].find(what) != std::string::npos) return static_cast<int>(i);
  }
  return -1;
}

TEST(StackTrace, HoldsThrowingFramesInnermostFirst) {
  try {
    throwingLevelOne(1);
    FAIL() << "no exception";
  } catch (const std::invalid_argument& e) {
    EXPECT_STREQ("level three failed: 3", e.what());
    const auto* be = dynamic_cast<const boost::exception*>(&e);
    ASSERT_NE(nullptr, be);
    ASSERT_NE(nullptr, boost::get_error_info<StackTraceInfo>(*be));
    const StackTrace trace = *boost::get_error_info<StackTraceInfo>(*be);
    const int three = frameIndex(trace, "throwingLevelThree(int)");
    const int two = frameIndex(trace, "throwingLevelTwo(int)");
    const int one = frameIndex(trace, "throwingLevelOne(int)");
    ASSERT_EQ(0, three) << to_string(trace);
    EXPECT_LT(three, two);
    EXPECT_LT(two, one);
    // Demangled, with source file and line from the debug information, and the
    // module that holds the code.
    const std::string& top = trace.frames()[0];
    EXPECT_EQ(0u, top.find("0x")) << top;
    EXPECT_NE(std::string::npos,
              top.find(": lumo::diag::(anonymous namespace)::throwingLevelThree(int) at line "))
        << top;
    EXPECT_NE(std::string::npos, top.find("stack_trace_test.cpp in /")) << top;
    EXPECT_EQ(std::string::npos, top.find("???")) << top;
  }
}

TEST(StackTrace, TextIsEveryFrameFollowedByLineFeed) {
  const StackTrace trace;
  ASSERT_FALSE(trace.frames().empty());
  std::string expected;
  for (const std::string& f : trace.frames()) expected += f + "\n";
  EXPECT_EQ(expected, to_string(trace));
}

TEST(StackTrace, UnknownPartsPrintAsQuestionMarks) {
  const void* address = reinterpret_cast<const void*>(0x1234);
  EXPECT_EQ("0x1234:  at line ??? in ??? in /lib/libx.so",
            formatFrame(address, "", 0, "", "/lib/libx.so"));
  EXPECT_EQ("0x1234: f() at line 12 in a.cpp in ???", formatFrame(address, "f()", 12, "a.cpp", ""));
}

TEST(StackTrace, DiagnosticInformationHoldsThrowSiteTypeWhatAndTrace) {
  try {
    throwingLevelThree(7);
    FAIL() << "no exception";
  } catch (const boost::exception& e) {
    const std::string text = boost::diagnostic_information(e);
    EXPECT_NE(std::string::npos, text.find("stack_trace_test.cpp(")) << text;
    EXPECT_NE(std::string::npos, text.find("throwingLevelThree(int)")) << text;
    EXPECT_NE(std::string::npos, text.find("Dynamic exception type: ")) << text;
    EXPECT_NE(std::string::npos, text.find("std::invalid_argument")) << text;
    EXPECT_NE(std::string::npos, text.find("std::exception::what: level three failed: 7")) << text;
    EXPECT_NE(std::string::npos, text.find(to_string(traceOf(e)))) << text;
  }
}

TEST(StackTrace, NoTraceFormCarriesThrowSiteOnly) {
  try {
    LUMO_THROW_NO_TRACE(std::runtime_error("plain"));
  } catch (const boost::exception& e) {
    EXPECT_EQ(nullptr, boost::get_error_info<StackTraceInfo>(e));
    EXPECT_NE(nullptr, boost::get_error_info<boost::throw_line>(e));
    EXPECT_NE(nullptr, boost::get_error_info<boost::throw_file>(e));
    EXPECT_NE(nullptr, boost::get_error_info<boost::throw_function>(e));
  }
}

__attribute__((noinline)) void throwFromThreadA() {
  ++sideEffect;
  LUMO_THROW(std::runtime_error("thread A"));
}
__attribute__((noinline)) void throwFromThreadB() {
  ++sideEffect;
  LUMO_THROW(std::runtime_error("thread B"));
}

TEST(StackTrace, TwoThreadsThrowingAtOnceGetWholeTraces) {
  std::vector<StackTrace> traces(2, StackTrace());
  auto run = [&traces](int slot, void (*f)()) {
    for (int i = 0; i < 5; ++i) {
      try {
        f();
      } catch (const boost::exception& e) {
        traces[slot] = traceOf(e);
      }
    }
  };
  std::thread a(run, 0, &throwFromThreadA);
  std::thread b(run, 1, &throwFromThreadB);
  a.join();
  b.join();
  EXPECT_EQ(0, frameIndex(traces[0], "throwFromThreadA()")) << to_string(traces[0]);
  EXPECT_EQ(-1, frameIndex(traces[0], "throwFromThreadB()"));
  EXPECT_EQ(0, frameIndex(traces[1], "throwFromThreadB()")) << to_string(traces[1]);
  EXPECT_EQ(-1, frameIndex(traces[1], "throwFromThreadA()"));
  // Whole: down to the thread's entry, the lambda of this test.
  EXPECT_NE(-1, frameIndex(traces[0], "TwoThreadsThrowingAtOnceGetWholeTraces_Test::TestBody()"))
      << to_string(traces[0]);
  EXPECT_NE(-1, frameIndex(traces[1], "TwoThreadsThrowingAtOnceGetWholeTraces_Test::TestBody()"))
      << to_string(traces[1]);
}

}  // namespace
}  // namespace diag
}  // namespace lumo
