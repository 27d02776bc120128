// Which sanitizer a test runs under, whatever the compiler.
#pragma once

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QUORVEL_ADDRESS_SANITIZER
#endif
#elif defined(__SANITIZE_ADDRESS__)
#define QUORVEL_ADDRESS_SANITIZER
#endif
