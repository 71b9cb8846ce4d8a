// What a user should know of a job though nothing failed, each kind once however many frames have it. Any
// thread; what is kept does not depend on which frame is read first.
#pragma once

#include <cstddef>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "Error.h"

namespace perch {

struct Note {
    bool isWarning = false;  // of what is likely a mistake
    std::string sentence;
};

inline std::vector<std::string> sentencesOf(const std::vector<Note>& notes) {
    std::vector<std::string> sentences;
    for (const Note& note : notes)
        sentences.push_back(note.sentence);
    return sentences;
}

// Throws InputError for the first that is a warning: of what is read.
inline void refuseWarnings(const std::vector<Note>& notes) {
    for (const Note& note : notes)
        if (note.isWarning) throw InputError(note.sentence);
}

class Notes {
public:
    // `place` is that of the frame among the job's, from 1 on; 0 for the job. Of a kind the first place's
    // stays.
    void add(const std::string& kind, const std::string& sentence, std::size_t place = 0) {
        keep(kind, place, {false, sentence});
    }

    // Of what is read, and of the command line. Where warnings are to be errors they throw one instead.
    void warn(const std::string& kind, const std::string& sentence, std::size_t place = 0) {
        if (areWarningsErrors) throw InputError(sentence);
        keep(kind, place, {true, sentence});
    }
    void warnOfUse(const std::string& kind, const std::string& sentence) {
        if (areWarningsErrors) throw UsageError(sentence);
        keep(kind, 0, {true, sentence});
    }

    // In the order of their places, those of one in that of their kinds' names.
    std::vector<Note> all() const {
        const std::lock_guard lock(mutex);
        std::map<std::pair<std::size_t, std::string>, Note> inOrder;
        for (const auto& [kind, placed] : notes)
            inOrder[{placed.first, kind}] = placed.second;
        std::vector<Note> result;
        for (const auto& [key, note] : inOrder)
            result.push_back(note);
        return result;
    }

    std::vector<std::string> sentences() const { return sentencesOf(all()); }

    bool areWarningsErrors = false;  // to be set before the job begins

private:
    void keep(const std::string& kind, std::size_t place, const Note& note) {
        const std::lock_guard lock(mutex);
        const auto [kept, isNew] = notes.try_emplace(kind, place, note);
        if (!isNew && place < kept->second.first) kept->second = {place, note};
    }

    mutable std::mutex mutex;
    std::map<std::string, std::pair<std::size_t, Note>> notes;  // by kind
};

}  // namespace perch
