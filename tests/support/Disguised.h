// A buffer that gives another element key than its class has.
#pragma once

template <class Buffer, int kKey>
struct Disguised : Buffer {
    using Buffer::Buffer;

    int elementKey() const override { return kKey; }
};
