// The fixed table from sink class name to factory.
#ifndef KORA_LOGGING_SINK_FACTORY_H_
#define KORA_LOGGING_SINK_FACTORY_H_

#include <boost/shared_ptr.hpp>
#include <mutex>
#include <string>

#include "logging/sink.h"

namespace lumo {
namespace logging {

// Makes the sink of a <sink> element; a null result stands for the null sink.
// `consoleLock` is the one lock of all console-type sinks.
typedef boost::shared_ptr<ISink> (*SinkFactory)(const SinkContext& context,
                                                std::mutex* consoleLock);

// The factory of `className` ("lumo.logging.ConsoleSink", ...), or null for
// an unknown class.
SinkFactory findSinkFactory(const std::string& className);

}  // namespace logging
}  // namespace lumo

#endif  // KORA_LOGGING_SINK_FACTORY_H_
