#include "logging/async_sink.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <map>
#include <mutex>
#include <sstream>
#include <stdexcept>

namespace lumo {
namespace logging {
namespace impl {
namespace {

using boost::property_tree::ptree;

class RecordingSink : public ISink {
 public:
  void write(const LogEvent& event) override {
    std::lock_guard<std::mutex> lock(mutex);
    if (throwOnWrite) throw std::runtime_error("target failed");
    events.push_back(event);
  }
  std::mutex mutex;
  std::vector<LogEvent> events;
  bool throwOnWrite = false;
};

// A context over a fixed table of sinks, parsed from the <sink> element text.
class TestContext : public SinkContext {
 public:
  TestContext(const std::string& xml, std::map<std::string, SinkInfo> sinks)
      : SinkContext(node_), node_(parse(xml)), sinks_(std::move(sinks)) {}

  SinkInfo get_sink_info(const std::string& name) const override {
    auto it = sinks_.find(name);
    if (it == sinks_.end()) throw std::runtime_error("Unknown <sink> reference '" + name + "'");
    return it->second;
  }

 private:
  static ptree parse(const std::string& xml) {
    std::istringstream in(xml);
    ptree document;
    boost::property_tree::read_xml(in, document);
    return document.get_child("sink");
  }
  // Declared before use by the base only through the reference; set first.
  ptree node_;
  std::map<std::string, SinkInfo> sinks_;
};

SinkInfo info(boost::shared_ptr<ISink> sink, Level::type level = Level::TRACE) {
  SinkInfo result;
  result.sink = std::move(sink);
  result.level = level;
  return result;
}

std::string constructionError(const std::string& xml, std::map<std::string, SinkInfo> sinks) {
  try {
    TestContext context(xml, std::move(sinks));
    AsyncSink sink(context);
  } catch (const std::exception& e) {
    return e.what();
  }
  return "no error";
}

TEST(AsyncSink, AllEventsArriveInOrderBeforeDestructionReturns) {
  auto target = boost::make_shared<RecordingSink>();
  {
    TestContext context("<sink name='async'><sink ref='t'/></sink>", {{"t", info(target)}});
    AsyncSink sink(context);
    for (int i = 0; i < 10000; ++i) sink.write(LogEvent{std::to_string(i) + "\n", Level::INFO});
  }
  ASSERT_EQ(10000u, target->events.size());
  for (int i = 0; i < 10000; ++i) ASSERT_EQ(std::to_string(i) + "\n", target->events[i].text);
}

TEST(AsyncSink, TargetThresholdsApply) {
  auto all = boost::make_shared<RecordingSink>();
  auto warnings = boost::make_shared<RecordingSink>();
  {
    TestContext context("<sink name='a'><sink ref='all'/><sink ref='warn'/></sink>",
                        {{"all", info(all)}, {"warn", info(warnings, Level::WARN)}});
    AsyncSink sink(context);
    sink.write(LogEvent{"info\n", Level::INFO});
    sink.write(LogEvent{"warn\n", Level::WARN});
  }
  EXPECT_EQ(2u, all->events.size());
  ASSERT_EQ(1u, warnings->events.size());
  EXPECT_EQ("warn\n", warnings->events[0].text);
}

TEST(AsyncSink, NullTargetAloneDiscardsEverything) {
  TestContext context("<sink name='a'><sink ref='null'/></sink>", {{"null", SinkInfo()}});
  AsyncSink sink(context);
  sink.write(LogEvent{"gone\n", Level::FATAL});
}

TEST(AsyncSink, ConfigurationErrors) {
  EXPECT_EQ("Invalid self-reference within <sink> reference of sink 'a'",
            constructionError("<sink name='a'><sink ref='a'/></sink>", {}));
  EXPECT_EQ("No <sink> reference within sink 'a' element",
            constructionError("<sink name='a'><layout/></sink>", {}));
  EXPECT_EQ("Unknown <sink> reference 'b'",
            constructionError("<sink name='a'><sink ref='b'/></sink>", {}));
}

TEST(AsyncSink, ThrowingTargetEndsForwardingAndLeftEventsAreCounted) {
  auto target = boost::make_shared<RecordingSink>();
  target->throwOnWrite = true;
  testing::internal::CaptureStderr();
  {
    TestContext context("<sink name='a'><sink ref='t'/></sink>", {{"t", info(target)}});
    AsyncSink sink(context);
    {
      // Hold the target so the worker blocks on its first event until all
      // five are queued.
      std::lock_guard<std::mutex> hold(target->mutex);
      for (int i = 0; i < 5; ++i) sink.write(LogEvent{"x\n", Level::INFO});
    }
  }
  const std::string report = testing::internal::GetCapturedStderr();
  EXPECT_NE(std::string::npos, report.find("] - [tid=")) << report;
  EXPECT_NE(std::string::npos, report.find("] Worker thread exception\n:\n")) << report;
  EXPECT_NE(std::string::npos, report.find("std::exception::what: target failed")) << report;
  EXPECT_NE(std::string::npos, report.find("] - There are 4 remaining events\n")) << report;
  EXPECT_TRUE(target->events.empty());
}

}  // namespace
}  // namespace impl
}  // namespace logging
}  // namespace lumo
