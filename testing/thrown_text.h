// The text a callable throws, for tests that assert exact messages.
#ifndef KORA_TESTING_THROWN_TEXT_H_
#define KORA_TESTING_THROWN_TEXT_H_

#include <exception>
#include <string>

namespace kora_testing {

// Runs f(). Returns the what() of the E it throws, "<other exception>" for
// any other exception, and "<nothing thrown>" when it returns.
template <class E = std::exception, class F>
std::string thrownText(F f) {
  try {
    f();
  } catch (const E& e) {
    return e.what();
  } catch (...) {
    return "<other exception>";
  }
  return "<nothing thrown>";
}

}  // namespace kora_testing

#endif  // KORA_TESTING_THROWN_TEXT_H_
