/* C99: cc host.c -o Host $(pkg-config --cflags --libs OrvaLanguage) */
#include <stdio.h>

#include <OrvaLanguage/Texts.h>

int main(void) {
    if (ZuLoadStrings("Deutsch", "Sample.strings", NULL) < 1) {
        fputs("Host: no texts\n", stderr);
        return 1;
    }
    puts(OrvaTextOr("MENU_OPEN", "Open"));
    puts(OrvaTextOr("MENU_NEW", "New")); /* the file lacks this one */
    return 0;
}
