#ifndef ORVALANGUAGE_API_DECODEPROTECTEDSTRING_H
#define ORVALANGUAGE_API_DECODEPROTECTEDSTRING_H

#include <cstdint>
#include <mutex>

// Held by the decoder, and again by its step that builds the key. Taken before gCryptMutex.
extern std::recursive_mutex gDecodeMutex;

// Decodes a protected text from its stored form (ProtectedForm.h).
//
// pStatus        receives 0 if the stored text decodes, otherwise a nonzero value. If it is null,
//                nothing is done.
// nLength        the stored text's length in bytes.
// pText          the stored text.
// pOutputLength  receives the number of bytes written to pOutput.
// pOutput        room for nLength bytes, more than the text needs; no NUL is added. If it is null
//                (the sizing call), only the status is written, the same as the filling call's.
//
// With a nonzero status nothing else is written. Throws nothing: running out of memory is a failure
// too. Any number of threads may call it at once; they take turns.
void DecodeProtectedString(std::int32_t* pStatus, std::int32_t nLength, const char* pText,
                           std::int32_t* pOutputLength, char* pOutput) noexcept;

#endif
