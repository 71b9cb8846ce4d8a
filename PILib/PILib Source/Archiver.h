// Turns values into a flat byte stream in a handle of the context, and back.
//
// The stream is the concatenation of its values in call order, big-endian, without header, tags or padding:
// the reader applies the operations of the writer in the same order. One archiver is used in one direction.
// Writing: construct with a context, write, then take the handle with getHandle(); it is the caller's from
// then on, and the archiver has no destructor work. Reading: construct over a handle that stays the caller's.
// Reading past the end throws kEndOfArchive and moves nothing (a pixel is four reads). A failure to allocate
// or resize is the context's to throw.
#pragma once

#include <array>
#include <cstdint>

#include "PIContext.h"
#include "Pixel.h"

namespace PILib {

class Archiver {
public:
    explicit Archiver(PIContext& context);
    Archiver(PIContext& context, char** handle);

    Archiver& operator<<(bool value);
    Archiver& operator<<(signed char value);
    Archiver& operator<<(unsigned char value);
    Archiver& operator<<(short value);
    Archiver& operator<<(unsigned short value);
    Archiver& operator<<(int value);
    Archiver& operator<<(unsigned int value);
    Archiver& operator<<(long long value);
    Archiver& operator<<(unsigned long long value);
    Archiver& operator<<(float value);
    Archiver& operator<<(double value);
    Archiver& operator<<(const Pixel<Channel8>& value);

    Archiver& operator>>(bool& value);
    Archiver& operator>>(signed char& value);
    Archiver& operator>>(unsigned char& value);
    Archiver& operator>>(short& value);
    Archiver& operator>>(unsigned short& value);
    Archiver& operator>>(int& value);
    Archiver& operator>>(unsigned int& value);
    Archiver& operator>>(long long& value);
    Archiver& operator>>(unsigned long long& value);
    Archiver& operator>>(float& value);
    Archiver& operator>>(double& value);
    Archiver& operator>>(Pixel<Channel8>& value);

    // Bytes as they are. A count of 0 or below moves nothing.
    void writeBuffer(const void* bytes, int count);
    void readBuffer(void* bytes, int count);

    // One scalar of `valueSize` bytes, 8 at most, between the scratch field and the stream.
    void writeVal(int valueSize);
    void readVal(int valueSize);

    // Grows the handle, if need be, so that `count` more bytes fit: to double its size while that is at most
    // 1 MiB, else to what is needed and 100 KiB more. A stream that would pass 2 GiB throws kOutOfMemory.
    void ensureSpace(int count);

    // Trims the handle to the bytes written and gives it to the caller.
    char** getHandle();

    // Field order is given.
    std::int32_t position = 0;  // of the next byte
    std::int32_t size;          // writing: bytes allocated; reading: bytes available
    char** handle;
    PIContext& context;
    std::array<unsigned char, 8> scratch{};

private:
    // Converts the scratch value between the machine's byte order and the stream's.
    void platConform(int valueSize);

    template <class T>
    Archiver& writeScalar(T value);
    template <class T>
    Archiver& readScalar(T& value);
};

}  // namespace PILib
