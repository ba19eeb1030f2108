#pragma once

#include <QString>

#include <vector>

/// What the system holds for this process at one moment.
struct Footprint {
    double resident = 0; ///< MiB in memory, after the allocator has given back what it can
    double allocated = 0; ///< KiB that the program has asked for and not released
    int handles = 0; ///< open file descriptors

    static Footprint now();
    /// The lower figure of each kind.
    Footprint lower(const Footprint& other) const;
};

/// How much more a process may hold after the second half of some work than before it.
struct Allowance {
    double resident; ///< MiB
    double allocated; ///< KiB
    int handles;
};

/// One kind of work, with the footprints at its start, in its middle and at its end. What is lost with each
/// piece of work is lost in both halves; caches and pools that are filled once settle in the first, so the
/// second is judged.
struct Endurance {
    QString what;
    std::vector<Footprint> footprints;

    bool isFlat(const Allowance& allowance) const;
    /// Three lines for a person to read.
    QString text(const Allowance& allowance) const;
};
