#pragma once

#include "tools/analysis/Entry.h"

#include <optional>

namespace Analysis {

/// Reads one file from front to back.
class EntryReader
{
public:
    EntryReader() = default;
    virtual ~EntryReader() = default;

    virtual std::optional<Entry> next() = 0; ///< nothing at the end

    /// Where a later reader of the same file, which may have grown, goes on.
    virtual Position position() const = 0;

private:
    Q_DISABLE_COPY(EntryReader)
};

} // namespace Analysis
