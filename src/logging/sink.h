// The sink interface and what travels through it.
#ifndef KORA_LOGGING_SINK_H_
#define KORA_LOGGING_SINK_H_

#include <boost/noncopyable.hpp>
#include <boost/property_tree/ptree_fwd.hpp>
#include <boost/shared_ptr.hpp>
#include <string>

#include "logging/level.h"

namespace lumo {
namespace logging {

// One finished log line (including its line feed) and its level.
struct LogEvent {
  std::string text;
  Level::type level;
};

// Where lines go. Implementations must be thread-safe: a sink may be called
// from any logging thread and from the worker of an asynchronous sink at once.
class ISink : boost::noncopyable {
 public:
  virtual ~ISink() {}
  virtual void write(const LogEvent& event) = 0;
};

// A sink as a logger or an asynchronous sink refers to it: the sink (null for
// the null sink) and its own threshold.
struct SinkInfo {
  boost::shared_ptr<ISink> sink;
  Level::type level = Level::TRACE;
};

// What a sink factory gets while a configuration is parsed: the sink's own
// <sink> node, and the means to obtain other sinks of the document by name.
class SinkContext : boost::noncopyable {
 public:
  explicit SinkContext(const boost::property_tree::ptree& config) : config(config) {}
  virtual ~SinkContext() {}

  // The sink named `name`, created on first request (so a sink referred to
  // twice is one object). Throws std::runtime_error
  // "Unknown <sink> reference '<name>'".
  virtual SinkInfo get_sink_info(const std::string& name) const = 0;

  const boost::property_tree::ptree& config;
};

}  // namespace logging
}  // namespace lumo

#endif  // KORA_LOGGING_SINK_H_
