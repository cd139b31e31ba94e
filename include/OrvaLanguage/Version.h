/*
 * The version of these headers, for the preprocessor. The build takes the library's version from
 * here. docs/versions.md says what a version promises.
 *
 *     #if ORVA_VERSION_NUMBER >= 10200    1.2.0 or later
 */
#ifndef ORVALANGUAGE_VERSION_H
#define ORVALANGUAGE_VERSION_H

#define ORVA_VERSION_MAJOR 1
#define ORVA_VERSION_MINOR 0
#define ORVA_VERSION_PATCH 0

/* 10000 for 1.0.0, 10203 for 1.2.3: a later version has a greater number. */
#define ORVA_VERSION_NUMBER \
    (ORVA_VERSION_MAJOR * 10000 + ORVA_VERSION_MINOR * 100 + ORVA_VERSION_PATCH)

/* "1.0.0" */
#define ORVA_VERSION_STRING \
    ORVA_VERSION_JOIN(ORVA_VERSION_MAJOR, ORVA_VERSION_MINOR, ORVA_VERSION_PATCH)

/* Not for hosts: two steps, since # would take a macro's name instead of its value. */
/* NOLINTNEXTLINE(bugprone-macro-parentheses): quoted, not calculated */
#define ORVA_VERSION_JOIN(major, minor, patch) ORVA_VERSION_QUOTE(major.minor.patch)
#define ORVA_VERSION_QUOTE(version) #version

#endif
