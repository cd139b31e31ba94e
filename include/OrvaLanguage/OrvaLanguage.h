/*
 * libOrvaLanguage for a host, in C or C++: load one language section of a strings file, then look
 * its texts up by key.
 *
 * What holds for every call here:
 * - Texts going in are NUL-terminated bytes and are not kept: the caller may free them afterwards.
 * - Texts coming out belong to the library; the caller never frees or changes them. How long one
 *   lives is said at the call that hands it out.
 * - A failure shows in the result alone (0, or null). Nothing is printed or logged, errno means
 *   nothing, and no call ends the process. The one exception that can leave a call is
 *   std::bad_alloc, when memory runs out; a C host ends there.
 * - There is one table for each copy of the library in the process, and it has no lock. Lookups may
 *   run at the same time as lookups, except for the first of a protected key (see
 *   ZuGetLocalizedString). A load must not run at the same time as another load or a lookup, nor any
 *   call while the process exits or the library is unloaded: the table goes then, so a host joins
 *   its threads first, or ends with _exit. No call may come from a signal handler, nor from a static
 *   initialiser that may run before the library's; a forked process has a table of its own.
 */
#ifndef ORVALANGUAGE_ORVALANGUAGE_H
#define ORVALANGUAGE_ORVALANGUAGE_H

#include <OrvaLanguage/Export.h>

#ifdef __cplusplus
extern "C" {
#endif

/*
 * A bundle: a folder that carries an application's resources. On macOS this is CoreFoundation's
 * type, so a CFBundleRef is what to pass; elsewhere ZuOpenBundle makes one.
 */
struct __CFBundle; /* NOLINT(bugprone-reserved-identifier): the platform's own name */

/*
 * Loads one language section of a strings file in place of the table loaded before.
 *
 * language  the section's name, compared without regard to the case of ASCII letters. "" is the
 *           file's first section, and so is a name that the file does not have.
 * fileName  the file inside the bundle's resources folder, in UTF-8. It may name folders ("a/b",
 *           "../c"). Slashes at its beginning and its end are dropped; "" and "/" are the resources
 *           folder itself, which holds no section.
 * bundle    the bundle, still owned by the caller, who may close it afterwards; null is the
 *           application's main bundle.
 *
 * Returns the number of entries in the new table. The section's own header counts as one: its key
 * is "QVLANG", its value the section's name. Returns 0 on failure. ZuGetLocalizedString then answers
 * null for every key until a load succeeds, and
 * - the earlier table stays, and with it the texts that were handed out from it, where the file was
 *   not opened: a null language or fileName, a fileName that is not UTF-8, a bundle whose folder is
 *   gone, a path of 1024 bytes or more, a file that is missing or may not be read;
 * - the table is empty where the file was opened but holds no section, as with an empty file or a
 *   folder.
 *
 * A read error, or a line too long for memory, is treated as the end of the file: the entries before
 * it count, and a section not reached counts as missing.
 *
 * Throws std::bad_alloc if memory runs out elsewhere. The table is then the earlier one, if the file
 * was not open yet, or holds the entries read so far, and lookups behave as after the previous load.
 *
 * Every text handed out from the table is invalid once a load has opened its file.
 */
ORVA_EXPORT int ZuLoadStrings(const char* language, const char* fileName,
                              struct __CFBundle* bundle);

/*
 * Looks a text up in the table.
 *
 * key  must not be null. Matched whole and by case.
 *
 * Returns the text, or null if
 * - the last ZuLoadStrings returned 0, or none has run, whatever KorLoadStrings may have loaded;
 * - the table has no such key;
 * - the key is protected, that is, begins with "IDE", and its stored text does not decode: it was
 *   never protected, was damaged, or made with another key. Each lookup tries again.
 *
 * An ordinary text is valid until a load opens its file. A protected text is decoded at its first
 * lookup and kept: it is valid until the process exits or the library is unloaded, and every later
 * lookup returns the same, even if a reload has brought another text for its key. After a reload that
 * lacks the key the answer is null. If memory runs out at the first lookup the answer is null, or
 * empty from then on.
 *
 * The first successful lookup of a protected key writes to the cache of decoded texts, so it must not
 * run at the same time as another lookup of a protected key. A host with several threads looks each
 * one up before it starts them. Throws nothing.
 */
ORVA_EXPORT const char* ZuGetLocalizedString(const char* key);

#ifndef __APPLE__
/*
 * Makes a bundle of the folder at path. The resources folder in it is
 * - Resources, if the folder's name ends in ".framework" and Resources is there;
 * - else Contents/Resources, if Contents is there (Contents/Resources need not be);
 * - else Resources, if that is there;
 * - else the folder itself.
 * Which of these holds is asked anew at each load.
 *
 * A relative path is taken from the folder that is current at this call. The path may be a symbolic
 * link to a folder. Each load follows it anew, so the bundle is the folder that it leads to then,
 * the ".framework" of that folder's name included.
 *
 * Returns the bundle, to be given to ZuCloseBundle once, or null if path is null or not a folder, or
 * is relative and the current folder is gone. Throws std::bad_alloc if memory runs out.
 * May run on any thread at any time; so may ZuCloseBundle with a bundle that no call is using.
 */
ORVA_EXPORT struct __CFBundle* ZuOpenBundle(const char* path);

/*
 * Frees a bundle from ZuOpenBundle, which must not be used afterwards; the table stays. Null is
 * fine.
 */
ORVA_EXPORT void ZuCloseBundle(struct __CFBundle* bundle);
#endif

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
