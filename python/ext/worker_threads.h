// The threads of one parallel query, spread over the processors as they
// start.
//
// A new thread may be queued on the processor of the thread that starts it.
// While that one stays busy, the new thread can wait there until the
// scheduler moves it to an idle processor: 2 to 4 ms, measured on two
// processors, against 90 ms for a whole query. Each thread is therefore
// started on a processor of its own, chosen among those the caller may run
// on, and as soon as it runs it is free again to run wherever the caller may.
#ifndef KORA_PYTHON_EXT_WORKER_THREADS_H_
#define KORA_PYTHON_EXT_WORKER_THREADS_H_

#include <cstddef>
#include <functional>

namespace koradata_py {

// Runs body(item) for every item in [0, count): item 0 on the calling thread,
// every other item on a thread of its own, started on the item-th processor
// after the caller's (in ascending order, wrapping around) among those the
// caller may run on. An item whose thread cannot be started runs on the
// calling thread after item 0. Returns once every item is done; the first
// exception a body threw is then rethrown.
// REQUIRES: a body never waits for an item that has not started.
void runOnThreads(size_t count, const std::function<void(size_t item)>& body);

}  // namespace koradata_py

#endif  // KORA_PYTHON_EXT_WORKER_THREADS_H_
