#pragma once

#include <memory>

namespace quarn::testing {

/// A file system for SQLite in which one write goes wrong. While it lives it stands in front of the real one
/// for every database that is opened; databases must be closed before it ends. It never waits for the disk.
class FaultVfs {
public:
    /// `tornWrite` leaves half of the write on the disk before it fails.
    enum class Fault { ioError, tornWrite, diskFull };

    FaultVfs();
    ~FaultVfs();
    FaultVfs(const FaultVfs&) = delete;
    FaultVfs& operator=(const FaultVfs&) = delete;

    /// The change to a file (write, sync, truncation, removal) after `successes` more fails, and so does
    /// every later one, until `heal`.
    void failAfter(int successes, Fault fault);
    void heal();
    /// Changes to files since the last call.
    int takeChanges();

    struct State;

private:
    std::unique_ptr<State> state_;
};

} // namespace quarn::testing
