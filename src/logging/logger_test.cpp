// The Logger handle, the line format and LogStream, on loggers made from a
// LoggerConfig (the process-wide table is exercised in logger_process_test).
#include "logging/logger.h"

#include <gtest/gtest.h>

#include <boost/date_time/gregorian/gregorian_types.hpp>
#include <boost/make_shared.hpp>
#include <stdexcept>
#include <vector>

#include "logging/log_stream.h"
#include "logging/logger_impl.h"

namespace lumo {
namespace logging {
namespace {

class RecordingSink : public ISink {
 public:
  void write(const LogEvent& event) override {
    if (throwOnWrite) {
      throwOnWrite = false;
      throw std::runtime_error("sink is full");
    }
    events.push_back(event);
  }
  std::vector<LogEvent> events;
  bool throwOnWrite = false;
};

Logger makeLogger(const std::string& name, Level::type level,
                  const std::vector<std::pair<boost::shared_ptr<ISink>, Level::type>>& sinks) {
  LoggerConfig config;
  config.name = name;
  config.level = level;
  for (const auto& s : sinks) {
    SinkInfo info;
    info.sink = s.first;
    info.level = s.second;
    config.sinks.push_back(info);
  }
  return Logger(boost::make_shared<Logger::Impl>(config));
}

// "2025-01-31 14:05:09.123456 [tid=0x...] " is 27 + the thread part.
std::string afterThread(const std::string& line) { return line.substr(line.find("] [") + 2); }

TEST(LogLine, ExactFormat) {
  const boost::posix_time::ptime time(
      boost::gregorian::date(2025, 1, 31),
      boost::posix_time::time_duration(14, 5, 9) + boost::posix_time::microseconds(123456));
  EXPECT_EQ("2025-01-31 14:05:09.123456 [tid=0x1a2b] [INFO ] lumo.io.kora.OxaReader: opened\n",
            formatLogLine(time, 0x1a2b, Level::INFO, "lumo.io.kora.OxaReader", "opened"));
  EXPECT_EQ("2025-01-31 14:05:09.123456 [tid=0x7] [WARN ] a: two\nlines\n",
            formatLogLine(time, 7, Level::WARN, "a", "two\nlines"));
  EXPECT_EQ("2025-01-31 14:05:09.123456 [tid=0x0] [ERROR] a: \n",
            formatLogLine(time, 0, Level::ERROR, "a", ""));
  try {
    formatLogLine(time, 0, static_cast<Level::type>(6), "a", "");
    FAIL();
  } catch (const std::runtime_error& e) {
    EXPECT_STREQ("Invalid logging level (ordinal value: 6)", e.what());
  }
}

TEST(Logger, LevelRangeIsChecked) {
  const Logger logger = makeLogger("a", Level::INFO, {});
  try {
    logger.isEnabled(static_cast<Level::type>(-1));
    FAIL();
  } catch (const std::runtime_error& e) {
    EXPECT_STREQ("Invalid logging level (ordinal value: -1)", e.what());
  }
  EXPECT_THROW(logger.log(static_cast<Level::type>(6), "x"), std::runtime_error);
}

TEST(Logger, SinkThresholdsFilterEvents) {
  auto all = boost::make_shared<RecordingSink>();
  auto errors = boost::make_shared<RecordingSink>();
  const Logger logger =
      makeLogger("lumo.test", Level::TRACE, {{all, Level::TRACE}, {errors, Level::ERROR}});
  EXPECT_TRUE(logger.isEnabled(Level::TRACE));
  logger.log(Level::INFO, "info");
  logger.log(Level::ERROR, "error");
  ASSERT_EQ(2u, all->events.size());
  ASSERT_EQ(1u, errors->events.size());
  EXPECT_EQ(Level::ERROR, errors->events[0].level);
  // One line, built once, reaches both sinks.
  EXPECT_EQ(all->events[1].text, errors->events[0].text);
  EXPECT_EQ("[ERROR] lumo.test: error\n", afterThread(errors->events[0].text));
  EXPECT_EQ("[INFO ] lumo.test: info\n", afterThread(all->events[0].text));
}

TEST(Logger, CheckedLogHonoursThresholdUncheckedDoesNot) {
  auto sink = boost::make_shared<RecordingSink>();
  const Logger logger = makeLogger("a", Level::WARN, {{sink, Level::TRACE}});
  EXPECT_FALSE(logger.isEnabled(Level::INFO));
  EXPECT_TRUE(logger.isEnabled(Level::WARN));
  logger.log(Level::INFO, "dropped");
  EXPECT_TRUE(sink->events.empty());
  logger.log(Level::INFO, std::string("delivered"));
  ASSERT_EQ(1u, sink->events.size());
}

TEST(LogStream, DisabledStatementBuildsNothing) {
  auto sink = boost::make_shared<RecordingSink>();
  const Logger logger = makeLogger("a", Level::INFO, {{sink, Level::TRACE}});
  {
    LogStream ls(logger, Level::DEBUG);
    EXPECT_FALSE(ls.enabled());
    ls << "never" << 1;
  }
  EXPECT_TRUE(sink->events.empty());
}

TEST(LogStream, DeliversOnDestructionWithDefaultFormatting) {
  auto sink = boost::make_shared<RecordingSink>();
  const Logger logger = makeLogger("a.b", Level::DEBUG, {{sink, Level::TRACE}});
  { LogStream(logger, Level::DEBUG) << "frame " << 17 << " mz " << 1.5 << ' ' << true; }
  { LogStream ls(logger, Level::INFO); }
  ASSERT_EQ(2u, sink->events.size());
  EXPECT_EQ("[DEBUG] a.b: frame 17 mz 1.5 1\n", afterThread(sink->events[0].text));
  EXPECT_EQ("[INFO ] a.b: \n", afterThread(sink->events[1].text));
}

TEST(LogStream, FailureOfDeliveryIsLoggedAtErrorNotThrown) {
  auto sink = boost::make_shared<RecordingSink>();
  sink->throwOnWrite = true;
  const Logger logger = makeLogger("a", Level::INFO, {{sink, Level::TRACE}});
  EXPECT_NO_THROW({ LogStream(logger, Level::INFO) << "lost"; });
  ASSERT_EQ(1u, sink->events.size());
  EXPECT_EQ(Level::ERROR, sink->events[0].level);
  const std::string& text = sink->events[0].text;
  EXPECT_NE(std::string::npos, text.find("[ERROR] a: ")) << text;
  EXPECT_NE(std::string::npos, text.find("std::exception::what: sink is full")) << text;
}

TEST(LogStream, NullSinkLoggerAtFatalProducesNothing) {
  const Logger logger = makeLogger("quiet", Level::FATAL, {});
  EXPECT_TRUE(logger.isEnabled(Level::FATAL));
  EXPECT_NO_THROW({ LogStream(logger, Level::FATAL) << "nothing"; });
  EXPECT_NO_THROW(logger.log(Level::FATAL, "nothing"));
}

}  // namespace
}  // namespace logging
}  // namespace lumo
