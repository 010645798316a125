// The idle compiled statements of one connection, kept by their SQL text, so
// that a query that runs again with the same text is not compiled again.
//
// Invariants:
//  1. Every statement held is reset: it holds no lock and no read
//     transaction, so a held statement is invisible to other connections.
//  2. At most kCapacity statements are held; the one given back longest ago
//     is finalised first.
//  3. After close() nothing is held, and a statement given back is finalised.
//
// Thread-compatible, as the connection it belongs to: one thread at a time.
#ifndef KORA_SQL_STATEMENT_CACHE_H_
#define KORA_SQL_STATEMENT_CACHE_H_

#include <cstddef>
#include <string>
#include <vector>

struct sqlite3_stmt;

namespace lumo {
namespace cppsqlite {

class StatementCache {
 public:
  static constexpr std::size_t kCapacity = 16;

  StatementCache() = default;
  StatementCache(const StatementCache&) = delete;
  StatementCache& operator=(const StatementCache&) = delete;
  ~StatementCache() { close(); }

  // A statement and the text it was compiled from.
  struct Entry {
    std::string sql;
    sqlite3_stmt* vm = nullptr;
  };

  // The held statement compiled from exactly `sql`, which leaves the cache;
  // an entry with a null `vm` when none is held.
  Entry take(const char* sql);

  // Resets the statement of `entry` and holds it. A statement whose reset
  // reports an error, or any statement after close(), is finalised instead.
  // Returns the code of that reset or finalisation: SQLITE_OK, or the error
  // of the statement's last step. An entry without a statement is ignored.
  int giveBack(Entry entry);

  // Finalises every held statement; the connection may close afterwards.
  void close();

  std::size_t size() const { return held_.size(); }

 private:
  std::vector<Entry> held_;  // oldest first
  bool closed_ = false;
};

}  // namespace cppsqlite
}  // namespace lumo

#endif  // KORA_SQL_STATEMENT_CACHE_H_
