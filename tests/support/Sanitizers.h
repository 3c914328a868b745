// Sanitizers.h - whether the tests run under a sanitizer, which has an allocator and a death of its own.
#ifndef TESTS_SUPPORT_SANITIZERS_H
#define TESTS_SUPPORT_SANITIZERS_H

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define QVLOG_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define QVLOG_SANITIZED 1
#else
#define QVLOG_SANITIZED 0
#endif
#else
#define QVLOG_SANITIZED 0
#endif

constexpr bool kSanitized = QVLOG_SANITIZED != 0;

#if defined(__SANITIZE_THREAD__)
constexpr bool kThreadSanitized = true;
#else
constexpr bool kThreadSanitized = false;
#endif

#endif
