// A client's callback that keeps what it was told.
#pragma once

#include "zlv40.h"

#include <functional>
#include <vector>

namespace zlvtest {

struct Report {
    std::uint32_t current;
    std::uint32_t total;
    bool operator==(const Report&) const = default;
};

// Pass Function as the callback and Data() as its value.
struct ProgressRecorder {
    std::vector<Report> reports;
    std::size_t cancelAt = 0;  // 0 never; 1 at the first report, ...
    std::function<void()> atReport;

    std::uint64_t Data() { return reinterpret_cast<std::uint64_t>(this); }

    static std::uint32_t Function(std::uint32_t current, std::uint32_t total, std::uint64_t data)
    {
        ProgressRecorder& self = *reinterpret_cast<ProgressRecorder*>(data);
        self.reports.push_back({current, total});
        if (self.atReport) self.atReport();
        return self.reports.size() == self.cancelAt ? 0 : 1;
    }
};

// (0, total), (1, total), ...: what a pass over `total` rows reports when it is let to the row `count` - 1.
inline std::vector<Report> Rows(std::uint32_t count, std::uint32_t total)
{
    std::vector<Report> rows;
    for (std::uint32_t row = 0; row < count; ++row) rows.push_back({row, total});
    return rows;
}

}  // namespace zlvtest
