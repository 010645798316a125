// ConsoleColorFormatter: colours a line by its level.
//
// Each level has a pair (setBits, keepMask) of console character attributes
// (bit 0 blue, 1 green, 2 red, 3 intensity for the foreground; the same
// shifted by 4 for the background; 0x8000 underline): the new attributes are
// setBits | (current & keepMask). This platform has no console attributes: a
// pair becomes ANSI escape sequences (foreground and background colours,
// bright as the high-intensity colours, underline) before the line and a reset
// after it, and only when the stream is a terminal. A keepMask of 0xFFFF
// touches nothing and writes no sequence.
//
// Configuration: <layout class="lumo.logging.MultiColorLayout"> with <rule
// level=".." fg-color=".." fg-style=".." bg-color=".." bg-style=".."
// text-style=".."/> children.
//
// Thread-safety: immutable after construction (thread-safe); the caller
// serialises output to a stream.
#ifndef KORA_LOGGING_CONSOLE_COLOR_FORMATTER_H_
#define KORA_LOGGING_CONSOLE_COLOR_FORMATTER_H_

#include <boost/array.hpp>
#include <boost/optional.hpp>
#include <boost/property_tree/ptree_fwd.hpp>
#include <cstdio>
#include <ostream>
#include <string>
#include <utility>

#include "logging/sink.h"

namespace lumo {
namespace logging {
namespace impl {

// (setBits, keepMask) per level, in the order of the level numbers.
typedef boost::array<std::pair<unsigned short, unsigned short>, 6> LevelOpcodes;

class ConsoleColorFormatter {
 public:
  explicit ConsoleColorFormatter(const LevelOpcodes& opcodes) : opcodes_(opcodes) {}

  const LevelOpcodes& opcodes() const { return opcodes_; }

  // Writes the event's text to `os`, coloured when `os` is std::cout or
  // std::cerr and that stream is a terminal.
  void write(std::ostream& os, const LogEvent& event) const;
  // Writes the event's text to `stream`, coloured when it is a terminal.
  void write(std::FILE* stream, const LogEvent& event) const;

  // The escape sequence that applies (setBits, keepMask); empty for a
  // keepMask of 0xFFFF.
  static std::string escapeSequence(unsigned short setBits, unsigned short keepMask);

 private:
  // The sequence for `event` on the stream with descriptor `fd`, or empty.
  std::string sequenceFor(int fd, const LogEvent& event) const;

  LevelOpcodes opcodes_;
};

// The opcodes of a <layout> node's <rule> children. Throws std::runtime_error
// with the texts "<rule> element with ..." on a bad rule.
LevelOpcodes create_level_opcodes(const boost::property_tree::ptree& layout);

// Sets `formatter` from the <layout> child of a <sink> node; leaves it empty
// without one. Throws std::runtime_error on a layout without class or of a
// class other than "lumo.logging.MultiColorLayout".
void read_formatter(const boost::property_tree::ptree& sinkNode,
                    boost::optional<ConsoleColorFormatter>& formatter);

}  // namespace impl
}  // namespace logging
}  // namespace lumo

#endif  // KORA_LOGGING_CONSOLE_COLOR_FORMATTER_H_
