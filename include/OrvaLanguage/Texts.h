/*
 * Helpers for C hosts (C99): fallback texts, copies of texts, and which section is loaded. Header
 * only: all of it is compiled into the host and uses only what the library exports. Texts.hpp has
 * these and more for C++: lists, which a menu and the user's languages need, would have to be freed
 * in C.
 *
 * No key may be null. Each function looks up one text and may run at the same time as the lookups
 * that ZuGetLocalizedString allows.
 */
#ifndef ORVALANGUAGE_TEXTS_H
#define ORVALANGUAGE_TEXTS_H

#ifdef __cplusplus
#error "<OrvaLanguage/Texts.h> is for C; C++ has <OrvaLanguage/Texts.hpp>."
#endif

#include <stdlib.h>
#include <string.h>

#include <OrvaLanguage/OrvaLanguage.h>

/*
 * The text of a key, or fallback where ZuGetLocalizedString answers null. Neither is copied: a text
 * from the library lives as long as ZuGetLocalizedString says, and fallback as long as the caller
 * keeps it. fallback may be null.
 */
static inline const char* OrvaTextOr(const char* key, const char* fallback) {
    const char* const text = ZuGetLocalizedString(key);
    return text != NULL ? text : fallback;
}

/*
 * A copy of a key's text, which survives a reload. The caller frees it with free. Null where
 * ZuGetLocalizedString answers null, or if memory runs out.
 */
static inline char* OrvaCopyText(const char* key) {
    const char* const text = ZuGetLocalizedString(key);
    const size_t size = text != NULL ? strlen(text) + 1 : 0;
    char* const copy = size > 0 ? (char*)malloc(size) : NULL;
    return copy != NULL ? (char*)memcpy(copy, text, size) : NULL;
}

/*
 * Whether the loaded section has this name, ignoring the case of ASCII letters: 1 or 0. A load falls
 * back to the file's first section without a sign; this tells the two apart. 0 if nothing is loaded.
 * Not for names with double quotes, which "QVLANG" answers without them. section must not be null.
 */
static inline int OrvaIsLoaded(const char* section) {
    const char* loaded = OrvaTextOr("QVLANG", NULL);
    for (; loaded != NULL; ++loaded, ++section) {
        const int a = *loaded >= 'A' && *loaded <= 'Z' ? *loaded - 'A' + 'a' : *loaded;
        const int b = *section >= 'A' && *section <= 'Z' ? *section - 'A' + 'a' : *section;
        if (a != b) {
            return 0;
        }
        if (a == '\0') {
            return 1;
        }
    }
    return 0;
}

#endif
