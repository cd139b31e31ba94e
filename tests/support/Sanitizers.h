#ifndef ORVALANGUAGE_TESTS_SUPPORT_SANITIZERS_H
#define ORVALANGUAGE_TESTS_SUPPORT_SANITIZERS_H

// Which sanitizers this program is built with. g++ says so by macros, clang++ by __has_feature.
#ifndef __has_feature
#define __has_feature(feature) 0
#endif

#if defined(__SANITIZE_ADDRESS__) || __has_feature(address_sanitizer)
constexpr bool kHasAddressSanitizer = true;
#else
constexpr bool kHasAddressSanitizer = false;
#endif

#if defined(__SANITIZE_THREAD__) || __has_feature(thread_sanitizer)
constexpr bool kHasThreadSanitizer = true;
#else
constexpr bool kHasThreadSanitizer = false;
#endif

constexpr bool kHasSanitizer = kHasAddressSanitizer || kHasThreadSanitizer;

#endif
