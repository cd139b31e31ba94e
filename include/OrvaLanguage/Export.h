/* Marks what the shared library exports; everything else in it is hidden. */
#ifndef ORVALANGUAGE_EXPORT_H
#define ORVALANGUAGE_EXPORT_H

#define ORVA_EXPORT __attribute__((visibility("default")))

#endif
