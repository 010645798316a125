#include "worker_threads.h"

#include <pthread.h>
#include <sched.h>

#include <exception>
#include <memory>
#include <mutex>
#include <vector>

namespace koradata_py {
namespace detail {

// The processors the calling thread may run on, and where it runs now.
class Processors {
 public:
  Processors() {
    CPU_ZERO(&allowed_);
    if (sched_getaffinity(0, sizeof(allowed_), &allowed_) != 0) return;
    const int here = sched_getcpu();
    for (int cpu = 0; cpu < CPU_SETSIZE; ++cpu) {
      if (!CPU_ISSET(cpu, &allowed_)) continue;
      if (cpu == here) caller_ = ids_.size();
      ids_.push_back(cpu);
    }
  }

  // Whether threads can be spread at all.
  bool several() const { return ids_.size() > 1; }
  // The item-th allowed processor after the caller's. REQUIRES: several().
  int after(size_t item) const { return ids_[(caller_ + item) % ids_.size()]; }
  const cpu_set_t& allowed() const { return allowed_; }

 private:
  cpu_set_t allowed_;
  std::vector<int> ids_;  // ascending
  size_t caller_ = 0;     // index of the caller's processor in ids_
};

// What runs one item, on its thread or on the caller's; records the first
// exception of any item. Thread-safe.
class Items {
 public:
  explicit Items(const std::function<void(size_t)>& body) : body_(body) {}

  void run(size_t item) {
    try {
      body_(item);
    } catch (...) {
      std::lock_guard<std::mutex> lock(mutex_);
      if (!failure_) failure_ = std::current_exception();
    }
  }

  void rethrow() {
    if (failure_) std::rethrow_exception(failure_);
  }

 private:
  const std::function<void(size_t)>& body_;
  std::mutex mutex_;
  std::exception_ptr failure_;  // guarded by mutex_
};

// One started thread's item; outlives the thread.
struct Started {
  Items* items;
  size_t item;
  const cpu_set_t* widen;  // the caller's processors, or null to keep them
  pthread_t thread;
};

void* runStarted(void* argument) {
  Started& s = *static_cast<Started*>(argument);
  if (s.widen) pthread_setaffinity_np(pthread_self(), sizeof(cpu_set_t), s.widen);
  s.items->run(s.item);
  return nullptr;
}

// Starts s's thread on processor `cpu` (or anywhere for a negative one);
// false if no thread could be started.
bool start(Started& s, int cpu) {
  pthread_attr_t attributes;
  if (pthread_attr_init(&attributes) != 0) return false;
  bool placed = false;
  if (cpu >= 0) {
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(cpu, &one);
    placed = pthread_attr_setaffinity_np(&attributes, sizeof(one), &one) == 0;
  }
  if (!placed) s.widen = nullptr;
  bool started = pthread_create(&s.thread, &attributes, runStarted, &s) == 0;
  if (!started && placed) {
    // The processor may have been taken from the process meanwhile.
    s.widen = nullptr;
    started = pthread_create(&s.thread, nullptr, runStarted, &s) == 0;
  }
  pthread_attr_destroy(&attributes);
  return started;
}

}  // namespace detail

void runOnThreads(size_t count, const std::function<void(size_t item)>& body) {
  detail::Items items(body);
  const detail::Processors processors;
  std::vector<std::unique_ptr<detail::Started>> started;
  std::vector<size_t> unstarted;
  for (size_t item = 1; item < count; ++item) {
    auto s = std::make_unique<detail::Started>(
        detail::Started{&items, item, &processors.allowed(), pthread_t{}});
    if (detail::start(*s, processors.several() ? processors.after(item) : -1)) {
      started.push_back(std::move(s));
    } else {
      unstarted.push_back(item);
    }
  }
  if (count > 0) items.run(0);
  for (size_t item : unstarted) items.run(item);
  for (const auto& s : started) pthread_join(s->thread, nullptr);
  items.rethrow();
}

}  // namespace koradata_py
