// AsyncSink: decouples logging threads from slow sinks. write() only queues a
// copy of the event; one worker thread per sink hands events on to the target
// sinks (<sink ref=".."/> children, each with its own threshold).
//
// Invariants:
//   1. The queue is unbounded: a slow target costs memory, never a blocked or
//      lost event.
//   2. Events of one thread reach the targets in the order written.
//   3. After stop() returns the worker has ended and has handed on every event
//      queued before stop() began, unless a target threw.
//   4. Every running AsyncSink is registered with the process-wide
//      ThreadJoiner, whose destruction at process exit stops (and so drains)
//      the sinks that are still alive then.
//
// Thread-safety: thread-safe. The queue lock is held only to touch the queue,
// never while a target writes.
#ifndef KORA_LOGGING_ASYNC_SINK_H_
#define KORA_LOGGING_ASYNC_SINK_H_

#include <boost/thread/condition_variable.hpp>
#include <boost/thread/mutex.hpp>
#include <boost/thread/thread.hpp>
#include <deque>
#include <mutex>
#include <unordered_set>
#include <vector>

#include "logging/sink.h"

namespace lumo {
namespace logging {
namespace impl {

class AsyncSink : public ISink {
 public:
  // Creates the targets through `context` and starts the worker. Throws
  // std::runtime_error "Invalid self-reference within <sink> reference of sink
  // '<name>'" and "No <sink> reference within sink '<name>' element", the
  // context's failures, and boost::thread_resource_error.
  explicit AsyncSink(const SinkContext& context);
  // Stops the worker after draining the queue.
  ~AsyncSink() override;

  void write(const LogEvent& event) override;

  // Registry of running sinks, stopped at process exit. Thread-safe.
  class ThreadJoiner : boost::noncopyable {
   public:
    virtual ~ThreadJoiner();
    void add(AsyncSink* sink);
    void remove(AsyncSink* sink);

   private:
    std::mutex mutex_;
    std::unordered_set<AsyncSink*> sinks_;
  };

 private:
  struct Queue {
    std::deque<LogEvent> events;
    boost::mutex mutex;
    boost::condition_variable condition;
    bool stopRequested = false;  // only goes from false to true
  };

  // Idempotent; reports failures instead of throwing.
  void stop() noexcept;
  // The worker's body.
  void async_write() noexcept;
  // Hands one event to every target whose threshold is not above its level.
  void forward(const LogEvent& event);

  Queue queue_;
  boost::thread worker_;
  std::vector<SinkInfo> sinks_;
  bool finished_ = false;  // set by the worker as its last act; read after join
};

}  // namespace impl
}  // namespace logging
}  // namespace lumo

#endif  // KORA_LOGGING_ASYNC_SINK_H_
