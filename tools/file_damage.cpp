#include "tools/file_damage.h"

#include <boost/filesystem/operations.hpp>
#include <fstream>
#include <stdexcept>
#include <string>

#include "sys/throw.h"

namespace lumo {
namespace writer {

namespace {

[[noreturn]] void fail(const boost::filesystem::path& file, const std::string& what) {
  LUMO_THROW_NO_TRACE(std::runtime_error("Cannot " + what + " in " + file.string()));
}

void requireInside(const boost::filesystem::path& file, uint64_t end, const std::string& what) {
  if (end > boost::filesystem::file_size(file)) fail(file, what + " beyond the end");
}

// Overwrites bytes in place; the file keeps its size.
void patch(const boost::filesystem::path& file, uint64_t offset, const unsigned char* bytes,
           size_t n) {
  std::fstream f(file.string(), std::ios::in | std::ios::out | std::ios::binary);
  f.seekp(static_cast<std::streamoff>(offset));
  f.write(reinterpret_cast<const char*>(bytes), static_cast<std::streamsize>(n));
  if (!f) fail(file, "write");
}

}  // namespace

void truncateFile(const boost::filesystem::path& file, uint64_t size) {
  requireInside(file, size, "truncate");
  boost::filesystem::resize_file(file, size);
}

void flipByte(const boost::filesystem::path& file, uint64_t offset, unsigned char mask) {
  requireInside(file, offset + 1, "flip a byte");
  std::ifstream in(file.string(), std::ios::binary);
  in.seekg(static_cast<std::streamoff>(offset));
  char c = 0;
  if (!in.get(c)) fail(file, "read a byte");
  in.close();
  const unsigned char flipped = static_cast<unsigned char>(c) ^ mask;
  patch(file, offset, &flipped, 1);
}

void overwriteBytes(const boost::filesystem::path& file, uint64_t offset,
                    const std::vector<unsigned char>& bytes) {
  requireInside(file, offset + bytes.size(), "overwrite bytes");
  patch(file, offset, bytes.data(), bytes.size());
}

void overwriteLe32(const boost::filesystem::path& file, uint64_t offset, uint32_t value) {
  requireInside(file, offset + 4, "write a word");
  const unsigned char bytes[4] = {
      static_cast<unsigned char>(value), static_cast<unsigned char>(value >> 8),
      static_cast<unsigned char>(value >> 16), static_cast<unsigned char>(value >> 24)};
  patch(file, offset, bytes, 4);
}

}  // namespace writer
}  // namespace lumo
