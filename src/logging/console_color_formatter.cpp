#include "logging/console_color_formatter.h"

#include <unistd.h>

#include <boost/property_tree/ptree.hpp>
#include <iostream>
#include <stdexcept>

#include "logging/level_names.h"
#include "sys/throw.h"

namespace lumo {
namespace logging {
namespace impl {
namespace {

using boost::property_tree::ptree;

constexpr unsigned kDefaultColor = 64;  // the level's built-in colour
constexpr unsigned kNoColor = 128;      // leave the console's colour alone
constexpr unsigned kBright = 8;

const struct {
  const char* name;
  unsigned code;
} kColors[] = {{"black", 0},   {"blue", 1},   {"green", 2}, {"cyan", 3},     {"red", 4},
               {"magenta", 5}, {"yellow", 6}, {"white", 7}, {"default", 64}, {"none", 128}};

// Built-in foreground per level: green, magenta, cyan, yellow, red, bright red.
const unsigned kBuiltInForeground[6] = {2, 5, 3, 6, 4, 12};
const unsigned kBuiltInBackground[6] = {kNoColor, kNoColor, kNoColor, kNoColor, kNoColor, kNoColor};

[[noreturn]] void fail(const std::string& text) { LUMO_THROW_NO_TRACE(std::runtime_error(text)); }

// The colour code of an optional attribute: absent is "default".
unsigned readColor(const ptree& rule, const char* attribute, const char* failure) {
  boost::optional<std::string> value = rule.get_optional<std::string>(attribute);
  if (!value) return kDefaultColor;
  for (const auto& color : kColors) {
    if (*value == color.name) return color.code;
  }
  fail(std::string(failure) + *value + "'");
}

// Applies an optional "none"/"bright" style attribute to `code`.
void applyStyle(const ptree& rule, const char* attribute, const char* failure, unsigned builtIn,
                unsigned& code) {
  boost::optional<std::string> style = rule.get_optional<std::string>(attribute);
  if (!style) return;
  const bool bright = *style == "bright";
  if (!bright && *style != "none") fail(std::string(failure) + *style + "'");
  if (code == kDefaultColor) {
    code = bright ? (builtIn | kBright) : (builtIn & ~kBright);
  } else if (bright) {
    code |= kBright;
  }
}

// ANSI colour number of the three colour bits (blue 1, green 2, red 4).
unsigned ansiColor(unsigned bits) { return ((bits & 1) << 2) | (bits & 2) | ((bits & 4) >> 2); }

const char kReset[] = "\x1b[0m";

}  // namespace

LevelOpcodes create_level_opcodes(const ptree& layout) {
  struct Record {
    unsigned fg = kDefaultColor;
    unsigned bg = kDefaultColor;
    bool underline = false;
    bool seen = false;
  } records[6];
  for (const ptree::value_type& child : layout) {
    if (child.first != "rule") continue;
    const ptree& rule = child.second;
    boost::optional<std::string> levelText = rule.get_optional<std::string>("<xmlattr>.level");
    if (!levelText) fail("<rule> element with missing attribute 'level'");
    boost::optional<Level::type> level = parseLevel(*levelText);
    if (!level) fail("<rule> element with invalid level attribute: '" + *levelText + "'");
    Record& record = records[*level];
    if (record.seen) fail("<rule> element with duplicate level '" + *levelText + "' found");
    record.seen = true;
    record.fg =
        readColor(rule, "<xmlattr>.fg-color", "<rule> element with invalid fg-color attribute: '");
    applyStyle(rule, "<xmlattr>.fg-style", "<rule> element with invalid fg-style attribute: '",
               kBuiltInForeground[*level], record.fg);
    record.bg =
        readColor(rule, "<xmlattr>.bg-color", "<rule> element with invalid bg-color attribute: '");
    applyStyle(rule, "<xmlattr>.bg-style", "<rule> element with invalid bg-style attribute: '",
               kBuiltInBackground[*level], record.bg);
    boost::optional<std::string> textStyle = rule.get_optional<std::string>("<xmlattr>.text-style");
    if (textStyle) {
      if (*textStyle != "none" && *textStyle != "underline") {
        fail("<rule> element with invalid text-style attribute: '" + *textStyle + "'");
      }
      record.underline = *textStyle == "underline";
    }
  }
  LevelOpcodes opcodes;
  for (int level = 0; level < 6; ++level) {
    unsigned fg = records[level].fg;
    unsigned bg = records[level].bg;
    if (fg & kDefaultColor) fg = kBuiltInForeground[level];
    if (bg & kDefaultColor) bg = kBuiltInBackground[level];
    unsigned setBits = 0;
    unsigned keepMask = 0xFFFF;
    if (!(bg & kNoColor)) {
      setBits = (bg & 15) * 16;
      keepMask = 0xFF0F | ((~bg & 8) * 16);
    }
    if (!(fg & kNoColor)) {
      setBits |= fg & 15;
      keepMask &= 0xFFF0 | (~fg & 8);
    }
    if (records[level].underline) {
      setBits |= 0x8000;
      keepMask &= 0x7FFF;
    }
    opcodes[level] =
        std::make_pair(static_cast<unsigned short>(setBits), static_cast<unsigned short>(keepMask));
  }
  return opcodes;
}

void read_formatter(const ptree& sinkNode, boost::optional<ConsoleColorFormatter>& formatter) {
  boost::optional<const ptree&> layout = sinkNode.get_child_optional("layout");
  if (!layout) return;
  boost::optional<std::string> className = layout->get_optional<std::string>("<xmlattr>.class");
  if (!className) fail("<layout> element with missing attribute 'class'");
  if (*className != "lumo.logging.MultiColorLayout") {
    fail("<layout> element with unknown class attribute: '" + *className + "'");
  }
  formatter.emplace(create_level_opcodes(*layout));
}

std::string ConsoleColorFormatter::escapeSequence(unsigned short setBits, unsigned short keepMask) {
  if (keepMask == 0xFFFF) return std::string();
  std::string codes;
  auto add = [&codes](unsigned code) {
    if (!codes.empty()) codes += ';';
    codes += std::to_string(code);
  };
  if ((keepMask & 0x0007) != 0x0007) {
    add(((setBits & 0x0008) ? 90 : 30) + ansiColor(setBits & 7));
  } else if (setBits & 0x0008) {
    add(1);  // intensity alone
  }
  if ((keepMask & 0x0070) != 0x0070) {
    add(((setBits & 0x0080) ? 100 : 40) + ansiColor((setBits >> 4) & 7));
  }
  if (setBits & 0x8000) add(4);
  if (codes.empty()) return std::string();
  return "\x1b[" + codes + "m";
}

std::string ConsoleColorFormatter::sequenceFor(int fd, const LogEvent& event) const {
  if (fd < 0 || !isatty(fd)) return std::string();
  if (event.level < Level::TRACE || event.level > Level::FATAL) return std::string();
  const std::pair<unsigned short, unsigned short>& op = opcodes_[event.level];
  return escapeSequence(op.first, op.second);
}

namespace {
// The text with the reset placed before its final line feed, so that no
// colour spills into the next line.
template <class Put>
void writeColored(const std::string& sequence, const std::string& text, Put put) {
  if (sequence.empty()) {
    put(text.data(), text.size());
    return;
  }
  const bool newline = !text.empty() && text.back() == '\n';
  const std::size_t body = newline ? text.size() - 1 : text.size();
  put(sequence.data(), sequence.size());
  put(text.data(), body);
  put(kReset, sizeof kReset - 1);
  if (newline) put("\n", 1);
}
}  // namespace

void ConsoleColorFormatter::write(std::ostream& os, const LogEvent& event) const {
  int fd = -1;
  if (&os == &std::cout) fd = fileno(stdout);
  if (&os == &std::cerr) fd = fileno(stderr);
  writeColored(sequenceFor(fd, event), event.text, [&os](const char* data, std::size_t n) {
    os.write(data, static_cast<std::streamsize>(n));
  });
}

void ConsoleColorFormatter::write(std::FILE* stream, const LogEvent& event) const {
  writeColored(sequenceFor(fileno(stream), event), event.text,
               [stream](const char* data, std::size_t n) { std::fwrite(data, 1, n, stream); });
}

}  // namespace impl
}  // namespace logging
}  // namespace lumo
