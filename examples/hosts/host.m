// Objective-C on macOS: clang -fobjc-arc host.m -o Host -framework Foundation …
// With GNUstep and clang, instead of -fobjc-arc and the framework:
// $(gnustep-config --objc-flags) $(gnustep-config --base-libs)
// and, so that clang finds its runtime's headers, -idirafter "$(gcc -print-file-name=include)".
// … stands for $(pkg-config --cflags --libs OrvaLanguage).
#import <Foundation/Foundation.h>

#include <OrvaLanguage/OrvaLanguage.h>

static NSString* Text(NSString* key, NSString* fallback) {
    const char* text = key != nil ? ZuGetLocalizedString([key UTF8String]) : NULL;
    return text != NULL ? [NSString stringWithUTF8String:text] : fallback;  // a copy
}

int main(void) {
    @autoreleasepool {
        if (ZuLoadStrings("Deutsch", "Sample.strings", NULL) < 1) {
            fputs("Host: no texts\n", stderr);
            return 1;
        }
        puts([Text(@"MENU_OPEN", @"Open") UTF8String]);
        puts([Text(@"MENU_NEW", @"New") UTF8String]);
    }
    return 0;
}
