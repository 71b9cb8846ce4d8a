#include "Archiver.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

#include "Errors.h"

namespace PILib {

namespace {

constexpr std::int32_t kInitialSize = 10000;
constexpr std::int64_t kDoublingLimit = 1048576;  // 1 MiB
constexpr std::int64_t kHeadroom = 102400;        // 100 KiB

static_assert(sizeof(short) == 2 && sizeof(int) == 4 && sizeof(long long) == 8 && sizeof(float) == 4 &&
                  sizeof(double) == 8 && std::numeric_limits<float>::is_iec559,
              "the stream's widths are those of the types");

std::int32_t Narrowed(std::size_t bytes) {
    constexpr std::size_t kMax = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::min(bytes, kMax));
}

}  // namespace

Archiver::Archiver(PIContext& context)
    : size(kInitialSize), handle(context.newLockedHandle(kInitialSize)), context(context) {}

Archiver::Archiver(PIContext& context, char** handle)
    : size(Narrowed(context.getHandleSize(handle))), handle(handle), context(context) {}

void Archiver::ensureSpace(int count) {
    const std::int64_t wanted = count;
    const std::int64_t free = std::int64_t{size} - position;
    if (free >= wanted) return;
    const std::int64_t doubled = std::min(std::int64_t{size} * 2, kDoublingLimit);
    const std::int64_t newSize = wanted - free > doubled - size ? position + wanted + kHeadroom : doubled;
    if (newSize > std::numeric_limits<std::int32_t>::max()) throw kOutOfMemory;
    size = static_cast<std::int32_t>(newSize);
    context.unlockHandle(handle);
    context.resizeHandle(static_cast<std::size_t>(size), &handle);
    context.lockHandle(handle);
}

void Archiver::writeBuffer(const void* bytes, int count) {
    if (count <= 0) return;
    ensureSpace(count);
    std::memcpy(*handle + position, bytes, static_cast<std::size_t>(count));
    position += count;
}

void Archiver::readBuffer(void* bytes, int count) {
    if (count <= 0) return;
    if (size - position < count) throw kEndOfArchive;
    std::memcpy(bytes, *handle + position, static_cast<std::size_t>(count));
    position += count;
}

void Archiver::writeVal(int valueSize) {
    writeBuffer(scratch.data(), valueSize);
}

void Archiver::readVal(int valueSize) {
    readBuffer(scratch.data(), valueSize);
}

void Archiver::platConform(int valueSize) {
    if constexpr (std::endian::native == std::endian::little) {
        std::reverse(scratch.begin(), scratch.begin() + valueSize);
    }
}

char** Archiver::getHandle() {
    if (size != position) {
        context.resizeHandle(static_cast<std::size_t>(position), &handle);
        size = position;
    }
    return handle;
}

template <class T>
Archiver& Archiver::writeScalar(T value) {
    std::memcpy(scratch.data(), &value, sizeof value);
    platConform(sizeof value);
    writeVal(sizeof value);
    return *this;
}

template <class T>
Archiver& Archiver::readScalar(T& value) {
    readVal(sizeof value);
    platConform(sizeof value);
    std::memcpy(&value, scratch.data(), sizeof value);
    return *this;
}

Archiver& Archiver::operator<<(bool value) {
    return writeScalar(static_cast<unsigned char>(value ? 1 : 0));
}
Archiver& Archiver::operator<<(signed char value) {
    return writeScalar(value);
}
Archiver& Archiver::operator<<(unsigned char value) {
    return writeScalar(value);
}
Archiver& Archiver::operator<<(short value) {
    return writeScalar(value);
}
Archiver& Archiver::operator<<(unsigned short value) {
    return writeScalar(value);
}
Archiver& Archiver::operator<<(int value) {
    return writeScalar(value);
}
Archiver& Archiver::operator<<(unsigned int value) {
    return writeScalar(value);
}
Archiver& Archiver::operator<<(long long value) {
    return writeScalar(value);
}
Archiver& Archiver::operator<<(unsigned long long value) {
    return writeScalar(value);
}
Archiver& Archiver::operator<<(float value) {
    return writeScalar(value);
}
Archiver& Archiver::operator<<(double value) {
    return writeScalar(value);
}
Archiver& Archiver::operator<<(const Pixel<Channel8>& value) {
    return *this << value.alpha << value.red << value.green << value.blue;
}

Archiver& Archiver::operator>>(bool& value) {
    unsigned char byte = 0;
    readScalar(byte);
    value = byte != 0;
    return *this;
}
Archiver& Archiver::operator>>(signed char& value) {
    return readScalar(value);
}
Archiver& Archiver::operator>>(unsigned char& value) {
    return readScalar(value);
}
Archiver& Archiver::operator>>(short& value) {
    return readScalar(value);
}
Archiver& Archiver::operator>>(unsigned short& value) {
    return readScalar(value);
}
Archiver& Archiver::operator>>(int& value) {
    return readScalar(value);
}
Archiver& Archiver::operator>>(unsigned int& value) {
    return readScalar(value);
}
Archiver& Archiver::operator>>(long long& value) {
    return readScalar(value);
}
Archiver& Archiver::operator>>(unsigned long long& value) {
    return readScalar(value);
}
Archiver& Archiver::operator>>(float& value) {
    return readScalar(value);
}
Archiver& Archiver::operator>>(double& value) {
    return readScalar(value);
}
Archiver& Archiver::operator>>(Pixel<Channel8>& value) {
    return *this >> value.alpha >> value.red >> value.green >> value.blue;
}

}  // namespace PILib
