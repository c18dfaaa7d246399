// Defines REX_UNDER_ASAN where AddressSanitizer watches: memory of our own making would hide from
// it what it is there to find.
#pragma once

#if defined(__SANITIZE_ADDRESS__)
#define REX_UNDER_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define REX_UNDER_ASAN 1
#endif
#endif
