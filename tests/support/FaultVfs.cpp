#include "support/FaultVfs.h"

#include <limits>
#include <sqlite3.h>
#include <stdexcept>
#include <utility>

namespace quarn::testing {

/// The real file system but for what opens and removes files.
struct FaultVfs::State : sqlite3_vfs {
    sqlite3_vfs* real = nullptr;
    int changes = 0;
    int successesLeft = std::numeric_limits<int>::max();
    Fault fault = Fault::ioError;

    bool nextChangeFails() {
        ++changes;
        if (successesLeft == 0) return true;
        --successesLeft;
        return false;
    }
    int code(int ioError) const { return fault == Fault::diskFull ? SQLITE_FULL : ioError; }
};

namespace {

/// What a file does: as the real one, but for what changes it. It lies behind the real file in its memory.
struct Methods : sqlite3_io_methods {
    FaultVfs::State* state;
    const sqlite3_io_methods* real;
};

const Methods& methods(sqlite3_file* file) { return *static_cast<const Methods*>(file->pMethods); }

int write(sqlite3_file* file, const void* data, int size, sqlite3_int64 at) {
    auto* state = methods(file).state;
    const auto* real = methods(file).real;
    if (!state->nextChangeFails()) return real->xWrite(file, data, size, at);
    if (state->fault == FaultVfs::Fault::tornWrite) real->xWrite(file, data, size / 2, at);
    return state->code(SQLITE_IOERR_WRITE);
}

int truncate(sqlite3_file* file, sqlite3_int64 size) {
    if (methods(file).state->nextChangeFails()) return SQLITE_IOERR_TRUNCATE;
    return methods(file).real->xTruncate(file, size);
}

int sync(sqlite3_file* file, int) {
    auto& state = *methods(file).state;
    return state.nextChangeFails() ? state.code(SQLITE_IOERR_FSYNC) : SQLITE_OK; // the machine will not crash
}

int open(sqlite3_vfs* vfs, const char* name, sqlite3_file* file, int flags, int* outFlags) {
    auto& state = *static_cast<FaultVfs::State*>(vfs);
    const int status = state.real->xOpen(state.real, name, file, flags, outFlags);
    if (status != SQLITE_OK) return status;
    auto* own = reinterpret_cast<Methods*>(reinterpret_cast<char*>(file) + state.real->szOsFile);
    *own = {*file->pMethods, &state, file->pMethods};
    own->iVersion = 2; // without mapping into memory, which no write would be seen of
    own->xWrite = write;
    own->xTruncate = truncate;
    own->xSync = sync;
    file->pMethods = own;
    return status;
}

int remove(sqlite3_vfs* vfs, const char* name, int sync) {
    auto& state = *static_cast<FaultVfs::State*>(vfs);
    return state.nextChangeFails() ? SQLITE_IOERR_DELETE : state.real->xDelete(state.real, name, sync);
}

} // namespace

FaultVfs::FaultVfs() : state_(std::make_unique<State>()) {
    auto* real = sqlite3_vfs_find(nullptr);
    static_cast<sqlite3_vfs&>(*state_) = *real;
    state_->real = real;
    state_->zName = "faults";
    state_->pNext = nullptr;
    state_->szOsFile += static_cast<int>(sizeof(Methods));
    state_->xOpen = open;
    state_->xDelete = remove;
    if (sqlite3_vfs_register(state_.get(), 1) != SQLITE_OK) throw std::runtime_error("no fault VFS");
}

FaultVfs::~FaultVfs() { sqlite3_vfs_unregister(state_.get()); }

void FaultVfs::failAfter(int successes, Fault fault) {
    state_->successesLeft = successes;
    state_->fault = fault;
}

void FaultVfs::heal() { state_->successesLeft = std::numeric_limits<int>::max(); }
int FaultVfs::takeChanges() { return std::exchange(state_->changes, 0); }

} // namespace quarn::testing
