#include "logging/console_sinks.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <termios.h>
#include <unistd.h>

#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <cstdlib>
#include <sstream>
#include <stdexcept>

namespace lumo {
namespace logging {
namespace impl {
namespace {

using boost::property_tree::ptree;
typedef std::pair<unsigned short, unsigned short> Op;

ptree sinkNode(const std::string& xml) {
  std::istringstream in(xml);
  ptree document;
  boost::property_tree::read_xml(in, document);
  return document.get_child("sink");
}

LevelOpcodes opcodes(const std::string& rules) {
  boost::optional<ConsoleColorFormatter> formatter;
  read_formatter(
      sinkNode("<sink><layout class='lumo.logging.MultiColorLayout'>" + rules + "</layout></sink>"),
      formatter);
  return formatter.value().opcodes();
}

std::string layoutError(const std::string& layout) {
  try {
    boost::optional<ConsoleColorFormatter> formatter;
    read_formatter(sinkNode("<sink>" + layout + "</sink>"), formatter);
  } catch (const std::runtime_error& e) {
    return e.what();
  }
  return "no error";
}

TEST(ColorLayout, BuiltInColours) {
  const LevelOpcodes ops = opcodes("");
  EXPECT_EQ(Op(2, 0xFFF8), ops[Level::TRACE]);   // green
  EXPECT_EQ(Op(5, 0xFFF8), ops[Level::DEBUG]);   // magenta
  EXPECT_EQ(Op(3, 0xFFF8), ops[Level::INFO]);    // cyan
  EXPECT_EQ(Op(6, 0xFFF8), ops[Level::WARN]);    // yellow
  EXPECT_EQ(Op(4, 0xFFF8), ops[Level::ERROR]);   // red
  EXPECT_EQ(Op(12, 0xFFF0), ops[Level::FATAL]);  // bright red
}

TEST(ColorLayout, NoLayoutNoFormatter) {
  boost::optional<ConsoleColorFormatter> formatter;
  read_formatter(sinkNode("<sink name='x'/>"), formatter);
  EXPECT_FALSE(formatter);
}

TEST(ColorLayout, Rules) {
  EXPECT_EQ(Op(0, 0xFFFF), opcodes("<rule level='INFO' fg-color='none'/>")[Level::INFO]);
  EXPECT_EQ(Op(14, 0xFFF0), opcodes("<rule level='WARN' fg-style='bright'/>")[Level::WARN]);
  EXPECT_EQ(Op(4, 0xFFF8), opcodes("<rule level='FATAL' fg-style='none'/>")[Level::FATAL]);
  EXPECT_EQ(Op(4, 0xFFF8),
            opcodes("<rule level='FATAL' fg-color='default' fg-style='none'/>")[Level::FATAL]);
  EXPECT_EQ(Op(13, 0xFFF0),
            opcodes("<rule level='INFO' fg-color='magenta' fg-style='bright'/>")[Level::INFO]);
  // A blue background: the three background colour bits and its intensity
  // are cleared.
  EXPECT_EQ(Op(19, 0xFF88), opcodes("<rule level='INFO' bg-color='blue'/>")[Level::INFO]);
  EXPECT_EQ(Op(0xE0 | 3, 0xFF08),
            opcodes("<rule level='INFO' bg-color='yellow' bg-style='bright'/>")[Level::INFO]);
  EXPECT_EQ(Op(0x8000, 0x7FFF),
            opcodes("<rule level='DEBUG' fg-color='none' text-style='underline'/>")[Level::DEBUG]);
  // Rules of one level leave the others at their built-in colours.
  EXPECT_EQ(Op(2, 0xFFF8), opcodes("<rule level='INFO' fg-color='none'/>")[Level::TRACE]);
}

TEST(ColorLayout, Errors) {
  const std::string open = "<layout class='lumo.logging.MultiColorLayout'>";
  EXPECT_EQ("<layout> element with missing attribute 'class'", layoutError("<layout/>"));
  EXPECT_EQ("<layout> element with unknown class attribute: 'Plain'",
            layoutError("<layout class='Plain'/>"));
  EXPECT_EQ("<rule> element with missing attribute 'level'",
            layoutError(open + "<rule fg-color='red'/></layout>"));
  EXPECT_EQ("<rule> element with invalid level attribute: 'Info'",
            layoutError(open + "<rule level='Info'/></layout>"));
  EXPECT_EQ("<rule> element with duplicate level 'INFO' found",
            layoutError(open + "<rule level='INFO'/><rule level='INFO'/></layout>"));
  EXPECT_EQ("<rule> element with invalid fg-color attribute: 'pink'",
            layoutError(open + "<rule level='INFO' fg-color='pink'/></layout>"));
  EXPECT_EQ("<rule> element with invalid fg-style attribute: 'bold'",
            layoutError(open + "<rule level='INFO' fg-style='bold'/></layout>"));
  EXPECT_EQ("<rule> element with invalid bg-color attribute: 'Red'",
            layoutError(open + "<rule level='INFO' bg-color='Red'/></layout>"));
  EXPECT_EQ("<rule> element with invalid bg-style attribute: 'dim'",
            layoutError(open + "<rule level='INFO' bg-style='dim'/></layout>"));
  EXPECT_EQ("<rule> element with invalid text-style attribute: 'italic'",
            layoutError(open + "<rule level='INFO' text-style='italic'/></layout>"));
}

TEST(ColorLayout, EscapeSequences) {
  EXPECT_EQ("\x1b[36m", ConsoleColorFormatter::escapeSequence(3, 0xFFF8));
  EXPECT_EQ("\x1b[91m", ConsoleColorFormatter::escapeSequence(12, 0xFFF0));
  EXPECT_EQ("\x1b[33m", ConsoleColorFormatter::escapeSequence(6, 0xFFF8));
  EXPECT_EQ("\x1b[36;44m", ConsoleColorFormatter::escapeSequence(19, 0xFF88));
  EXPECT_EQ("\x1b[36;103m", ConsoleColorFormatter::escapeSequence(0xE3, 0xFF08));
  EXPECT_EQ("\x1b[4m", ConsoleColorFormatter::escapeSequence(0x8000, 0x7FFF));
  EXPECT_EQ("", ConsoleColorFormatter::escapeSequence(0, 0xFFFF));
}

// Points descriptor 1 at `target` for the lifetime of the object.
class StdoutRedirect {
 public:
  explicit StdoutRedirect(int target) : saved_(dup(1)) {
    std::fflush(stdout);
    dup2(target, 1);
  }
  ~StdoutRedirect() {
    std::fflush(stdout);
    dup2(saved_, 1);
    close(saved_);
  }

