#include "logging/logger_settings.h"

#include <gtest/gtest.h>

#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <sstream>
#include <stdexcept>

#include "logging/console_sinks.h"

namespace lumo {
namespace logging {
namespace {

using boost::property_tree::ptree;

ptree parseXml(const std::string& text) {
  std::istringstream in(text);
  ptree document;
  boost::property_tree::read_xml(in, document);
  return document;
}

class LoggerSettingsTest : public ::testing::Test {
 protected:
  LoggerSettingsTest() : settings_(&consoleLock_) {}

  void parse(const std::string& body) {
    LoggerSettings::Impl::parse_configuration(
        settings_, parseXml("<lumo-logconf>" + body + "</lumo-logconf>"));
  }

  // The text of the failure of parsing `body`.
  std::string parseError(const std::string& body) {
    try {
      parse(body);
    } catch (const std::exception& e) {
      return e.what();
    }
    return "no error";
  }

  std::mutex consoleLock_;
  LoggerSettings settings_;
};

const char kTwoSinks[] =
    "<sink name='out' class='lumo.logging.StdOutSink'/>"
    "<sink name='err' class='lumo.logging.StdErrSink' level='ERROR'/>"
    "<sink name='null' class='lumo.logging.NullSink'/>";

TEST_F(LoggerSettingsTest, BuiltInDocumentGivesOneConsoleSinkAtInfo) {
  LoggerSettings::Impl::parse_configuration(settings_, parseXml(kBuiltInConfiguration));
  EXPECT_EQ(131u, std::string(kBuiltInConfiguration).size());
  EXPECT_EQ(Level::INFO, settings_.rootLevel);
  ASSERT_EQ(1u, settings_.rootSinks.size());
  EXPECT_NE(nullptr, dynamic_cast<impl::ConsoleSink*>(settings_.rootSinks[0].sink.get()));
  EXPECT_EQ(Level::TRACE, settings_.rootSinks[0].level);
  const LoggerConfig config = settings_.lookup("lumo.io.kora.OxaReader");
  EXPECT_EQ("lumo.io.kora.OxaReader", config.name);
  EXPECT_EQ(Level::INFO, config.level);
  EXPECT_EQ(1u, config.sinks.size());
}

TEST_F(LoggerSettingsTest, PrefixAtDotDecidesLevelAndSinks) {
  parse(std::string(kTwoSinks) +
        "<root level='INFO'><sink ref='out'/></root>"
        "<logger name='a' level='TRACE'><sink ref='err'/></logger>");
  const LoggerConfig ab = settings_.lookup("a.b");
  // The sink of `a` refuses anything below ERROR, which raises the threshold.
  EXPECT_EQ(Level::ERROR, ab.level);
  ASSERT_EQ(1u, ab.sinks.size());
  EXPECT_EQ(settings_.loggers.at("a").sinks[0].sink, ab.sinks[0].sink);
  const LoggerConfig other = settings_.lookup("ab");
  EXPECT_EQ(Level::INFO, other.level);
  ASSERT_EQ(1u, other.sinks.size());
  EXPECT_EQ(settings_.rootSinks[0].sink, other.sinks[0].sink);
}

TEST_F(LoggerSettingsTest, LoggerWithoutLevelTakesRootLevelNotAncestors) {
  parse(std::string(kTwoSinks) +
        "<root level='INFO'><sink ref='out'/></root>"
        "<logger name='a' level='TRACE'/>"
        "<logger name='a.b'/>");
  EXPECT_EQ(Level::TRACE, settings_.lookup("a").level);
  EXPECT_EQ(Level::INFO, settings_.lookup("a.b").level);
  EXPECT_EQ(Level::INFO, settings_.lookup("a.b.c").level);
  EXPECT_EQ(1u, settings_.lookup("a.b.c").sinks.size());  // no sinks named: the root's
}

TEST_F(LoggerSettingsTest, ThresholdIsRaisedToLowestSinkThreshold) {
  parse(
      "<sink name='warn' class='lumo.logging.StdOutSink' level='WARN'/>"
      "<root level='TRACE'><sink ref='warn'/></root>");
  EXPECT_EQ(Level::WARN, settings_.lookup("x").level);
}

TEST_F(LoggerSettingsTest, NullSinkAloneSilencesLoggerAndRoot) {
  parse(std::string(kTwoSinks) +
        "<root level='DEBUG'><sink ref='null'/></root>"
        "<logger name='quiet'><sink ref='null'/></logger>"
        "<logger name='loud'><sink ref='out'/></logger>");
  EXPECT_TRUE(settings_.rootNullSink);
  EXPECT_TRUE(settings_.rootSinks.empty());
  EXPECT_EQ(Level::FATAL, settings_.lookup("any").level);
  EXPECT_TRUE(settings_.lookup("quiet.child").sinks.empty());
  EXPECT_EQ(Level::FATAL, settings_.lookup("quiet").level);
  EXPECT_EQ(Level::DEBUG, settings_.lookup("loud").level);
}

TEST_F(LoggerSettingsTest, TwoReferencesShareOneSinkObject) {
  parse(std::string(kTwoSinks) +
        "<root level='INFO'><sink ref='out'/><sink ref='err'/></root>"
        "<logger name='x'><sink ref='out'/></logger>");
  ASSERT_EQ(2u, settings_.rootSinks.size());
  EXPECT_EQ(settings_.rootSinks[0].sink, settings_.loggers.at("x").sinks[0].sink);
  EXPECT_EQ(Level::ERROR, settings_.rootSinks[1].level);
}

TEST_F(LoggerSettingsTest, SinkNamesMayHoldColonsDotsAndLeadingDigits) {
  parse(
      "<sink name='9:a.b-c_d' class='lumo.logging.StdOutSink'/>"
      "<root level='INFO'><sink ref='9:a.b-c_d'/></root>");
  EXPECT_EQ(1u, settings_.rootSinks.size());
}

TEST_F(LoggerSettingsTest, UnreferencedSinkIsNeverCreated) {
  parse(
      "<sink name='broken' class='lumo.logging.ConsoleSink'><layout class='nonsense'/></sink>"
      "<sink name='out' class='lumo.logging.StdOutSink'/>"
      "<root level='INFO'><sink ref='out'/></root>");
  EXPECT_EQ(1u, settings_.rootSinks.size());
  EXPECT_EQ("<layout> element with unknown class attribute: 'nonsense'",
            parseError("<sink name='broken' class='lumo.logging.ConsoleSink'>"
                       "<layout class='nonsense'/></sink>"
                       "<root level='INFO'><sink ref='broken'/></root>"));
}

TEST_F(LoggerSettingsTest, OrderErrors) {
  EXPECT_EQ("<root> element before <sink> element",
            parseError(std::string(kTwoSinks) + "<root level='INFO'><sink ref='out'/></root>" +
                       "<sink name='late' class='lumo.logging.StdOutSink'/>"));
  // A <logger> needs a <root> before it, so the <root> check answers first.
  EXPECT_EQ("<root> element before <sink> element",
            parseError(std::string(kTwoSinks) + "<root level='INFO'><sink ref='out'/></root>" +
                       "<logger name='a'/><sink name='late' class='lumo.logging.StdOutSink'/>"));
  EXPECT_EQ("No <root> element before <logger> element",
            parseError(std::string(kTwoSinks) + "<logger name='a'/>"));
  EXPECT_EQ("No <sink> element before <root> element",
            parseError("<root level='INFO'><sink ref='out'/></root>"));
  EXPECT_EQ("Duplicate <root> element found",
            parseError(std::string(kTwoSinks) + "<root level='INFO'><sink ref='out'/></root>" +
                       "<root level='INFO'><sink ref='out'/></root>"));
  EXPECT_EQ("No <sink> element found", parseError(""));
  EXPECT_EQ("No <root> element found", parseError(kTwoSinks));
}

TEST_F(LoggerSettingsTest, ContentErrors) {
  EXPECT_EQ("Invalid sink name provided: 'a b'",
            parseError("<sink name='a b' class='lumo.logging.StdOutSink'/>"));
  EXPECT_EQ(
      "<sink> element with duplicate name 'out' found",
      parseError(std::string(kTwoSinks) + "<sink name='out' class='lumo.logging.StdOutSink'/>"));
  EXPECT_EQ("<sink> element with unknown class attribute 'lumo.logging.FileSink'",
            parseError("<sink name='f' class='lumo.logging.FileSink'/>"));
  EXPECT_EQ("Unknown <sink> reference 'nowhere'",
            parseError(std::string(kTwoSinks) + "<root level='INFO'><sink ref='nowhere'/></root>"));
  EXPECT_EQ("No <sink> reference within <root> element",
            parseError(std::string(kTwoSinks) + "<root level='INFO'/>"));
  EXPECT_EQ("<logger> element with duplicate name 'a' found",
            parseError(std::string(kTwoSinks) + "<root level='INFO'><sink ref='out'/></root>" +
                       "<logger name='a'/><logger name='a'/>"));
  EXPECT_EQ("No such node (lumo-logconf)", [this] {
    try {
      LoggerSettings::Impl::parse_configuration(settings_, parseXml("<other/>"));
    } catch (const std::exception& e) {
      return std::string(e.what());
    }
    return std::string("no error");
  }());
}

TEST_F(LoggerSettingsTest, LevelNamesAreCaseSensitive) {
  EXPECT_THROW(parse(std::string(kTwoSinks) + "<root level='info'><sink ref='out'/></root>"),
               boost::property_tree::ptree_bad_data);
  EXPECT_THROW(parse("<sink name='s' class='lumo.logging.StdOutSink' level='Warn'/>"
                     "<root level='INFO'><sink ref='s'/></root>"),
               boost::property_tree::ptree_bad_data);
}

TEST_F(LoggerSettingsTest, TryParseFallsBackToBuiltInDocument) {
  testing::internal::CaptureStderr();
  LoggerSettings::Impl::try_parse_configuration(
      settings_, parseXml("<lumo-logconf><sink name='s' class='lumo.logging.StdOutSink'/>"
                          "</lumo-logconf>"));
  const std::string report = testing::internal::GetCapturedStderr();
  EXPECT_EQ(0u, report.find(">>>>>>>>|- ERROR in [lumo-logconf:configuration_source.cpp:"))
      << report;
  EXPECT_NE(std::string::npos,
            report.find("] - XML analysis error: The resulting configuration is unusable - "
                        "Falling back to default configuration:\n"))
      << report;
  EXPECT_NE(std::string::npos, report.find("No <root> element found")) << report;
  ASSERT_EQ(1u, settings_.rootSinks.size());
  EXPECT_NE(nullptr, dynamic_cast<impl::ConsoleSink*>(settings_.rootSinks[0].sink.get()));
}

}  // namespace
}  // namespace logging
}  // namespace lumo
