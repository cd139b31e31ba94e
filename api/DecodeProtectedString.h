#ifndef ORVALANGUAGE_API_DECODEPROTECTEDSTRING_H
#define ORVALANGUAGE_API_DECODEPROTECTEDSTRING_H

#include <cstdint>
#include <mutex>

// Held by the decoder and again by the step of it that builds the key. Outside gCryptMutex.
extern std::recursive_mutex gDecodeMutex;

// Decodes a protected text from its stored form (ProtectedForm.h).
//
// pStatus        gets 0 if the stored text decodes, else a nonzero value. Null: nothing is done.
// nLength        the stored text's characters.
// pText          the stored text.
// pOutputLength  gets the number of bytes written to pOutput.
// pOutput        room for nLength bytes, which is more than the text needs; no NUL is added. Null,
//                the sizing call: only the status is told, and it is that of the filling call.
//
// With a nonzero status nothing is written but that. Throws nothing: memory running out is a
// failure too. Any number of threads may decode at once; they take turns.
void DecodeProtectedString(std::int32_t* pStatus, std::int32_t nLength, const char* pText,
                           std::int32_t* pOutputLength, char* pOutput) noexcept;

#endif
