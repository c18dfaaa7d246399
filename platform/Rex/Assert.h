// Assertions on proven invariants. They are on in every build type: a broken invariant ends the
// process with its expression, file, line and function, and whatever supervises it starts it anew.
#pragma once

namespace Rex {

// Prints the four to standard error and aborts. Never returns.
[[noreturn]] void assertionFailed(const char* expression, const char* file, int line,
                                  const char* function) noexcept;

// The range error of a bounded value type: `words` name the type and its limit. Nothing in the
// agent catches it; code that handles foreign bytes bounds them first.
[[noreturn]] void throwRangeException(const char* words);

// A generated mutator was handed a null entity.
[[noreturn]] void throwMutatorArgNullPointerException(const char* mutator);

}  // namespace Rex

#define REX_ASSERT(expression) REX_ASSERT_AS(expression, #expression)

// The same with words of its own, where the people who look for them in a log know others.
#define REX_ASSERT_AS(expression, words) \
   (static_cast<bool>(expression)        \
        ? static_cast<void>(0)           \
        : ::Rex::assertionFailed(words, __FILE__, __LINE__, __extension__ __PRETTY_FUNCTION__))