 private:
  int saved_;
};

std::string readExactly(int fd, std::size_t size) {
  std::string text;
  char buffer[256];
  while (text.size() < size) {
    const ssize_t n = read(fd, buffer, sizeof buffer);
    if (n <= 0) break;
    text.append(buffer, static_cast<std::size_t>(n));
  }
  return text;
}

const char kColorSink[] =
    "<sink><layout class='lumo.logging.MultiColorLayout'>"
    "<rule level='ERROR' fg-color='white' bg-color='red' text-style='underline'/>"
    "</layout></sink>";

TEST(ConsoleOutput, ColourOnTerminalOnly) {
  std::mutex lock;
  StdOutSink sink(&lock, sinkNode(kColorSink));
  const LogEvent info{"2025-01-31 14:05:09.000001 [tid=0x1] [INFO ] a: on a terminal\n",
                      Level::INFO};
  const LogEvent error{"e\n", Level::ERROR};

  const int master = posix_openpt(O_RDWR | O_NOCTTY);
  ASSERT_GE(master, 0);
  ASSERT_EQ(0, grantpt(master));
  ASSERT_EQ(0, unlockpt(master));
  const int slave = open(ptsname(master), O_RDWR | O_NOCTTY);
  ASSERT_GE(slave, 0);
  termios mode;
  tcgetattr(slave, &mode);
  cfmakeraw(&mode);  // no \n -> \r\n translation
  tcsetattr(slave, TCSANOW, &mode);
  {
    StdoutRedirect redirect(slave);
    sink.write(info);
    sink.write(error);
  }
  const std::string expected = "\x1b[36m" + info.text.substr(0, info.text.size() - 1) +
                               "\x1b[0m\n" + "\x1b[37;41;4me\x1b[0m\n";
  EXPECT_EQ(expected, readExactly(master, expected.size()));
  close(slave);
  close(master);

  int pipeEnds[2];
  ASSERT_EQ(0, pipe(pipeEnds));
  {
    StdoutRedirect redirect(pipeEnds[1]);
    sink.write(info);
    sink.write(error);
  }
  close(pipeEnds[1]);
  EXPECT_EQ(info.text + error.text, readExactly(pipeEnds[0], 1 << 20));
  close(pipeEnds[0]);
}

TEST(ConsoleOutput, ConsoleSinkSplitsBySeverity) {
  std::mutex lock;
  ConsoleSink sink(&lock, sinkNode("<sink><layout class='lumo.logging.MultiColorLayout'/></sink>"));
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  for (int level = Level::TRACE; level <= Level::FATAL; ++level) {
    sink.write(LogEvent{std::to_string(level) + "\n", static_cast<Level::type>(level)});
  }
  const std::string err = testing::internal::GetCapturedStderr();
  const std::string out = testing::internal::GetCapturedStdout();
  // Redirected into files: plain text, no escape sequences.
  EXPECT_EQ("0\n1\n2\n", out);
  EXPECT_EQ("3\n4\n5\n", err);
}

TEST(ConsoleOutput, StdStreamSinksStopAtZeroByte) {
  std::mutex lock;
  StdErrSink sink(&lock, sinkNode("<sink/>"));
  testing::internal::CaptureStderr();
  sink.write(LogEvent{std::string("ab\0cd\n", 6), Level::INFO});
  EXPECT_EQ("ab", testing::internal::GetCapturedStderr());
}

}  // namespace
}  // namespace impl
}  // namespace logging
}  // namespace lumo
