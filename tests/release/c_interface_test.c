/* The public interface from C, against the built library. */
#ifdef __APPLE__
#include <CoreFoundation/CoreFoundation.h>
#endif
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <OrvaLanguage/OrvaLanguage.h>
#include <OrvaLanguage/Texts.h>

static const char* gPhase = "";

#define CHECK(condition)                                                                \
    do {                                                                                \
        if (!(condition)) {                                                             \
            fprintf(stderr, "%s:%d: %s: %s\n", __FILE__, __LINE__, gPhase, #condition); \
            exit(1);                                                                    \
        }                                                                               \
    } while (0)

static void StartPhase(const char* name) {
    fprintf(stderr, "=== %s\n", name);
    gPhase = name;
}

static void WriteFile(const char* path, const char* text) {
    FILE* file = fopen(path, "w");
    CHECK(file != NULL);
    CHECK(fputs(text, file) >= 0);
    CHECK(fclose(file) == 0);
}

#ifdef __APPLE__
static struct __CFBundle* OpenBundle(const char* folder) {
    CFURLRef url = CFURLCreateFromFileSystemRepresentation(
        kCFAllocatorDefault, (const UInt8*)folder, (CFIndex)strlen(folder), 1);
    struct __CFBundle* bundle;
    CHECK(url != NULL);
    bundle = CFBundleCreate(kCFAllocatorDefault, url);
    CFRelease(url);
    return bundle;
}

static void CloseBundle(struct __CFBundle* bundle) {
    CFRelease(bundle);
}
#else
static struct __CFBundle* OpenBundle(const char* folder) {
    CHECK(ZuOpenBundle(NULL) == NULL);
    CHECK(ZuOpenBundle("/no/such/folder") == NULL);
    return ZuOpenBundle(folder);
}

static void CloseBundle(struct __CFBundle* bundle) {
    ZuCloseBundle(NULL);
    ZuCloseBundle(bundle);
}
#endif

int main(void) {
    const char* temporary = getenv("TMPDIR");
    char folder[1024];
    char contents[1100];
    char resources[1200];
    char file[1300];
    char version[32];
    struct __CFBundle* bundle;
    char* copy;

    StartPhase("version");
    snprintf(version, sizeof version, "%d.%d.%d", ORVA_VERSION_MAJOR, ORVA_VERSION_MINOR,
             ORVA_VERSION_PATCH);
    CHECK(strcmp(ORVA_VERSION_STRING, version) == 0);
    CHECK(strcmp(ORVA_VERSION_STRING, PROJECT_VERSION) == 0);
#if ORVA_VERSION_NUMBER < 10000 || ORVA_VERSION_NUMBER >= 1000000
#error "the number can't be compared, or has no place for the major version"
#endif
    CHECK(ORVA_VERSION_NUMBER % 10000 == ORVA_VERSION_MINOR * 100 + ORVA_VERSION_PATCH);
    CHECK(ORVA_VERSION_NUMBER / 10000 == ORVA_VERSION_MAJOR);

    StartPhase("open bundle");
    snprintf(folder, sizeof folder, "%s/orva-test-XXXXXX", temporary != NULL ? temporary : "/tmp");
    CHECK(mkdtemp(folder) != NULL);
    snprintf(contents, sizeof contents, "%s/Contents", folder);
    CHECK(mkdir(contents, 0700) == 0);
    snprintf(resources, sizeof resources, "%s/Resources", contents);
    CHECK(mkdir(resources, 0700) == 0);
    snprintf(file, sizeof file, "%s/x.strings", resources);
    WriteFile(file, "QVLANG=en\nMENU_OPEN=\"Open\"\nQVLANG=fr\nMENU_OPEN=\"Ouvrir\"\nQUIT=1\n");
    bundle = OpenBundle(folder);
    CHECK(bundle != NULL);

    StartPhase("load");
    CHECK(ZuLoadStrings("en", "x.strings", bundle) == 2);
    CHECK(ZuLoadStrings("FR", "x.strings", bundle) == 3);
    CHECK(ZuLoadStrings("de", "x.strings", bundle) == 2);
    CHECK(ZuLoadStrings("", "x.strings", bundle) == 2);

    StartPhase("helpers");
    CHECK(strcmp(OrvaTextOr("MENU_OPEN", "?"), "Open") == 0);
    CHECK(OrvaTextOr("MENU_OPEN", "?") == ZuGetLocalizedString("MENU_OPEN"));
    CHECK(strcmp(OrvaTextOr("MISSING", "?"), "?") == 0);
    CHECK(OrvaTextOr("MISSING", NULL) == NULL);
    CHECK(OrvaCopyText("MISSING") == NULL);
    copy = OrvaCopyText("MENU_OPEN");
    CHECK(copy != NULL);
    CHECK(OrvaIsLoaded("en") == 1);
    CHECK(OrvaIsLoaded("EN") == 1);
    CHECK(OrvaIsLoaded("e") == 0);
    CHECK(OrvaIsLoaded("eng") == 0);
    CHECK(OrvaIsLoaded("") == 0);
    CHECK(ZuLoadStrings("fr", "x.strings", bundle) == 3);
    CHECK(OrvaIsLoaded("en") == 0);
    CHECK(OrvaIsLoaded("Fr") == 1);
    CHECK(strcmp(copy, "Open") == 0);
    free(copy);

    StartPhase("failed load");
    CHECK(ZuLoadStrings(NULL, "x.strings", bundle) == 0);
    CHECK(ZuLoadStrings("en", NULL, bundle) == 0);
    CHECK(ZuLoadStrings("en", "missing", bundle) == 0);
    CHECK(OrvaIsLoaded("en") == 0);
    CHECK(OrvaTextOr("MENU_OPEN", NULL) == NULL);
    CHECK(ZuLoadStrings("en", "\xFF", bundle) == 0);

    StartPhase("clean up");
    CHECK(unlink(file) == 0);
    CHECK(rmdir(resources) == 0);
    CHECK(rmdir(contents) == 0);
    CHECK(rmdir(folder) == 0);
    CHECK(ZuLoadStrings("en", "x.strings", bundle) == 0);
    CloseBundle(bundle);
    return 0;
}
