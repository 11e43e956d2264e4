#pragma once
// thrownMessage: the message of the exception of type E that `call` throws, so that a test can check
// the type and the exact text in one expectation. Anything else gives a text no message equals.

#include <exception>
#include <string>
#include <type_traits>

template <typename E = std::exception, typename F>
std::string thrownMessage(F&& call) {
  try {
    call();
  } catch (const E& e) {
    return e.what();
  } catch (...) {
    // Only reached when E is narrower than what was thrown.
    if constexpr (!std::is_same_v<E, std::exception>) {
      try {
        throw;
      } catch (const std::exception& e) {
        return std::string("(another exception: ") + e.what() + ")";
      } catch (...) {
      }
    }
    return "(not a standard exception)";
  }
  return "(nothing thrown)";
}
