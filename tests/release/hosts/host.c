#include <stdio.h>

#include <OrvaLanguage/OrvaLanguage.h>

int main(void) {
    printf("%d entries\n", ZuLoadStrings("en", "Host.strings", 0));
    return 0;
}
