#include "support/FaultVfs.h"

#include <limits>
#include <sqlite3.h>
#include <stdexcept>
#include <utility>

namespace quarn::testing {

struct FaultVfs::State {
    sqlite3_vfs shim{};
    sqlite3_vfs* real = nullptr;
    int changes = 0;
    int successesLeft = std::numeric_limits<int>::max();
    Fault fault = Fault::ioError;

    bool nextChangeFails() {
        ++changes;
        if (successesLeft > 0) {
            --successesLeft;
            return false;
        }
        return true;
    }
    int code(int ioError) const { return fault == Fault::diskFull ? SQLITE_FULL : ioError; }
};

namespace {

/// SQLite allocates one of these with the real file behind it.
struct File {
    sqlite3_file base;
    void* state;

    sqlite3_file* real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};

File& own(sqlite3_file* file) { return *reinterpret_cast<File*>(file); }
const sqlite3_io_methods& methods(sqlite3_file* file) { return *own(file).real()->pMethods; }

} // namespace

/// What the shim's function pointers need of the state.
struct FaultShim {
    using State = FaultVfs::State;
    static State& state(sqlite3_file* file) { return *static_cast<State*>(own(file).state); }
    static State& state(sqlite3_vfs* vfs) { return *static_cast<State*>(vfs->pAppData); }

    static int write(sqlite3_file* file, const void* data, int size, sqlite3_int64 at) {
        auto& s = state(file);
        if (!s.nextChangeFails()) return methods(file).xWrite(own(file).real(), data, size, at);
        if (s.fault == FaultVfs::Fault::tornWrite) methods(file).xWrite(own(file).real(), data, size / 2, at);
        return s.code(SQLITE_IOERR_WRITE);
    }
    static int truncate(sqlite3_file* file, sqlite3_int64 size) {
        if (state(file).nextChangeFails()) return SQLITE_IOERR_TRUNCATE;
        return methods(file).xTruncate(own(file).real(), size);
    }
    static int sync(sqlite3_file* file, int) {
        if (state(file).nextChangeFails()) return state(file).code(SQLITE_IOERR_FSYNC);
        return SQLITE_OK; // the machine will not crash
    }
    static int close(sqlite3_file* file) { return methods(file).xClose(own(file).real()); }

    static int open(sqlite3_vfs* vfs, const char* name, sqlite3_file* file, int flags, int* outFlags) {
        auto& s = state(vfs);
        own(file).state = &s;
        own(file).base.pMethods = nullptr;
        const int status = s.real->xOpen(s.real, name, own(file).real(), flags, outFlags);
        if (status == SQLITE_OK) own(file).base.pMethods = &wrapped();
        return status;
    }
    static int remove(sqlite3_vfs* vfs, const char* name, int sync) {
        auto& s = state(vfs);
        return s.nextChangeFails() ? SQLITE_IOERR_DELETE : s.real->xDelete(s.real, name, sync);
    }

    static const sqlite3_io_methods& wrapped();
};

const sqlite3_io_methods& FaultShim::wrapped() {
    static const sqlite3_io_methods table = [] {
        sqlite3_io_methods m{};
        m.iVersion = 2;
        m.xClose = close;
        m.xRead = [](sqlite3_file* f, void* d, int n, sqlite3_int64 at) {
            return methods(f).xRead(own(f).real(), d, n, at);
        };
        m.xWrite = write;
        m.xTruncate = truncate;
        m.xSync = sync;
        m.xFileSize = [](sqlite3_file* f, sqlite3_int64* n) {
            return methods(f).xFileSize(own(f).real(), n);
        };
        m.xLock = [](sqlite3_file* f, int level) { return methods(f).xLock(own(f).real(), level); };
        m.xUnlock = [](sqlite3_file* f, int level) { return methods(f).xUnlock(own(f).real(), level); };
        m.xCheckReservedLock = [](sqlite3_file* f, int* out) {
            return methods(f).xCheckReservedLock(own(f).real(), out);
        };
        m.xFileControl = [](sqlite3_file* f, int op, void* arg) {
            return methods(f).xFileControl(own(f).real(), op, arg);
        };
        m.xSectorSize = [](sqlite3_file* f) { return methods(f).xSectorSize(own(f).real()); };
        m.xDeviceCharacteristics = [](sqlite3_file* f) {
            return methods(f).xDeviceCharacteristics(own(f).real());
        };
        m.xShmMap = [](sqlite3_file* f, int page, int size, int extend, void volatile** out) {
            return methods(f).xShmMap(own(f).real(), page, size, extend, out);
        };
        m.xShmLock = [](sqlite3_file* f, int at, int n, int flags) {
            return methods(f).xShmLock(own(f).real(), at, n, flags);
        };
        m.xShmBarrier = [](sqlite3_file* f) { methods(f).xShmBarrier(own(f).real()); };
        m.xShmUnmap = [](sqlite3_file* f, int del) { return methods(f).xShmUnmap(own(f).real(), del); };
        return m;
    }();
    return table;
}

FaultVfs::FaultVfs() : state_(std::make_unique<State>()) {
    state_->real = sqlite3_vfs_find(nullptr);
    state_->shim = *state_->real; // everything but files goes straight to the real one
    state_->shim.zName = "faults";
    state_->shim.pNext = nullptr;
    state_->shim.pAppData = state_.get();
    state_->shim.szOsFile = static_cast<int>(sizeof(File)) + state_->real->szOsFile;
    state_->shim.xOpen = FaultShim::open;
    state_->shim.xDelete = FaultShim::remove;
    state_->shim.xAccess = [](sqlite3_vfs* vfs, const char* name, int flags, int* out) {
        auto* real = FaultShim::state(vfs).real;
        return real->xAccess(real, name, flags, out);
    };
    state_->shim.xFullPathname = [](sqlite3_vfs* vfs, const char* name, int size, char* out) {
        auto* real = FaultShim::state(vfs).real;
        return real->xFullPathname(real, name, size, out);
    };
    if (sqlite3_vfs_register(&state_->shim, 1) != SQLITE_OK) throw std::runtime_error("no fault VFS");
}

FaultVfs::~FaultVfs() { sqlite3_vfs_unregister(&state_->shim); }

void FaultVfs::failAfter(int successes, Fault fault) {
    state_->successesLeft = successes;
    state_->fault = fault;
}

void FaultVfs::heal() { state_->successesLeft = std::numeric_limits<int>::max(); }
int FaultVfs::takeChanges() { return std::exchange(state_->changes, 0); }

} // namespace quarn::testing
