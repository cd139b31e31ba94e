// A host that its project compiles as GNU C++14, without exceptions or RTTI.
#include <cstdio>

#include <OrvaLanguage/OrvaLanguage.h>

#if __cplusplus != 201402L || defined(__STRICT_ANSI__)
#error "not as GNU C++14"
#endif
#if defined(__cpp_exceptions) || defined(__cpp_rtti)
#error "with exceptions or type information"
#endif

int main() {
    std::printf("%d entries\n", ZuLoadStrings("en", "Host.strings", nullptr));
    return 0;
}
