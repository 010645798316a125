// Small helpers that damage a file written by the writer, for tests of
// corrupt input: cut it, flip a byte, overwrite a range or a little-endian
// word.
// Each throws std::runtime_error if the file cannot be changed as asked.
// Thread-safe for different files.
#ifndef KORA_TOOLS_FILE_DAMAGE_H_
#define KORA_TOOLS_FILE_DAMAGE_H_

#include <boost/filesystem/path.hpp>
#include <cstdint>
#include <vector>

namespace lumo {
namespace writer {

// Keeps the first `size` bytes. REQUIRES: size <= the file's size.
void truncateFile(const boost::filesystem::path& file, uint64_t size);

// XORs the byte at `offset` with `mask`. REQUIRES: offset < the file's size.
void flipByte(const boost::filesystem::path& file, uint64_t offset, unsigned char mask = 0xFF);

// Writes `bytes` over the file's bytes from `offset` on.
// REQUIRES: offset + bytes.size() <= the file's size.
void overwriteBytes(const boost::filesystem::path& file, uint64_t offset,
                    const std::vector<unsigned char>& bytes);

// Writes `value` as 4 little-endian bytes at `offset`.
// REQUIRES: offset + 4 <= the file's size.
void overwriteLe32(const boost::filesystem::path& file, uint64_t offset, uint32_t value);

}  // namespace writer
}  // namespace lumo

#endif  // KORA_TOOLS_FILE_DAMAGE_H_
