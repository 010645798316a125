#include "logging/async_sink.h"

#include <boost/property_tree/ptree.hpp>
#include <stdexcept>

#include "logging/diagnostic.h"
#include "logging/process_singleton.h"
#include "sys/environment.h"
#include "sys/throw.h"

namespace lumo {
namespace logging {
namespace impl {

using boost::property_tree::ptree;

AsyncSink::ThreadJoiner::~ThreadJoiner() {
  for (;;) {
    AsyncSink* sink = nullptr;
    {
      std::lock_guard<std::mutex> lock(mutex_);
      if (sinks_.empty()) break;
      sink = *sinks_.begin();
      sinks_.erase(sinks_.begin());
    }
    sink->stop();
  }
}

void AsyncSink::ThreadJoiner::add(AsyncSink* sink) {
  std::lock_guard<std::mutex> lock(mutex_);
  sinks_.insert(sink);
}

void AsyncSink::ThreadJoiner::remove(AsyncSink* sink) {
  std::lock_guard<std::mutex> lock(mutex_);
  sinks_.erase(sink);
}

AsyncSink::AsyncSink(const SinkContext& context) {
  const std::string name = context.config.get<std::string>("<xmlattr>.name");
  int references = 0;
  for (const ptree::value_type& child : context.config) {
    if (child.first != "sink") continue;
    ++references;
    const std::string ref = child.second.get<std::string>("<xmlattr>.ref");
    if (ref == name) {
      LUMO_THROW_NO_TRACE(std::runtime_error(
          "Invalid self-reference within <sink> reference of sink '" + name + "'"));
    }
    SinkInfo info = context.get_sink_info(ref);
    if (info.sink) sinks_.push_back(info);
  }
  if (references == 0) {
    LUMO_THROW_NO_TRACE(
        std::runtime_error("No <sink> reference within sink '" + name + "' element"));
  }
  // Registered before the worker starts, so a failure to register leaves no
  // thread behind.
  ProcessSingleton<ThreadJoiner>::get().add(this);
  try {
    worker_ = boost::thread([this] { async_write(); });
  } catch (...) {
    ProcessSingleton<ThreadJoiner>::get().remove(this);
    throw;
  }
}

AsyncSink::~AsyncSink() { stop(); }

void AsyncSink::write(const LogEvent& event) {
  {
    boost::lock_guard<boost::mutex> lock(queue_.mutex);
    queue_.events.push_back(event);
  }
  queue_.condition.notify_one();
}

void AsyncSink::forward(const LogEvent& event) {
  for (const SinkInfo& target : sinks_) {
    if (target.level <= event.level) target.sink->write(event);
  }
}

void AsyncSink::async_write() noexcept {
  try {
    for (;;) {
      LogEvent event;
      {
        boost::unique_lock<boost::mutex> lock(queue_.mutex);
        // wait() is an interruption point: stop() interrupts the worker.
        while (!queue_.stopRequested && queue_.events.empty()) queue_.condition.wait(lock);
        if (queue_.stopRequested) break;
        event = std::move(queue_.events.front());
        queue_.events.pop_front();
      }
      forward(event);
    }
  } catch (const boost::thread_interrupted&) {
    // stop() asked: drain below.
  } catch (...) {
    LUMO_REPORT_CURRENT_EXCEPTIONF("[tid=%llu] Worker thread exception\n",
                                   static_cast<unsigned long long>(sys::threadId()));
    finished_ = true;
    return;
  }
  try {
    // A pending interruption must not cut the drain short.
    boost::this_thread::disable_interruption noInterruption;
    for (;;) {
      LogEvent event;
      {
        boost::lock_guard<boost::mutex> lock(queue_.mutex);
        if (queue_.events.empty()) break;
        event = std::move(queue_.events.front());
        queue_.events.pop_front();
      }
      forward(event);
    }
  } catch (...) {
    LUMO_REPORT_CURRENT_EXCEPTIONF("[tid=%llu] Worker thread exception\n",
                                   static_cast<unsigned long long>(sys::threadId()));
  }
  finished_ = true;
}

void AsyncSink::stop() noexcept {
  try {
    if (!worker_.joinable()) return;
    if (ThreadJoiner* joiner = ProcessSingleton<ThreadJoiner>::alive()) joiner->remove(this);
    {
      boost::lock_guard<boost::mutex> lock(queue_.mutex);
      queue_.stopRequested = true;
    }
    queue_.condition.notify_all();
    worker_.interrupt();
    worker_.join();  // from the worker itself: "boost thread: trying joining itself"
    std::size_t remaining = 0;
    if (!finished_) {
      LUMO_REPORT_DIAGNOSTIC(1,
                             "Irregular worker thread join, some logging events might got lost!\n");
      remaining = queue_.events.size();
    } else {
      boost::lock_guard<boost::mutex> lock(queue_.mutex);
      remaining = queue_.events.size();
    }
    if (remaining != 0) {
      LUMO_REPORT_DIAGNOSTICF(2, "There are %lu remaining events\n",
                              static_cast<unsigned long>(remaining));
    }
    sinks_.clear();
  } catch (...) {
    LUMO_REPORT_CURRENT_EXCEPTIONF("AsyncSink::stop: Caught exception!\n");
  }
}

}  // namespace impl
}  // namespace logging
}  // namespace lumo
