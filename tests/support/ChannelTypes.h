// The channel types that typed tests run over, and their names in the test list.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "Pixel.h"

using HostChannels = testing::Types<PILib::Channel8, PILib::Channel15>;
using AllChannels =
    testing::Types<PILib::Channel8, PILib::Channel15, PILib::Channel16, PILib::Channel32, PILib::Channel32f>;

struct ChannelNames {
    template <class C>
    static std::string GetName(int /*index*/) {
        if (std::is_same_v<C, PILib::Channel8>) return "Channel8";
        if (std::is_same_v<C, PILib::Channel15>) return "Channel15";
        if (std::is_same_v<C, PILib::Channel16>) return "Channel16";
        if (std::is_same_v<C, PILib::Channel32>) return "Channel32";
        return "Channel32f";
    }
};

// Full intensity as it is stored.
template <class C>
inline constexpr auto kFullOf = static_cast<typename C::Type>(C::kFloatOne);
