/**
 * @file version.h
 * @brief Which build of the library is loaded.
 */
#ifndef OKPCV_VERSION_H
#define OKPCV_VERSION_H

#include "okpcv/types.h"

/** @brief Identity of a build of the library. */
typedef struct LibraryVersion {
    int32_t major;         /**< Major release number. */
    int32_t minor;         /**< Minor release number. */
    int32_t majorBuild;    /**< Build number within the release. */
    int32_t build;         /**< Revision; its hexadecimal form stands in #version. */
    char targetCpu[4];     /**< Processor target code, padded with NUL characters. */
    const char* name;      /**< Product name with instruction set and target code. */
    const char* version;   /**< Text form: "major.minor.majorBuild (r0x<build in hexadecimal>)". */
    const char* buildDate; /**< Month abbreviation, day padded with a blank, year. */
} LibraryVersion;

/**
 * @brief Identity of the loaded library.
 *
 * May be called at any time and from any thread.
 *
 * @return The same pointer on every call, to a constant record with static storage duration. Never null; the
 *         caller neither frees nor modifies it.
 */
OKPCV_API const LibraryVersion* okpcvGetLibVersion(void);

#endif /* OKPCV_VERSION_H */
