/*
 * libOrvaLanguage for C and C++ hosts: load one language section of a strings file, then look up
 * its texts by key.
 *
 * For every call here:
 * - Texts passed in are NUL-terminated bytes and are not kept: the caller may free them afterwards.
 * - Texts returned belong to the library; the caller never frees or changes them. Each call says
 *   how long its text lives.
 * - Only the result (0, or null) shows a failure. Nothing is printed or logged, and errno means
 *   nothing. The only exception that a call can throw is std::bad_alloc, when memory runs out. It
 *   ends a C host, which can't catch it; nothing else ends the process.
 * - Each copy of the library in the process has one table, without a lock. Lookups may run
 *   concurrently, except for the first successful one of a protected key (see
 *   ZuGetLocalizedString). A load must not run at the same time as another load or a lookup. No
 *   call may run while the process exits or the library is unloaded, which destroys the table, so a
 *   host must join its threads first, or end with _exit. No call may come from a signal handler,
 *   nor from a static initialiser that may run before the library's. A forked process has a table
 *   of its own.
 */
#ifndef ORVALANGUAGE_ORVALANGUAGE_H
#define ORVALANGUAGE_ORVALANGUAGE_H

#include <OrvaLanguage/Export.h>
#include <OrvaLanguage/Version.h>

#ifdef __cplusplus
extern "C" {
#endif

/*
 * A bundle: a folder that carries an application's resources. On macOS this is CoreFoundation's
 * type: pass a CFBundleRef. Elsewhere, ZuOpenBundle makes one.
 */
struct __CFBundle; /* NOLINT(bugprone-reserved-identifier): the platform's own name */

/*
 * Loads one language section of a strings file, replacing the table.
 *
 * language  the section's name, ignoring the case of ASCII letters. "", or a name that the file
 *           does not have, selects the file's first section.
 * fileName  the file inside the bundle's resources folder, in UTF-8. It may include folders ("a/b",
 *           "../c"). A byte-order mark at its start, and slashes at its start and end, are dropped;
 *           "" and "/" are the resources folder itself, which holds no section.
 * bundle    the bundle, owned by the caller, who may close it afterwards; null is the application's
 *           main bundle.
 *
 * Returns the number of entries in the new table. The section's header is one of them: its key is
 * "QVLANG", its value the section's name. Returns 0 on failure. ZuGetLocalizedString then returns
 * null for every key until a ZuLoadStrings succeeds, and
 * - if the file was not opened, the earlier table and the texts handed out from it stay. Causes: a
 *   null language or fileName, a fileName that is not UTF-8, a bundle whose folder is gone, on macOS
 *   a bundle with neither Contents nor Resources, a path of 1024 bytes or more (which macOS may
 *   truncate instead), a file that is missing or unreadable;
 * - if the file was opened but holds no section, the table is empty. Causes: an empty file, a
 *   folder.
 *
 * A read error, or a line too long for memory, is treated as the end of the file: the entries before
 * it count, and a section not reached counts as missing.
 *
 * Throws std::bad_alloc if memory runs out elsewhere. The table is then the earlier one if the file
 * was not open yet; otherwise it holds the entries read so far. ZuGetLocalizedString searches it if
 * the last ZuLoadStrings that returned had succeeded, and otherwise still returns null.
 *
 * Every text handed out from the table is invalid once a load has opened its file.
 */
ORVA_EXPORT int ZuLoadStrings(const char* language, const char* fileName,
                              struct __CFBundle* bundle);

/*
 * Looks up a text in the table.
 *
 * key  must not be null. The match is exact and case-sensitive.
 *
 * Returns the text, or null if
 * - the last ZuLoadStrings returned 0, or none has run, whatever KorLoadStrings may have loaded;
 * - the table has no such key;
 * - the key is protected (it begins with "IDE") and its stored text does not decode: it was never
 *   protected, is damaged, or was made with another key. Each lookup tries again.
 *
 * An ordinary text is valid until a load opens its file. A protected text is decoded at its first
 * lookup and kept. It is valid until the process exits or the library is unloaded, and every later
 * lookup returns it, even if a reload has brought another text for its key. After a reload that
 * lacks the key, the answer is null. If memory runs out at the first lookup, the answer is either
 * null, and the next lookup tries again, or an empty text, which is then kept.
 *
 * The first successful lookup of a protected key writes to the cache of decoded texts, so it must not
 * run at the same time as another lookup of a protected key. A host with several threads should
 * look up each protected key once before it starts the threads. Throws nothing.
 */
ORVA_EXPORT const char* ZuGetLocalizedString(const char* key);

#ifndef __APPLE__
/*
 * Makes a bundle of the folder at path. Its resources folder is the first of these that applies,
 * checked at each load:
 * - Resources, if path ends in ".framework", slashes after it aside, and Resources exists;
 * - Contents/Resources, if Contents exists (Contents/Resources need not exist);
 * - Resources, if it exists;
 * - the folder itself.
 *
 * A relative path is resolved against the current folder at this call. The path may be a symbolic
 * link to a folder. Each load follows it again, so the bundle is the link's target at that time;
 * but it is the link's name that may end in ".framework".
 *
 * Returns the bundle, to be closed with ZuCloseBundle once, or null if path is null or not a
 * folder, or is relative and the current folder is gone. Throws std::bad_alloc if memory runs out.
 * May run on any thread, even during a load or a lookup, as may ZuCloseBundle for a bundle that no
 * call is using.
 */
ORVA_EXPORT struct __CFBundle* ZuOpenBundle(const char* path);

/*
 * Frees a bundle from ZuOpenBundle. It must not be used afterwards; the table stays. Null is
 * allowed.
 */
ORVA_EXPORT void ZuCloseBundle(struct __CFBundle* bundle);
#endif

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
