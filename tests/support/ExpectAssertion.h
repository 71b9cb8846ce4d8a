// Expectations on failed assertions of the library.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "Errors.h"

// Succeeds if `action` throws the int 999 and the globals name this file and line.
template <class Action>
testing::AssertionResult FailsAssertion(const std::string& file, int line, Action action) {
    PILib::AssertFile = nullptr;
    PILib::AssertLine = 0;
    try {
        action();
    } catch (int code) {
        if (code != 999) return testing::AssertionFailure() << "threw " << code;
        const std::string actualFile = PILib::AssertFile == nullptr ? "(null)" : PILib::AssertFile;
        if (actualFile == file && PILib::AssertLine == line) return testing::AssertionSuccess();
        return testing::AssertionFailure() << "failed at " << actualFile << " line " << PILib::AssertLine
                                           << ", not at " << file << " line " << line;
    }
    return testing::AssertionFailure() << "nothing thrown; expected " << file << " line " << line;
}
