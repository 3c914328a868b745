// Sanitizers.h - whether the tests run under a sanitizer, which has an allocator and a death of its own.
#ifndef TESTS_SUPPORT_SANITIZERS_H
#define TESTS_SUPPORT_SANITIZERS_H

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kSanitized = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif
#else
constexpr bool kSanitized = false;
#endif

#if defined(__SANITIZE_THREAD__)
constexpr bool kThreadSanitized = true;
#else
constexpr bool kThreadSanitized = false;
#endif

#endif
