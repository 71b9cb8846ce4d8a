#pragma once

#include <algorithm>
#include <cstdint>

#include "PF_World.h"
#include "WorkerPool.h"

namespace perch {

// How the rows of an area are shared out: each is drawn by one thread.
class RowRunner {
public:
    RowRunner(const PF_Rect& area, WorkerPool* workers) : area(area), workers(workers) {}

    // Calls draw(first, last) for bands of rows of the area.
    template <typename F>
    void run(const F& draw) const {
        constexpr std::int32_t kBand = 64;
        const std::int32_t bands = (area.bottom - area.top + kBand - 1) / kBand;
        const auto drawBand = [&](std::int32_t, std::int32_t band) {
            const std::int32_t first = area.top + band * kBand;
            draw(first, std::min(first + kBand, area.bottom));
        };
        if (workers != nullptr) return workers->run(bands, drawBand);
        for (std::int32_t band = 0; band < bands; ++band)
            drawBand(0, band);
    }

private:
    const PF_Rect& area;
    WorkerPool* const workers;
};

}  // namespace perch
