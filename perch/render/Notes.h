// What a user should know of a job though nothing failed, each kind once however many frames have it. Any
// thread.
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace perch {

class Notes {
public:
    // The first note of a kind stays.
    void add(const std::string& kind, const std::string& sentence) {
        const std::lock_guard lock(mutex);
        if (sentences.emplace(kind, sentence).second) order.push_back(kind);
    }

    std::vector<std::string> all() const {
        const std::lock_guard lock(mutex);
        std::vector<std::string> result;
        for (const std::string& kind : order)
            result.push_back(sentences.at(kind));
        return result;
    }

private:
    mutable std::mutex mutex;
    std::map<std::string, std::string> sentences;  // by kind
    std::vector<std::string> order;
};

}  // namespace perch
