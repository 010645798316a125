#include "sql/statement_cache.h"

#include <sqlite3.h>

#include <cstring>
#include <utility>

namespace lumo {
namespace cppsqlite {

StatementCache::Entry StatementCache::take(const char* sql) {
  const std::size_t length = std::strlen(sql);
  // Newest first: a call that runs the same few statements again finds them
  // at the end.
  for (std::size_t i = held_.size(); i-- > 0;) {
    if (held_[i].sql.size() == length && std::memcmp(held_[i].sql.data(), sql, length) == 0) {
      Entry entry = std::move(held_[i]);
      held_.erase(held_.begin() + static_cast<std::ptrdiff_t>(i));
      return entry;
    }
  }
  return Entry{sql, nullptr};
}

int StatementCache::giveBack(Entry entry) {
  if (!entry.vm) return SQLITE_OK;
  if (closed_) return sqlite3_finalize(entry.vm);
  const int rc = sqlite3_reset(entry.vm);
  if (rc != SQLITE_OK) {
    sqlite3_finalize(entry.vm);
    return rc;
  }
  if (held_.size() == kCapacity) {
    sqlite3_finalize(held_.front().vm);
    held_.erase(held_.begin());
  }
  held_.push_back(std::move(entry));
  return SQLITE_OK;
}

void StatementCache::close() {
  for (const Entry& e : held_) sqlite3_finalize(e.vm);
  held_.clear();
  closed_ = true;
}

}  // namespace cppsqlite
}  // namespace lumo
